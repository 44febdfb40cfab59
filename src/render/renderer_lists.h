// The per-page lists the band renderer searches while it plays: screen
// tiles (by screen id), image colour tables (by table id) and the image
// sample buffers that the page's image records point into. Each node is one
// allocation that the renderer frees when the page's bands have been played;
// an image buffer node also owns its sample buffer.
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

struct RendererColourTable {
    RendererColourTable* next;
    uint16_t tableId;
    const uint32_t* entries;
};

struct RendererImageBuffer {
    RendererImageBuffer* next;
    void* samples; // owned: freed with the node
};

void releaseTileList(RendererTile*& head);
void releaseColourTableList(RendererColourTable*& head);
void releaseImageBufferList(RendererImageBuffer*& head);

} // namespace kryn
