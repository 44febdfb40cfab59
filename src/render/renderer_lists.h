// The per-page lists the band renderer searches while it plays: screen
// tiles (by screen id) and image colour tables (by table id). Tile nodes
// are the renderer's, one allocation each, freed when the page's bands have
// been played. Colour tables belong to the page (image/image_table.h),
// since they must outlive a renderer resized or made during the page; the
// renderer borrows the page's list while it plays. Image samples belong to
// the page too (image/image_sources.h).
#pragma once

#include <cstdint>

namespace kryn {

struct RendererTile {
    RendererTile* next;
    uint16_t screenId;
    int32_t kind; // 0 none, 1 one bit per pixel, other values 8-bit or 32-bit samples
    int32_t width;
    int32_t height;
    const uint8_t* base; // tile rows, usually stored right after the node
    // Tiles whose pixels carry alpha: one alpha byte a pixel, rows of
    // `width` bytes, stored after the pixels; null for every other tile.
    const uint8_t* alpha = nullptr;
};

// A colour table: 256 entries whatever its length, those past its last
// index repeating the last entry, so that any 8-bit sample reads an entry.
struct RendererColourTable {
    RendererColourTable* next;
    uint16_t tableId;
    uint8_t lastIndex; // entries given - 1 (15 or 255)
    const uint32_t* entries;
};

void releaseTileList(RendererTile*& head);

} // namespace kryn
