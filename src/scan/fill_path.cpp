#include "scan/fill_path.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "paint/paint_setup.h"
#include "paint/rop_codes.h"
#include "scan/page_recorders.h"
#include "scan/path_painting.h"
#include "scan/scan_convert.h"

namespace kryn {

namespace {

// Sweeps the built edges into the page's recorders, unless nothing can show:
// the paint leaves the page unchanged, the orientation is not established,
// or the clip region is empty.
ResultCode paintEdges(GraphicsState& gs, PageRecord& page, uint32_t rule) {
    setupPaint(gs, page.paint);
    const uint32_t rop = setEffectiveRop(gs.logicalFunction, page.paint, false);
    if (rop == ROP_DESTINATION || page.pageQuarterTurns == -1 ||
        gs.clip.current.activeList == nullptr) {
        releaseEdges(&page.scan);
        return KRYN_OK;
    }
    SpanRecorder recorder;
    installPageRecorders(&page, &recorder);
    return scanConvert(&page.scan, static_cast<int32_t>(rule), gs.clip.current, SCAN_MODE_PAINT,
                       &recorder);
}

} // namespace

ResultCode fillPath(Engine* e, uint32_t rule) {
    GraphicsState* gs = nullptr;
    const ResultCode opening = pathCallState(e, rule, &gs);
    if (gs == nullptr) {
        return opening;
    }
    PageRecord& page = *e->pageSlot->page;
    if (isWhitePaint(*gs)) {
        if (bandsWithLists(page, e->bandCount - 1).empty()) {
            consumePath(*gs, page, false); // white on white paper: nothing to record
            return KRYN_OK;
        }
        page.paintNotWhite = 0;
    } else {
        page.paintNotWhite = 1;
    }
    ResultCode r =
        buildPathEdges(&page.scan, gs->path, flattenToleranceOf(*gs),
                       static_cast<int32_t>(page.pathPool.recordCount), gs->clip.current.clipBox);
    if (!failed(r)) {
        r = paintEdges(*gs, page, rule);
    }
    if (failed(r)) {
        releaseEdges(&page.scan);
        consumePath(*gs, page, true);
        flushPendingRuns(&page); // what was recorded before the failure stays
        return r;
    }
    consumePath(*gs, page, false);
    return flushPendingRuns(&page);
}

} // namespace kryn
