// What the blend members of every family share for a screen tile of
// samples: the alpha each tile pixel takes under the band's TileAlphaRule
// (render/blend_sources.h) and its blend over a band pixel. Each rule is
// its own instantiation (see withTileAlphaRule), so that no per-pixel loop
// tests the rule.
#pragma once

#include "paint/blend_arithmetic.h"
#include "render/blend_sources.h"
#include "render/paint_state.h"

#include <cstdint>

namespace kryn {

// Tile pixels of raster format Pixels laid over the band under rule RULE;
// blended pixels of 32-bit rasters take `tag`.
template <class Pixels, TileAlphaRule RULE>
struct TileSampleBlend {
    using Pixel = typename Pixels::Pixel;

    TileSampleBlend(const PaintState& state, uint32_t pixelTag)
        : alphas(state.tileAlpha), constant(state.blendSelect), keyAlpha(state.blendSelectA),
          grey(state.bitsPerPixel == 8), tag(pixelTag) {
        for (int i = 0; i < 3; ++i) {
            ranges[i] = state.blendRangesA[i];
        }
    }

    // The own alphas of tile row r (a tile `width` pixels wide), or null
    // for a tile without them (every own alpha 255).
    const uint8_t* alphaRow(int32_t r, int32_t width) const {
        return alphas == nullptr ? nullptr : alphas + int64_t{r} * width;
    }
    static uint32_t ownAt(const uint8_t* alphaRow, int32_t c) {
        return alphaRow == nullptr ? ALPHA_OPAQUE : alphaRow[c];
    }

    // The alpha of tile pixel p whose own alpha (alpha tiles) is `own`.
    uint32_t alphaOf(Pixel p, uint32_t own) const {
        switch (RULE) {
        case TileAlphaRule::CONSTANT:
            return constant;
        case TileAlphaRule::KEYED:
            return insideKey(ranges, Pixels::channels(p), grey) ? keyAlpha : ALPHA_OPAQUE;
        case TileAlphaRule::OWN:
            return own;
        case TileAlphaRule::OWN_CONSTANT:
            return mulAlpha(own, constant);
        default: // OWN_KEYED
            return insideKey(ranges, Pixels::channels(p), grey) ? mulAlpha(own, keyAlpha) : own;
        }
    }

    // Tile pixel p of own alpha `own` laid over d; an alpha of 0 leaves d.
    void paint(Pixel& d, Pixel p, uint32_t own) {
        const uint32_t a = alphaOf(p, own);
        if (a != 0) {
            d = Pixels::blendSample(d, p, weights.of(a), tag);
        }
    }

    const uint8_t* alphas;
    uint32_t constant;
    uint32_t keyAlpha;
    uint16_t ranges[3];
    bool grey;
    uint32_t tag;
    WeightsCache weights;
};

} // namespace kryn
