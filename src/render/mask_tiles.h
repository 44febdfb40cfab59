// What the mask members read besides the mask: the screen tile under the
// group of pixels the walk hands over, and the set bits of a group. The
// tile column follows the walk's row offset without a division per pixel
// (one per row start, and one per gap longer than the tile).
#pragma once

#include "render/paint_state.h"
#include "render/tile_view.h"

#include <bit>
#include <cstdint>

namespace kryn {

// Calls fn(b) for every set bit of an eight-bit group, b = 0 for bit 7.
template <class Fn>
inline void forEachSetBit(uint32_t bits, Fn&& fn) {
    while (bits != 0) {
        const int b = std::countl_zero(static_cast<uint8_t>(bits));
        fn(b);
        bits &= ~(0x80u >> b);
    }
}

// A run of n pixels as the groups of eight that make it up (the last one
// m pixels, every bit of each set): group(i, bits, m) from pixel i on.
template <class Group>
inline void runAsGroups(int32_t n, Group&& group) {
    for (int32_t i = 0; i < n; i += 8) {
        const int32_t m = n - i < 8 ? n - i : 8;
        group(i, 0xFF00u >> m & 0xFFu, m);
    }
}

// The tile column under row offset x of a row that starts at a column.
struct TileColumn {
    void start(int32_t firstColumn, int32_t tileWidth) {
        width = tileWidth;
        column = firstColumn;
        at = 0;
    }
    // Moves to row offset x (never backwards within a row).
    void moveTo(int32_t x) {
        column += x - at;
        at = x;
        if (column >= width) {
            column = column - width < width ? column - width : column % width;
        }
    }
    int32_t width = 1;
    int32_t column = 0;
    int32_t at = 0;
};

// A 1-bit screen: eight tile bits from the current column on, first pixel
// in bit 7. Tile rows are whole words whose bits all belong to the cell,
// so the byte index wraps at the row's end.
struct MaskBitTile {
    explicit MaskBitTile(const PaintState& state) : tile(state) {}

    void beginRow(int32_t y, int32_t left) {
        row = tile.row(y);
        cursor.start(tile.column(left), tile.width);
    }
    uint32_t bitsAt(int32_t x) {
        cursor.moveTo(x);
        const int32_t c = cursor.column;
        const int32_t index = c >> 3;
        const uint32_t shift = static_cast<uint32_t>(c & 7);
        const uint32_t high = uint32_t{row[index]} << shift;
        if (shift == 0) {
            return high;
        }
        const int32_t next = index + 1 == tile.rowBytes ? 0 : index + 1;
        return (high | (uint32_t{row[next]} >> (8 - shift))) & 0xFFu;
    }

    TileView tile;
    const uint8_t* row = nullptr;
    TileColumn cursor;
};

// A tile of raster pixels: the pixel under row offset x + b.
template <class Pixel>
struct MaskSampleTile {
    explicit MaskSampleTile(const PaintState& state) : tile(state) {}

    void beginRow(int32_t y, int32_t left) {
        rowIndex = tile.rowIndex(y);
        row = tile.base + int64_t{rowIndex} * tile.rowBytes;
        cursor.start(tile.column(left), tile.width);
    }
    // The tile columns under n pixels from row offset x, in order.
    template <class Fn>
    void each(int32_t x, int32_t n, Fn&& fn) {
        cursor.moveTo(x);
        int32_t c = cursor.column;
        for (int32_t i = 0; i < n; ++i) {
            fn(i, c);
            if (++c == tile.width) {
                c = 0;
            }
        }
    }
    // The tile columns under the set bits of a group at row offset x.
    template <class Fn>
    void atBits(int32_t x, uint32_t bits, Fn&& fn) {
        cursor.moveTo(x);
        forEachSetBit(bits, [&](int b) {
            int32_t c = cursor.column + b;
            while (c >= tile.width) {
                c -= tile.width;
            }
            fn(b, c);
        });
    }
    Pixel sample(int32_t c) const { return tileSample<Pixel>(row, c); }

    TileView tile;
    int32_t rowIndex = 0;
    const uint8_t* row = nullptr;
    TileColumn cursor;
};

} // namespace kryn
