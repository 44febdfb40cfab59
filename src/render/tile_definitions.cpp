#include "render/tile_definitions.h"

#include "engine/memory.h"
#include "render/band_renderer.h"
#include "render/renderer_lists.h"

#include <cstring>

namespace kryn {

namespace {

static_assert(sizeof(RendererTile) % 4 == 0, "converted words follow the node header");

// Bytes between two pixels of a colour tile's packed rows.
int32_t pixelBytes(uint8_t depth) {
    switch (depth) {
    case 8:
        return 1;
    case 254:
        return 2;
    default:
        return 4;
    }
}

// The grey value of a pixel: channel 0 of colour pixels, the first byte of
// two-byte pixels (their second byte is alpha, which goes to the alpha
// plane that only blending reads).
void toBytes(const TileDefinition& tile, uint8_t* out) {
    const int32_t step = pixelBytes(tile.depth);
    const int64_t pixels = int64_t{tile.width} * tile.height;
    for (int64_t i = 0; i < pixels; ++i) {
        out[i] = tile.data[i * step];
    }
}

void toWords(const TileDefinition& tile, uint32_t* out) {
    const int32_t step = pixelBytes(tile.depth);
    const int64_t pixels = int64_t{tile.width} * tile.height;
    for (int64_t i = 0; i < pixels; ++i) {
        const uint32_t grey = tile.data[i * step];
        out[i] = grey * 0x010101u;
    }
}

// Pixels that carry alpha: four-byte pixels in their last byte, two-byte
// pixels in their second.
bool carriesAlpha(uint8_t depth) {
    return depth == 124 || depth == 254;
}

void toAlpha(const TileDefinition& tile, uint8_t* out) {
    const int32_t step = pixelBytes(tile.depth);
    const int64_t pixels = int64_t{tile.width} * tile.height;
    for (int64_t i = 0; i < pixels; ++i) {
        out[i] = tile.data[i * step + step - 1];
    }
}

} // namespace

ResultCode defineRendererTile(BandRenderer* renderer, const TileDefinition& tile) {
    const bool grey = renderer->greyRaster != 0;
    const int64_t pixels = int64_t{tile.width} * tile.height;
    int32_t kind = RENDERER_TILE_BITS;
    size_t copyBytes = 0;  // pixels converted into the node, after its header
    size_t alphaBytes = 0; // then the alpha plane
    if (tile.depth != 1) {
        kind = grey ? RENDERER_TILE_BYTES : RENDERER_TILE_WORDS;
        const bool sameFormat = grey ? tile.depth == 8 : (tile.depth == 24 || tile.depth == 124);
        if (!sameFormat) {
            copyBytes = size_t(pixels) * (grey ? 1u : 4u);
        }
        if (carriesAlpha(tile.depth)) {
            alphaBytes = size_t(pixels);
        }
    }
    auto* node =
        static_cast<RendererTile*>(allocBytes(sizeof(RendererTile) + copyBytes + alphaBytes));
    if (node == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    *node = RendererTile{nullptr, tile.screenId, kind, tile.width, tile.height, tile.data};
    auto* pixelsAt = reinterpret_cast<uint8_t*>(node + 1);
    if (copyBytes != 0) {
        if (grey) {
            toBytes(tile, pixelsAt);
        } else {
            toWords(tile, reinterpret_cast<uint32_t*>(pixelsAt));
        }
        node->base = pixelsAt;
    }
    if (alphaBytes != 0) {
        toAlpha(tile, pixelsAt + copyBytes);
        node->alpha = pixelsAt + copyBytes;
    }
    RendererTile** tail = &renderer->tileList;
    while (*tail != nullptr) {
        tail = &(*tail)->next;
    }
    *tail = node;
    return KRYN_OK;
}

void removeLastRendererTile(BandRenderer* renderer) {
    RendererTile** last = &renderer->tileList;
    while (*last != nullptr && (*last)->next != nullptr) {
        last = &(*last)->next;
    }
    freeAndClear(*last);
}

} // namespace kryn
