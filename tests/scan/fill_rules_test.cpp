// Fill rules, orientation tie rules and point conversion on hand-made
// figures, checked against the oracle and against known pixel sets.
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

std::vector<FloatPoint> square(float x, float y, float size, bool clockwise = true) {
    if (clockwise) {
        return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
    }
    return {{x, y}, {x, y + size}, {x + size, y + size}, {x + size, y}};
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
}

TEST(FillRules, NestedSquaresAndFigureEight) {
    const auto outer = square(2, 2, 20);
    const auto sameDirection = square(8, 8, 6);
    const auto opposite = square(8, 8, 6, false);
    for (int32_t q = 0; q < 4; ++q) {
        const PixelCounts evenOdd = fillFloat(q, 0, {outer, sameDirection});
        const PixelCounts nonZero = fillFloat(q, 1, {outer, sameDirection});
        const PixelCounts nonZeroOpposite = fillFloat(q, 1, {outer, opposite});
        const size_t centre = static_cast<size_t>(11 * (W + 1) + 11);
        EXPECT_EQ(evenOdd.hits[centre], 0);
        EXPECT_EQ(nonZero.hits[centre], 1);
        EXPECT_EQ(nonZeroOpposite.hits[centre], 0);
        // A figure eight paints both lobes under either rule.
        const std::vector<FloatPoint> eight = {{2, 2}, {20, 20}, {2, 20}, {20, 2}};
        for (int32_t rule = 0; rule < 2; ++rule) {
            const PixelCounts c = fillFloat(q, rule, {eight});
            EXPECT_EQ(c.hits[static_cast<size_t>(4 * (W + 1) + 11)], 1);
            EXPECT_EQ(c.hits[static_cast<size_t>(18 * (W + 1) + 11)], 1);
            EXPECT_EQ(c.hits[static_cast<size_t>(11 * (W + 1) + 4)], 0);
        }
    }
}

// A rectangle reaches the recorder as one rectangle; a triangle with a
// horizontal base takes the two-edge shortcut and matches the oracle.
TEST(FillRules, ShapesReachTheRecorderWhole) {
    PixelCounts rect = fillFloat(0, 1, {square(3, 4, 12)});
    EXPECT_EQ(rect.rectCalls, 1);
    EXPECT_EQ(rect.spanCalls, 0);
    for (int32_t q = 0; q < 4; ++q) {
        const std::vector<FloatPoint> tri = {{1.25f, 25}, {14.5f, 1.75f}, {28, 25}};
        const PixelCounts c = fillFloat(q, 0, {tri});
        OraclePolygon p;
        for (const FloatPoint& pt : tri) {
            p.push_back({oracleSixteenths(pt.x), oracleSixteenths(pt.y)});
        }
        EXPECT_EQ(c.hits, oracleFill({p}, 0, q, {0, W, 0, H}));
    }
}

// Points beyond the +-2^27 pixel limit are clamped onto the limit box; the
// pixels on the page stay those of the unclamped figure.
TEST(FillRules, FarPointsAreClampedWithoutChangingThePage) {
    const std::vector<std::vector<FloatPoint>> figures = {
        {{5, 5}, {3e9f, 1e8f}, {-2e9f, 4e9f}},
        {{-1e10f, -1e10f}, {1e10f, -3e9f}, {15, 28}},
        {{2, 3}, {2, 1e12f}, {-1e12f, 1e12f}},
        {{-5e8f, 10}, {5e8f, 12.5f}, {20, 20}},
    };
    for (int32_t q = 0; q < 4; ++q) {
        for (const auto& f : figures) {
            const PixelCounts c = fillFloat(q, 1, {f});
            OraclePolygon p;
            for (const FloatPoint& pt : f) {
                p.push_back({oracleSixteenths(pt.x), oracleSixteenths(pt.y)});
            }
            const auto page = oracleFill({{{0, 0}, {16 * W, 0}, {16 * W, 16 * H}, {0, 16 * H}}}, 0,
                                         q, {0, W, 0, H});
            auto want = oracleFill({p}, 1, q, {0, W, 0, H});
            for (size_t i = 0; i < want.size(); ++i) {
                want[i] = static_cast<uint8_t>(want[i] & page[i]);
            }
            EXPECT_EQ(c.hits, want) << "q " << q << " first point " << f[0].x;
            EXPECT_EQ(c.outside, 0);
        }
    }
}

// Stroke outlines: even-odd, no crossings marked, same pixels for simple
// outlines.
TEST(FillRules, StrokeEntryFillsSimpleOutlines) {
    for (int32_t q = 0; q < 4; ++q) {
        ScanPage page(W, H, q);
        ASSERT_TRUE(page.ok);
        const OraclePolygon outline = {{40, 30}, {300, 90}, {420, 400}, {100, 460}, {20, 200}};
        FixedPolygons f({outline});
        ASSERT_EQ(buildEdges(&page.scan, f.lines.data(), 1, 5, everywhere()), KRYN_OK);
        PixelCounts c(page.raster());
        const SpanRecorder rec = c.recorder();
        ASSERT_EQ(scanConvertStroke(&page.scan, page.clip.current, SCAN_MODE_PAINT, &rec), KRYN_OK);
        EXPECT_EQ(c.hits, oracleFill({outline}, 0, q, page.raster()));
    }
}

} // namespace
} // namespace kryn::test
