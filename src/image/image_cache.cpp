#include "image/image_cache.h"

#include "engine/graphics_state.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "image/bitmap_orientation.h"
#include "image/device_quad.h"
#include "image/mask_recorder.h"
#include "image/sample_image.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kryn {

namespace {

ImageCache* createSlotTable(uint32_t count) {
    const size_t bytes = sizeof(ImageCache) + size_t{count} * sizeof(CacheSlot);
    void* block = allocBytes(bytes, true);
    if (block == nullptr) {
        return nullptr;
    }
    auto* cache = ::new (block) ImageCache();
    cache->slotCount = count;
    cache->slots = reinterpret_cast<CacheSlot*>(cache + 1);
    for (uint32_t i = 0; i < count; ++i) {
        ::new (cache->slots + i) CacheSlot();
    }
    return cache;
}

void freeEntries(CacheEntry* entry) {
    while (entry != nullptr) {
        CacheEntry* next = entry->next;
        freeBytes(entry);
        entry = next;
    }
}

// Minus the device offset of the bitmap's top-left corner: the user
// rectangle 0..width, 0..height under the linear part.
void setOrigin(const Transform& t, int32_t width, int32_t height, CacheEntry& entry) {
    const double w = width;
    const double h = height;
    const double xs[4] = {0.0, t.a * w, t.c * h, t.a * w + t.c * h};
    const double ys[4] = {0.0, t.b * w, t.d * h, t.b * w + t.d * h};
    entry.originX = static_cast<float>(-*std::min_element(xs, xs + 4));
    entry.originY = static_cast<float>(-*std::min_element(ys, ys + 4));
}

bool allZero(const uint8_t* bytes, size_t n) {
    return std::all_of(bytes, bytes + n, [](uint8_t b) { return b == 0; });
}

// A new entry of `bytes` bitmap bytes, zero-filled; null when memory runs out.
CacheEntry* createEntry(size_t bytes) {
    void* block = allocBytes(sizeof(CacheEntry) + bytes, true);
    return block == nullptr ? nullptr : ::new (block) CacheEntry();
}

// Builds the entry of a width x height user bitmap (rows of (width + 7) / 8
// bytes) in device orientation under the state's linear part.
// KRYN_ERR_INVALID when it would be too large on the device (nothing is
// allocated), KRYN_ERR_NO_MEMORY when memory runs out.
ResultCode buildEntry(const Transform& t, int32_t width, int32_t height, const uint8_t* bitmap,
                      CacheEntry** out) {
    BitmapOrientation o;
    const BitmapFit fit = width < 1 || height < 1
                              ? BitmapFit::EMPTY
                              : orientBitmap(t.a, t.b, t.c, t.d, width, height, o);
    if (fit == BitmapFit::TOO_LARGE ||
        (fit == BitmapFit::FITS &&
         (o.pick.width > UINT16_MAX || o.pick.height > UINT16_MAX ||
          (o.pick.width + 7) / 8 * o.pick.height > MAX_CACHE_DEVICE_BYTES))) {
        return KRYN_ERR_INVALID;
    }
    if (fit == BitmapFit::EMPTY) {
        CacheEntry* entry = createEntry(0);
        if (entry == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        entry->blank = 1;
        *out = entry;
        return KRYN_OK;
    }
    const SampleImage given{bitmap, width, height, packedRowBytes(width, 1), 1};
    SampleBuffer turned;
    SampleImage device = given;
    if (!isIdentityPick(o) && failed(pickSamples(given, o.pick, turned, device))) {
        return KRYN_ERR_NO_MEMORY;
    }
    const size_t bytes = static_cast<size_t>(device.stride * device.height);
    CacheEntry* entry = createEntry(bytes);
    if (entry == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    std::memcpy(entry->bitmap(), device.data, bytes);
    entry->width = static_cast<uint16_t>(device.width);
    entry->height = static_cast<uint16_t>(device.height);
    entry->blank = allZero(entry->bitmap(), bytes) ? 1 : 0;
    setOrigin(t, width, height, *entry);
    *out = entry;
    return KRYN_OK;
}

} // namespace

ResultCode setImageCacheInfo(Engine* e, uint16_t slots) {
    if (e->imageCache == nullptr) {
        e->imageCacheSlots = slots;
        e->imageCacheEnabled = 1;
    }
    return KRYN_OK;
}

ResultCode setImageCache(Engine* e, uint16_t key, int16_t width, int16_t height,
                         const uint8_t* bitmap, uint16_t slot) {
    const GraphicsState* gs = currentState(e);
    if (gs == nullptr || bitmap == nullptr || width < 0 || height < 0 || width > MAX_CACHE_SIDE ||
        height > MAX_CACHE_SIDE || slot >= e->imageCacheSlots) {
        return KRYN_ERR_INVALID;
    }
    if (e->imageCacheEnabled == 0) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (e->imageCache == nullptr &&
        (e->imageCache = createSlotTable(e->imageCacheSlots)) == nullptr) {
        e->imageCacheEnabled = 0;
        return KRYN_ERR_NO_MEMORY;
    }
    CacheEntry* entry = nullptr;
    const ResultCode r = buildEntry(gs->transform, width, height, bitmap, &entry);
    if (r == KRYN_ERR_NO_MEMORY) {
        e->imageCacheEnabled = 0;
    }
    if (failed(r)) {
        return r;
    }
    CacheSlot& s = e->imageCache->slots[slot];
    entry->key = key;
    entry->next = s.newest;
    s.newest = entry;
    s.valid = 1;
    return KRYN_OK;
}

ResultCode putImageCache(Engine* e, int32_t x, int32_t y, uint16_t slot) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    const ImageCache* cache = e->imageCache;
    if (gs == nullptr || page == nullptr || cache == nullptr || slot >= cache->slotCount ||
        cache->slots[slot].valid == 0 || cache->slots[slot].newest == nullptr) {
        return KRYN_ERR_INVALID;
    }
    CacheEntry& entry = *cache->slots[slot].newest;
    if (entry.blank != 0) {
        return KRYN_OK;
    }
    const Transform& t = gs->transform;
    float point[2];
    t.transformPoint(static_cast<float>(x), static_cast<float>(y), point, t);
    const double left = double(point[0]) - entry.originX;
    const double top = double(point[1]) - entry.originY;
    DeviceQuad quad;
    quad.x[0] = quad.x[3] = left;
    quad.x[1] = quad.x[2] = left + entry.width;
    quad.y[0] = quad.y[1] = top;
    quad.y[2] = quad.y[3] = top + entry.height;
    const ClipRegion& clip = gs->clip.current;
    if (quadMissesClip(quad, clip) || page->pageQuarterTurns == -1) {
        return KRYN_OK;
    }
    MaskPlacement mask;
    mask.page = page;
    mask.bits = entry.bitmap();
    mask.width = entry.width;
    mask.height = entry.height;
    mask.stride = (entry.width + 7) / 8;
    const DevicePixel at = devicePosition(quad, page->pageQuarterTurns);
    mask.deviceX = at.x;
    mask.deviceY = at.y;
    return paintMaskQuad(*gs, mask, quad);
}

ResultCode clearImageCache(Engine* e, uint16_t slot) {
    const uint32_t slots = e->imageCache != nullptr ? e->imageCache->slotCount : e->imageCacheSlots;
    if (slot >= slots) {
        return KRYN_ERR_INVALID;
    }
    if (e->imageCache != nullptr) {
        e->imageCache->slots[slot].valid = 0;
    }
    return KRYN_OK;
}

void trimImageCache(Engine* e) {
    ImageCache* cache = e->imageCache;
    if (cache == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < cache->slotCount; ++i) {
        CacheEntry* newest = cache->slots[i].newest;
        if (newest != nullptr) {
            freeEntries(newest->next);
            newest->next = nullptr;
        }
    }
}

void releaseImageCache(Engine* e) {
    ImageCache* cache = e->imageCache;
    if (cache == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < cache->slotCount; ++i) {
        freeEntries(cache->slots[i].newest);
    }
    freeBytes(cache);
    e->imageCache = nullptr;
}

} // namespace kryn
