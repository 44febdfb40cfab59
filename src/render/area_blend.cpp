#include "render/area_blend.h"

#include "render/area_walk.h"
#include "render/blend_sources.h"
#include "render/raster_pixels.h"
#include "render/tile_sample_blend.h"
#include "render/tile_view.h"

#include <cstring>

namespace kryn {

namespace {

// Solid paint at one alpha: a pixel depends only on what it covers.
template <class Pixels>
struct BlendSolidPaint {
    using Pixel = typename Pixels::Pixel;

    BlendSolidPaint(const PaintState& state, uint32_t alpha, uint32_t colour)
        : ink(blendInk(alpha, colour)), tag(state.tagGraphicsWord) {}

    void blendRow(Pixel* at, int32_t n) const { Pixels::blendRow(at, n, ink, tag); }

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) const {
        blendRow(Pixels::row(state, y) + left, right - left + 1);
    }
    void listSpan(const PaintState& state, int32_t y, int32_t left, int32_t right) const {
        span(state, y, left, right);
    }

    // A pixel that held what the pixel above held becomes what that
    // became. Down columns where the pixels allow (see blendBlockWords),
    // else row by row: a row that equalled the row above (compared before
    // either is painted) is copied from it.
    void block(const PaintState& state, int32_t left, int32_t top, int32_t right,
               int32_t bottom) const {
        const int32_t n = right - left + 1;
        if (top == bottom) {
            blendRow(Pixels::row(state, top) + left, n);
            return;
        }
        if (Pixels::blendBlock(Pixels::row(state, top) + left, n, bottom - top + 1,
                               state.strideBytes, ink, tag)) {
            return;
        }
        const size_t bytes = static_cast<size_t>(n) * sizeof(Pixel);
        bool sameAsAbove = false;
        for (int32_t y = top; y <= bottom; ++y) {
            Pixel* row = Pixels::row(state, y) + left;
            const bool nextSame =
                y < bottom && std::memcmp(row, Pixels::row(state, y + 1) + left, bytes) == 0;
            if (sameAsAbove) {
                std::memcpy(row, Pixels::row(state, y - 1) + left, bytes);
            } else {
                blendRow(row, n);
            }
            sameAsAbove = nextSame;
        }
    }

    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) const {
        const int32_t step = state.strideBytes / static_cast<int32_t>(sizeof(Pixel));
        Pixel* at = Pixels::row(state, top) + x;
        Pixel last = *at;
        Pixel blended = Pixels::blend(last, ink, tag);
        for (int32_t y = top; y <= bottom; ++y, at += step) {
            if (*at != last) {
                last = *at;
                blended = Pixels::blend(last, ink, tag);
            }
            *at = blended;
        }
    }

    BlendInk ink;
    uint32_t tag;
};

// What the screened blends share: rectangles and list spans are rows.
template <class Self>
struct RowsPaint {
    void block(const PaintState& state, int32_t left, int32_t top, int32_t right, int32_t bottom) {
        for (int32_t y = top; y <= bottom; ++y) {
            static_cast<Self&>(*this).span(state, y, left, right);
        }
    }
    void listSpan(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        static_cast<Self&>(*this).span(state, y, left, right);
    }
};

// A 1-bit screen: one bits take the paint colour at its alpha, zero bits
// the paint back colour at its own (opaque zeros) or stay (transparent
// zeros). A colour at alpha 0 leaves its pixels alone.
template <class Pixels, bool OPAQUE>
struct BlendBitsPaint : RowsPaint<BlendBitsPaint<Pixels, OPAQUE>> {
    using Pixel = typename Pixels::Pixel;

    BlendBitsPaint(const PaintState& state, const BitsBlend& plan)
        : tile(state), inks(plan, slotColour(state, SLOT_PAINT), slotColour(state, SLOT_PAINT_BACK),
                            state.tagGraphicsWord) {}

    void paint(Pixel& d, bool bit) const {
        if (bit) {
            if (inks.paintOne) {
                d = Pixels::blend(d, inks.one, inks.tag);
            }
        } else if (inks.paintZero) {
            d = Pixels::blend(d, inks.zero, inks.tag);
        }
    }

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        Pixel* at = Pixels::row(state, y) + left;
        BitCursor bits(tile.row(y), tile.column(left), tile.rowBytes);
        for (int32_t i = 0, n = right - left + 1; i < n; ++i) {
            paint(at[i], bits.next());
        }
    }

    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) {
        const int32_t c = tile.column(x);
        const int32_t byteIndex = c >> 3;
        const uint32_t mask = 0x80u >> (c & 7);
        walkTileColumn<Pixel>(state, tile, x, top, bottom,
                              [&](Pixel& d, int32_t, const uint8_t* tileRow) {
                                  paint(d, (tileRow[byteIndex] & mask) != 0);
                              });
    }

    TileView tile;
    BitsInks<OPAQUE> inks;
};

// A tile of samples: each pixel at the alpha its rule gives.
template <class Pixels, TileAlphaRule RULE>
struct BlendTilePaint : RowsPaint<BlendTilePaint<Pixels, RULE>> {
    using Pixel = typename Pixels::Pixel;

    explicit BlendTilePaint(const PaintState& state)
        : tile(state), blend(state, state.tagGraphicsWord) {}

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        Pixel* at = Pixels::row(state, y) + left;
        const int32_t r = tile.rowIndex(y);
        const uint8_t* tileRow = tile.base + int64_t{r} * tile.rowBytes;
        const uint8_t* own = blend.alphaRow(r, tile.width);
        int32_t c = tile.column(left);
        for (int32_t i = 0, n = right - left + 1; i < n; ++i) {
            blend.paint(at[i], tileSample<Pixel>(tileRow, c), blend.ownAt(own, c));
            if (++c == tile.width) {
                c = 0;
            }
        }
    }

    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) {
        const int32_t c = tile.column(x);
        walkTileColumn<Pixel>(state, tile, x, top, bottom,
                              [&](Pixel& d, int32_t r, const uint8_t* tileRow) {
                                  blend.paint(d, tileSample<Pixel>(tileRow, c),
                                              blend.ownAt(blend.alphaRow(r, tile.width), c));
                              });
    }

    TileView tile;
    TileSampleBlend<Pixels, RULE> blend;
};

template <class Pixels, AreaGeometry G>
bool blendSolid(PaintState& state, const AreaOperand& operand) {
    const SolidBlend plan = solidBlend(state, SLOT_PAINT);
    return withBlendPlan(plan, [&] {
        BlendSolidPaint<Pixels> paint(state, plan.alpha, slotColour(state, SLOT_PAINT));
        walkArea<G>(state, operand, paint);
    });
}

template <class Pixels, bool OPAQUE, AreaGeometry G>
bool blendBits(PaintState& state, const AreaOperand& operand) {
    const BitsBlend plan = bitsBlend(state, OPAQUE);
    return withBlendPlan(plan, [&] {
        BlendBitsPaint<Pixels, OPAQUE> paint(state, plan);
        walkArea<G>(state, operand, paint);
    });
}

template <class Pixels, AreaGeometry G>
bool blendSamples(PaintState& state, const AreaOperand& operand) {
    return withTileAlphaRule(state, [&]<TileAlphaRule RULE>() {
        BlendTilePaint<Pixels, RULE> paint(state);
        walkArea<G>(state, operand, paint);
    });
}

} // namespace

template <class Pixels, ScreenMember M, AreaGeometry G>
bool blendArea(PaintState& state, const AreaOperand& operand) {
    if constexpr (M == SCREEN_SOLID) {
        return blendSolid<Pixels, G>(state, operand);
    } else {
        if (!tileUsable(state)) {
            return false; // the plain member paints nothing either
        }
        if constexpr (M == SCREEN_SAMPLES) {
            return blendSamples<Pixels, G>(state, operand);
        } else {
            return blendBits<Pixels, M == SCREEN_BITS_OPAQUE, G>(state, operand);
        }
    }
}

#define KRYN_BLEND_MEMBER(Pixels, M)                                                               \
    template bool blendArea<Pixels, M, AREA_RECT>(PaintState&, const AreaOperand&);                \
    template bool blendArea<Pixels, M, AREA_RECT_LIST>(PaintState&, const AreaOperand&);           \
    template bool blendArea<Pixels, M, AREA_SPAN_LIST>(PaintState&, const AreaOperand&);           \
    template bool blendArea<Pixels, M, AREA_ROW_SPANS>(PaintState&, const AreaOperand&);           \
    template bool blendArea<Pixels, M, AREA_COLUMN_RUNS>(PaintState&, const AreaOperand&);

KRYN_BLEND_MEMBER(GreyPixels, SCREEN_SOLID)
KRYN_BLEND_MEMBER(GreyPixels, SCREEN_BITS_TRANSPARENT)
KRYN_BLEND_MEMBER(GreyPixels, SCREEN_BITS_OPAQUE)
KRYN_BLEND_MEMBER(GreyPixels, SCREEN_SAMPLES)
KRYN_BLEND_MEMBER(ColourPixels, SCREEN_SOLID)
KRYN_BLEND_MEMBER(ColourPixels, SCREEN_BITS_TRANSPARENT)
KRYN_BLEND_MEMBER(ColourPixels, SCREEN_BITS_OPAQUE)
KRYN_BLEND_MEMBER(ColourPixels, SCREEN_SAMPLES)

#undef KRYN_BLEND_MEMBER

} // namespace kryn
