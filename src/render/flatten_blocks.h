// Block flattening of quantised images: after an image is painted, its
// rectangle is cut into 2 x 2 (or 4 x 4) blocks from its top-left pixel,
// and blocks whose values differ little are given the top-left pixel, so
// that the device's halftoning sees flat areas. Rows and columns that do
// not fill a whole block stay as they are.
#pragma once

#include "render/image_operand.h"

#include <cstdint>

namespace kryn {

inline constexpr int32_t FLATTEN_THRESHOLD_GREY = 64;
inline constexpr int64_t FLATTEN_THRESHOLD_LUMINANCE = 0x400000; // 64 levels x 65536

// Grey rasters: blocks of 2 x 2 at quantisation 300, else 4 x 4; the grey
// byte is compared.
void flattenBlocksGrey(PaintState& state, const ImageOperand& image);

// Colour rasters: blocks of 4 x 4 at quantisation 600, else 2 x 2; the
// luminance 19595 R + 38470 G + 7471 B is compared and whole words copied.
void flattenBlocksColour(PaintState& state, const ImageOperand& image);

} // namespace kryn
