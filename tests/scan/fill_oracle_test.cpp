// The scan converter against the brute-force oracle, pixel for pixel, over
// thousands of seeded random figures in all four orientations and both
// rules, unclipped and under random clip regions; stroke outlines through
// their own entry.
#include "random_polygons.h"
#include "scan_harness.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t W = 40;
constexpr int32_t H = 32;

std::vector<uint8_t> intersect(std::vector<uint8_t> a, const std::vector<uint8_t>& b) {
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] = static_cast<uint8_t>(a[i] & b[i]);
    }
    return a;
}

TEST(FillOracle, RandomFiguresMatchPixelForPixel) {
    int64_t painted = 0;
    for (uint32_t seed = 0; seed < 2400; ++seed) {
        const int32_t q = static_cast<int32_t>(seed % 4);
        const int32_t rule = static_cast<int32_t>(seed / 4 % 2);
        PolygonMaker maker(seed, W, H);
        const auto polys = maker.figure();
        ScanPage page(W, H, q);
        ASSERT_TRUE(page.ok);
        PixelCounts counts(page.raster());
        ASSERT_EQ(fillPolygons(page, polys, rule, counts.recorder()), KRYN_OK);
        const auto want = intersect(oracleFill(polys, rule, q, page.raster()),
                                    oracleFill({pageRectangle(page.page)}, 0, q, page.raster()));
        const std::string m = firstMismatch(counts.hits, want, page.raster());
        ASSERT_EQ(m, "") << "seed " << seed << " q " << q << " rule " << rule << " "
                         << describe(polys);
        ASSERT_EQ(counts.outside, 0) << "seed " << seed;
        painted += std::count(want.begin(), want.end(), 1);
        if (seed % 16 == 0) {
            // Stroke outlines take even-odd without crossing marks: the same
            // pixels for a simple outline.
            const std::vector<OraclePolygon> outline = {maker.convex(3 + maker.pick(6))};
            FixedPolygons f(outline);
            ASSERT_EQ(buildEdges(&page.scan, f.lines.data(), 1, recordCount(outline), everywhere()),
                      KRYN_OK);
            PixelCounts stroke(page.raster());
            const SpanRecorder rec = stroke.recorder();
            ASSERT_EQ(scanConvertStroke(&page.scan, page.clip.current, SCAN_MODE_PAINT, &rec),
                      KRYN_OK);
            EXPECT_EQ(firstMismatch(
                          stroke.hits,
                          intersect(oracleFill(outline, 0, q, page.raster()),
                                    oracleFill({pageRectangle(page.page)}, 0, q, page.raster())),
                          page.raster()),
                      "")
                << "stroke outline, seed " << seed << " " << describe(outline);
        }
    }
    EXPECT_GT(painted, 2400 * 100); // the figures are not trivially empty
}

TEST(FillOracle, RandomFiguresUnderRandomClips) {
    int64_t painted = 0;
    for (uint32_t seed = 0; seed < 1200; ++seed) {
        const int32_t q = static_cast<int32_t>(seed % 4);
        const int32_t rule = static_cast<int32_t>(seed / 4 % 2);
        const int32_t clipRule = static_cast<int32_t>(seed / 8 % 2);
        PolygonMaker maker(seed + 100000, W, H);
        const auto polys = maker.figure();
        std::vector<OraclePolygon> clipPolys;
        if (seed % 3 == 0) { // rectangular region
            const int64_t x0 = maker.coord(16 * W), x1 = maker.coord(16 * W);
            const int64_t y0 = maker.coord(16 * H), y1 = maker.coord(16 * H);
            clipPolys.push_back({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
        } else {
            clipPolys = maker.figure();
        }
        ScanPage page(W, H, q);
        ASSERT_TRUE(page.ok);
        ASSERT_EQ(clipPolygons(page, clipPolys, clipRule), KRYN_OK);
        PixelCounts counts(page.raster());
        ASSERT_EQ(fillPolygons(page, polys, rule, counts.recorder()), KRYN_OK);
        auto want = intersect(oracleFill(polys, rule, q, page.raster()),
                              oracleFill(clipPolys, clipRule, q, page.raster()));
        want = intersect(want, oracleFill({pageRectangle(page.page)}, 0, q, page.raster()));
        const std::string m = firstMismatch(counts.hits, want, page.raster());
        ASSERT_EQ(m, "") << "seed " << seed << " q " << q << " fill " << describe(polys) << " clip "
                         << describe(clipPolys);
        ASSERT_EQ(counts.outside, 0) << "seed " << seed;
        painted += std::count(want.begin(), want.end(), 1);
    }
    EXPECT_GT(painted, 1200 * 50);
}

// Tall sloped trapezoids reach whole bands as row spans; the pixels stay
// the same, for plain tall triangles and random figures.
TEST(FillOracle, TallFiguresUseBandRowSpans) {
    constexpr int32_t TW = 90, TH = 300;
    int64_t bandCalls = 0;
    for (uint32_t seed = 0; seed < 80; ++seed) {
        const int32_t q = static_cast<int32_t>(seed / 2 % 4);
        PolygonMaker maker(seed + 500, TW, TH);
        const int64_t x = maker.coord(16 * TW);
        std::vector<OraclePolygon> polys = {
            {{x, -40}, {16 * TW - x / 3, 16 * TH + 30}, {x / 2 + 5, 16 * TH - 3}}};
        if (seed % 2 == 1) {
            polys = maker.figure();
        }
        ScanPage page(TW, TH, q, 32);
        ASSERT_TRUE(page.ok);
        PixelCounts counts(page.raster());
        ASSERT_EQ(fillPolygons(page, polys, FILL_NONZERO, counts.recorder(32, true)), KRYN_OK);
        const auto want = intersect(oracleFill(polys, 1, q, page.raster()),
                                    oracleFill({pageRectangle(page.page)}, 0, q, page.raster()));
        ASSERT_EQ(firstMismatch(counts.hits, want, page.raster()), "") << "seed " << seed;
        bandCalls += counts.bandCalls;
    }
    EXPECT_GT(bandCalls, 0);
}

} // namespace
} // namespace kryn::test
