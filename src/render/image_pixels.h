// The image families' pixels and samples: how each raster format stores an
// image's source S under the three raster-operation cases, and how each
// sample format reads the S of one sample.
#pragma once

#include "render/image_operand.h"
#include "render/paint_state.h"
#include "render/renderer_lists.h"

#include <cstdint>
#include <cstring>

namespace kryn {

// A sample that paints nothing (0 bits of 1-bit images without the image
// background): no colour has its top byte set.
inline constexpr uint32_t SKIP_SAMPLE = 0xFF000000u;

struct GreyImagePixels {
    using Pixel = uint8_t;
    static Pixel* row(const PaintState& s, int32_t y) {
        return s.raster + static_cast<int64_t>(y) * s.strideBytes;
    }
    static Pixel copy(const PaintState&, uint32_t v) { return static_cast<Pixel>(v); }
    static Pixel xorInto(Pixel d, uint32_t v) { return static_cast<Pixel>(d ^ v); }
    static Pixel rop(const PaintState& s, uint32_t v, uint32_t p, Pixel d) {
        return s.rop8(v, p, d);
    }
    static uint32_t slot(const PaintState& s, int i) { return s.colour[i] & 0xFF; }
};

struct ColourImagePixels {
    using Pixel = uint32_t;
    static Pixel* row(const PaintState& s, int32_t y) {
        return reinterpret_cast<Pixel*>(s.raster + static_cast<int64_t>(y) * s.strideBytes);
    }
    static Pixel copy(const PaintState& s, uint32_t v) { return (v & 0xFFFFFFu) | s.tagImageWord; }
    static Pixel xorInto(Pixel d, uint32_t v) { return d ^ (v & 0xFFFFFFu); }
    static Pixel rop(const PaintState& s, uint32_t v, uint32_t p, Pixel d) {
        return s.rop24(v, p, d, s.tagImageWord);
    }
    static uint32_t slot(const PaintState& s, int i) { return s.colour[i] & 0xFFFFFF; }
};

inline uint32_t loadSampleWord(const uint8_t* at) {
    uint32_t v;
    std::memcpy(&v, at, 4);
    return v;
}

// Every sample policy gives a sample's source S (operator()) and its own
// alpha (alpha(): 255 for formats without one). OWN_ALPHA: the format
// carries alpha in its samples, so its records paint only while blending.

// One grey byte a sample.
struct GreySamples {
    static constexpr bool TRANSPARENT = false;
    static constexpr bool OWN_ALPHA = false;
    template <class Pixels>
    GreySamples(const PaintState&, const ImageOperand&, Pixels) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return row[c]; }
    uint32_t alpha(const uint8_t*, uint32_t) const { return 255; }
};

// A grey byte and an alpha byte a sample (8-bit rasters).
struct GreyAlphaSamples {
    static constexpr bool TRANSPARENT = false;
    static constexpr bool OWN_ALPHA = true;
    template <class Pixels>
    GreyAlphaSamples(const PaintState&, const ImageOperand&, Pixels) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return row[2 * uint64_t{c}]; }
    uint32_t alpha(const uint8_t* row, uint32_t c) const { return row[2 * uint64_t{c} + 1]; }
};

// One 32-bit word a sample, channels 0..2; with alpha in the top byte for
// the alpha format.
template <bool Alpha>
struct WordSamples {
    static constexpr bool TRANSPARENT = false;
    static constexpr bool OWN_ALPHA = Alpha;
    template <class Pixels>
    WordSamples(const PaintState&, const ImageOperand&, Pixels) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const {
        return loadSampleWord(row + 4 * uint64_t{c}) & 0xFFFFFFu;
    }
    uint32_t alpha(const uint8_t* row, uint32_t c) const {
        return Alpha ? loadSampleWord(row + 4 * uint64_t{c}) >> 24 : 255u;
    }
};
using ColourSamples = WordSamples<false>;
using ColourAlphaSamples = WordSamples<true>;

// One index a sample into the colour table of record 171 (its low byte on
// 8-bit rasters; for the alpha format the entry's top byte is the alpha).
// Without a table the record paints nothing.
template <bool Alpha>
struct TableSamples {
    static constexpr bool TRANSPARENT = false;
    static constexpr bool OWN_ALPHA = Alpha;
    template <class Pixels>
    TableSamples(const PaintState& s, const ImageOperand&, Pixels)
        : table(s.colourTable == nullptr ? nullptr : s.colourTable->entries),
          mask(s.bitsPerPixel == 8 ? 0xFFu : 0xFFFFFFu) {}
    bool usable() const { return table != nullptr; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return table[row[c]] & mask; }
    uint32_t alpha(const uint8_t* row, uint32_t c) const {
        return Alpha ? table[row[c]] >> 24 : 255u;
    }
    const uint32_t* table;
    uint32_t mask;
};
using IndexedSamples = TableSamples<false>;
using IndexedAlphaSamples = TableSamples<true>;

// One bit a sample, most significant first: 1 the image colour, 0 the image
// back colour (Opaque) or nothing. Rows of 130 records start at the bit
// phase of record 180; 146 records address the image's own rows.
// The two colours' alpha bytes (records 183, 184) are their own alpha.
template <bool Opaque>
struct BitSamples {
    static constexpr bool TRANSPARENT = !Opaque;
    static constexpr bool OWN_ALPHA = false;
    template <class Pixels>
    BitSamples(const PaintState& s, const ImageOperand& op, Pixels)
        : one(Pixels::slot(s, SLOT_IMAGE)),
          zero(Opaque ? Pixels::slot(s, SLOT_IMAGE_BACK) : SKIP_SAMPLE),
          offset(op.scaled != 0 ? 0 : s.bitPhase & 7u), oneAlpha(colourAlphaOf(s, SLOT_IMAGE)),
          zeroAlpha(colourAlphaOf(s, SLOT_IMAGE_BACK)) {}
    bool usable() const { return true; }
    bool bit(const uint8_t* row, uint32_t c) const {
        const uint64_t at = uint64_t{offset} + c;
        return ((row[at >> 3] >> (7 - (at & 7))) & 1u) != 0;
    }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return bit(row, c) ? one : zero; }
    uint32_t alpha(const uint8_t* row, uint32_t c) const {
        return bit(row, c) ? oneAlpha : zeroAlpha;
    }
    // Whether either colour that paints brings an alpha of its own.
    bool colourAlpha() const { return oneAlpha < 255 || (Opaque && zeroAlpha < 255); }
    static uint32_t colourAlphaOf(const PaintState& s, int slot) {
        return s.bitsPerPixel == 8 ? s.colourAlpha[slot] & 0xFF : s.colourAlpha[slot] >> 24;
    }
    uint32_t one;
    uint32_t zero;
    uint32_t offset;
    uint32_t oneAlpha;
    uint32_t zeroAlpha;
};

} // namespace kryn
