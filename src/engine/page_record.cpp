#include "engine/page_record.h"

#include "displaylist/display_list.h"
#include "engine/memory.h"
#include "engine/page_mode.h"
#include "engine/page_resources.h"
#include "image/image_sources.h"
#include "image/image_table.h"
#include "stroke/pen_circle.h"

#include <algorithm>

namespace kryn {

namespace {

// Size hint for the renderer: (pageWidth - 1) x bandHeight x 4, saturated.
uint32_t rasterSizeHint(const PageRecord* page) {
    const uint64_t bytes =
        static_cast<uint64_t>(page->pageWidth - 1) * static_cast<uint64_t>(page->bandHeight) * 4u;
    return static_cast<uint32_t>(std::min<uint64_t>(bytes, UINT32_MAX));
}

} // namespace

ResultCode createPageRecord(Engine* e, int32_t mode, PageRecord** out) {
    const int32_t bandCount = e->bandCount + (pageMode(mode).extraBandEntry ? 1 : 0);
    const size_t bytes = sizeof(PageRecord) + sizeof(BandEntry) * static_cast<size_t>(bandCount);
    void* storage = allocBytes(bytes);
    if (storage == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    PageRecord* page = ::new (storage) PageRecord();
    page->resources = e->resources;
    page->engine = e;
    page->mode = static_cast<uint32_t>(mode);
    page->pageWidth = e->pageWidth;
    page->pageHeight = e->pageHeight;
    page->bandHeight = e->bandHeight;
    page->bandCount = bandCount;
    page->resolution = e->resolution;
    page->deviceLevel = e->deviceLevel;
    page->bands = reinterpret_cast<BandEntry*>(page + 1);
    for (int32_t i = 0; i < bandCount; ++i) {
        BandEntry* band = ::new (&page->bands[i]) BandEntry();
        band->bandTop = i * e->bandHeight;
    }
    ResultCode r = openScanState(&page->scan, -1, e->bandHeight);
    if (!failed(r)) {
        r = preparePageResources(e->resources, e->pageWidth, e->bandHeight, mode);
    }
    if (failed(r)) {
        closeScanState(&page->scan);
        freeBytes(page);
        return r;
    }
    *out = page;
    return KRYN_OK;
}

void destroyPageRecord(PageRecord* page) {
    for (int32_t i = 0; i < page->bandCount; ++i) {
        releaseBand(&page->bands[i]);
    }
    freeAndClear(page->clipRegionHold);
    freeAndClear(page->regionHold);
    releasePathPool(page->pathPool);
    releasePens(page->penCircles);
    releaseImageSources(page);
    releasePageColourTables(page);
    closeScanState(&page->scan);
    freeBytes(page);
}

ResultCode getBandList(PageRecord* page, int32_t bandIndex, DisplayList** out) {
    BandEntry& band = page->bands[bandIndex];
    if (band.list == nullptr) {
        DisplayList* list = createDisplayList(
            static_cast<uint32_t>(page->pageWidth), static_cast<uint16_t>(page->bandHeight),
            static_cast<uint16_t>(bandIndex), rasterSizeHint(page), page->resources);
        if (list == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        band.list = list;
        page->dirty.include(bandIndex);
    }
    *out = band.list;
    return KRYN_OK;
}

BandRange bandsWithLists(const PageRecord& page, int32_t lastBand) {
    BandRange range = page.dirty;
    if (lastBand >= 0 && lastBand < page.bandCount && page.bands[lastBand].list != nullptr) {
        range.include(lastBand);
    }
    return range;
}

void resetBand(BandEntry* band) {
    freeAndClear(band->bandRegion);
    freeAndClear(band->runBuffer);
    freeAndClear(band->columnRunBuffer);
    freeAndClear(band->rectBuffer);
    // A flushed band starts its mirrors again, except the band's position,
    // its monochrome flag and the blending mirrors. The image phases start
    // again with the new list, as host playback starts every list at 0.
    const BandEntry kept = *band;
    *band = BandEntry();
    band->bandTop = kept.bandTop;
    band->bandMonochrome = kept.bandMonochrome;
    band->lastBlendOn = kept.lastBlendOn;
    band->lastBlendSelect = kept.lastBlendSelect;
    band->lastBlendSelectA = kept.lastBlendSelectA;
    band->lastBlendSelectB = kept.lastBlendSelectB;
    std::copy_n(kept.lastBlendDataA, 3, band->lastBlendDataA);
    std::copy_n(kept.lastBlendDataB, 3, band->lastBlendDataB);
    band->lastBlendImageColour = kept.lastBlendImageColour;
    band->lastBlendImageBackColour = kept.lastBlendImageBackColour;
    band->lastBlendPaintColour = kept.lastBlendPaintColour;
    band->lastBlendPaintBackColour = kept.lastBlendPaintBackColour;
}

void releaseBand(BandEntry* band) {
    if (band->list != nullptr) {
        freeDisplayList(band->list);
        band->list = nullptr;
    }
    resetBand(band);
}

} // namespace kryn
