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

ResultCode rebuildPageClip(Engine* e) {
    PageRecord* page = e->pageSlot->page;
    if (page->pageQuarterTurns == -1) {
        return KRYN_OK;
    }
    // Scan conversion follows the page orientation from now on.
    ResultCode r = openScanState(&page->scan, page->pageQuarterTurns, page->bandHeight);
    if (!failed(r)) {
        r = buildBaseClip(&page->scan, clipPageOf(e, page), &e->baseClip);
    }
    return failed(r) ? r : resetPageClip(e);
}

} // namespace kryn
