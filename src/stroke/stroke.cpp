#include "stroke/stroke.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "paint/paint_setup.h"
#include "paint/rop_codes.h"
#include "scan/page_recorders.h"
#include "scan/path_painting.h"
#include "stroke/merged_spans.h"
#include "stroke/stroke_path.h"

namespace kryn {

namespace {

// Pieces overlap where they meet. Raster operations that give another
// result when a pixel is painted twice (and blending) need every pixel
// painted once: their spans are merged before they are recorded.
bool needsMergedSpans(uint32_t rop, const PaintDescriptor& paint) {
    return NON_IDEMPOTENT_ROPS.contains(rop) || paint.blendOn != 0;
}

ResultCode strokeIntoPage(GraphicsState& gs, PageRecord& page, uint32_t rop) {
    SpanRecorder pageRecorder;
    installPageRecorders(&page, &pageRecorder);
    MergedSpans merged;
    SpanRecorder collector;
    const bool merge = needsMergedSpans(rop, page.paint);
    if (merge) {
        openMergedSpans(&merged, &pageRecorder, &collector);
    }
    PieceScan target;
    target.scan = &page.scan;
    target.clip = &gs.clip.current;
    target.recorder = merge ? &collector : &pageRecorder;
    const ResultCode r = strokePath(gs, page, scanPieceSink(&target), gs.clip.current.clipBox);
    if (!merge) {
        return r;
    }
    if (failed(r)) {
        discardMergedSpans(&merged);
        return r;
    }
    return finishMergedSpans(&merged);
}

} // namespace

ResultCode strokeCurrentPath(Engine* e) {
    GraphicsState* gs = currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (gs->path.paintFirst == nullptr) {
        return KRYN_OK;
    }
    PageRecord& page = *openPage(e);
    if (isWhitePaint(*gs)) {
        if (page.dirty.empty()) {
            consumePath(*gs, page, false); // white on white paper: nothing to record
            return KRYN_OK;
        }
        page.paintNotWhite = 0;
    } else {
        page.paintNotWhite = 1;
    }
    setupPaint(*gs, page.paint);
    const uint32_t rop = setEffectiveRop(gs->logicalFunction, page.paint, false);
    ResultCode r = KRYN_OK;
    if (rop != ROP_DESTINATION && page.pageQuarterTurns != -1 &&
        gs->clip.current.activeList != nullptr) {
        r = strokeIntoPage(*gs, page, rop);
    }
    consumePath(*gs, page, failed(r));
    const ResultCode flushed = flushPendingRuns(&page); // what was recorded before a failure stays
    return failed(r) ? r : flushed;
}

} // namespace kryn
