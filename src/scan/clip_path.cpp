#include "scan/clip_path.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "scan/page_clip.h"
#include "scan/path_painting.h"

namespace kryn {

namespace {

struct PathFigure {
    const GraphicsState* gs;
    int32_t pathRecords;
};

ResultCode buildFigureEdges(void* context, ScanState* scan, const ScanFloatBox& box) {
    const auto* figure = static_cast<const PathFigure*>(context);
    return buildPathEdges(scan, figure->gs->path, flattenToleranceOf(*figure->gs),
                          figure->pathRecords, box);
}

template <ResultCode (*Op)(ClipStack*)>
ResultCode onCurrentClip(Engine* e) {
    GraphicsState* gs = currentState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : Op(&gs->clip);
}

} // namespace

ResultCode clipToPath(Engine* e, uint32_t rule) {
    GraphicsState* gs = nullptr;
    const ResultCode opening = pathCallState(e, rule, &gs);
    if (gs == nullptr) {
        return opening;
    }
    PageRecord& page = *e->pageSlot->page;
    if (page.pageQuarterTurns == -1 || e->baseClip == nullptr) {
        consumePath(*gs, page, false);
        return KRYN_OK;
    }
    PathFigure figure{gs, static_cast<int32_t>(page.pathPool.recordCount)};
    const ResultCode r =
        clipWithEdges(&gs->clip, &page.scan, *e->baseClip, EdgeSource{buildFigureEdges, &figure},
                      static_cast<int32_t>(rule), clipPageOf(e, &page));
    if (r == KRYN_ERR_INVALID) {
        return r; // no free clip pool: the path stays for the caller
    }
    consumePath(*gs, page, failed(r));
    return r;
}

ResultCode clearClip(Engine* e) {
    return currentState(e) == nullptr ? KRYN_ERR_INVALID : clearPageClip(e);
}

ResultCode pushClipRegion(Engine* e) {
    return onCurrentClip<pushClip>(e);
}
ResultCode popClipRegion(Engine* e) {
    return onCurrentClip<popClip>(e);
}
ResultCode voidPushClipRegion(Engine* e) {
    return onCurrentClip<voidPushClip>(e);
}

} // namespace kryn
