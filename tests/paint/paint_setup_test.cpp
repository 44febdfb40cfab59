// Paint setup: tones, the descriptor fields by tile depth, and the reduced
// logical function.
#include "paint/paint_setup.h"

#include "paint/rop_codes.h"
#include "paint/rop_table.h"

#include "paint/rop_test_support.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr uint32_t SENTINEL = 0x5EC0DE;

PaintDescriptor sentinelDescriptor() {
    PaintDescriptor paint;
    paint.paintColour = SENTINEL;
    paint.paintBackColour = SENTINEL;
    paint.paintTone = 7;
    return paint;
}

GraphicsState tiledState(uint8_t depth, int32_t height) {
    GraphicsState state;
    static const uint8_t pixels[4] = {};
    state.screen = ScreenTile{pixels, 8, height, 4, depth};
    return state;
}

TEST(PaintSetup, SolidToneIsExtremeOnlyWhenAllThreeChannelsAre) {
    EXPECT_EQ(solidTone(0x000000), TONE_ZERO);
    EXPECT_EQ(solidTone(0xFFFFFF), TONE_ONE);
    EXPECT_EQ(solidTone(0xFF00FF), TONE_MIXED); // every channel extreme, not grey
    EXPECT_EQ(solidTone(0x808080), TONE_MIXED);
    EXPECT_EQ(solidTone(0xFF000000), TONE_ZERO); // alpha does not count
    EXPECT_EQ(solidTone(0x12FFFFFF), TONE_ONE);
}

TEST(PaintSetup, UntiledPaintCopiesTheColourAndIsMixedEvenForBlackAndWhite) {
    for (uint32_t colour : {0x000000u, 0xFFFFFFu, 0x808080u}) {
        GraphicsState state;
        state.colour = colour;
        state.tileOpaque = 0;
        PaintDescriptor paint = sentinelDescriptor();
        setupPaint(state, paint);
        EXPECT_EQ(paint.paintColour, colour);
        EXPECT_EQ(paint.paintBackColour, SENTINEL);
        EXPECT_EQ(paint.paintTone, TONE_MIXED);
        EXPECT_EQ(paint.fillOpaque, 0);
        EXPECT_EQ(paint.screenCellHeight, 0);
    }
}

TEST(PaintSetup, UntiledBlackIsMixedYetItsReducedDefaultCodePaintsWhatZeroWould) {
    GraphicsState state; // black paint, default code 0xA8, no tile
    PaintDescriptor paint;
    setupPaint(state, paint);
    ASSERT_EQ(paint.paintTone, TONE_MIXED);
    ASSERT_EQ(setEffectiveRop(state.logicalFunction, paint, false), 0xA0u);
    // P is the black paint colour; S is whatever the renderer passes.
    for (Operands o : everyBitCombination(3)) {
        EXPECT_EQ(ropFn8(0xA0)(o.s, paint.paintColour, o.d), ropFn8(0x00)(o.s, 0, o.d));
        EXPECT_EQ(ropFn24(0xA0)(o.s, paint.paintColour, o.d, 0x24000000),
                  ropFn24(0x00)(o.s, 0, o.d, 0x24000000));
    }
}

TEST(PaintSetup, OneBitTileToneByColoursOpacityAndBlending) {
    struct Case {
        uint32_t colour, backColour;
        uint16_t opaque;
        uint8_t blendOn;
        uint32_t tone;
    } cases[] = {
        {0x000000, 0xFFFFFF, 1, 0, TONE_MIXED}, // opaque black on white
        {0x000000, 0x000000, 1, 0, TONE_ZERO},     {0xFFFFFF, 0xFFFFFF, 1, 0, TONE_ONE},
        {0x12000000, 0x34000000, 1, 0, TONE_ZERO}, // alpha bytes differ
        {0x808080, 0x808080, 1, 0, TONE_MIXED},    {0xFF00FF, 0xFF00FF, 1, 0, TONE_MIXED},
        {0x000000, 0xFFFFFF, 0, 0, TONE_ZERO}, // transparent: the zero bits paint nothing
        {0xFFFFFF, 0x000000, 0, 0, TONE_ONE},      {0xFF00FF, 0xFFFFFF, 0, 0, TONE_MIXED},
        {0x000000, 0x000000, 1, 1, TONE_MIXED}, // blending
        {0xFFFFFF, 0xFFFFFF, 0, 1, TONE_MIXED},
    };
    for (const Case& c : cases) {
        GraphicsState state = tiledState(1, 16);
        state.colour = c.colour;
        state.backColour = c.backColour;
        state.tileOpaque = c.opaque;
        PaintDescriptor paint = sentinelDescriptor();
        paint.blendOn = c.blendOn;
        setupPaint(state, paint);
        EXPECT_EQ(paint.paintTone, c.tone) << std::hex << c.colour << " on " << c.backColour
                                           << " opaque " << c.opaque << " blend " << +c.blendOn;
        EXPECT_EQ(paint.paintColour, c.colour);
        EXPECT_EQ(paint.paintBackColour, c.backColour);
        EXPECT_EQ(paint.fillOpaque, c.opaque);
        EXPECT_EQ(paint.screenCellHeight, 16);
    }
}

TEST(PaintSetup, ColourTilesTakeTheirToneFromTileKindAndLeaveTheColours) {
    for (uint8_t depth : {uint8_t{8}, uint8_t{24}, uint8_t{254}}) {
        for (uint32_t kind : {TONE_ZERO, TONE_ONE, TONE_MIXED}) {
            GraphicsState state = tiledState(depth, 5);
            state.tileKind = kind;
            state.colour = 0x123456;
            PaintDescriptor paint = sentinelDescriptor();
            setupPaint(state, paint);
            EXPECT_EQ(paint.paintTone, kind) << +depth;
            EXPECT_EQ(paint.paintColour, SENTINEL);
            EXPECT_EQ(paint.paintBackColour, SENTINEL);
            EXPECT_EQ(paint.screenCellHeight, 5);
            EXPECT_EQ(paint.fillOpaque, 1);
        }
    }
    // The alpha tile paints with the colour, like an untiled paint.
    GraphicsState state = tiledState(124, 5);
    state.tileKind = TONE_ZERO;
    state.colour = 0x123456;
    PaintDescriptor paint = sentinelDescriptor();
    setupPaint(state, paint);
    EXPECT_EQ(paint.paintTone, TONE_MIXED);
    EXPECT_EQ(paint.paintColour, 0x123456u);
}

TEST(EffectiveRop, DefaultCodeByTone) {
    const struct {
        uint32_t tone, reduced;
    } cases[] = {{TONE_ZERO, 0x00}, {TONE_ONE, 0xAA}, {TONE_MIXED, 0xA0}};
    for (const auto& c : cases) {
        PaintDescriptor paint;
        paint.paintTone = c.tone;
        EXPECT_EQ(setEffectiveRop(0xA8, paint, false), c.reduced);
        EXPECT_EQ(paint.logicalFunction, c.reduced);
        EXPECT_EQ(paint.logicalFunction2, 0xA8u);
    }
}

TEST(EffectiveRop, SourceXorDestinationWithoutASourcePaintsNothingForAnyTone) {
    for (uint32_t tone : {TONE_ZERO, TONE_ONE, TONE_MIXED}) {
        PaintDescriptor paint;
        paint.paintTone = tone;
        EXPECT_EQ(setEffectiveRop(0x66, paint, false), uint32_t{ROP_DESTINATION});
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
