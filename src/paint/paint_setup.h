// Paint setup: before a painting call records anything, it condenses the
// current graphics state into the page's PaintDescriptor (setupPaint) and
// then reduces its logical function for that paint (setEffectiveRop).
#pragma once

#include "engine/graphics_state.h"
#include "kryn/kryn.h"
#include "paint/paint_descriptor.h"

#include <cstdint>

namespace kryn {

// Depth codes of a screen tile.
inline constexpr uint8_t TILE_DEPTH_1 = 1;     // one bit per pixel: a halftone cell
inline constexpr uint8_t TILE_DEPTH_8 = 8;     // one byte per pixel
inline constexpr uint8_t TILE_DEPTH_24 = 24;   // four-byte colour pixels
inline constexpr uint8_t TILE_DEPTH_124 = 124; // four-byte pixels with alpha
inline constexpr uint8_t TILE_DEPTH_254 = 254; // two-byte pixels

// Tone of a solid colour: TONE_ZERO for black, TONE_ONE for white,
// TONE_MIXED for anything else. Alpha does not count.
uint32_t solidTone(ColourValue colour);

// Tone of a 1-bit tile whose one bits paint `colour` and whose zero bits
// paint `backColour` when the tile is opaque (and nothing otherwise). Always
// TONE_MIXED while blending is on.
uint32_t oneBitTileTone(ColourValue colour, ColourValue backColour, bool opaque, bool blendOn);

// Fills fillOpaque, screenCellHeight, paintColour, paintBackColour and
// paintTone from the state:
//  - 1-bit tile: both colours, the tone of oneBitTileTone;
//  - 8-, 24- and two-byte tiles: the tile's pixels are the pattern; the tone
//    is the tile's tileKind and the colours are left as they are;
//  - no tile, and any other depth (the alpha tile 124 included):
//    paintColour = colour and TONE_MIXED, even for black or white: the
//    reduced code then paints the same pixels that a tone-specific one would.
// Reads the descriptor's blendOn.
void setupPaint(const GraphicsState& state, PaintDescriptor& paint);

// Stores `code` (0..255) as logicalFunction2 and the code reduced for this
// paint as logicalFunction, and returns the reduced code. Without a source
// (sourceUsed false) S is taken as all zero bits; a TONE_ZERO or TONE_ONE
// paint fixes P at all zero or all one bits. ROP_DESTINATION (0xAA) means
// the paint changes nothing. Runs after setupPaint, whose tone it reads.
uint32_t setEffectiveRop(uint32_t code, PaintDescriptor& paint, bool sourceUsed);

} // namespace kryn
