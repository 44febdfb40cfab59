// Paint setup: the tone of a paint by tile depth, colours, opacity and
// blending, the descriptor fields it fills, and the reduced logical
// function, checked against the truth table of every code.
#include "paint/paint_setup.h"

#include "paint/rop_codes.h"
#include "paint/rop_table.h"

#include "paint/rop_test_support.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr uint32_t SENTINEL = 0x5EC0DE;

TEST(PaintSetup, SolidToneIsExtremeOnlyWhenAllThreeChannelsAre) {
    const struct {
        uint32_t colour, tone;
    } cases[] = {{0x000000, TONE_ZERO},  {0xFFFFFF, TONE_ONE},    {0xFF00FF, TONE_MIXED},
                 {0x808080, TONE_MIXED}, {0xFF000000, TONE_ZERO}, {0x12FFFFFF, TONE_ONE}};
    for (const auto& c : cases) {
        EXPECT_EQ(solidTone(c.colour), c.tone) << std::hex << c.colour; // alpha does not count
    }
}

// Untiled paint and 1-bit tiles take their tone from the colours; untiled
// paint is mixed even in black or white (its reduced codes paint the same).
TEST(PaintSetup, ToneByTileColoursOpacityAndBlending) {
    const struct {
        uint8_t depth; // 0: no tile
        uint32_t colour, backColour;
        uint16_t opaque;
        uint8_t blendOn;
        uint32_t tone;
    } cases[] = {
        {0, 0x000000, 0x000000, 0, 0, TONE_MIXED},    {0, 0xFFFFFF, 0xFFFFFF, 1, 0, TONE_MIXED},
        {1, 0x000000, 0xFFFFFF, 1, 0, TONE_MIXED}, // opaque black on white
        {1, 0x000000, 0x000000, 1, 0, TONE_ZERO},     {1, 0xFFFFFF, 0xFFFFFF, 1, 0, TONE_ONE},
        {1, 0x12000000, 0x34000000, 1, 0, TONE_ZERO}, // alpha bytes differ
        {1, 0x808080, 0x808080, 1, 0, TONE_MIXED},    {1, 0xFF00FF, 0xFF00FF, 1, 0, TONE_MIXED},
        {1, 0x000000, 0xFFFFFF, 0, 0, TONE_ZERO}, // transparent: the zero bits paint nothing
        {1, 0xFFFFFF, 0x000000, 0, 0, TONE_ONE},      {1, 0xFF00FF, 0xFFFFFF, 0, 0, TONE_MIXED},
        {1, 0x000000, 0x000000, 1, 1, TONE_MIXED}, // blending
        {1, 0xFFFFFF, 0xFFFFFF, 0, 1, TONE_MIXED},
    };
    static const uint8_t pixels[4] = {};
    for (const auto& c : cases) {
        GraphicsState state;
        if (c.depth != 0) {
            state.screen = ScreenTile{pixels, 8, 16, 4, c.depth};
        }
        state.colour = c.colour;
        state.backColour = c.backColour;
        state.tileOpaque = c.opaque;
        PaintDescriptor paint;
        paint.paintBackColour = SENTINEL;
        paint.blendOn = c.blendOn;
        setupPaint(state, paint);
        EXPECT_EQ(paint.paintTone, c.tone) << std::hex << c.colour << " on " << c.backColour
                                           << " opaque " << c.opaque << " blend " << +c.blendOn;
        EXPECT_EQ(paint.paintColour, c.colour);
        EXPECT_EQ(paint.paintBackColour, c.depth != 0 ? c.backColour : SENTINEL);
        EXPECT_EQ(paint.fillOpaque, c.opaque);
        EXPECT_EQ(paint.screenCellHeight, c.depth != 0 ? 16 : 0);
    }
}

TEST(PaintSetup, ColourTilesTakeTheirToneFromTileKindAndLeaveTheColours) {
    static const uint8_t pixels[4] = {};
    for (uint8_t depth : {uint8_t{8}, uint8_t{24}, uint8_t{254}, uint8_t{124}}) {
        for (uint32_t kind : {TONE_ZERO, TONE_ONE, TONE_MIXED}) {
            GraphicsState state;
            state.screen = ScreenTile{pixels, 8, 5, 4, depth};
            state.tileKind = kind;
            state.colour = 0x123456;
            PaintDescriptor paint;
            paint.paintColour = SENTINEL;
            setupPaint(state, paint);
            // The alpha tile (124) paints with the colour, like an untiled paint.
            EXPECT_EQ(paint.paintTone, depth == 124 ? TONE_MIXED : kind) << +depth;
            EXPECT_EQ(paint.paintColour, depth == 124 ? 0x123456u : SENTINEL);
            EXPECT_EQ(paint.screenCellHeight, 5);
            EXPECT_EQ(paint.fillOpaque, 1);
        }
    }
}

// For every code and tone the reduced code gives, for any operands, what the
// original gives with S all zero (no source) and P at the tone's value.
TEST(EffectiveRop, ReducedCodePaintsWhatTheCodeDoesWithTheFixedOperands) {
    const uint32_t toneP[] = {0x00, 0xFF, 0};
    for (uint32_t code = 0; code < 256; ++code) {
        for (uint32_t tone : {TONE_ZERO, TONE_ONE, TONE_MIXED}) {
            for (bool sourceUsed : {false, true}) {
                PaintDescriptor paint;
                paint.paintTone = tone;
                const uint32_t reduced = setEffectiveRop(code, paint, sourceUsed);
                ASSERT_LT(reduced, 256u);
                ASSERT_EQ(paint.logicalFunction, reduced);
                for (Operands o : everyBitCombination(1)) {
                    const uint32_t s = sourceUsed ? o.s : 0;
                    const uint32_t p = tone == TONE_MIXED ? o.p : toneP[tone];
                    ASSERT_EQ(referenceRop(reduced, o.s, o.p, o.d, 8),
                              referenceRop(code, s, p, o.d, 8))
                        << std::hex << "code " << code << " tone " << tone;
                }
                if (tone == TONE_MIXED && sourceUsed) {
                    EXPECT_EQ(reduced, code);
                }
            }
        }
    }
}

} // namespace
} // namespace kryn::test
