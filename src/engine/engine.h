// The engine handle and the resources it owns for its whole life.
#pragma once

#include "kryn/kryn.h"
#include "transfer/output_stream.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;
struct BandInterpreters;
struct BaseClip;
struct DownloadNode;
struct GraphicsState;
struct ImageCache;
struct PageRecord;
struct TileEntry;

// Marks an unused band-group field.
inline constexpr uint16_t GROUP_UNSET = 0xFFFF;

struct RenderResources {
    int32_t mode = -1; // page mode of the open page
    DownloadNode* downloadA = nullptr;
    DownloadNode* downloadB = nullptr;
    DownloadNode* downloadC = nullptr;
    uint32_t downloadABytes = 0;
    uint32_t downloadBBytes = 0;
    uint32_t downloadCBytes = 0;
    OutputStream stream;
    uint32_t deviceLevel = 0;
    // Band-group bookkeeping; bandBase is subtracted from a band index before
    // host rendering.
    uint16_t bandBase = GROUP_UNSET;
    uint16_t groupIndex = GROUP_UNSET;
    uint16_t groupBands = GROUP_UNSET;
    uint16_t groupSpare = GROUP_UNSET;
    BandRenderer* renderer = nullptr; // created for host page modes
    void* rendererAux = nullptr;      // renderer-side buffer
    uint32_t colourSpace = 0;         // 0: 32-bit colour, 1: 8-bit grey
    uint8_t colourAttr[3] = {3, 1, 2};
    uint8_t rendered = 0;      // a band was played since the last list was created
    uint32_t quantization = 0; // 0, 300 or 600
    uint16_t alphaMode = 0;    // last KRYNAlphaBlend value
    // Band interpreters used by host playback. Points at the engine's own
    // table; tests substitute their own.
    const BandInterpreters* interpreters = nullptr;
};

struct PageSlot {
    GraphicsState* gstateTop;
    PageRecord* page;
};

} // namespace kryn

struct Engine {
    kryn::RenderResources* resources;
    int32_t pageWidth;  // width argument + 1
    int32_t pageHeight; // height argument + 1
    int32_t bandHeight;
    int32_t bandCount;
    kryn::ImageCache* imageCache;
    uint16_t imageCacheSlots;
    uint16_t imageCacheEnabled;
    kryn::TileEntry* screenList; // screens defined on the current page
    kryn::PageSlot* pageSlot;    // the open page; null when none
    uint16_t resolution;
    uint16_t nextBandCount; // band groups completed on the current page
    uint32_t deviceLevel;
    kryn::BaseClip* baseClip; // clip of the page or current band group
    uint16_t alphaUsed;
};

namespace kryn {

// The open page of an engine, or null.
inline PageRecord* openPage(const Engine* e) {
    return e->pageSlot == nullptr ? nullptr : e->pageSlot->page;
}

} // namespace kryn
