#include "render/blend_sources.h"

namespace kryn {

namespace {

// The colour's second source, besides the constant alpha: with key 0 on,
// the key's alpha when the colour lies inside it (its own alpha byte does
// not count then); with key 0 off, its own alpha when below 255.
bool colourSource(const PaintState& state, int slot, uint32_t& alpha) {
    if (keyZeroOn(state)) {
        alpha = state.blendSelectA;
        return insideKey(state.blendRangesA, slotColour(state, slot), state.bitsPerPixel == 8);
    }
    alpha = slotAlpha(state, slot);
    return alpha < ALPHA_OPAQUE;
}

} // namespace

SolidBlend solidBlend(const PaintState& state, int slot) {
    uint32_t own = ALPHA_OPAQUE;
    const bool second = colourSource(state, slot, own);
    const bool constant = constantAlphaOn(state);
    if (!constant && !second) {
        return {BlendAction::PLAIN, 0};
    }
    const uint32_t alpha = constant && second ? mulAlpha(state.blendSelect, own)
                           : constant         ? state.blendSelect
                                              : own;
    // A source of alpha 0 paints nothing, whatever the product would say.
    if ((constant && state.blendSelect == 0) || (second && own == 0) || alpha == 0) {
        return {BlendAction::NOTHING, 0};
    }
    return {BlendAction::BLEND, alpha};
}

// The sources of both colours are counted together: the constant alpha
// counts 1, a colour's own alpha 16, a colour inside key 0 counts 2. One
// source in play (1, 2 or 16) blends; one colour's own or key alpha with
// the constant (3 or 17) blends with their product, while the other
// colour keeps the constant alone; anything else (both colours with a
// source of their own, or none at all) paints through the raster
// operation.
BitsBlend bitsBlend(const PaintState& state, bool opaqueZeros) {
    if (!opaqueZeros) {
        const SolidBlend one = solidBlend(state, SLOT_PAINT);
        return {one.action, one.alpha, ALPHA_OPAQUE};
    }
    const bool constant = constantAlphaOn(state);
    const uint32_t perColour = keyZeroOn(state) ? 2 : 16;
    uint32_t count = constant ? 1 : 0;
    uint32_t alphaOne = ALPHA_OPAQUE;
    uint32_t alphaZero = ALPHA_OPAQUE;
    const bool ownOne = colourSource(state, SLOT_PAINT, alphaOne);
    const bool ownZero = colourSource(state, SLOT_PAINT_BACK, alphaZero);
    if (!ownOne) {
        alphaOne = constant ? state.blendSelect : ALPHA_OPAQUE;
    }
    if (!ownZero) {
        alphaZero = constant ? state.blendSelect : ALPHA_OPAQUE;
    }
    count += (ownOne ? perColour : 0) + (ownZero ? perColour : 0);
    switch (count) {
    case 1:
    case 2:
    case 16:
        if (alphaOne == 0 || alphaZero == 0) {
            return {BlendAction::NOTHING, 0, 0};
        }
        return {BlendAction::BLEND, alphaOne, alphaZero};
    case 3:
    case 17:
        if (state.blendSelect == 0 || alphaOne == 0 || alphaZero == 0) {
            return {BlendAction::NOTHING, 0, 0};
        }
        if (ownOne) {
            alphaOne = mulAlpha(alphaOne, state.blendSelect);
        }
        if (ownZero) {
            alphaZero = mulAlpha(alphaZero, state.blendSelect);
        }
        // A product may still come to 0: that colour's pixels are left alone.
        return {BlendAction::BLEND, alphaOne, alphaZero};
    default:
        return {BlendAction::PLAIN, 0, 0};
    }
}

TileAlphaRule tileAlphaRule(const PaintState& state) {
    const bool constant = constantAlphaOn(state);
    if (state.tileAlpha != nullptr) {
        if (keyZeroOn(state)) {
            return TileAlphaRule::OWN_KEYED;
        }
        return constant ? TileAlphaRule::OWN_CONSTANT : TileAlphaRule::OWN;
    }
    if (keyZeroOn(state)) {
        return TileAlphaRule::KEYED;
    }
    if (!constant) {
        return TileAlphaRule::PLAIN;
    }
    return state.blendSelect == 0 ? TileAlphaRule::NOTHING : TileAlphaRule::CONSTANT;
}

} // namespace kryn
