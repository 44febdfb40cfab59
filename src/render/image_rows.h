// The row machinery the image members share: the pattern operand P under
// the band's screen, walked along a row, and the samples of a row, column
// by column, a run of equal samples at a time when scaled.
#pragma once

#include "render/image_operand.h"
#include "render/image_walk.h"
#include "render/paint_state.h"
#include "render/tile_view.h"

#include <algorithm>
#include <cstdint>

namespace kryn {

// Pixels a member converts at a time: the samples of a row piece go to a
// small buffer on the stack first, so that no member needs work memory.
inline constexpr int32_t CHUNK = 256;

// The pattern operand P under the band's screen, one pixel at a time along
// a row from column x on. `skip` is set where a 1-bit screen with
// transparent zeros leaves the band alone.
template <class Pixels, ScreenMember SM>
struct ImagePattern;

template <class Pixels>
struct ImagePattern<Pixels, SCREEN_SOLID> {
    ImagePattern(const PaintState& s, int32_t, int32_t) : value(Pixels::slot(s, SLOT_PAINT)) {}
    void step() {}
    uint32_t value;
    static constexpr bool skip = false;
};

template <class Pixels, ScreenMember SM>
requires(SM == SCREEN_BITS_TRANSPARENT ||
         SM == SCREEN_BITS_OPAQUE) struct ImagePattern<Pixels, SM> {
    ImagePattern(const PaintState& s, int32_t x, int32_t y)
        : one(Pixels::slot(s, SLOT_PAINT)), zero(Pixels::slot(s, SLOT_PAINT_BACK)),
          bits(TileView(s).row(y), TileView(s).column(x), s.tileRowBytes) {
        load();
    }
    void load() {
        const bool bit = bits.next();
        value = bit ? one : zero;
        skip = SM == SCREEN_BITS_TRANSPARENT && !bit;
    }
    void step() { load(); }
    uint32_t one;
    uint32_t zero;
    BitCursor bits;
    uint32_t value = 0;
    bool skip = false;
};

template <class Pixels>
struct ImagePattern<Pixels, SCREEN_SAMPLES> {
    using Pixel = typename Pixels::Pixel;
    ImagePattern(const PaintState& s, int32_t x, int32_t y)
        : row(reinterpret_cast<const Pixel*>(TileView(s).row(y))), width(s.tileWidth),
          column(TileView(s).column(x)), value(row[column]) {}
    void step() {
        if (++column == width) {
            column = 0;
        }
        value = row[column];
    }
    const Pixel* row;
    int32_t width;
    int32_t column;
    uint32_t value;
    static constexpr bool skip = false;
};

// The samples of one row of a record, column by column.
template <bool Scaled>
struct ColumnWalk;

template <>
struct ColumnWalk<false> {
    ColumnWalk(const PaintState&, const ImageOperand& op)
        : next(op.scaled != 0 ? op.sourceColumn : 0), last(op.sourceColumns - 1) {}
    // out[k] = sample(c) for the next n pixels' samples c.
    template <class Sample, class Value>
    void fill(const Sample& sample, Value* out, int32_t n) {
        for (int32_t k = 0; k < n; ++k, ++next) {
            out[k] = sample(std::min(next, last));
        }
    }
    uint32_t next;
    uint32_t last;
};

template <>
struct ColumnWalk<true> {
    ColumnWalk(const PaintState& s, const ImageOperand& op) : runs(columnRuns(s, op)) {}
    // out[k] = sample(c) for the next n pixels' samples c, a run at a time.
    template <class Sample, class Value>
    void fill(const Sample& sample, Value* out, int32_t n) {
        for (int32_t k = 0; k < n;) {
            if (left == 0) {
                runs.next(current, left);
                value = static_cast<uint64_t>(sample(current));
            }
            const int32_t m = static_cast<int32_t>(std::min<int64_t>(left, n - k));
            std::fill_n(out + k, m, static_cast<Value>(value));
            k += m;
            left -= m;
        }
    }
    SampleRuns runs;
    uint32_t current = 0;
    int64_t left = 0;
    uint64_t value = 0;
};

} // namespace kryn
