// Where the alpha of what a blending renderer paints comes from, worked out
// from the band's copies of the page's blend settings (records 183 to 190):
// the constant alpha (blendSelect below 255), key 0 (blendSelectA below
// 255, for paint and tiles), key 1 (blendSelectB, for images) and the own
// alpha of colours and tile pixels. The dispatch rules:
//
//   no source                  -> the plain member, through the raster operation
//   a source of alpha 0        -> nothing is painted
//   one source                 -> blend with its alpha
//   two sources                -> blend with their product (mulAlpha)
//
// 8-bit rasters compare channel 0 with the first range of a key only.
#pragma once

#include "paint/blend_arithmetic.h"
#include "render/paint_state.h"

#include <cstdint>

namespace kryn {

// What a record's paint does under the blend settings.
enum class BlendAction : uint8_t {
    PLAIN,   // no source: paint through the raster operation
    NOTHING, // an alpha of 0: leave the band as it is
    BLEND,   // blend with the alphas given
};

inline bool constantAlphaOn(const PaintState& state) {
    return state.blendSelect < ALPHA_OPAQUE;
}
inline bool keyZeroOn(const PaintState& state) {
    return state.blendSelectA < ALPHA_OPAQUE;
}
inline bool keyOneOn(const PaintState& state) {
    return state.blendSelectB < ALPHA_OPAQUE;
}

// A colour slot as the blend members read it: 0x00BBGGRR on 32-bit rasters,
// the grey byte on 8-bit rasters; and its own alpha byte.
inline uint32_t slotColour(const PaintState& state, int slot) {
    return state.bitsPerPixel == 8 ? state.colour[slot] & 0xFF : state.colourAlpha[slot] & 0xFFFFFF;
}
inline uint32_t slotAlpha(const PaintState& state, int slot) {
    return state.bitsPerPixel == 8 ? state.colourAlpha[slot] & 0xFF : state.colourAlpha[slot] >> 24;
}

// Channels 0, 1 and 2 of `colour` (0x00BBGGRR; a grey byte on 8-bit
// rasters, which test channel 0 only) lie inside a key's ranges (low byte
// minimum, high byte maximum, inclusive).
inline bool insideKey(const uint16_t ranges[3], uint32_t colour, bool grey) {
    const int channels = grey ? 1 : 3;
    for (int c = 0; c < channels; ++c) {
        const uint32_t v = (colour >> (8 * c)) & 0xFF;
        if (v < (ranges[c] & 0xFFu) || v > (ranges[c] >> 8)) {
            return false;
        }
    }
    return true;
}

// Solid paint: the colour of `slot`.
struct SolidBlend {
    BlendAction action;
    uint32_t alpha;
};
SolidBlend solidBlend(const PaintState& state, int slot);

// A 1-bit screen: one bits in the paint colour, zero bits in the paint back
// colour (opaque zeros; transparent zeros leave the band alone and the back
// colour takes no part).
struct BitsBlend {
    BlendAction action;
    uint32_t alphaOne;
    uint32_t alphaZero;
};
BitsBlend bitsBlend(const PaintState& state, bool opaqueZeros);

// A tile of samples: how each tile pixel finds its alpha.
enum class TileAlphaRule : uint8_t {
    PLAIN,        // colour tile, no constant alpha, key 0 off
    NOTHING,      // colour tile under a constant alpha of 0
    CONSTANT,     // colour tile: every pixel at the constant alpha
    KEYED,        // colour tile, key 0 on: inside the key at its alpha, else opaque
    OWN,          // alpha tile: each pixel at its own alpha
    OWN_CONSTANT, // alpha tile: its own alpha times the constant
    OWN_KEYED,    // alpha tile, key 0 on: inside the key its alpha times the key's
};
TileAlphaRule tileAlphaRule(const PaintState& state);

// Image members: the alpha of one image sample (channels `colour`, own
// alpha `own`, 255 for samples without alpha) under key 1 and the constant
// alpha. 255 paints the sample opaque; the image's blend member blends
// with blendChannel, and an image whose samples all answer 255 without any
// setting in play is the plain member's (the dispatch is the same as for
// areas).
inline uint32_t imageSampleAlpha(const PaintState& state, uint32_t colour, uint32_t own) {
    if (keyOneOn(state)) {
        return insideKey(state.blendRangesB, colour, state.bitsPerPixel == 8)
                   ? mulAlpha(own, state.blendSelectB)
                   : own;
    }
    return constantAlphaOn(state) ? mulAlpha(own, state.blendSelect) : own;
}

} // namespace kryn
