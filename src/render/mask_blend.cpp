// The blend members of the mask family: the mask's set bits laid over the
// band with partial coverage instead of being stored, with the alpha of
// the paint they take (render/blend_sources.h). Pixels of 32-bit rasters
// take the bitmap tag.
#include "render/blend_sources.h"
#include "render/mask_members.h"
#include "render/mask_tiles.h"
#include "render/mask_walk.h"
#include "render/raster_pixels.h"
#include "render/tile_sample_blend.h"

namespace kryn {

namespace {

// One colour at one alpha under every set bit; runs go sixteen bytes at a
// time.
template <class Pixels>
struct BlendSolidMask {
    using Pixel = typename Pixels::Pixel;
    static constexpr bool GROUPS_ONLY = false;
    BlendSolidMask(const PaintState& state, uint32_t alpha)
        : ink(blendInk(alpha, slotColour(state, SLOT_IMAGE))), tag(state.tagBitmapWord) {}

    void beginRow(const PaintState&, int32_t, int32_t) {}
    void run(Pixel* at, int32_t, int32_t n) { Pixels::blendRow(at, n, ink, tag); }
    void group(Pixel* at, int32_t, uint32_t bits, int32_t) {
        forEachSetBit(bits, [&](int b) { at[b] = Pixels::blend(at[b], ink, tag); });
    }

    BlendInk ink;
    uint32_t tag;
};

// A 1-bit screen: the mask colour at its alpha where the cell's bit is 1,
// the back colour at its own where it is 0 (opaque cells); a colour at
// alpha 0 leaves its pixels alone.
template <class Pixels, bool OPAQUE>
struct BlendBitsMask {
    using Pixel = typename Pixels::Pixel;
    static constexpr bool GROUPS_ONLY = false;
    BlendBitsMask(const PaintState& state, const BitsBlend& plan)
        : tile(state), inks(plan, slotColour(state, SLOT_IMAGE), slotColour(state, SLOT_PAINT_BACK),
                            state.tagBitmapWord) {}

    void beginRow(const PaintState&, int32_t y, int32_t left) { tile.beginRow(y, left); }
    void group(Pixel* at, int32_t x, uint32_t bits, int32_t) {
        const uint32_t cell = tile.bitsAt(x);
        if (inks.paintOne) {
            forEachSetBit(bits & cell,
                          [&](int b) { at[b] = Pixels::blend(at[b], inks.one, inks.tag); });
        }
        if (inks.paintZero) {
            forEachSetBit(bits & ~cell,
                          [&](int b) { at[b] = Pixels::blend(at[b], inks.zero, inks.tag); });
        }
    }
    void run(Pixel* at, int32_t x, int32_t n) {
        runAsGroups(n, [&](int32_t i, uint32_t bits, int32_t m) { group(at + i, x + i, bits, m); });
    }

    MaskBitTile tile;
    BitsInks<OPAQUE> inks;
};

// A tile of samples: each tile pixel at the alpha of its rule.
template <class Pixels, TileAlphaRule RULE>
struct BlendSamplesMask {
    using Pixel = typename Pixels::Pixel;
    static constexpr bool GROUPS_ONLY = false;
    explicit BlendSamplesMask(const PaintState& state)
        : tile(state), blend(state, state.tagBitmapWord) {}

    void paint(Pixel& d, int32_t c) { blend.paint(d, tile.sample(c), blend.ownAt(alphaRow, c)); }

    void beginRow(const PaintState&, int32_t y, int32_t left) {
        tile.beginRow(y, left);
        alphaRow = blend.alphaRow(tile.rowIndex, tile.tile.width);
    }
    void run(Pixel* at, int32_t x, int32_t n) {
        tile.each(x, n, [&](int32_t i, int32_t c) { paint(at[i], c); });
    }
    void group(Pixel* at, int32_t x, uint32_t bits, int32_t) {
        tile.atBits(x, bits, [&](int b, int32_t c) { paint(at[b], c); });
    }

    MaskSampleTile<Pixel> tile;
    TileSampleBlend<Pixels, RULE> blend;
    const uint8_t* alphaRow = nullptr;
};

template <class Paint, class... Args>
void blendWith(PaintState& state, const ImageOperand& operand, Args&&... args) {
    Paint paint(state, args...);
    walkMask<typename Paint::Pixel>(state, operand, paint);
}

template <class Pixels>
bool blendSolid(PaintState& state, const ImageOperand& operand) {
    const SolidBlend plan = solidBlend(state, SLOT_IMAGE);
    return withBlendPlan(plan,
                         [&] { blendWith<BlendSolidMask<Pixels>>(state, operand, plan.alpha); });
}

template <class Pixels, bool OPAQUE>
bool blendBits(PaintState& state, const ImageOperand& operand) {
    const BitsBlend plan = bitsBlend(state, OPAQUE);
    return withBlendPlan(plan,
                         [&] { blendWith<BlendBitsMask<Pixels, OPAQUE>>(state, operand, plan); });
}

template <class Pixels>
bool blendSamples(PaintState& state, const ImageOperand& operand) {
    return withTileAlphaRule(state, [&]<TileAlphaRule RULE>() {
        blendWith<BlendSamplesMask<Pixels, RULE>>(state, operand);
    });
}

// The two members: 1-bit screens with transparent zeros, and every other
// case (solid, opaque 1-bit screens, tiles of samples).
template <class Pixels>
bool blendMask(PaintState& state, const ImageOperand& operand) {
    if (state.screenMember == SCREEN_SOLID) {
        return blendSolid<Pixels>(state, operand);
    }
    if (!tileUsable(state)) {
        return false; // the plain member paints nothing either
    }
    switch (state.screenMember) {
    case SCREEN_BITS_TRANSPARENT:
        return blendBits<Pixels, false>(state, operand);
    case SCREEN_BITS_OPAQUE:
        return blendBits<Pixels, true>(state, operand);
    default:
        return blendSamples<Pixels>(state, operand);
    }
}

} // namespace

bool blendMaskGrey(PaintState& state, const ImageOperand& operand) {
    return blendMask<GreyPixels>(state, operand);
}

bool blendMaskColour(PaintState& state, const ImageOperand& operand) {
    return blendMask<ColourPixels>(state, operand);
}

} // namespace kryn
