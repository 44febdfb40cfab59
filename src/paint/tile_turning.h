// Turning pixel tiles as a transformation turns user space: screen tiles
// and image placement share these routines. A tile is turned by a whole
// number of quarter turns (never mirrored), and may be resampled by nearest
// neighbour to a uniform scale on request.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct Transform;

// A tile of pixels: rows of `bytesPerRow` bytes, top row first. `depth` is
// the caller's depth code and is carried along unchanged.
struct PixelTile {
    uint8_t* data = nullptr;
    int32_t width = 0;
    int32_t height = 0;
    int32_t bytesPerRow = 0;
    uint8_t depth = 0;
};

// The same, read-only: what a turning routine takes.
struct TileSource {
    const uint8_t* data;
    int32_t width;
    int32_t height;
    int32_t bytesPerRow;
    uint8_t depth;
};

// Quarter turns (0..3) that the linear part of `t` applies, with any
// uniform scale factor: a = d = k (0 turns, or 2 when k < 0), or a = d = 0
// with b = -c = k (1 turn for k > 0, 3 for k < 0). -1 for every other
// matrix (shears, mirrors, unequal scales, other angles).
int32_t tileQuarterTurns(const Transform& t);

// Width and height of a tile after `quarterTurns` (odd turns swap them).
inline void turnedSize(int32_t quarterTurns, int32_t width, int32_t height, int32_t& outWidth,
                       int32_t& outHeight) {
    const bool swap = (quarterTurns & 1) != 0;
    outWidth = swap ? height : width;
    outHeight = swap ? width : height;
}

// How to turn a tile: quarter turns 0..3, and optionally a nearest
// neighbour resampling by `scale` (> 0) to ceil(width x scale) by
// ceil(height x scale) pixels of the turned tile: output pixel i of a row
// (and output row i) takes turned pixel (i x step) >> 16, where the 16.16
// step is trunc(65536 / scale).
struct TileTurn {
    int32_t quarterTurns = 0;
    bool resample = false;
    float scale = 1.0f;
};

// Turns a tile of 1-, 2- or 4-byte pixels into a new packed tile
// (bytesPerRow = width x pixel bytes) whose pixels the caller owns.
// KRYN_ERR_NO_MEMORY when memory runs out or the result would be too large
// (more than 65535 pixels a side); KRYN_ERR_INVALID for a quarter-turn count
// outside 0..3 or a scale that is not positive and finite. `out` is only
// written on KRYN_OK.
ResultCode turnTile8(const TileSource& source, const TileTurn& turn, PixelTile& out);
ResultCode turnTile16(const TileSource& source, const TileTurn& turn, PixelTile& out);
ResultCode turnTile32(const TileSource& source, const TileTurn& turn, PixelTile& out);

} // namespace kryn
