#include "scan/path_painting.h"

#include "engine/page_record.h"
#include "geometry/path_build.h"

namespace kryn {

namespace {

constexpr uint32_t ROP_WHITENESS = 0xFF;
constexpr uint32_t ROP_PATTERN_COPY = 0xF0;

} // namespace

ResultCode pathCallState(Engine* e, uint32_t rule, GraphicsState** gs) {
    *gs = nullptr;
    GraphicsState* state = currentState(e);
    if (state == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (state->path.paintFirst == nullptr) {
        return KRYN_OK;
    }
    if (rule != FILL_EVEN_ODD && rule != FILL_NONZERO) {
        return KRYN_ERR_INVALID;
    }
    *gs = state;
    return KRYN_OK;
}

void consumePath(GraphicsState& gs, PageRecord& page, bool afterError) {
    if (gs.pathSealed != 0 && !afterError) {
        gs.pathSealed = 0;
        return;
    }
    gs.pathSealed = 0;
    freePath(gs.path, page.pathPool);
}

bool isWhitePaint(const GraphicsState& gs) {
    return gs.logicalFunction == ROP_WHITENESS ||
           (gs.logicalFunction == ROP_PATTERN_COPY && (gs.colour & WHITE) == WHITE &&
            gs.screen.data == nullptr);
}

FlattenTolerance flattenToleranceOf(const GraphicsState& gs) {
    return FlattenTolerance{gs.strokeFlatnessFixed, gs.strokeFlatness};
}

} // namespace kryn
