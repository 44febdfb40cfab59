#include "paint/screen_list.h"

#include "engine/engine.h"
#include "engine/memory.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"
#include "paint/tile_turning.h"
#include "render/band_renderer.h"
#include "render/tile_definitions.h"
#include "transfer/download_tables.h"

#include <cstring>

namespace kryn {

namespace {

// Pixels of two tiles of the same depth and size are equal: 1-bit and
// two-byte tiles byte for byte over their rows, 8-bit tiles over width x
// height bytes, four-byte tiles on their first three bytes only.
bool samePixels(const TileEntry& entry, const PixelTile& tile) {
    if (tile.data == nullptr || entry.data == nullptr) {
        return tile.data == entry.data;
    }
    const auto* a = static_cast<const uint8_t*>(entry.data);
    const uint8_t* b = tile.data;
    const int64_t pixels = int64_t{tile.width} * tile.height;
    switch (tile.depth) {
    case 1:
    case 254:
        return std::memcmp(a, b, size_t(int64_t{tile.bytesPerRow} * tile.height)) == 0;
    case 8:
        return std::memcmp(a, b, size_t(pixels)) == 0;
    default:
        for (int64_t i = 0; i < pixels * 4; i += 4) {
            if (a[i] != b[i] || a[i + 1] != b[i + 1] || a[i + 2] != b[i + 2]) {
                return false;
            }
        }
        return true;
    }
}

bool matches(const TileEntry& entry, const PixelTile& tile) {
    return entry.depth == tile.depth && entry.width == tile.width && entry.height == tile.height &&
           samePixels(entry, tile);
}

bool definesToRenderer(const Engine* e) {
    const RenderResources* resources = e->resources;
    return resources->renderer != nullptr && isValidPageMode(resources->mode) &&
           pageMode(resources->mode).hostRasters;
}

TileDefinition definitionOf(const TileEntry& entry) {
    return {static_cast<const uint8_t*>(entry.data), entry.width, entry.height,
            static_cast<uint8_t>(entry.depth), entry.screenId};
}

// Hands a new entry to the renderer and the device table; on failure
// neither keeps it.
ResultCode defineEntry(Engine* e, const TileEntry& entry) {
    if (entry.data == nullptr) {
        return KRYN_OK; // "no screen" needs no definition
    }
    RenderResources* resources = e->resources;
    const bool toRenderer = definesToRenderer(e);
    if (toRenderer) {
        const ResultCode r = defineRendererTile(resources->renderer, definitionOf(entry));
        if (failed(r)) {
            return r;
        }
    }
    const DownloadEntryB download{
        static_cast<uint16_t>(entry.width), static_cast<uint16_t>(entry.height), entry.screenId,
        static_cast<uint16_t>(entry.depth), static_cast<const uint8_t*>(entry.data)};
    const ResultCode r = addScreenDownload(resources, download);
    if (failed(r) && toRenderer) {
        removeLastRendererTile(resources->renderer);
    }
    return r;
}

void setCurrentScreenId(Engine* e, uint16_t id) {
    if (PageRecord* page = openPage(e)) {
        page->paint.screenId = id;
    }
}

} // namespace

uint16_t tileClass(uint32_t depth) {
    switch (depth & 0xFF) {
    case 8:
        return TILE_CLASS_8BIT;
    case 24:
        return TILE_CLASS_24BIT;
    case 124:
    case 254:
        return TILE_CLASS_ALPHA;
    default:
        return TILE_CLASS_1BIT;
    }
}

ResultCode registerTile(Engine* e, PixelTile& tile) {
    if (e->screenList != nullptr && tile.depth == 0 && tile.data == nullptr) {
        setCurrentScreenId(e, 0);
        return KRYN_OK;
    }
    TileEntry* tail = nullptr;
    for (TileEntry* entry = e->screenList; entry != nullptr; entry = entry->next) {
        if (matches(*entry, tile)) {
            if (tile.data != entry->data) {
                freeBytes(tile.data);
            }
            tile.data = static_cast<uint8_t*>(entry->data);
            setCurrentScreenId(e, entry->screenId);
            return KRYN_OK;
        }
        tail = entry;
    }
    // Serials count on from the newest entry across classes; the first is 1
    // for a 1-bit tile and 0 for the others.
    uint32_t serial = tile.depth == 1 ? 1u : 0u;
    if (tail != nullptr) {
        serial = (tail->screenId & TILE_SERIAL_MASK) + 1u;
        if (serial > TILE_SERIAL_MASK) {
            return KRYN_ERR_NO_MEMORY; // the page's identifiers are used up
        }
    }
    TileEntry* entry = createRecord<TileEntry>();
    if (entry == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    *entry =
        TileEntry{nullptr, tile.data, tile.width, tile.height, tile.bytesPerRow, tile.depth, 0};
    if (tile.depth != 0) {
        entry->screenId = static_cast<uint16_t>(tileClass(tile.depth) | serial);
    }
    const ResultCode r = defineEntry(e, *entry);
    if (failed(r)) {
        destroyRecord(entry);
        return r;
    }
    if (tail != nullptr) {
        tail->next = entry;
    } else {
        e->screenList = entry;
    }
    setCurrentScreenId(e, entry->screenId);
    return KRYN_OK;
}

ResultCode defineTilesToRenderer(Engine* e) {
    if (!definesToRenderer(e)) {
        return KRYN_OK;
    }
    for (const TileEntry* entry = e->screenList; entry != nullptr; entry = entry->next) {
        if (entry->data == nullptr) {
            continue;
        }
        const ResultCode r = defineRendererTile(e->resources->renderer, definitionOf(*entry));
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

void releaseScreenList(Engine* e) {
    TileEntry* entry = e->screenList;
    while (entry != nullptr) {
        TileEntry* next = entry->next;
        if (entry->data != nullptr) {
            freeBytes(entry->data);
        }
        destroyRecord(entry);
        entry = next;
    }
    e->screenList = nullptr;
    dropScreenDownloads(e->resources);
}

} // namespace kryn
