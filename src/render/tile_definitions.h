// Screen tiles as the band renderer keeps them: in its raster's own pixel
// format, so that the screened members read one tile value per pixel
// without converting. 1-bit tiles are shared with the tile registry; 8-bit
// rasters take colour tiles reduced to their first channel, 32-bit rasters
// take 8-bit tiles widened to grey words. Tiles whose pixels carry alpha
// (depths 124 and 254) also get their alphas as a plane of bytes, which the
// blending members read beside the pixels.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;

// Kinds of a renderer tile.
inline constexpr int32_t RENDERER_TILE_BITS = 1;   // one bit a pixel, rows of whole words
inline constexpr int32_t RENDERER_TILE_BYTES = 8;  // one byte a pixel (8-bit rasters)
inline constexpr int32_t RENDERER_TILE_WORDS = 32; // one 0x00BBGGRR word a pixel (32-bit rasters)

// A registered tile: packed rows of its depth (1: bits, 8: bytes, 24 and
// 124: four bytes, 254: two bytes a pixel). The data must outlive the
// renderer's page lists.
struct TileDefinition {
    const uint8_t* data;
    int32_t width;
    int32_t height;
    uint8_t depth;
    uint16_t screenId;
};

// Appends the tile to the renderer's tile list. KRYN_ERR_NO_MEMORY leaves
// the list unchanged.
ResultCode defineRendererTile(BandRenderer* renderer, const TileDefinition& tile);

// Takes back the tile defined last (when what should go with it failed).
void removeLastRendererTile(BandRenderer* renderer);

} // namespace kryn
