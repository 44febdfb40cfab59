#include "render/paint_state.h"

#include "paint/rop_codes.h"
#include "render/band_renderer.h"

namespace kryn {

void setPaintRop(PaintState& state, uint8_t code) {
    state.ropCode = code;
    state.rop8 = ropFn8(code);
    state.rop24 = ropFn24(code);
    switch (code) {
    case ROP_PATTERN:
        state.ropMode = ROP_MODE_COPY;
        break;
    case ROP_PATTERN_XOR:
        state.ropMode = ROP_MODE_XOR;
        break;
    case ROP_WHITENESS:
        state.ropMode = ROP_MODE_WHITE;
        break;
    default:
        state.ropMode = ROP_MODE_GENERIC;
        break;
    }
}

void setPaintRop2(PaintState& state, uint8_t code) {
    state.rop2Code = code;
    state.rop8Second = ropFn8(code);
    state.rop24Second = ropFn24(code);
}

void updateScreenMember(PaintState& state) {
    if (state.tileKind == 0) {
        state.screenMember = SCREEN_SOLID;
    } else if (state.tileKind == 1) {
        state.screenMember = state.fillOpaque != 0 ? SCREEN_BITS_OPAQUE : SCREEN_BITS_TRANSPARENT;
    } else {
        state.screenMember = SCREEN_SAMPLES;
    }
}

void initPaintState(PaintState& state, BandRenderer& renderer, bool grey) {
    state = PaintState{};
    state.raster = renderer.raster;
    state.width = renderer.width;
    state.height = renderer.height;
    state.strideBytes = renderer.strideWords * 4;
    state.bitsPerPixel = grey ? 8 : 32;
    state.bytesPerPixel = grey ? 1 : 4;
    state.imageOpaque = 1;
    state.fillOpaque = 1;
    state.scaleX = 0x10000;
    state.scaleY = 0x10000;
    const uint32_t white = grey ? 0xFFu : 0xFFFFFFu;
    state.colour[SLOT_IMAGE] = 0;
    state.colour[SLOT_IMAGE_BACK] = white;
    state.colour[SLOT_PAINT] = 0;
    state.colour[SLOT_PAINT_BACK] = white;
    if (!grey) {
        state.colourAlpha[SLOT_IMAGE_BACK] = white;
        state.colourAlpha[SLOT_PAINT_BACK] = white;
    }
    state.box = &renderer.box;
    resetDirtyBox(state.secondBox, renderer.width, renderer.height);
    setPaintRop(state, 0xA8);
    setPaintRop2(state, 0xA8);
    if (!grey) {
        state.tagImageWord = renderer.tagImageWord;
        state.tagGraphicsWord = renderer.tagGraphicsWord;
        state.tagBitmapWord = renderer.tagBitmapWord;
    }
    for (int i = 0; i < 3; ++i) {
        state.blendRangesA[i] = 0xFF00; // low 0, high 255
        state.blendRangesB[i] = 0xFF00;
    }
    state.blendSelectA = 255;
    state.blendSelectB = 255;
    state.blendSelect = 255;
    state.expandBuffer = renderer.expandBuffer;
    updateScreenMember(state);
}

} // namespace kryn
