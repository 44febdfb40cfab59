// The blend families of the area geometries: what the interpreter calls
// instead of the plain member while the band's blending is on. Each
// dispatcher works out the alpha sources of the record's paint
// (render/blend_sources.h) and then
//
//  - answers false when no source is in play: the caller paints the record
//    through the plain member and the raster operation;
//  - answers true having painted nothing when an alpha of 0 is in play;
//  - otherwise lays the paint over the band with blendChannel and answers
//    true. Blended pixels of 32-bit rasters take the graphics tag.
//
// Members by screen: solid (the paint colour), 1-bit with transparent and
// with opaque zeros (each colour at its own alpha), and tiles of samples,
// one member per TileAlphaRule (colour tiles at the constant alpha or by
// key 0; alpha tiles by their own alpha, times the constant or by key 0).
// Each is its own instantiation of the geometry walk, so no per-pixel loop
// tests the rule. Solid blends take whole rows sixteen bytes at a time
// (render/blend_rows.h), and a rectangle's row that held the same pixels as
// the row above is copied from it once that one is painted.
#pragma once

#include "render/area_operand.h"
#include "render/paint_state.h"

namespace kryn {

template <class Pixels, ScreenMember M, AreaGeometry G>
bool blendArea(PaintState& state, const AreaOperand& operand);

} // namespace kryn
