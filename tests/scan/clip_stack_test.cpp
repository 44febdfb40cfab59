// The base rectangle of band-group and mode-3 pages. Replacing, pushing,
// popping and void-pushing regions, and regions inherited by pushed
// graphics states, are pinned by the golden jobs clip_calls and
// clip_outside_page; fills under random clips by the oracle tests.
#include "scan_harness.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t W = 40;
constexpr int32_t H = 32;

OraclePolygon rect(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
    return {{16 * x0, 16 * y0}, {16 * x1, 16 * y0}, {16 * x1, 16 * y1}, {16 * x0, 16 * y1}};
}

// Fills the whole raster through the current clip.
PixelCounts fillPage(ScanPage& page) {
    PixelCounts c(page.raster());
    EXPECT_EQ(fillPolygons(page, {rect(-5, -5, W + 5, H + 5)}, 1, c.recorder()), KRYN_OK);
    return c;
}

std::vector<uint8_t> pixelsOf(const OraclePolygon& p, int32_t q) {
    return oracleFill({p}, 0, q, {0, W, 0, H});
}

// The base rectangle and the reset region: in band-group modes the current
// group's rows only; in page mode 3 the right and bottom sides on the last
// column and row.
TEST(ClipStack, BaseRectangleByPageMode) {
    for (int32_t q = 0; q < 4; ++q) {
        for (const int32_t mode : {1, 3}) {
            ScanPage page(W, H, q, 8);
            ASSERT_TRUE(page.ok);
            page.page.mode = mode;
            page.page.groupFirst = 1;
            page.page.groupLast = 2;
            ASSERT_EQ(buildBaseClip(&page.scan, page.page, &page.base), KRYN_OK);
            ASSERT_EQ(resetClip(&page.clip, &page.scan, *page.base, page.page), KRYN_OK);
            const int64_t turn = q >= 2 ? 1 : 0;
            const OraclePolygon group = {{0, 16 * (8 - turn)},
                                         {16 * W, 16 * (8 - turn)},
                                         {16 * W, 16 * (24 - turn)},
                                         {0, 16 * (24 - turn)}};
            EXPECT_EQ(fillPage(page).hits,
                      pixelsOf(mode == 1 ? group : rect(0, 0, W - 1, H - 1), q))
                << "q " << q << " mode " << mode;
        }
    }
}

} // namespace
} // namespace kryn::test
