// The image cache: small 1-bit bitmaps (glyphs) that a driver stores once
// and places again and again. The engine owns it: a table of slots made on
// the first store, each slot holding its entries newest first. A bitmap is
// turned into device orientation when it is stored, so placing it costs a
// point transformation, a clip test and the records of its band pieces,
// which point straight into the entry.
//
// Lifetime: entries are never freed while a page may hold records that
// point into them. At every page end (close or dispose, after playback)
// each slot keeps only its newest entry and the older ones are freed, so a
// driver that stores its glyphs once per job still prints them on the next
// page, and one that stores them again on every page does not grow memory
// page after page. Clearing a slot only marks it invalid. KRYNEnd frees
// everything.
#pragma once

#include "engine/result_codes.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// One stored bitmap; its device rows of (width + 7) / 8 bytes, most
// significant bit first, follow the header in the same allocation.
struct CacheEntry {
    CacheEntry* next = nullptr; // older entry of the slot
    uint32_t key = 0;           // the driver's own tag, not read by the engine
    float originX = 0.0f;       // device offset subtracted from the placement point
    float originY = 0.0f;
    uint16_t width = 0; // device pixels
    uint16_t height = 0;
    uint8_t blank = 0; // every bit 0: placing it paints nothing

    uint8_t* bitmap() { return reinterpret_cast<uint8_t*>(this + 1); }
};

struct CacheSlot {
    CacheEntry* newest = nullptr;
    uint16_t valid = 0; // 1 after a store, 0 after a clear
};

// The slot table: the header, then `slotCount` slots in one allocation.
struct ImageCache {
    uint32_t slotCount = 0;
    CacheSlot* slots = nullptr;
};

// Bitmaps larger than this on the device (after a scale) are refused.
inline constexpr int32_t MAX_CACHE_SIDE = 248;
inline constexpr int64_t MAX_CACHE_DEVICE_BYTES = int64_t{1} << 24;

ResultCode setImageCacheInfo(Engine* e, uint16_t slots);
ResultCode setImageCache(Engine* e, uint16_t key, int16_t width, int16_t height,
                         const uint8_t* bitmap, uint16_t slot);
ResultCode putImageCache(Engine* e, int32_t x, int32_t y, uint16_t slot);
ResultCode clearImageCache(Engine* e, uint16_t slot);

// Page end: every slot keeps its newest entry only.
void trimImageCache(Engine* e);

// KRYNEnd: every entry and the table.
void releaseImageCache(Engine* e);

} // namespace kryn
