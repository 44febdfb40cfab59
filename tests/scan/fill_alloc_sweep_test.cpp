// Fill and clip under failed memory: every allocation of a scenario fails
// once in turn. Each call answers KRYN_OK or KRYN_ERR_NO_MEMORY, pixels
// recorded before a failure stay recorded, a failed clip leaves the old
// region in force, and nothing leaks.
#include "support/alloc_sweep.h"
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 200;
constexpr int32_t H = 160;
// The clip rectangle of the scenario.
constexpr int32_t CX0 = 50, CY0 = 40, CX1 = 120, CY1 = 100;

bool insideClip(int32_t x, int32_t y) {
    return x >= CX0 && x < CX1 && y >= CY0 && y < CY1;
}

// A star with enough points to put the edge table in its bucketed layout.
void starPath(Engine* e) {
    std::vector<int32_t> points;
    for (int32_t i = 1; i < 60; ++i) {
        const int32_t k = (i * 23) % 60;
        points.push_back(100 + ((k * 37) % 190) - 95);
        points.push_back(80 + ((k * 53) % 150) - 75);
    }
    const ResultCode r = KRYNMoveTo(100, 5, e);
    expectOkOrNoMemory(r, "MoveTo");
    if (r == KRYN_OK) {
        expectOkOrNoMemory(KRYNLinesTo(points.data(), 59, e), "LinesTo");
    }
}

void scenario(bool injected) {
    EnginePtr engine = makeEngine(W - 1, H - 1, 32, 0x8009);
    Engine* e = engine.get();
    if (e == nullptr) {
        EXPECT_TRUE(injected);
        return;
    }
    ResultCode r = KRYNNewPage(0, e);
    expectOkOrNoMemory(r, "NewPage");
    if (r != KRYN_OK) {
        return;
    }
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    expectOkOrNoMemory(KRYNSetMatrix(identity, e), "SetMatrix");
    expectOkOrNoMemory(KRYNRectPath(0, 0, 30, 150, e), "RectPath");
    expectOkOrNoMemory(KRYNFill(FILL_NONZERO, e), "first Fill");
    const Coverage before = pageCoverage(pageOf(e));

    expectOkOrNoMemory(KRYNRectPath(CX0, CY0, CX1 - CX0, CY1 - CY0, e), "clip RectPath");
    const ResultCode clip = KRYNClip(FILL_EVEN_ODD, e);
    expectOkOrNoMemory(clip, "Clip");
    starPath(e);
    const ResultCode fill = KRYNFill(FILL_NONZERO, e);
    expectOkOrNoMemory(fill, "star Fill");

    const Coverage after = pageCoverage(pageOf(e));
    ASSERT_EQ(after.outside, 0);
    bool paintedOutsideClip = false;
    bool paintedAny = false;
    for (int32_t y = 0; y < H; ++y) {
        for (int32_t x = 0; x < W; ++x) {
            ASSERT_GE(after.at(x, y), before.at(x, y)) << "a recorded pixel was lost";
            const bool gained = after.at(x, y) > before.at(x, y);
            paintedOutsideClip = paintedOutsideClip || (gained && !insideClip(x, y));
            paintedAny = paintedAny || gained;
        }
    }
    if (!injected) {
        ASSERT_EQ(before.at(10, 10), 1);
    }
    if (clip == KRYN_OK) {
        EXPECT_FALSE(paintedOutsideClip) << "the new clip must hold";
    } else if (fill == KRYN_OK && paintedAny) {
        EXPECT_TRUE(paintedOutsideClip) << "a failed clip leaves the old region in force";
    }
}

} // namespace

TEST(FillAllocSweep, FailuresLoseNothingRecordedKeepTheOldClipAndLeakNothing) {
    const SweepReport report = sweepAllocationFailures(scenario);
    EXPECT_GT(report.allocations, 10u);
    EXPECT_EQ(report.failedRuns, report.allocations);
}
