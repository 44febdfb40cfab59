#include "render/area_screened.h"

#include "render/area_walk.h"
#include "render/raster_pixels.h"
#include "render/tile_view.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace kryn {

namespace {

// Four 8-bit pixels of one 32-bit store: byte k is 0xFF when bit 3 - k of
// the nibble is set (the first pixel is the nibble's high bit).
constexpr std::array<uint32_t, 16> NIBBLE_MASKS = [] {
    std::array<uint32_t, 16> masks{};
    for (uint32_t n = 0; n < 16; ++n) {
        std::array<uint8_t, 4> bytes{};
        for (uint32_t k = 0; k < 4; ++k) {
            bytes[k] = ((n >> (3 - k)) & 1u) != 0 ? 0xFF : 0x00;
        }
        masks[n] = std::bit_cast<uint32_t>(bytes);
    }
    return masks;
}();

// Pixels at[period..n) repeat at[0..period): copied in doubling blocks.
template <class Pixel>
void repeatPeriod(Pixel* at, int32_t n, int32_t period) {
    for (int32_t done = period; done < n;) {
        const int32_t count = std::min(done, n - done);
        std::memcpy(at + done, at, static_cast<size_t>(count) * sizeof(Pixel));
        done += count;
    }
}

// What every screened paint shares: the tile, the raster operation's mode,
// and the block walk. A block's rows repeat every tile height when the
// result does not depend on the destination (`rowsRepeat`): those rows are
// copied from the row one tile height above.
template <class Pixels, class Self>
struct ScreenedPaint {
    using Pixel = typename Pixels::Pixel;

    explicit ScreenedPaint(const PaintState& state)
        : paintState(state), tile(state), mode(state.ropMode), white(Pixels::whiteValue(state)) {}

    // Pattern copies that do not depend on the destination repeat each tile
    // row's pixels (Self::expandRow) in every piece of that row. For small
    // tiles each row is made once per record and kept here.
    void preparePatterns(bool copies) {
        patterns = copies && tile.height <= PATTERN_ROWS &&
                   int64_t{tile.height} * tile.width <= int64_t{PATTERN_PIXELS};
    }
    const Pixel* patternRow(int32_t r) {
        Pixel* row = patternPixels + int64_t{r} * tile.width;
        if ((built & (1u << r)) == 0) {
            static_cast<Self&>(*this).expandRow(tile.base + int64_t{r} * tile.rowBytes, row);
            built |= 1u << r;
        }
        return row;
    }
    // Precondition: patterns. The n pixels of band row y from column left.
    void copyPattern(Pixel* at, int32_t n, int32_t y, int32_t left) {
        const Pixel* row = patternRow(tile.rowIndex(y));
        const int32_t c = tile.column(left);
        const int32_t first = std::min(n, tile.width - c);
        std::memcpy(at, row + c, static_cast<size_t>(first) * sizeof(Pixel));
        if (n > first) {
            const int32_t wrapped = std::min(n - first, c);
            std::memcpy(at + first, row, static_cast<size_t>(wrapped) * sizeof(Pixel));
        }
        repeatPeriod(at, n, tile.width);
    }

    void block(const PaintState& state, int32_t left, int32_t top, int32_t right, int32_t bottom) {
        auto& self = static_cast<Self&>(*this);
        const int32_t n = right - left + 1;
        const size_t bytes = static_cast<size_t>(n) * sizeof(Pixel);
        const int32_t period = mode == ROP_MODE_WHITE ? 1 : tile.height;
        for (int32_t y = top; y <= bottom; ++y) {
            if (self.rowsRepeat() && y - top >= period) {
                std::memcpy(Pixels::row(state, y) + left, Pixels::row(state, y - period) + left,
                            bytes);
            } else {
                self.span(state, y, left, right);
            }
        }
    }

    void listSpan(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        static_cast<Self&>(*this).span(state, y, left, right);
    }

    static constexpr int32_t PATTERN_ROWS = 32;
    static constexpr size_t PATTERN_PIXELS = 2048 / sizeof(Pixel);

    const PaintState& paintState;
    TileView tile;
    RopMode mode;
    Pixel white;
    bool patterns = false;
    uint32_t built = 0; // rows of patternPixels made so far
    Pixel patternPixels[PATTERN_PIXELS];
};

// 1-bit tile, zero bits in the paint back colour (opaque) or left alone.
template <class Pixels, bool OPAQUE>
struct BitsPaint : ScreenedPaint<Pixels, BitsPaint<Pixels, OPAQUE>> {
    using Base = ScreenedPaint<Pixels, BitsPaint<Pixels, OPAQUE>>;
    using Pixel = typename Pixels::Pixel;
    using Base::mode;
    using Base::tile;
    using Base::white;

    explicit BitsPaint(const PaintState& state)
        : Base(state), one(state.colour[SLOT_PAINT]), zero(state.colour[SLOT_PAINT_BACK]),
          oneValue(Pixels::copyValue(state, one)), zeroValue(Pixels::copyValue(state, zero)),
          ropOne(Pixels::rop(state, state.colour[SLOT_IMAGE], one)),
          ropZero(Pixels::rop(state, state.colour[SLOT_IMAGE], zero)) {
        this->preparePatterns(OPAQUE && mode == ROP_MODE_COPY);
        if (OPAQUE && mode == ROP_MODE_COPY) {
            const uint32_t ones = static_cast<uint32_t>(oneValue) * 0x01010101u;
            const uint32_t zeros = static_cast<uint32_t>(zeroValue) * 0x01010101u;
            for (uint32_t n = 0; n < 16; ++n) {
                if constexpr (sizeof(Pixel) == 1) {
                    const uint32_t word = (ones & NIBBLE_MASKS[n]) | (zeros & ~NIBBLE_MASKS[n]);
                    std::memcpy(nibblePixels[n], &word, 4);
                } else {
                    for (uint32_t k = 0; k < 4; ++k) {
                        nibblePixels[n][k] = ((n >> (3 - k)) & 1u) != 0 ? oneValue : zeroValue;
                    }
                }
            }
        }
    }

    bool rowsRepeat() const { return OPAQUE && (mode == ROP_MODE_COPY || mode == ROP_MODE_WHITE); }

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        Pixel* at = Pixels::row(state, y) + left;
        const int32_t n = right - left + 1;
        if (OPAQUE && mode == ROP_MODE_WHITE) {
            Pixels::fill(at, n, white);
            return;
        }
        if (OPAQUE && mode == ROP_MODE_COPY && this->patterns) {
            this->copyPattern(at, n, y, left);
            return;
        }
        BitCursor bits(tile.row(y), tile.column(left), tile.rowBytes);
        if (OPAQUE && mode == ROP_MODE_COPY) {
            copyPeriod(at, std::min(n, tile.width), bits);
            repeatPeriod(at, n, tile.width);
            return;
        }
        if constexpr (!OPAQUE && sizeof(Pixel) == 1) {
            if (mode == ROP_MODE_COPY) {
                copyGreyUnderOnes(at, n, bits);
                return;
            }
        }
        switch (mode) {
        case ROP_MODE_COPY:
            for (int32_t i = 0; i < n; ++i) {
                if (bits.next()) {
                    at[i] = oneValue;
                } else if (OPAQUE) {
                    at[i] = zeroValue;
                }
            }
            break;
        case ROP_MODE_WHITE:
            for (int32_t i = 0; i < n; ++i) {
                if (bits.next()) {
                    at[i] = white;
                }
            }
            break;
        case ROP_MODE_XOR:
            for (int32_t i = 0; i < n; ++i) {
                if (bits.next()) {
                    at[i] = Pixels::xorPixel(at[i], one);
                } else if (OPAQUE) {
                    at[i] = Pixels::xorPixel(at[i], zero);
                }
            }
            break;
        case ROP_MODE_GENERIC:
            for (int32_t i = 0; i < n; ++i) {
                if (bits.next()) {
                    at[i] = ropOne(at[i]);
                } else if (OPAQUE) {
                    at[i] = ropZero(at[i]);
                }
            }
            break;
        }
    }

    void expandRow(const uint8_t* tileRow, Pixel* out) const {
        BitCursor bits(tileRow, 0, tile.rowBytes);
        copyPeriod(out, tile.width, bits);
    }

    // Opaque pattern copy of `count` pixels: whole tile bytes at a time once
    // the cell is byte aligned, four pixels by nibble (on 8-bit rasters one
    // 32-bit store).
    void copyPeriod(Pixel* at, int32_t count, BitCursor& bits) const {
        for (; count > 0 && bits.mask != 0x80; --count, ++at) {
            *at = bits.next() ? oneValue : zeroValue;
        }
        for (; count >= 8; count -= 8, at += 8) {
            const uint32_t b = bits.byte;
            std::memcpy(at, nibblePixels[b >> 4], sizeof nibblePixels[0]);
            std::memcpy(at + 4, nibblePixels[b & 0x0F], sizeof nibblePixels[0]);
            bits.nextByte();
        }
        for (; count > 0; --count, ++at) {
            *at = bits.next() ? oneValue : zeroValue;
        }
    }

    // 8-bit rasters, transparent zeros, pattern copy: four pixels per
    // 32-bit store, each byte chosen by one bit of a tile nibble.
    void copyGreyUnderOnes(Pixel* at, int32_t n, BitCursor& bits) const {
        const uint32_t ones = static_cast<uint32_t>(oneValue) * 0x01010101u;
        for (; n > 0 && !bits.atNibble(); --n, ++at) {
            if (bits.next()) {
                *at = oneValue;
            }
        }
        for (; n >= 4; n -= 4, at += 4) {
            const uint32_t nibble = bits.nextNibble();
            if (nibble == 0) {
                continue;
            }
            const uint32_t mask = NIBBLE_MASKS[nibble];
            uint32_t d;
            std::memcpy(&d, at, 4);
            d = (d & ~mask) | (ones & mask);
            std::memcpy(at, &d, 4);
        }
        for (; n > 0; --n, ++at) {
            if (bits.next()) {
                *at = oneValue;
            }
        }
    }

    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) {
        const int32_t c = tile.column(x);
        const int32_t byteIndex = c >> 3;
        const uint32_t mask = 0x80u >> (c & 7);
        // paint(at, bit) for every pixel of the column, under its tile bit.
        const auto walk = [&](auto paint) {
            walkTileColumn<Pixel>(state, tile, x, top, bottom,
                                  [&](Pixel& at, int32_t, const uint8_t* tileRow) {
                                      paint(&at, (tileRow[byteIndex] & mask) != 0);
                                  });
        };
        switch (mode) {
        case ROP_MODE_COPY:
            walk([&](Pixel* at, bool bit) {
                if (bit) {
                    *at = oneValue;
                } else if (OPAQUE) {
                    *at = zeroValue;
                }
            });
            break;
        case ROP_MODE_WHITE:
            walk([&](Pixel* at, bool bit) {
                if (bit || OPAQUE) {
                    *at = white;
                }
            });
            break;
        case ROP_MODE_XOR:
            walk([&](Pixel* at, bool bit) {
                if (bit) {
                    *at = Pixels::xorPixel(*at, one);
                } else if (OPAQUE) {
                    *at = Pixels::xorPixel(*at, zero);
                }
            });
            break;
        case ROP_MODE_GENERIC:
            walk([&](Pixel* at, bool bit) {
                if (bit) {
                    *at = ropOne(*at);
                } else if (OPAQUE) {
                    *at = ropZero(*at);
                }
            });
            break;
        }
    }

    uint32_t one;
    uint32_t zero;
    Pixel oneValue;
    Pixel zeroValue;
    typename Pixels::Rop ropOne;
    typename Pixels::Rop ropZero;
    Pixel nibblePixels[16][4] = {}; // opaque copies: four pixels by cell nibble
};

// A tile of raster pixels: each pixel's P is the tile's value.
template <class Pixels>
struct SamplesPaint : ScreenedPaint<Pixels, SamplesPaint<Pixels>> {
    using Base = ScreenedPaint<Pixels, SamplesPaint<Pixels>>;
    using Pixel = typename Pixels::Pixel;
    using Base::mode;
    using Base::tile;
    using Base::white;

    explicit SamplesPaint(const PaintState& state)
        : Base(state), rop(Pixels::rop(state, state.colour[SLOT_IMAGE], 0)) {
        this->preparePatterns(mode == ROP_MODE_COPY);
    }

    void expandRow(const uint8_t* tileRow, Pixel* out) const {
        for (int32_t c = 0; c < tile.width; ++c) {
            out[c] = Pixels::copyValue(this->paintState, sample(tileRow, c));
        }
    }

    bool rowsRepeat() const { return mode == ROP_MODE_COPY || mode == ROP_MODE_WHITE; }

    static Pixel sample(const uint8_t* tileRow, int32_t column) {
        return tileSample<Pixel>(tileRow, column);
    }

    // op(pixel, tile value) for n pixels of a row from tile column c on.
    template <class Op>
    void eachSample(Pixel* at, int32_t n, const uint8_t* tileRow, int32_t c, Op op) const {
        for (int32_t i = 0; i < n; ++i) {
            op(at[i], sample(tileRow, c));
            if (++c == tile.width) {
                c = 0;
            }
        }
    }

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        Pixel* at = Pixels::row(state, y) + left;
        const int32_t n = right - left + 1;
        const uint8_t* tileRow = tile.row(y);
        const int32_t c = tile.column(left);
        switch (mode) {
        case ROP_MODE_COPY:
            if (this->patterns) {
                this->copyPattern(at, n, y, left);
                break;
            }
            eachSample(at, std::min(n, tile.width), tileRow, c,
                       [&](Pixel& d, Pixel p) { d = Pixels::copyValue(state, p); });
            repeatPeriod(at, n, tile.width);
            break;
        case ROP_MODE_WHITE:
            Pixels::fill(at, n, white);
            break;
        case ROP_MODE_XOR:
            eachSample(at, n, tileRow, c, [](Pixel& d, Pixel p) { d = Pixels::xorPixel(d, p); });
            break;
        case ROP_MODE_GENERIC:
            eachSample(at, n, tileRow, c, [&](Pixel& d, Pixel p) {
                rop.p = p;
                d = rop(d);
            });
            break;
        }
    }

    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) {
        const int32_t c = tile.column(x);
        const auto walk = [&](auto op) {
            walkTileColumn<Pixel>(
                state, tile, x, top, bottom,
                [&](Pixel& at, int32_t, const uint8_t* tileRow) { op(at, sample(tileRow, c)); });
        };
        switch (mode) {
        case ROP_MODE_COPY:
            walk([&](Pixel& d, Pixel p) { d = Pixels::copyValue(state, p); });
            break;
        case ROP_MODE_WHITE:
            walk([&](Pixel& d, Pixel) { d = white; });
            break;
        case ROP_MODE_XOR:
            walk([](Pixel& d, Pixel p) { d = Pixels::xorPixel(d, p); });
            break;
        case ROP_MODE_GENERIC:
            walk([&](Pixel& d, Pixel p) {
                rop.p = p;
                d = rop(d);
            });
            break;
        }
    }

    typename Pixels::Rop rop;
};

template <class Pixels, ScreenMember M>
struct MemberPaint;
template <class Pixels>
struct MemberPaint<Pixels, SCREEN_BITS_TRANSPARENT> {
    using Type = BitsPaint<Pixels, false>;
};
template <class Pixels>
struct MemberPaint<Pixels, SCREEN_BITS_OPAQUE> {
    using Type = BitsPaint<Pixels, true>;
};
template <class Pixels>
struct MemberPaint<Pixels, SCREEN_SAMPLES> {
    using Type = SamplesPaint<Pixels>;
};

} // namespace

template <class Pixels, ScreenMember M, AreaGeometry G>
void paintScreened(PaintState& state, const AreaOperand& operand) {
    if (!tileUsable(state)) {
        return;
    }
    paintAreaWith<typename MemberPaint<Pixels, M>::Type, G>(state, operand);
}

// Every member of both raster formats.
#define KRYN_SCREENED_MEMBER(Pixels, M)                                                            \
    template void paintScreened<Pixels, M, AREA_RECT>(PaintState&, const AreaOperand&);            \
    template void paintScreened<Pixels, M, AREA_RECT_LIST>(PaintState&, const AreaOperand&);       \
    template void paintScreened<Pixels, M, AREA_SPAN_LIST>(PaintState&, const AreaOperand&);       \
    template void paintScreened<Pixels, M, AREA_ROW_SPANS>(PaintState&, const AreaOperand&);       \
    template void paintScreened<Pixels, M, AREA_COLUMN_RUNS>(PaintState&, const AreaOperand&);

KRYN_SCREENED_MEMBER(GreyPixels, SCREEN_BITS_TRANSPARENT)
KRYN_SCREENED_MEMBER(GreyPixels, SCREEN_BITS_OPAQUE)
KRYN_SCREENED_MEMBER(GreyPixels, SCREEN_SAMPLES)
KRYN_SCREENED_MEMBER(ColourPixels, SCREEN_BITS_TRANSPARENT)
KRYN_SCREENED_MEMBER(ColourPixels, SCREEN_BITS_OPAQUE)
KRYN_SCREENED_MEMBER(ColourPixels, SCREEN_SAMPLES)

#undef KRYN_SCREENED_MEMBER

} // namespace kryn
