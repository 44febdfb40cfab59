// The renderers' view of the band being played and of the drawing state the
// band's state records have set so far. Set up at every band start, then
// changed only by state records.
#pragma once

#include "paint/rop_table.h"
#include "render/dirty_box.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;
struct RendererColourTable;

// How the area renderers paint under the current raster operation: the
// three codes with fast paths, and every other code through its routine.
enum RopMode : uint8_t { ROP_MODE_COPY, ROP_MODE_XOR, ROP_MODE_WHITE, ROP_MODE_GENERIC };

// Which member of a family paints under the current screen.
enum ScreenMember : uint8_t {
    SCREEN_SOLID,            // no screen
    SCREEN_BITS_TRANSPARENT, // 1-bit screen, pixels under 0-bits unchanged
    SCREEN_BITS_OPAQUE,      // 1-bit screen, 0-bits in the paint back colour
    SCREEN_SAMPLES,          // 8-bit or 32-bit tile values
    SCREEN_MEMBER_COUNT
};

// Colour slots.
enum : int { SLOT_IMAGE = 0, SLOT_IMAGE_BACK = 1, SLOT_PAINT = 2, SLOT_PAINT_BACK = 3 };

struct PaintState {
    // Raster view.
    uint8_t* raster;
    int32_t width;
    int32_t height;
    int32_t strideBytes;
    int32_t bitsPerPixel; // 8 or 32
    int32_t bytesPerPixel;

    // Screen tile; kind 0 paints solid.
    const uint8_t* tileBase;
    int32_t tileWidth;
    int32_t tileHeight;
    int32_t tileStride;   // 1-bit tiles: bytes a row (words on 32-bit rasters); else pixels
    int32_t tileRowBytes; // bytes from one tile row to the next
    int32_t tileKind;     // 0 none, 1 one bit a pixel, else one raster pixel a tile pixel
    int32_t screenPhaseX; // always 0
    int32_t screenPhaseY;
    const uint8_t* tileAlpha; // tiles whose pixels carry alpha: a byte a pixel; else null

    uint8_t imageOpaque; // 0-bits of 1-bit images take the image back colour
    uint8_t fillOpaque;  // 0-bits of 1-bit screens take the paint back colour
    ScreenMember screenMember;

    uint32_t scaleX; // 16.16, 0x10000 unless the record sets them
    uint32_t scaleY;

    // 8-bit rasters: the grey byte in bits 0-7; 32-bit rasters: 0x00BBGGRR.
    uint32_t colour[4];
    // 32-bit rasters: the colour with its alpha byte on top (defaults 0,
    // 0xFFFFFF, 0, 0xFFFFFF: the band mirrors' starting values, alpha 0);
    // 8-bit rasters: the alpha byte (default 0), the grey being colour[].
    uint32_t colourAlpha[4];

    uint32_t xPhase;
    uint32_t yPhase;
    uint32_t bitPhase;
    const RendererColourTable* colourTable;

    DirtyBox* box;      // the renderer's box
    DirtyBox secondBox; // merged into the renderer's box at delivery

    uint8_t ropCode;
    uint8_t rop2Code;
    RopMode ropMode;
    RopFn8 rop8;
    RopFn8 rop8Second;
    RopFn24 rop24;
    RopFn24 rop24Second;

    uint32_t tagImageWord;
    uint32_t tagGraphicsWord;
    uint32_t tagBitmapWord;

    // Blend settings; 8-bit rasters read only the first range of each key.
    uint16_t blendOn;
    uint8_t blendSelect;
    uint8_t blendSelectA;
    uint8_t blendSelectB;
    uint16_t blendRangesA[3]; // low byte minimum, high byte maximum
    uint16_t blendRangesB[3];

    uint32_t quantization; // 0, 300 or 600: block flattening of images

    // Work memory of the image renderers: the renderer's expand buffer, or
    // the band's 768-byte scratch block.
    uint8_t* expandBuffer;
    uint8_t* scratch;
};

// Band start: the state every band begins with, over the renderer's raster.
// `grey` selects the 8-bit layout (also for monochrome bands of colour pages).
void initPaintState(PaintState& state, BandRenderer& renderer, bool grey);

// Raster-op records: routine, fast-path mode.
void setPaintRop(PaintState& state, uint8_t code);
void setPaintRop2(PaintState& state, uint8_t code);

// Recomputes the screen member after a screen or opaque-flag change.
void updateScreenMember(PaintState& state);

// The paint colour is white (all three bytes on 32-bit rasters).
inline bool paintIsWhite(const PaintState& state) {
    return state.bitsPerPixel == 8 ? (state.colour[SLOT_PAINT] & 0xFF) == 0xFF
                                   : (state.colour[SLOT_PAINT] & 0xFFFFFF) == 0xFFFFFF;
}

} // namespace kryn
