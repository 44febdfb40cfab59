// How the screened and blending members read a screen tile: which tile row
// and column lie under a band pixel, and a cursor over the bits of a 1-bit
// tile row.
#pragma once

#include "render/paint_state.h"

#include <cstdint>

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
