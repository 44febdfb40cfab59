// Rows of pixels under one ink (one colour at one alpha): every pixel
// becomes blendChannel of the ink over it, 32-bit pixels also taking the
// tag word. With SSE2 (every x86-64 host) sixteen bytes go at a time, with
// no branch per pixel: the channels are widened to 16 bits and each
// (dest * d + share) >> 16 is put together from the high and low halves of
// the 16-bit products and a carry. Elsewhere, and for the last few pixels
// of a row, pixel by pixel.
#pragma once

#include "paint/blend_arithmetic.h"

#include <cstdint>

namespace kryn {

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink);
void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag);

// The pixel-by-pixel forms, also what the others must equal.
void blendRowBytesEach(uint8_t* at, int32_t n, const BlendInk& ink);
void blendRowWordsEach(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag);

} // namespace kryn
