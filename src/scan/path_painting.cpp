#include "scan/path_painting.h"

#include "engine/page_record.h"
#include "geometry/path_build.h"

namespace kryn {

namespace {

constexpr uint32_t ROP_WHITENESS = 0xFF;
constexpr uint32_t ROP_PATTERN_COPY = 0xF0;

} // namespace

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
