// How the screened and blending members read a screen tile: which tile row
// and column lie under a band pixel, the pixels of a tile of samples, a
// column walk, and a cursor over the bits of a 1-bit tile row.
#pragma once

#include "render/paint_state.h"

#include <cstdint>
#include <cstring>

namespace kryn {

// Where the tile lies under the band: row (y + phase) mod height, column
// x mod width. One division per row piece, none per pixel.
struct TileView {
    explicit TileView(const PaintState& state)
        : base(state.tileBase), width(state.tileWidth), height(state.tileHeight),
          rowBytes(state.tileRowBytes), phase(state.screenPhaseY) {}

    int32_t rowIndex(int32_t y) const { return (y + phase) % height; }
    const uint8_t* row(int32_t y) const { return base + int64_t{rowIndex(y)} * rowBytes; }
    int32_t column(int32_t x) const { return x % width; }

    const uint8_t* base;
    int32_t width;
    int32_t height;
    int32_t rowBytes;
    int32_t phase;
};

// A tile the members can read: its pixels and its size are set. A screened
// record without one paints nothing.
inline bool tileUsable(const PaintState& state) {
    return state.tileBase != nullptr && state.tileWidth > 0 && state.tileHeight > 0;
}

// Pixel `column` of a row of a tile of samples (rows need not be aligned).
template <class Pixel>
Pixel tileSample(const uint8_t* tileRow, int32_t column) {
    Pixel p;
    std::memcpy(&p, tileRow + int64_t{column} * int64_t{sizeof(Pixel)}, sizeof(Pixel));
    return p;
}

// Visits the pixels of band column x from row top to bottom with the tile
// row under each (its index and its bytes), which advances with the band
// row and wraps at the tile's height.
template <class Pixel, class Visit>
void walkTileColumn(const PaintState& state, const TileView& tile, int32_t x, int32_t top,
                    int32_t bottom, Visit visit) {
    const int32_t step = state.strideBytes / static_cast<int32_t>(sizeof(Pixel));
    Pixel* at = reinterpret_cast<Pixel*>(state.raster + int64_t{top} * state.strideBytes) + x;
    int32_t tileRow = tile.rowIndex(top);
    const uint8_t* rowAt = tile.base + int64_t{tileRow} * tile.rowBytes;
    for (int32_t y = top; y <= bottom; ++y, at += step) {
        visit(*at, tileRow, rowAt);
        if (++tileRow == tile.height) {
            tileRow = 0;
            rowAt = tile.base;
        } else {
            rowAt += tile.rowBytes;
        }
    }
}

// Bits of one tile row from a column on, most significant bit first; the
// byte index wraps to 0 at the row's end.
struct BitCursor {
    BitCursor(const uint8_t* tileRow, int32_t column, int32_t bytes)
        : row(tileRow), index(column >> 3), rowBytes(bytes), mask(0x80u >> (column & 7)),
          byte(tileRow[column >> 3]) {}

    void nextByte() {
        if (++index == rowBytes) {
            index = 0;
        }
        byte = row[index];
    }
    bool next() {
        const bool bit = (byte & mask) != 0;
        mask >>= 1;
        if (mask == 0) {
            mask = 0x80;
            nextByte();
        }
        return bit;
    }
    bool atNibble() const { return mask == 0x80 || mask == 0x08; }
    // The next four bits (at a nibble boundary), first pixel in bit 3.
    uint32_t nextNibble() {
        if (mask == 0x80) {
            mask = 0x08;
            return byte >> 4;
        }
        const uint32_t nibble = byte & 0x0F;
        mask = 0x80;
        nextByte();
        return nibble;
    }

    const uint8_t* row;
    int32_t index;
    int32_t rowBytes;
    uint32_t mask;
    uint32_t byte;
};

} // namespace kryn
