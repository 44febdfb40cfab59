#include "paint/paint_setup.h"

#include "paint/colour_value.h"

namespace kryn {

uint32_t solidTone(ColourValue colour) {
    switch (colour & COLOUR_CHANNELS) {
    case 0:
        return TONE_ZERO;
    case COLOUR_CHANNELS:
        return TONE_ONE;
    default:
        return TONE_MIXED;
    }
}

uint32_t oneBitTileTone(ColourValue colour, ColourValue backColour, bool opaque, bool blendOn) {
    if (blendOn || (opaque && !sameChannels(colour, backColour))) {
        return TONE_MIXED;
    }
    return solidTone(colour);
}

void setupPaint(const GraphicsState& state, PaintDescriptor& paint) {
    paint.fillOpaque = state.tileOpaque;
    paint.screenCellHeight = state.screen.height;
    switch (state.screen.depth) {
    case TILE_DEPTH_1:
        paint.paintColour = state.colour;
        paint.paintBackColour = state.backColour;
        paint.paintTone = oneBitTileTone(state.colour, state.backColour, state.tileOpaque != 0,
                                         paint.blendOn != 0);
        break;
    case TILE_DEPTH_8:
    case TILE_DEPTH_24:
    case TILE_DEPTH_254:
        paint.paintTone = state.tileKind;
        break;
    default:
        paint.paintColour = state.colour;
        paint.paintTone = TONE_MIXED;
        break;
    }
}

uint32_t setEffectiveRop(uint32_t code, PaintDescriptor& paint, bool sourceUsed) {
    paint.logicalFunction2 = code;
    // Bit 4p + 2s + d of a code is its value for those operand bits. Without
    // a source, the S = 0 half (bits 0, 1, 4, 5) is copied over the S = 1
    // half; a fixed P keeps one nibble and copies it over the other.
    const uint32_t v = sourceUsed ? (code & 0xFF) : (code & 0x33) * 5;
    switch (paint.paintTone) {
    case TONE_ZERO:
        paint.logicalFunction = (v & 0x0F) * 0x11;
        break;
    case TONE_ONE:
        paint.logicalFunction = (v >> 4) * 0x11;
        break;
    default:
        paint.logicalFunction = v;
        break;
    }
    return paint.logicalFunction;
}

} // namespace kryn
