// Clip regions and the one-level clip stack: replacement, push, pop and
// void-push, inherited regions, empty regions and band-group pages.
#include "kryn/platform.h"
#include "scan_harness.h"

#include <algorithm>
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

TEST(ClipStack, ClipReplacesTheRegion) {
    ScanPage page(W, H, 0);
    ASSERT_TRUE(page.ok);
    ASSERT_EQ(clipPolygons(page, {rect(2, 3, 12, 13)}, 0), KRYN_OK);
    PixelCounts first = fillPage(page);
    EXPECT_EQ(first.hits, pixelsOf(rect(2, 3, 12, 13), 0));
    EXPECT_EQ(first.rectCalls, 1); // the region's rectangle is emitted unchanged
    ASSERT_EQ(clipPolygons(page, {rect(8, 8, 20, 20)}, 1), KRYN_OK);
    EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(8, 8, 20, 20), 0));
    EXPECT_EQ(clipPolygons(page, {rect(1, 1, 2, 2)}, 2), KRYN_ERR_INVALID);
}

TEST(ClipStack, PushClipPopRestoresAndVoidPushKeeps) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        ScanPage page(W, H, 1);
        ASSERT_TRUE(page.ok);
        ASSERT_EQ(clipPolygons(page, {rect(2, 3, 12, 13)}, 0), KRYN_OK);
        ASSERT_EQ(pushClip(&page.clip), KRYN_OK);
        ASSERT_EQ(pushClip(&page.clip), KRYN_OK); // nothing changed: no effect
        ASSERT_EQ(clipPolygons(page, {rect(5, 5, 30, 9)}, 0), KRYN_OK);
        EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(5, 5, 30, 9), 1));
        ASSERT_EQ(popClip(&page.clip), KRYN_OK);
        EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(2, 3, 12, 13), 1));

        ASSERT_EQ(pushClip(&page.clip), KRYN_OK);
        ASSERT_EQ(clipPolygons(page, {rect(20, 20, 25, 30)}, 0), KRYN_OK);
        const uint64_t withBoth = KRYNPlatformLiveBlocks();
        ASSERT_EQ(voidPushClip(&page.clip), KRYN_OK);
        EXPECT_LT(KRYNPlatformLiveBlocks(), withBoth); // the saved region was freed
        EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(20, 20, 25, 30), 1));
        ASSERT_EQ(popClip(&page.clip), KRYN_OK); // nothing saved any more
        EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(20, 20, 25, 30), 1));
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

TEST(ClipStack, InheritedRegionIsNotPushedOrChanged) {
    ScanPage page(W, H, 2);
    ASSERT_TRUE(page.ok);
    ASSERT_EQ(clipPolygons(page, {rect(4, 4, 16, 16)}, 0), KRYN_OK);
    ClipStack inner;
    inheritClip(page.clip, &inner);
    ClipStack outer = page.clip;
    page.clip = inner;
    EXPECT_EQ(popClip(&page.clip), KRYN_OK);
    EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(4, 4, 16, 16), 2));
    ASSERT_EQ(clipPolygons(page, {rect(10, 1, 30, 5)}, 0), KRYN_OK);
    EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(10, 1, 30, 5), 2));
    releaseClipStack(&page.clip); // the inner state is popped
    page.clip = outer;
    EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(4, 4, 16, 16), 2));
}

TEST(ClipStack, RegionOutsideThePageIsEmpty) {
    ScanPage page(W, H, 3);
    ASSERT_TRUE(page.ok);
    ASSERT_EQ(clipPolygons(page, {rect(3, 3, 9, 9)}, 0), KRYN_OK);
    ASSERT_EQ(pushClip(&page.clip), KRYN_OK);
    ASSERT_EQ(clipPolygons(page, {rect(W + 10, 0, W + 20, 5)}, 0), KRYN_OK);
    PixelCounts none = fillPage(page);
    EXPECT_EQ(std::count(none.hits.begin(), none.hits.end(), 1), 0);
    EXPECT_EQ(popClip(&page.clip), KRYN_OK); // empty region owns nothing: no effect
    const PixelCounts stillNone = fillPage(page);
    EXPECT_EQ(std::count(stillNone.hits.begin(), stillNone.hits.end(), 1), 0);
    ASSERT_EQ(resetClip(&page.clip, &page.scan, *page.base, page.page), KRYN_OK);
    EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(0, 0, W, H), 3));
}

// In band-group modes the base rectangle and the reset region cover the
// current group's rows only.
TEST(ClipStack, BandGroupLimitsTheRegion) {
    for (int32_t q = 0; q < 4; ++q) {
        ScanPage page(W, H, q, 8);
        ASSERT_TRUE(page.ok);
        page.page.mode = 1;
        page.page.groupFirst = 1;
        page.page.groupLast = 2;
        ASSERT_EQ(buildBaseClip(&page.scan, page.page, &page.base), KRYN_OK);
        ASSERT_EQ(resetClip(&page.clip, &page.scan, *page.base, page.page), KRYN_OK);
        const int64_t turn = q >= 2 ? 1 : 0;
        const OraclePolygon group = {{0, 16 * (8 - turn)},
                                     {16 * W, 16 * (8 - turn)},
                                     {16 * W, 16 * (24 - turn)},
                                     {0, 16 * (24 - turn)}};
        EXPECT_EQ(fillPage(page).hits, pixelsOf(group, q)) << "q " << q;
    }
}

// Page mode 3 keeps the rectangle's right and bottom sides on the last
// column and row.
TEST(ClipStack, ModeThreeBaseRectangleEndsOnTheLastPixel) {
    for (int32_t q = 0; q < 4; ++q) {
        ScanPage page(W, H, q, 8);
        ASSERT_TRUE(page.ok);
        page.page.mode = 3;
        ASSERT_EQ(buildBaseClip(&page.scan, page.page, &page.base), KRYN_OK);
        ASSERT_EQ(resetClip(&page.clip, &page.scan, *page.base, page.page), KRYN_OK);
        EXPECT_EQ(fillPage(page).hits, pixelsOf(rect(0, 0, W - 1, H - 1), q)) << "q " << q;
    }
}

} // namespace
} // namespace kryn::test
