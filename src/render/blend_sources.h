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

// The two colours of a 1-bit screen at the alphas of its plan: the one
// colour where a cell bit is 1, the zero colour where it is 0 under opaque
// zeros only; a colour at alpha 0 paints nothing.
template <bool OPAQUE>
struct BitsInks {
    BitsInks(const BitsBlend& plan, uint32_t oneColour, uint32_t zeroColour, uint32_t tagWord)
        : one(blendInk(plan.alphaOne, oneColour)), zero(blendInk(plan.alphaZero, zeroColour)),
          paintOne(plan.alphaOne != 0), paintZero(OPAQUE && plan.alphaZero != 0), tag(tagWord) {}

    BlendInk one;
    BlendInk zero;
    bool paintOne;
    bool paintZero;
    uint32_t tag;
};

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

// Runs paint.template operator()<RULE>() for the state's tile rule: false
// (nothing run) when no alpha source is in play, true otherwise (nothing
// run under an alpha of 0).
template <class Paint>
bool withTileAlphaRule(const PaintState& state, Paint&& paint) {
    switch (tileAlphaRule(state)) {
    case TileAlphaRule::PLAIN:
        return false;
    case TileAlphaRule::NOTHING:
        return true;
    case TileAlphaRule::CONSTANT:
        paint.template operator()<TileAlphaRule::CONSTANT>();
        return true;
    case TileAlphaRule::KEYED:
        paint.template operator()<TileAlphaRule::KEYED>();
        return true;
    case TileAlphaRule::OWN:
        paint.template operator()<TileAlphaRule::OWN>();
        return true;
    case TileAlphaRule::OWN_CONSTANT:
        paint.template operator()<TileAlphaRule::OWN_CONSTANT>();
        return true;
    case TileAlphaRule::OWN_KEYED:
        paint.template operator()<TileAlphaRule::OWN_KEYED>();
        return true;
    }
    return true;
}

// The solid and 1-bit dispatch: false (nothing run) when the plan has no
// alpha source, true otherwise, having run paint() unless an alpha of 0 is
// in play.
template <class Plan, class Paint>
bool withBlendPlan(const Plan& plan, Paint&& paint) {
    if (plan.action == BlendAction::PLAIN) {
        return false;
    }
    if (plan.action == BlendAction::BLEND) {
        paint();
    }
    return true;
}

// Image members: the alpha of one image sample (channels `colour`, own
// alpha `own`, 255 for samples without alpha) under key 1 and the constant
// alpha, or NO_ALPHA_SOURCE for a sample of a format without alpha
// (OwnAlpha false) that no setting reaches and whose own alpha is 255: the
// blend member paints such a sample through the raster operation, as the
// plain member does. Formats with alpha in their samples always blend.
inline constexpr uint32_t NO_ALPHA_SOURCE = 0x100;

template <bool OwnAlpha>
uint32_t imageSampleAlpha(const PaintState& state, uint32_t colour, uint32_t own) {
    if (keyOneOn(state)) {
        if (insideKey(state.blendRangesB, colour, state.bitsPerPixel == 8)) {
            return mulAlpha(own, state.blendSelectB);
        }
    } else if (constantAlphaOn(state)) {
        return mulAlpha(own, state.blendSelect);
    }
    return OwnAlpha || own < ALPHA_OPAQUE ? own : NO_ALPHA_SOURCE;
}

} // namespace kryn
