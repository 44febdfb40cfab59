#include "engine/page_lifecycle.h"

#include "engine/graphics_state.h"
#include "engine/memory.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"
#include "image/image_cache.h"
#include "paint/screen_list.h"
#include "render/band_renderer.h"

namespace kryn {

namespace {

// Frees what the page and engine hold for the open page, once its bands are
// played or abandoned: screens, renderer page data, bands, regions, the page
// itself, its slot, the base clip and the image cache's older entries.
void releasePage(Engine* e) {
    PageSlot* slot = e->pageSlot;
    PageRecord* page = slot->page;
    releaseScreenList(e);
    if (e->resources->renderer != nullptr) {
        releaseRendererPageLists(e->resources->renderer);
    }
    destroyPageRecord(page);
    destroyRecord(slot);
    e->pageSlot = nullptr;
    freeAndClear(e->baseClip);
    // No record points into the image cache any more: older entries go.
    trimImageCache(e);
}

} // namespace

ResultCode newPage(Engine* e, int32_t mode) {
    if (!isValidPageMode(mode) || e->pageSlot != nullptr) {
        return KRYN_ERR_INVALID;
    }
    PageSlot* slot = createRecord<PageSlot>();
    if (slot == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    PageRecord* page = nullptr;
    const ResultCode r = createPageRecord(e, mode, &page);
    if (failed(r)) {
        destroyRecord(slot);
        return r;
    }
    GraphicsState* state = createFirstGraphicsState(e, page);
    if (state == nullptr) {
        destroyPageRecord(page);
        destroyRecord(slot);
        return KRYN_ERR_NO_MEMORY;
    }
    slot->gstateTop = state;
    slot->page = page;
    e->pageSlot = slot;
    e->nextBandCount = 0;
    RenderResources* resources = e->resources;
    resources->bandBase = 0;
    resources->groupIndex = 0;
    resources->groupBands = static_cast<uint16_t>(page->bandCount);
    resources->groupSpare = GROUP_UNSET;
    e->alphaUsed = 0;
    return KRYN_OK;
}

ResultCode closePage(Engine* e, OutputCallback callback, uintptr_t context) {
    PageSlot* slot = e->pageSlot;
    if (slot == nullptr) {
        return KRYN_ERR_INVALID;
    }
    releaseGraphicsStack(slot->gstateTop, slot->page);
    slot->gstateTop = nullptr;
    playPage(e, slot->page, callback, context);
    releasePage(e);
    return KRYN_OK;
}

ResultCode disposePage(Engine* e) {
    PageSlot* slot = e->pageSlot;
    if (slot == nullptr) {
        return KRYN_ERR_INVALID;
    }
    releaseGraphicsStack(slot->gstateTop, slot->page);
    slot->gstateTop = nullptr;
    releasePage(e);
    return KRYN_OK;
}

ResultCode setReverseSide(Engine* e) {
    PageRecord* page = openPage(e);
    if (page == nullptr || pageMode(static_cast<int32_t>(page->mode)).bandGroups) {
        return KRYN_ERR_INVALID;
    }
    page->reverseOrder = 1;
    return KRYN_OK;
}

ResultCode getPageInfo(const Engine* e, uint16_t out[6]) {
    const PageRecord* page = openPage(e);
    if (page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    const bool grey = page->colourSpace == 1;
    const uint32_t width = static_cast<uint32_t>(e->pageWidth);
    const uint32_t rowBytes = ((grey ? width : width * 4u) + 7u) & ~7u;
    out[0] = static_cast<uint16_t>(rowBytes);
    out[1] = static_cast<uint16_t>(e->bandCount);
    out[2] = static_cast<uint16_t>(e->pageWidth);
    out[3] = static_cast<uint16_t>(e->pageHeight);
    out[4] = 0;
    out[5] = 0;
    if (page->reverseOrder != 0) {
        // Rows the last band reaches below the page, and the raster columns
        // right of the page, as a 16-bit driver computes them.
        out[4] = static_cast<uint16_t>(e->bandHeight * e->bandCount - e->pageHeight + 1);
        const uint32_t rowPixels = grey ? rowBytes : rowBytes / 4u;
        out[5] = static_cast<uint16_t>(rowPixels - width + 1u);
    }
    return KRYN_OK;
}

} // namespace kryn
