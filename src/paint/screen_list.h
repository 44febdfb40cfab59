// The tile registry: every screen tile set on the current page, once each,
// in order of creation. Each new tile is defined to the band renderer (host
// page modes) and to the device's screen download table when it is
// registered; a tile set again finds its entry and costs one comparison walk.
// The registry, pixels included, is emptied at every page end.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

struct Engine;

namespace kryn {

struct PixelTile;

// Screen identifiers: bits 14-15 give the depth class, bits 0-13 a serial
// number that counts across classes within a page.
inline constexpr uint16_t TILE_CLASS_1BIT = 0x0000;  // depth 1 (and no tile)
inline constexpr uint16_t TILE_CLASS_8BIT = 0x4000;  // depth 8
inline constexpr uint16_t TILE_CLASS_ALPHA = 0x8000; // depths 124 and 254
inline constexpr uint16_t TILE_CLASS_24BIT = 0xC000; // depth 24
inline constexpr uint16_t TILE_CLASS_MASK = 0xC000;
inline constexpr uint16_t TILE_SERIAL_MASK = 0x3FFF;

uint16_t tileClass(uint32_t depth);

struct TileEntry {
    TileEntry* next;
    void* data; // the tile's pixels, owned by the entry; null for the empty entry
    int32_t width;
    int32_t height;
    int32_t bytesPerRow;
    uint32_t depth; // only the low byte counts
    uint16_t screenId;
};

// Finds or adds `tile` and makes its identifier the page's current
// screenId. A tile of depth 0 with no data stands for "no screen" (id 0).
// On KRYN_OK the registry owns the tile's pixels, and tile.data is replaced
// by the registry's copy (the pixels given are freed when an equal tile was
// already there). On failure nothing changed and the pixels stay with the
// caller: KRYN_ERR_NO_MEMORY when the entry, its renderer definition or its
// download entry cannot be allocated, or when the page already holds 16383
// distinct tiles (serial numbers would run into the class bits).
ResultCode registerTile(Engine* e, PixelTile& tile);

// Defines every registered tile to the engine's band renderer again, after
// the renderer was created or resized for a new colour space during the
// page. KRYN_ERR_NO_MEMORY leaves some tiles undefined (they then paint as
// if no screen were set).
ResultCode defineTilesToRenderer(Engine* e);

// Frees every entry with its pixels, drops the device definitions not yet
// sent, and clears the engine's list.
void releaseScreenList(Engine* e);

} // namespace kryn
