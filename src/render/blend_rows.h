// Rows of pixels under one ink (one colour at one alpha): every pixel
// becomes blendChannel of the ink over it, 32-bit pixels also taking the
// tag word. With SSE2 (every x86-64 host) sixteen bytes go at a time, with
// no branch per pixel: the channels are widened to 16 bits and each
// (dest * d + share) >> 16 is put together from the high and low halves of
// the 16-bit products and a carry. On processors with AVX2 (asked once per
// call) the same steps go thirty-two bytes at a time, giving the same
// bytes. Elsewhere, and for the last few pixels of a row, pixel by pixel.
#pragma once

#include "paint/blend_arithmetic.h"

#include <cstdint>

namespace kryn {

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink);
void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag);

// A block of `rows` rows of n pixels, `stride` bytes apart, blended with
// AVX2 down columns of up to 128 bytes: each row's piece of a column is
// compared with the piece above as it was, and takes what that became
// when equal (one load and one store of each pixel, most of the time).
// False, with nothing painted, without AVX2 or for rows under 32 bytes.
bool blendBlockBytes(uint8_t* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink);
bool blendBlockWords(uint32_t* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink,
                     uint32_t tag);

// The pixel-by-pixel forms, also what the others must equal.
void blendRowBytesEach(uint8_t* at, int32_t n, const BlendInk& ink);
void blendRowWordsEach(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag);

} // namespace kryn
