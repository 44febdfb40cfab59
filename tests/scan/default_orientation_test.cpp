// A clip reset (KRYNClearClip, KRYNNextBand) on a page whose orientation is
// not yet established sets the identity matrix for its page rectangle and
// so establishes the orientation as 0 quarter turns: a driver that never
// calls KRYNSetMatrix still paints, the reset drops the current path, and a
// later half-turn matrix keeps the unrotated pixel rule.
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 64;
constexpr int32_t H = 48;

struct Reset {
    const char* name;
    ResultCode (*call)(Engine*);
};

const Reset RESETS[] = {
    {"ClearClip", [](Engine* e) { return KRYNClearClip(e); }},
    {"NextBand", [](Engine* e) { return KRYNNextBand(1, nullptr, 0, e); }},
};

// Painted rows of the page (each row counted once however many pixels).
std::vector<int32_t> paintedRows(Engine* e) {
    const Coverage c = pageCoverage(pageOf(e));
    std::vector<int32_t> rows;
    for (int32_t y = 0; y < c.height; ++y) {
        for (int32_t x = 0; x < c.width; ++x) {
            if (c.at(x, y) != 0) {
                rows.push_back(y);
                break;
            }
        }
    }
    return rows;
}

} // namespace

TEST(DefaultOrientation, AClipResetEstablishesZeroQuarterTurns) {
    for (const Reset& reset : RESETS) {
        SCOPED_TRACE(reset.name);
        EnginePtr e = makeEngine(W - 1, H - 1, 16, 0x8009);
        ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNMoveTo(1, 1, e.get()), KRYN_OK);
        ASSERT_EQ(reset.call(e.get()), KRYN_OK);
        EXPECT_EQ(pageOf(e.get())->pageQuarterTurns, 0);
        EXPECT_EQ(currentState(e.get())->path.last, nullptr) << "the reset keeps the path";

        // Without any matrix call the fill paints its rows 2..11.
        ASSERT_EQ(KRYNRectPath(2, 2, 10, 10, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
        std::vector<int32_t> rows = paintedRows(e.get());
        ASSERT_EQ(rows.size(), 10u);
        EXPECT_EQ(rows.front(), 2);
        ASSERT_EQ(KRYNDisposePage(e.get()), KRYN_OK);

        // A half-turn matrix after the reset does not change the rule: the
        // square's device rows H-10..H are sampled half-open at the bottom
        // (H-10..H-1), not at the top as a half-turned page would.
        ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
        ASSERT_EQ(reset.call(e.get()), KRYN_OK);
        const int32_t halfTurn[6] = {-1, 0, 0, -1, W, H};
        ASSERT_EQ(KRYNSetMatrix(halfTurn, e.get()), KRYN_OK);
        EXPECT_EQ(pageOf(e.get())->pageQuarterTurns, 0);
        ASSERT_EQ(KRYNRectPath(0, 0, 10, 10, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
        rows = paintedRows(e.get());
        ASSERT_EQ(rows.size(), 10u);
        EXPECT_EQ(rows.front(), H - 10);
    }
}
