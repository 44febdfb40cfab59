// Block flattening after quantised images, on grey and colour rasters.
#include "render/flatten_blocks.h"
#include "render/paint_state.h"

#include <gtest/gtest.h>
#include <vector>

namespace kryn {
namespace {

// A paint state over a raster held by the test.
template <class Pixel>
PaintState over(std::vector<Pixel>& raster, int32_t width, int32_t height, uint32_t quantization) {
    PaintState s{};
    s.raster = reinterpret_cast<uint8_t*>(raster.data());
    s.width = width;
    s.height = height;
    s.strideBytes = width * static_cast<int32_t>(sizeof(Pixel));
    s.quantization = quantization;
    return s;
}

ImageOperand imageAt(int32_t left, int32_t top, uint32_t width, uint32_t rows) {
    ImageOperand op{};
    op.left = left;
    op.top = top;
    op.width = width;
    op.rows = rows;
    return op;
}

TEST(FlattenBlocks, GreyPairsWithinTheThresholdTakeTheirTopLeft) {
    // Two 2 x 2 blocks side by side, and a fifth column left alone.
    std::vector<uint8_t> r = {100, 120, 100, 170, 7, //
                              130, 164, 100, 100, 9};
    PaintState s = over(r, 5, 2, 300);
    flattenBlocksGrey(s, imageAt(0, 0, 5, 2));
    EXPECT_EQ(r, (std::vector<uint8_t>{100, 100, 100, 170, 7, 100, 100, 100, 100, 9}));
}

TEST(FlattenBlocks, GreyQuadsFlattenWholeWhenTheirQuadrantsAgree) {
    std::vector<uint8_t> r(4 * 4, 0);
    const uint8_t quadrant[4] = {50, 60, 70, 80}; // each quadrant nearly flat
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            r[size_t(y * 4 + x)] = uint8_t(quadrant[(y / 2) * 2 + x / 2] + (x + y) % 2);
        }
    }
    PaintState s = over(r, 4, 4, 600);
    flattenBlocksGrey(s, imageAt(0, 0, 4, 4));
    EXPECT_EQ(r, std::vector<uint8_t>(16, 50));

    // One quadrant too far apart: only the others are flattened.
    r[15] = 255;
    r[0] = 50;
    r[1] = 51;
    flattenBlocksGrey(s, imageAt(0, 0, 4, 4));
    EXPECT_EQ(r[1], 50);
    EXPECT_EQ(r[15], 255);
    EXPECT_EQ(r[10], 50);
}

TEST(FlattenBlocks, ColourComparesLuminanceAndCopiesWholeWords) {
    // Grey steps of 60 differ by 60 x 65536 in luminance: within 0x400000.
    std::vector<uint32_t> r = {0x03101010, 0x03303030, 0x03FFFFFF, 0x03000000, //
                               0x034C4C4C, 0x03101010, 0x03FFFFFF, 0x03FFFFFF};
    PaintState s = over(r, 4, 2, 300);
    flattenBlocksColour(s, imageAt(0, 0, 4, 2));
    EXPECT_EQ(r[1], 0x03101010u);
    EXPECT_EQ(r[4], 0x03101010u);
    EXPECT_EQ(r[5], 0x03101010u);
    EXPECT_EQ(r[3], 0x03000000u); // white against black: left alone
}

TEST(FlattenBlocks, TheImageIsClippedToTheRaster) {
    std::vector<uint8_t> r(4, 10);
    r[3] = 12;
    PaintState s = over(r, 2, 2, 300);
    flattenBlocksGrey(s, imageAt(-2, -2, 100, 100)); // only whole blocks inside
    EXPECT_EQ(r[3], 10);
}

} // namespace
} // namespace kryn
