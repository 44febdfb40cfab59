// The screened members of the area families: P comes from the screen tile
// selected by the band's screen record instead of the paint colour.
//
//  - SCREEN_BITS_TRANSPARENT: a 1-bit tile; pixels under one bits take the
//    paint colour, pixels under zero bits are left alone.
//  - SCREEN_BITS_OPAQUE: a 1-bit tile; zero bits take the paint back colour.
//  - SCREEN_SAMPLES: a tile of raster pixels (bytes on 8-bit rasters, words
//    on 32-bit rasters); each pixel's P is the tile's value there.
//
// The tile repeats over the page from its origin: band row y reads tile row
// (y + screen phase) mod tile height, column x reads tile column x mod tile
// width. Each member is its own routine, so no per-pixel loop tests the
// screen kind; the tile column advances with a wrap compare, never a
// division.
#pragma once

#include "render/area_operand.h"
#include "render/paint_state.h"

namespace kryn {

template <class Pixels, ScreenMember M, AreaGeometry G>
void paintScreened(PaintState& state, const AreaOperand& operand);

} // namespace kryn
