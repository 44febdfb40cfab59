// The orientation tie rules on known pixel sets: the oracle shares them, so
// they are pinned here independently.
#include "scan/polyline_edges.h"
#include "scan_harness.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t W = 30;
constexpr int32_t H = 30;

// Fills float subpaths on a fresh page and returns the pixel counts.
PixelCounts fillFloat(int32_t q, int32_t rule, const std::vector<std::vector<FloatPoint>>& paths) {
    ScanPage page(W, H, q);
    EXPECT_TRUE(page.ok);
    PixelCounts counts(page.raster());
    std::vector<Polyline> lines;
    for (const auto& p : paths) {
        Polyline l;
        l.floatPoints = p.data();
        l.count = static_cast<int32_t>(p.size());
        lines.push_back(l);
    }
    EXPECT_EQ(
        buildEdges(&page.scan, lines.data(), static_cast<int32_t>(lines.size()), 5, everywhere()),
        KRYN_OK);
    const SpanRecorder rec = counts.recorder();
    EXPECT_EQ(scanConvert(&page.scan, rule, page.clip.current, SCAN_MODE_PAINT, &rec), KRYN_OK);
    return counts;
}

std::vector<FloatPoint> square(float x, float y, float size) {
    return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}

// Rows and columns painted, as inclusive ranges; all painted pixels must
// form that rectangle.
void expectRectangle(const PixelCounts& c, int32_t x0, int32_t x1, int32_t y0, int32_t y1) {
    for (int32_t y = 0; y <= H; ++y) {
        for (int32_t x = 0; x <= W; ++x) {
            const bool inside = x >= x0 && x <= x1 && y >= y0 && y <= y1;
            ASSERT_EQ(c.hits[static_cast<size_t>(y * (W + 1) + x)], inside ? 1 : 0)
                << "pixel " << x << "," << y;
        }
    }
}

TEST(FillRules, SquareCoversTheSamplePointsOfEachOrientation) {
    expectRectangle(fillFloat(0, 1, {square(0, 0, 10)}), 0, 9, 0, 9);
    expectRectangle(fillFloat(0, 1, {square(0.5f, 0.5f, 10)}), 1, 10, 1, 10);
    // Strict at the top and left, inclusive at the bottom and right.
    expectRectangle(fillFloat(2, 1, {square(0, 0, 10)}), 1, 10, 1, 10);
    expectRectangle(fillFloat(1, 1, {square(2, 2, 10)}), 3, 12, 2, 11);
    expectRectangle(fillFloat(3, 1, {square(2, 2, 10)}), 2, 11, 3, 12);
    EXPECT_EQ(fillFloat(0, 1, {square(3, 4, 12)}).rectCalls, 1); // a rectangle stays whole
}

} // namespace
} // namespace kryn::test
