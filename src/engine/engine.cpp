#include "engine/engine_lifecycle.h"

#include "engine/memory.h"
#include "engine/page_lifecycle.h"
#include "image/image_cache.h"
#include "render/band_interpreters.h"
#include "render/band_renderer.h"
#include "transfer/download_tables.h"
#include "transfer/stream_io.h"

namespace kryn {

namespace {

RenderResources* createRenderResources(uint32_t deviceLevel) {
    RenderResources* resources = createRecord<RenderResources>(true);
    if (resources == nullptr) {
        return nullptr;
    }
    auto* buffer = static_cast<uint8_t*>(allocBytes(STREAM_BUFFER_SIZE));
    if (buffer == nullptr) {
        destroyRecord(resources);
        return nullptr;
    }
    resources->deviceLevel = deviceLevel;
    resources->stream.buffer = buffer;
    resources->stream.capacity = STREAM_BUFFER_SIZE;
    resources->stream.writePointer = buffer;
    resources->interpreters = defaultBandInterpreters();
    return resources;
}

void releaseRenderResources(RenderResources* resources) {
    freeDownloadTables(resources);
    if (resources->stream.used != 0) {
        streamFlush(resources->stream, STREAM_END_OF_CHUNK);
    }
    freeAndClear(resources->rendererAux);
    freeAndClear(resources->stream.buffer);
    if (resources->renderer != nullptr) {
        destroyBandRenderer(resources->renderer);
    }
    destroyRecord(resources);
}

} // namespace

Engine* createEngine(int32_t width, int32_t height, int16_t bandHeight, uint16_t resolution,
                     uint16_t deviceLevel) {
    if (width < 1 || height < 1 || bandHeight < 1 || bandHeight > MAX_BAND_HEIGHT ||
        width > MAX_PAGE_WIDTH_ARGUMENT || height > MAX_PAGE_HEIGHT_ARGUMENT) {
        return nullptr;
    }
    const int32_t pageHeight = height + 1;
    // Rounded-up division without the overflow of pageHeight + bandHeight - 1.
    const int32_t bandCount = pageHeight / bandHeight + (pageHeight % bandHeight != 0 ? 1 : 0);
    if (bandCount > MAX_BAND_COUNT) {
        return nullptr;
    }
    Engine* e = createRecord<Engine>();
    if (e == nullptr) {
        return nullptr;
    }
    RenderResources* resources = createRenderResources(deviceLevel);
    if (resources == nullptr) {
        destroyRecord(e);
        return nullptr;
    }
    e->resources = resources;
    e->pageWidth = width + 1;
    e->pageHeight = pageHeight;
    e->bandHeight = bandHeight;
    e->bandCount = bandCount;
    e->imageCache = nullptr;
    e->imageCacheSlots = 32;
    e->imageCacheEnabled = 1;
    e->screenList = nullptr;
    e->pageSlot = nullptr;
    e->resolution = resolution;
    e->nextBandCount = 0;
    e->deviceLevel = deviceLevel;
    e->baseClip = nullptr;
    e->alphaUsed = 0;
    return e;
}

void destroyEngine(Engine* e) {
    if (e->pageSlot != nullptr) {
        disposePage(e);
    }
    releaseImageCache(e);
    releaseRenderResources(e->resources);
    destroyRecord(e);
}

} // namespace kryn
