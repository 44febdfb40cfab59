#include "render/flatten_blocks.h"

#include "render/paint_state.h"
#include "render/raster_pixels.h"

#include <algorithm>
#include <cstdlib>

namespace kryn {

namespace {

struct GreyValues {
    using Pixels = GreyPixels;
    static constexpr int64_t THRESHOLD = FLATTEN_THRESHOLD_GREY;
    static constexpr bool SKIP_FLAT_PAIRS = true; // an already flat 2 x 2 is not written
    static int64_t value(uint8_t p) { return p; }
    static bool smallBlocks(uint32_t quantization) { return quantization == 300; }
};

struct ColourValues {
    using Pixels = ColourPixels;
    static constexpr int64_t THRESHOLD = FLATTEN_THRESHOLD_LUMINANCE;
    static constexpr bool SKIP_FLAT_PAIRS = false;
    static int64_t value(uint32_t p) {
        return 19595 * int64_t(p & 0xFF) + 38470 * int64_t((p >> 8) & 0xFF) +
               7471 * int64_t((p >> 16) & 0xFF);
    }
    static bool smallBlocks(uint32_t quantization) { return quantization != 600; }
};

enum class BlockTest { FLAT, CLOSE, APART };

// The 2 x 2 test on values a (top left), b (top right), c (bottom left), d.
template <class Values>
BlockTest testBlock(int64_t a, int64_t b, int64_t c, int64_t d) {
    const int64_t p = std::abs(b - a);
    const int64_t q = std::abs(c - a);
    const int64_t r = std::abs(d - a);
    const int64_t t = Values::THRESHOLD;
    if (p > t || q > t || r > t || std::abs(r - q) > t || std::abs(r - p) > t ||
        std::abs(q - p) > t) {
        return BlockTest::APART;
    }
    return p == 0 && q == 0 && r == 0 ? BlockTest::FLAT : BlockTest::CLOSE;
}

// A square of `size` pixels from `at` (rows `stride` pixels apart).
template <class Pixel>
void fillSquare(Pixel* at, int32_t stride, int32_t size, Pixel v) {
    for (int32_t y = 0; y < size; ++y) {
        std::fill_n(at + int64_t{y} * stride, size, v);
    }
}

// Tests and flattens the 2 x 2 block at `at`; answers whether it is flat now.
template <class Values, class Pixel>
bool flattenPair(Pixel* at, int32_t stride, bool writeFlat) {
    Pixel* below = at + stride;
    const BlockTest test = testBlock<Values>(Values::value(at[0]), Values::value(at[1]),
                                             Values::value(below[0]), Values::value(below[1]));
    if (test == BlockTest::APART) {
        return false;
    }
    if (test == BlockTest::CLOSE || writeFlat) {
        at[1] = below[0] = below[1] = at[0];
    }
    return true;
}

template <class Values, class Pixel>
void flattenQuad(Pixel* at, int32_t stride) {
    Pixel* quads[4] = {at, at + 2, at + 2 * int64_t{stride}, at + 2 * int64_t{stride} + 2};
    bool allFlat = true;
    for (Pixel* quad : quads) {
        allFlat = flattenPair<Values>(quad, stride, false) && allFlat;
    }
    if (allFlat &&
        testBlock<Values>(Values::value(*quads[0]), Values::value(*quads[1]),
                          Values::value(*quads[2]), Values::value(*quads[3])) == BlockTest::CLOSE) {
        fillSquare(at, stride, 4, *quads[0]);
    }
}

template <class Values>
void flattenBlocks(PaintState& state, const ImageOperand& image) {
    using Pixel = typename Values::Pixels::Pixel;
    const int32_t left = std::max(image.left, 0);
    const int32_t top = std::max(image.top, 0);
    const int64_t right = std::min<int64_t>(int64_t{image.left} + image.width, state.width);
    const int64_t bottom = std::min<int64_t>(int64_t{image.top} + image.rows, state.height);
    const int32_t size = Values::smallBlocks(state.quantization) ? 2 : 4;
    const int32_t stride = state.strideBytes / static_cast<int32_t>(sizeof(Pixel));
    for (int64_t y = top; y + size <= bottom; y += size) {
        Pixel* row = Values::Pixels::row(state, static_cast<int32_t>(y));
        for (int64_t x = left; x + size <= right; x += size) {
            if (size == 2) {
                flattenPair<Values>(row + x, stride, !Values::SKIP_FLAT_PAIRS);
            } else {
                flattenQuad<Values>(row + x, stride);
            }
        }
    }
}

} // namespace

void flattenBlocksGrey(PaintState& state, const ImageOperand& image) {
    flattenBlocks<GreyValues>(state, image);
}

void flattenBlocksColour(PaintState& state, const ImageOperand& image) {
    flattenBlocks<ColourValues>(state, image);
}

} // namespace kryn
