// Four-cornered fills (parallelograms, convex and crossed quads) against the
// oracle, unclipped and clipped, corners far outside the page too.
#include "random_polygons.h"
#include "scan/fill_quad.h"
#include "scan_harness.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t W = 36;
constexpr int32_t H = 28;

TEST(FillQuad, RandomQuadsMatchOracle) {
    for (uint32_t seed = 0; seed < 1600; ++seed) {
        const int32_t q = static_cast<int32_t>(seed % 4);
        PolygonMaker maker(seed + 7000, W, H);
        OraclePolygon quad;
        if (seed % 4 < 2) { // parallelogram
            const int64_t x = maker.coord(16 * W), y = maker.coord(16 * H);
            const int64_t ux = maker.coord(16 * W) - 8 * W, uy = maker.coord(16 * H) - 8 * H;
            const int64_t vx = maker.coord(16 * W) - 8 * W, vy = maker.coord(16 * H) - 8 * H;
            quad = {{x, y}, {x + ux, y + uy}, {x + ux + vx, y + uy + vy}, {x + vx, y + vy}};
        } else if (seed % 4 == 2) {
            quad = maker.convex(4);
        } else {
            quad = maker.arbitrary(4);
        }
        if (seed % 16 == 5) { // axis-aligned rectangle
            quad = {{quad[0].x, quad[0].y},
                    {quad[1].x, quad[0].y},
                    {quad[1].x, quad[1].y},
                    {quad[0].x, quad[1].y}};
        }
        if (seed % 7 == 6) { // a corner far outside, within 16.16
            (seed % 2 ? quad[seed % 3].x : quad[seed % 3].y) = seed % 3 ? 400000 : -400000;
        }
        ScanPage page(W, H, q);
        ASSERT_TRUE(page.ok);
        const bool clipped = seed % 5 == 0;
        std::vector<OraclePolygon> clipPolys = {pageRectangle(page.page)};
        if (clipped) {
            clipPolys = {maker.convex(5)};
            ASSERT_EQ(clipPolygons(page, clipPolys, 0), KRYN_OK);
        }
        FixedPoint corners[4];
        for (int32_t i = 0; i < 4; ++i) {
            corners[i] = {static_cast<int32_t>(quad[i].x * 4096),
                          static_cast<int32_t>(quad[i].y * 4096)};
        }
        PixelCounts counts(page.raster());
        const SpanRecorder rec = counts.recorder();
        ASSERT_EQ(fillQuad(&page.scan, corners, page.clip.current, SCAN_MODE_PAINT, &rec), KRYN_OK);
        auto want = oracleFill({quad}, 1, q, page.raster());
        const auto c = oracleFill(clipPolys, 0, q, page.raster());
        const auto p = oracleFill({pageRectangle(page.page)}, 0, q, page.raster());
        for (size_t i = 0; i < want.size(); ++i) {
            want[i] = static_cast<uint8_t>(want[i] & c[i] & p[i]);
        }
        ASSERT_EQ(firstMismatch(counts.hits, want, page.raster()), "")
            << "seed " << seed << " q " << q << " clipped " << clipped << " " << describe({quad});
        ASSERT_EQ(counts.outside, 0);
    }
}

} // namespace
} // namespace kryn::test
