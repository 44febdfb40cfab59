#include "scan/page_clip.h"

#include "engine/graphics_state.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "geometry/path_build.h"

namespace kryn {

ClipPage clipPageOf(const Engine* e, const PageRecord* page) {
    ClipPage p;
    p.pageWidth = page->pageWidth;
    p.pageHeight = page->pageHeight;
    p.bandHeight = page->bandHeight;
    p.mode = static_cast<int32_t>(page->mode);
    p.groupFirst = page->group.first;
    p.groupLast = page->group.last;
    p.bandCount = e->bandCount;
    return p;
}

namespace {

// Resets the current state's clip to the base region; the current path is
// lost, as with every clip reset.
ResultCode resetPageClip(Engine* e) {
    PageRecord* page = e->pageSlot->page;
    GraphicsState* gs = e->pageSlot->gstateTop;
    if (page->pageQuarterTurns == -1 || e->baseClip == nullptr) {
        return KRYN_OK;
    }
    freePath(gs->path, page->pathPool);
    gs->pathSealed = 0;
    return resetClip(&gs->clip, &page->scan, *e->baseClip, clipPageOf(e, page));
}

} // namespace

ResultCode rebuildPageClip(Engine* e) {
    PageRecord* page = e->pageSlot->page;
    if (page->pageQuarterTurns == -1) {
        // A reset sets the identity matrix for the page rectangle it clips
        // to, which establishes an unset orientation as 0 quarter turns.
        page->pageQuarterTurns = 0;
    }
    // Scan conversion follows the page orientation from now on.
    ResultCode r = openScanState(&page->scan, page->pageQuarterTurns, page->bandHeight);
    if (!failed(r)) {
        r = buildBaseClip(&page->scan, clipPageOf(e, page), &e->baseClip);
    }
    return failed(r) ? r : resetPageClip(e);
}

ResultCode clearPageClip(Engine* e) {
    const PageRecord* page = e->pageSlot->page;
    if (page->pageQuarterTurns == -1 || e->baseClip == nullptr) {
        // No orientation yet (or its base region could not be built): the
        // reset establishes it and builds the base region first.
        return rebuildPageClip(e);
    }
    return resetPageClip(e);
}

} // namespace kryn
