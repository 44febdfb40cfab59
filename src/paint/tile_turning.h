// Turning pixel tiles as a transformation turns user space: screen tiles
// and image placement share these routines. A screen tile is turned by a
// whole number of quarter turns (never mirrored), and may be resampled by
// nearest neighbour to a uniform scale on request; images take the general
// form (pickTile): any of the eight axis-aligned orientations, 1-bit pixels
// too, and an explicit output size with its own step on each axis.
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

// The general form. The source seen in the output's orientation is the
// oriented tile: `swap` makes output x run along the source's y axis (and
// output y along its x axis), then `flipX` and `flipY` run the output's
// axes backwards. Output pixel (x, y) takes oriented pixel
// (min((x * stepX) >> 16, last column), min((y * stepY) >> 16, last row)):
// no division per pixel. Quarter turns are the orientations without a
// mirror: 1 is swap + flipX, 2 flipX + flipY, 3 swap + flipY.
struct TilePick {
    bool swap = false;
    bool flipX = false;
    bool flipY = false;
    int64_t width = 0; // output pixels per row, and rows (0 .. INT32_MAX)
    int64_t height = 0;
    uint64_t stepX = uint64_t{1} << 16; // 16.16 oriented pixels per output pixel
    uint64_t stepY = uint64_t{1} << 16;
};

// The pick of quarter turns 0..3 at 1:1 over the turned size.
TilePick quarterTurnPick(int32_t quarterTurns, int32_t width, int32_t height);

// Picks a tile of 1-bit (most significant bit first), 8-, 16- or 32-bit
// pixels into a new packed tile the caller owns: rows of (width + 7) / 8
// bytes for 1-bit pixels, width x pixel bytes otherwise. Source rows are
// bytesPerRow apart. KRYN_ERR_INVALID for another pixel size, a size outside
// 0..INT32_MAX or an empty source under a non-empty output;
// KRYN_ERR_NO_MEMORY when memory runs out or a row would exceed INT32_MAX
// bytes. `out` is only written on KRYN_OK.
ResultCode pickTile(const TileSource& source, int32_t pixelBits, const TilePick& pick,
                    PixelTile& out);

} // namespace kryn
