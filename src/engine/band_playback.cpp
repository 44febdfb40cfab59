// Host playback of a page's bands at page close.
#include "displaylist/display_list.h"
#include "engine/device_level.h"
#include "engine/page_lifecycle.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"
#include "engine/page_resources.h"
#include "image/image_table.h"
#include "paint/screen_list.h"
#include "render/band_interpreters.h"
#include "render/band_renderer.h"

#include <algorithm>

namespace kryn {

namespace {

// Plays one ended list as band `band` (the index the driver sees).
ResultCode playBand(Engine* e, OutputCallback callback, uintptr_t context, uint16_t band,
                    DisplayList* list, bool monochrome) {
    RenderResources* resources = e->resources;
    if (!pageMode(resources->mode).hostRasters) {
        return KRYN_OK;
    }
    if (list->firstBlock == nullptr) {
        return KRYN_OK; // a list that never received a block holds nothing to play
    }
    appendTerminator(list);
    resources->stream.callback = callback;
    resources->stream.context = context;
    list->bandIndex = band;
    if (resources->renderer == nullptr) {
        const RendererGeometry geometry{rendererWidth(e->pageWidth, resources->mode), e->bandHeight,
                                        resources->colourAttr, resources->colourSpace};
        resources->renderer = createBandRenderer(geometry);
        if (resources->renderer == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        // A renderer made here has none of the page's screens yet.
        const ResultCode r = defineTilesToRenderer(e);
        if (failed(r)) {
            return r;
        }
    }
    resources->rendered = 1;
    // The page's colour tables, which outlive any renderer made or resized
    // during the page.
    resources->renderer->colourTableList = pageColourTables(*e->pageSlot->page);
    const BandInterpreters& play = *resources->interpreters;
    BandInterpreter interpreter = play.playBand32;
    if (resources->colourSpace != 0) {
        interpreter = play.playBand8;
    } else if (resources->deviceLevel >= LEVEL_TYPED_RASTERS && monochrome) {
        interpreter = play.playBandMono;
    }
    const auto relative = static_cast<uint16_t>(band - resources->bandBase);
    return interpreter(resources->renderer, resources, relative, list, 2);
}

// One pass over the recorded bands, in page order or reversed. Stops at the
// first band whose playback does not answer KRYN_OK.
ResultCode playPass(Engine* e, PageRecord* page, OutputCallback callback, uintptr_t context,
                    int32_t first, int32_t last) {
    const bool reverse = page->reverseOrder != 0;
    const int32_t step = reverse ? -1 : 1;
    const int32_t stop = (reverse ? first : last) + step;
    for (int32_t i = reverse ? last : first; i != stop; i += step) {
        BandEntry& band = page->bands[i];
        if (band.list == nullptr) {
            continue;
        }
        appendEndRecord(band.list);
        const auto delivered = static_cast<uint16_t>(reverse ? e->bandCount - 1 - i : i);
        const ResultCode r =
            playBand(e, callback, context, delivered, band.list, band.bandMonochrome != 0);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace

void playPage(Engine* e, PageRecord* page, OutputCallback callback, uintptr_t context) {
    // The recorded range, and the last band, whose list KRYNNextBand keeps
    // outside the range.
    const BandRange bands = bandsWithLists(*page, e->bandCount - 1);
    if (bands.empty()) {
        return;
    }
    const int32_t first = bands.first;
    const int32_t last = std::min<int32_t>(bands.last, e->bandCount - 1);
    // The driver may ask once for the whole page again; a second request, or
    // any other failure, ends playback.
    ResultCode r = playPass(e, page, callback, context, first, last);
    if (r == KRYN_ERR_RESTART_PAGE) {
        playPass(e, page, callback, context, first, last);
    }
}

} // namespace kryn
