// One-bit screen tiles: turning them with the transformation, and widening
// their rows to whole 32-bit words so that the renderers read the cell one
// aligned word at a time with no modulo per pixel.
#pragma once

#include "engine/result_codes.h"
#include "paint/tile_turning.h"

#include <cstdint>

namespace kryn {

// Bytes of a packed 1-bit row.
inline int64_t bitRowBytes(int64_t width) {
    return (width + 7) / 8;
}

// Bits of a widened row: the smallest multiple of 32 that is a multiple of
// `width` too, lcm(width, 32). Zero for an empty row.
int64_t widenedRowBits(int64_t width);

// Turns a 1-bit tile (rows of (width + 7) / 8 bytes, most significant bit
// first; its bytesPerRow is not read) by 0..3 quarter turns into a new packed
// tile the caller owns. KRYN_ERR_NO_MEMORY when memory runs out.
ResultCode transformTile(const TileSource& source, int32_t quarterTurns, PixelTile& out);

// Repeats a packed 1-bit row of `width` bits end to end over `outBytes`
// bytes (a multiple of 4). Whole bytes are copied when width is a multiple
// of 8; otherwise the row's bits are concatenated with shifts.
void replicateTileRow(const uint8_t* row, int32_t width, uint8_t* out, int64_t outBytes);

// The widened form of a turned 1-bit tile: every row repeated over
// widenedRowBits(width) bits. KRYN_ERR_NO_MEMORY when memory runs out.
ResultCode widenBitTile(const PixelTile& turned, PixelTile& out);

} // namespace kryn
