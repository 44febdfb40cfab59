// The two band raster formats as pixel policies for the renderers: how a
// pixel is stored, what the solid paint writes under each fast raster
// operation, and the row loops those operations use.
#pragma once

#include "paint/blend_arithmetic.h"
#include "render/blend_rows.h"
#include "render/paint_state.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kryn {

// 8-bit grey: one byte per pixel.
struct GreyPixels {
    using Pixel = uint8_t;

    static Pixel* row(const PaintState& state, int32_t y) {
        return state.raster + static_cast<int64_t>(y) * state.strideBytes;
    }
    // What 0xF0 stores for paint p; what 0xFF stores.
    static Pixel copyValue(const PaintState&, uint32_t p) { return static_cast<Pixel>(p); }
    static Pixel whiteValue(const PaintState&) { return 0xFF; }

    static void fill(Pixel* at, int32_t n, Pixel v) { std::memset(at, v, static_cast<size_t>(n)); }

    // XOR of one byte into a row: single bytes up to the first word-aligned
    // column, whole words, then the remaining bytes.
    static void xorRow(Pixel* at, int32_t n, uint32_t p) {
        const auto v = static_cast<uint8_t>(p);
        if (n <= 4) {
            for (int32_t i = 0; i < n; ++i) {
                at[i] ^= v;
            }
            return;
        }
        while ((reinterpret_cast<uintptr_t>(at) & 3u) != 0) {
            *at++ ^= v;
            --n;
        }
        const uint32_t word = v * 0x01010101u;
        for (; n >= 4; n -= 4, at += 4) {
            uint32_t d;
            std::memcpy(&d, at, 4);
            d ^= word;
            std::memcpy(at, &d, 4);
        }
        for (int32_t i = 0; i < n; ++i) {
            at[i] ^= v;
        }
    }
    static Pixel xorPixel(Pixel d, uint32_t p) { return static_cast<Pixel>(d ^ p); }

    // Any other raster operation: op(S, P, D).
    struct Rop {
        RopFn8 fn;
        uint32_t s;
        uint32_t p;
        Pixel operator()(Pixel d) const { return fn(s, p, d); }
    };
    static Rop rop(const PaintState& state, uint32_t s, uint32_t p) { return {state.rop8, s, p}; }

    // Blending, which replaces the raster operation: the ink laid over D.
    static Pixel blend(Pixel d, const BlendInk& ink, uint32_t) {
        return static_cast<Pixel>(ink.channel(0, d));
    }
    static void blendRow(Pixel* at, int32_t n, const BlendInk& ink, uint32_t) {
        blendRowBytes(at, n, ink);
    }
    static bool blendBlock(Pixel* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink,
                           uint32_t) {
        return blendBlockBytes(at, n, rows, stride, ink);
    }
    // Tile pixel p laid over D with the weights of its alpha.
    static Pixel blendSample(Pixel d, Pixel p, BlendWeights w, uint32_t) {
        return static_cast<Pixel>(blendWeighted(w, p, d));
    }
    // The channels a colour key tests.
    static uint32_t channels(Pixel p) { return p; }
};

// 32-bit colour: one 0xTTBBGGRR word per pixel; area paint carries the
// graphics tag.
struct ColourPixels {
    using Pixel = uint32_t;

    static Pixel* row(const PaintState& state, int32_t y) {
        return reinterpret_cast<Pixel*>(state.raster + static_cast<int64_t>(y) * state.strideBytes);
    }
    static Pixel copyValue(const PaintState& state, uint32_t p) {
        return (p & 0xFFFFFFu) | state.tagGraphicsWord;
    }
    static Pixel whiteValue(const PaintState& state) { return state.tagGraphicsWord | 0xFFFFFFu; }

    static void fill(Pixel* at, int32_t n, Pixel v) { std::fill_n(at, n, v); }

    // XOR into the colour; the tag stays.
    static void xorRow(Pixel* at, int32_t n, uint32_t p) {
        const uint32_t v = p & 0xFFFFFFu;
        for (int32_t i = 0; i < n; ++i) {
            at[i] ^= v;
        }
    }
    static Pixel xorPixel(Pixel d, uint32_t p) { return d ^ (p & 0xFFFFFFu); }

    // Any other raster operation: op(S, P, D, T).
    struct Rop {
        RopFn24 fn;
        uint32_t s;
        uint32_t p;
        uint32_t t;
        Pixel operator()(Pixel d) const { return fn(s, p, d, t); }
    };
    static Rop rop(const PaintState& state, uint32_t s, uint32_t p) {
        return {state.rop24, s, p, state.tagGraphicsWord};
    }

    // Blending, which replaces the raster operation: each channel of the ink
    // laid over D's, and the tag word of what paints.
    static Pixel blend(Pixel d, const BlendInk& ink, uint32_t tag) {
        return ink.channel(0, d & 0xFF) | ink.channel(1, (d >> 8) & 0xFF) << 8 |
               ink.channel(2, (d >> 16) & 0xFF) << 16 | tag;
    }
    static void blendRow(Pixel* at, int32_t n, const BlendInk& ink, uint32_t tag) {
        blendRowWords(at, n, ink, tag);
    }
    static bool blendBlock(Pixel* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink,
                           uint32_t tag) {
        return blendBlockWords(at, n, rows, stride, ink, tag);
    }
    static Pixel blendSample(Pixel d, Pixel p, BlendWeights w, uint32_t tag) {
        return blendWeighted(w, p & 0xFF, d & 0xFF) |
               blendWeighted(w, (p >> 8) & 0xFF, (d >> 8) & 0xFF) << 8 |
               blendWeighted(w, (p >> 16) & 0xFF, (d >> 16) & 0xFF) << 16 | tag;
    }
    static uint32_t channels(Pixel p) { return p & 0xFFFFFFu; }
};

} // namespace kryn
