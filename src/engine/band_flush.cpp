// KRYNNextBand: sending finished bands to the device and moving the band
// group down the page.
#include "displaylist/display_list.h"
#include "engine/device_level.h"
#include "engine/page_lifecycle.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"
#include "scan/page_clip.h"
#include "transfer/serialiser.h"

#include <algorithm>

namespace kryn {

namespace {

// Ends, sends and frees one band's list.
void flushBand(Engine* e, PageRecord* page, int32_t index, OutputCallback callback,
               uintptr_t context) {
    BandEntry& band = page->bands[index];
    appendEndRecord(band.list);
    serialiseBand(callback, context, static_cast<uint16_t>(index), band.list, e->resources);
    freeDisplayListBlocks(band.list);
    band.list = nullptr;
    resetBand(&band);
}

} // namespace

ResultCode nextBand(Engine* e, uint32_t bandsPerGroup, OutputCallback callback, uintptr_t context) {
    PageRecord* page = openPage(e);
    if (page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    RenderResources* resources = e->resources;
    const bool groups = pageMode(static_cast<int32_t>(page->mode)).bandGroups;
    const int32_t lastBand = e->bandCount - 1; // never sent here: page close ends it
    const BandRange range = groups ? page->group : page->dirty;
    const int32_t first = range.first;
    const int32_t last = groups ? range.last : std::min<int32_t>(range.last, lastBand);

    if (!range.empty()) {
        if (resources->deviceLevel >= LEVEL_BAND_HEADER) {
            sendBandHeader(callback, context, static_cast<uint16_t>(first),
                           static_cast<uint32_t>(page->pageWidth), resources);
        }
        // The group may reach past the page (or wrap in 16 bits): only real
        // bands are visited.
        const int32_t from = std::max(first, 0);
        const int32_t to = std::min(last, lastBand - 1);
        for (int32_t i = from; i <= to; ++i) {
            if (page->bands[i].list != nullptr) {
                flushBand(e, page, i, callback, context);
            }
        }
    }
    if (groups && !page->dirty.empty()) {
        // Records outside the group are dropped when the group moves on.
        const int32_t to = std::min<int32_t>(page->dirty.last, page->bandCount - 1);
        for (int32_t i = std::max<int32_t>(page->dirty.first, 0); i <= to; ++i) {
            if (i != page->bandCount - 1) {
                releaseBand(&page->bands[i]);
            }
        }
    }

    if (last != page->bandCount - 1) {
        resources->bandBase = static_cast<uint16_t>(bandsPerGroup * e->nextBandCount);
        resources->groupIndex = e->nextBandCount;
        resources->groupBands = static_cast<uint16_t>(bandsPerGroup);
        resources->groupSpare = GROUP_UNSET;
        e->nextBandCount = static_cast<uint16_t>(e->nextBandCount + 1);
    }
    // The recorded range is empty now whatever was flushed. The last band is
    // never sent here: a list it holds stays with it, outside the range, and
    // page close plays it (bandsWithLists).
    page->dirty.clear();
    const int16_t oldLast = page->group.last;
    page->group.first = static_cast<int16_t>(oldLast + 1);
    // Summed in 64 bits (any bandsPerGroup), then wrapped to 16 like the rest.
    page->group.last = static_cast<int16_t>(int64_t{oldLast} + int64_t{bandsPerGroup});
    // The clip follows the page, or the band group now open.
    return rebuildPageClip(e);
}

} // namespace kryn
