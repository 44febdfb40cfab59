// Allocation failures while building clips and fills: every call answers
// KRYN_OK or KRYN_ERR_NO_MEMORY, the region in force stays intact, and
// nothing leaks.
#include "kryn/platform.h"
#include "random_polygons.h"
#include "scan_harness.h"
#include "support/alloc_sweep.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t W = 30;
constexpr int32_t H = 24;

// With failures switched off, a probe fill shows the pixels of `region`
// (and of the page).
void expectRegion(ScanPage& page, const std::vector<OraclePolygon>& region, int32_t rule) {
    KRYNPlatformFailAfter(-1);
    const int32_t q = page.scan.quarterTurns;
    const OraclePolygon probe = {{-40, -40}, {16 * W + 40, -30}, {16 * W + 40, 16 * H + 40}};
    PixelCounts c(page.raster());
    ASSERT_EQ(fillPolygons(page, {probe}, 1, c.recorder()), KRYN_OK);
    auto want = oracleFill({probe}, 1, q, page.raster());
    const auto r = oracleFill(region, rule, q, page.raster());
    const auto p = oracleFill({pageRectangle(page.page)}, 0, q, page.raster());
    for (size_t i = 0; i < want.size(); ++i) {
        want[i] = static_cast<uint8_t>(want[i] & r[i] & p[i]);
    }
    EXPECT_EQ(c.hits, want);
}

// Clip, push, a second clip of big self-crossing stars (the sweep's queues
// and order, a region kept as runs of edge pairs, a bucketed edge table), a
// fill, pop: under every allocation failing, in every orientation.
TEST(ScanAllocSweep, ClipsAndFillsFailCleanly) {
    PolygonMaker maker(99, W, H);
    std::vector<OraclePolygon> clipA = maker.figure();
    clipA.push_back(maker.star(7, 3));
    const std::vector<OraclePolygon> clipB = {maker.star(61, 23), maker.star(37, 11)};
    OraclePolygon zigzag;
    for (int32_t i = 0; i < 40; ++i) {
        zigzag.push_back({i % 2 == 0 ? -20 : 16 * W + 20, maker.coord(16 * H)});
    }
    const std::vector<OraclePolygon> fill = {zigzag, maker.star(45, 17), maker.convex(7)};
    const std::vector<OraclePolygon> wholePage = {pageRectangle(ClipPage{W, H, 8, 0, 0, 0, 0})};
    for (int32_t q = 0; q < 4; ++q) {
        const SweepReport report = sweepAllocationFailures([&](bool) {
            ScanPage page(W, H, q, 8);
            if (!page.ok) {
                return;
            }
            ResultCode r = clipPolygons(page, clipA, 0);
            expectOkOrNoMemory(r, "clip A");
            if (r != KRYN_OK) {
                expectRegion(page, wholePage, 0);
                return;
            }
            r = pushClip(&page.clip);
            EXPECT_EQ(r, KRYN_OK);
            r = clipPolygons(page, clipB, q % 2);
            expectOkOrNoMemory(r, "clip B");
            if (r != KRYN_OK) {
                expectRegion(page, clipA, 0);
                EXPECT_EQ(popClip(&page.clip), KRYN_OK);
                expectRegion(page, clipA, 0);
                return;
            }
            PixelCounts c(page.raster());
            r = fillPolygons(page, fill, 0, c.recorder(8, true));
            expectOkOrNoMemory(r, "fill");
            if (r != KRYN_OK) {
                expectRegion(page, clipB, q % 2);
                return;
            }
            EXPECT_EQ(popClip(&page.clip), KRYN_OK);
            expectRegion(page, clipA, 0);
        });
        EXPECT_GT(report.failedRuns, 10u);
    }
}

// A recorder that fails stops the fill with its code and leaves the pools
// ready for the next fill.
TEST(ScanAllocSweep, RecorderFailureStopsTheFill) {
    PolygonMaker maker(5, W, H);
    const auto polys = maker.figure();
    ScanPage page(W, H, 0, 8);
    ASSERT_TRUE(page.ok);
    for (int64_t n = 0; n < 4; ++n) {
        PixelCounts c(page.raster());
        c.failAfterCalls = n;
        const ResultCode r = fillPolygons(page, polys, 1, c.recorder());
        EXPECT_TRUE(r == KRYN_OK || r == KRYN_ERR_NO_MEMORY);
    }
    expectRegion(page, {pageRectangle(page.page)}, 0);
}

} // namespace
} // namespace kryn::test
