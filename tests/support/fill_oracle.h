// A deliberately simple reference rasteriser for fills: the winding number
// at every pixel's sample point (16c, 16r in sixteenths), with the row and
// column tie rules of each page orientation. Slow and obviously right; the
// scan converter is compared with it pixel for pixel.
#pragma once

#include <cstdint>
#include <vector>

namespace kryn::test {

struct OraclePoint {
    int64_t x = 0, y = 0; // 1/16 pixel; may lie far outside int32
};

using OraclePolygon = std::vector<OraclePoint>; // closed implicitly

// Inclusive pixel rectangle of the raster.
struct OracleBounds {
    int32_t minX = 0, maxX = 0, minY = 0, maxY = 0;
    int32_t width() const { return maxX - minX + 1; }
    int32_t height() const { return maxY - minY + 1; }
};

// One byte per pixel of `bounds`, row-major: 1 inside, 0 outside.
std::vector<uint8_t> oracleFill(const std::vector<OraclePolygon>& subpaths, int32_t rule,
                                int32_t quarterTurns, const OracleBounds& bounds);

// A float coordinate in sixteenths as the converter takes it (truncation of
// x * 16; the fast-box route gives the same for non-negative values).
int64_t oracleSixteenths(double pixels);

} // namespace kryn::test
