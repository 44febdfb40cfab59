#include "render/mask_members.h"

#include "render/mask_tiles.h"
#include "render/mask_walk.h"
#include "render/raster_pixels.h"

#include <array>
#include <bit>
#include <cstring>

namespace kryn {

namespace {

// Eight 8-bit pixels of one 64-bit store: byte k is 0xFF when bit 7 - k of
// the group is set.
constexpr std::array<uint64_t, 256> GROUP_MASKS = [] {
    std::array<uint64_t, 256> masks{};
    for (uint32_t v = 0; v < 256; ++v) {
        std::array<uint8_t, 8> bytes{};
        for (uint32_t k = 0; k < 8; ++k) {
            bytes[k] = ((v >> (7 - k)) & 1u) != 0 ? 0xFF : 0x00;
        }
        masks[v] = std::bit_cast<uint64_t>(bytes);
    }
    return masks;
}();

template <class Pixels>
typename Pixels::Pixel maskPixel(const PaintState& state, uint32_t colour) {
    if constexpr (sizeof(typename Pixels::Pixel) == 1) {
        return static_cast<uint8_t>(colour);
    } else {
        return (colour & 0xFFFFFFu) | state.tagBitmapWord;
    }
}

// Writes `one` under the set bits of `ones` and `zero` under those of
// `zeros` (disjoint) for the n pixels of a group: eight grey pixels in one
// masked store, anything else pixel by pixel.
template <class Pixel>
[[gnu::always_inline]] inline void storeGroup(Pixel* at, int32_t n, uint32_t ones, Pixel one,
                                              uint32_t zeros, Pixel zero) {
    if constexpr (sizeof(Pixel) == 1) {
        if (n == 8) {
            const uint64_t m1 = GROUP_MASKS[ones];
            const uint64_t m0 = GROUP_MASKS[zeros];
            uint64_t d;
            std::memcpy(&d, at, 8);
            d = (d & ~(m1 | m0)) | (uint64_t{one} * 0x0101010101010101u & m1) |
                (uint64_t{zero} * 0x0101010101010101u & m0);
            std::memcpy(at, &d, 8);
            return;
        }
    }
    forEachSetBit(ones, [&](int b) { at[b] = one; });
    forEachSetBit(zeros, [&](int b) { at[b] = zero; });
}

// No screen: slot 0 under every set bit.
template <class Pixels>
struct SolidMask {
    using Pixel = typename Pixels::Pixel;
    // One masked store paints eight grey pixels, a whole 0xFF group too.
    static constexpr bool GROUPS_ONLY = sizeof(Pixel) == 1;
    explicit SolidMask(const PaintState& state)
        : value(maskPixel<Pixels>(state, state.colour[SLOT_IMAGE])) {}

    void beginRow(const PaintState&, int32_t, int32_t) {}
    // Runs of a few whole groups of grey pixels (text) are stored eight
    // at a time rather than through a call.
    void run(Pixel* at, int32_t, int32_t n) {
        if constexpr (sizeof(Pixel) == 1) {
            if (n <= 64 && (n & 7) == 0) {
                const uint64_t eight = uint64_t{value} * 0x0101010101010101u;
                for (int32_t i = 0; i < n; i += 8) {
                    std::memcpy(at + i, &eight, 8);
                }
                return;
            }
        }
        Pixels::fill(at, n, value);
    }
    void group(Pixel* at, int32_t, uint32_t bits, int32_t n) {
        storeGroup<Pixel>(at, n, bits, value, 0, value);
    }

    Pixel value;
};

// A 1-bit screen: slot 0 where the cell's bit is 1 as well; where it is 0,
// the paint back colour (opaque cells) or nothing.
template <class Pixels, bool OPAQUE>
struct BitsMask {
    using Pixel = typename Pixels::Pixel;
    static constexpr bool GROUPS_ONLY = false;
    explicit BitsMask(const PaintState& state)
        : tile(state), one(maskPixel<Pixels>(state, state.colour[SLOT_IMAGE])),
          zero(maskPixel<Pixels>(state, state.colour[SLOT_PAINT_BACK])) {}

    void beginRow(const PaintState&, int32_t y, int32_t left) { tile.beginRow(y, left); }
    void group(Pixel* at, int32_t x, uint32_t bits, int32_t n) {
        const uint32_t cell = tile.bitsAt(x);
        storeGroup<Pixel>(at, n, bits & cell, one, OPAQUE ? bits & ~cell : 0u, zero);
    }
    void run(Pixel* at, int32_t x, int32_t n) {
        runAsGroups(n, [&](int32_t i, uint32_t bits, int32_t m) { group(at + i, x + i, bits, m); });
    }

    MaskBitTile tile;
    Pixel one;
    Pixel zero;
};

// A tile of samples: the tile's own pixel under every set bit.
template <class Pixels>
struct SamplesMask {
    using Pixel = typename Pixels::Pixel;
    static constexpr bool GROUPS_ONLY = false;
    explicit SamplesMask(const PaintState& state) : tile(state), tag(state.tagBitmapWord) {}

    Pixel value(Pixel p) const {
        if constexpr (sizeof(Pixel) == 1) {
            return p;
        } else {
            return (p & 0xFFFFFFu) | tag;
        }
    }
    void beginRow(const PaintState&, int32_t y, int32_t left) { tile.beginRow(y, left); }
    void run(Pixel* at, int32_t x, int32_t n) {
        tile.each(x, n, [&](int32_t i, int32_t c) { at[i] = value(tile.sample(c)); });
    }
    void group(Pixel* at, int32_t x, uint32_t bits, int32_t) {
        tile.atBits(x, bits, [&](int b, int32_t c) { at[b] = value(tile.sample(c)); });
    }

    MaskSampleTile<Pixel> tile;
    uint32_t tag;
};

template <class Paint>
void paintWith(PaintState& state, const ImageOperand& operand) {
    Paint paint(state);
    walkMask<typename Paint::Pixel>(state, operand, paint);
}

// The member for 1-bit screens with transparent zeros.
template <class Pixels>
void paintMaskTransparent(PaintState& state, const ImageOperand& operand) {
    if (tileUsable(state)) {
        paintWith<BitsMask<Pixels, false>>(state, operand);
    }
}

// The member for every other case.
template <class Pixels>
void paintMaskOther(PaintState& state, const ImageOperand& operand) {
    if (state.screenMember == SCREEN_SOLID) {
        paintWith<SolidMask<Pixels>>(state, operand);
    } else if (!tileUsable(state)) {
        return; // a screen without pixels paints nothing
    } else if (state.screenMember == SCREEN_BITS_OPAQUE) {
        paintWith<BitsMask<Pixels, true>>(state, operand);
    } else {
        paintWith<SamplesMask<Pixels>>(state, operand);
    }
}

template <class Pixels>
void paintMask(PaintState& state, const ImageOperand& operand) {
    if (state.screenMember == SCREEN_BITS_TRANSPARENT) {
        paintMaskTransparent<Pixels>(state, operand);
    } else {
        paintMaskOther<Pixels>(state, operand);
    }
}

} // namespace

void paintMaskGrey(PaintState& state, const ImageOperand& operand) {
    paintMask<GreyPixels>(state, operand);
}

void paintMaskColour(PaintState& state, const ImageOperand& operand) {
    paintMask<ColourPixels>(state, operand);
}

} // namespace kryn
