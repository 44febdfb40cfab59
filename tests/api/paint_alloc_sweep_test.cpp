// Fills, clips and strokes under failed memory: every allocation of the
// scenario fails once in turn. Each call answers a documented code (paint
// calls KRYN_OK or KRYN_ERR_NO_MEMORY), pixels recorded before a failure
// stay recorded, a failed clip leaves the old region in force, a stroke
// consumes its path also when it fails, and nothing leaks.
#include "support/alloc_sweep.h"
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

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
    expectOkOrNoMemory(KRYNMoveTo(100, 5, e), "MoveTo");
    EXPECT_TRUE(documented(KRYNLinesTo(points.data(), 59, e)));
}

// A stroke that takes every memory-using route: merged spans (0x5A), round
// pens, dashes, a curve, several subpaths with many disjoint runs a row.
void strokePaths(Engine* e, bool injected) {
    expectOkOrNoMemory(KRYNMoveTo(30, 30, e), "MoveTo");
    const int32_t zigzag[6] = {170, 40, 40, 120, 160, 140};
    EXPECT_TRUE(documented(KRYNLinesTo(zigzag, 3, e)));
    const int32_t curve[6] = {120, 10, 60, 10, 50, 60};
    EXPECT_TRUE(documented(KRYNBezier3To(curve, e)));
    expectOkOrNoMemory(KRYNEllipsePath(100, 60, 150, 100, e), "EllipsePath");
    for (int32_t k = 0; k < 12; ++k) {
        expectOkOrNoMemory(KRYNMoveTo(30 + 13 * k, 5, e), "MoveTo");
        const int32_t down[2] = {30 + 13 * k, 155};
        EXPECT_TRUE(documented(KRYNLinesTo(down, 1, e)));
    }
    const ResultCode r = KRYNStroke(e);
    expectOkOrNoMemory(r, "Stroke");
    EXPECT_TRUE(injected || r == KRYN_OK);
    EXPECT_EQ(currentState(e)->path.first, nullptr) << "the path is consumed, also on failure";
}

void scenario(bool injected) {
    EnginePtr engine = makeEngine(W - 1, H - 1, 32, 0x8009);
    Engine* e = engine.get();
    if (e == nullptr) {
        EXPECT_TRUE(injected);
        return;
    }
    const ResultCode r = KRYNNewPage(0, e);
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
    expectOkOrNoMemory(KRYNSetLogicalFunc(0x5A, e), "SetLogicalFunc");
    expectOkOrNoMemory(KRYNSetLineWidth(9, e), "SetLineWidth");
    expectOkOrNoMemory(KRYNSetLineCap(1, e), "SetLineCap");
    expectOkOrNoMemory(KRYNSetLineJoin(3, e), "SetLineJoin");
    const int32_t dash[3] = {25, 6, 3};
    expectOkOrNoMemory(KRYNSetLineDash(dash, 3, 4, e), "SetLineDash");
    strokePaths(e, injected);

    const Coverage after = pageCoverage(pageOf(e));
    ASSERT_EQ(after.outside, 0);
    bool paintedOutsideClip = false;
    bool paintedAny = false;
    for (int32_t y = 0; y < H; ++y) {
        for (int32_t x = 0; x < W; ++x) {
            ASSERT_GE(after.at(x, y), before.at(x, y)) << "a recorded pixel was lost";
            const bool gained = after.at(x, y) != before.at(x, y);
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

    // The same stroke through a triangle clip: discs through the sweep.
    expectOkOrNoMemory(KRYNMoveTo(30, 5, e), "MoveTo");
    const int32_t tri[4] = {190, 40, 60, 150};
    EXPECT_TRUE(documented(KRYNLinesTo(tri, 2, e)));
    EXPECT_TRUE(documented(KRYNClip(FILL_NONZERO, e)));
    strokePaths(e, injected);
    const Coverage last = pageCoverage(pageOf(e));
    for (int32_t y = 0; y < H; ++y) {
        for (int32_t x = 0; x < 20; ++x) {
            ASSERT_GE(last.at(x, y), before.at(x, y)) << "a recorded pixel was lost";
        }
    }
}

} // namespace

TEST(PaintAllocSweep, FailuresLoseNothingRecordedKeepTheOldClipAndLeakNothing) {
    const SweepReport report = sweepAllocationFailures(scenario);
    EXPECT_GT(report.allocations, 20u);
    EXPECT_EQ(report.failedRuns, report.allocations);
}
