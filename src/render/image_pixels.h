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

// One grey byte a sample.
struct GreySamples {
    static constexpr bool TRANSPARENT = false;
    template <class Pixels>
    GreySamples(const PaintState&, const ImageOperand&, Pixels) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return row[c]; }
};

// One 32-bit word a sample, channels 0..2.
struct ColourSamples {
    static constexpr bool TRANSPARENT = false;
    template <class Pixels>
    ColourSamples(const PaintState&, const ImageOperand&, Pixels) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const {
        return loadSampleWord(row + 4 * uint64_t{c}) & 0xFFFFFFu;
    }
};

// One index a sample into the colour table of record 171 (its low byte on
// 8-bit rasters). Without a table the record paints nothing.
struct IndexedSamples {
    static constexpr bool TRANSPARENT = false;
    template <class Pixels>
    IndexedSamples(const PaintState& s, const ImageOperand&, Pixels)
        : table(s.colourTable == nullptr ? nullptr : s.colourTable->entries),
          mask(s.bitsPerPixel == 8 ? 0xFFu : 0xFFFFFFu) {}
    bool usable() const { return table != nullptr; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const { return table[row[c]] & mask; }
    const uint32_t* table;
    uint32_t mask;
};

// One bit a sample, most significant first: 1 the image colour, 0 the image
// back colour (Opaque) or nothing. Rows of 130 records start at the bit
// phase of record 180; 146 records address the image's own rows.
template <bool Opaque>
struct BitSamples {
    static constexpr bool TRANSPARENT = !Opaque;
    template <class Pixels>
    BitSamples(const PaintState& s, const ImageOperand& op, Pixels)
        : one(Pixels::slot(s, SLOT_IMAGE)),
          zero(Opaque ? Pixels::slot(s, SLOT_IMAGE_BACK) : SKIP_SAMPLE),
          offset(op.scaled != 0 ? 0 : s.bitPhase & 7u) {}
    bool usable() const { return true; }
    uint32_t operator()(const uint8_t* row, uint32_t c) const {
        const uint64_t bit = uint64_t{offset} + c;
        return ((row[bit >> 3] >> (7 - (bit & 7))) & 1u) != 0 ? one : zero;
    }
    uint32_t one;
    uint32_t zero;
    uint32_t offset;
};

} // namespace kryn
