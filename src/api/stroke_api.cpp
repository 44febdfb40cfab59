// Exported stroking: line attributes, dash patterns and KRYNStroke.
#include "engine/graphics_state.h"
#include "kryn/kryn.h"
#include "stroke/dash_pattern.h"
#include "stroke/line_style.h"
#include "stroke/stroke.h"

namespace {

// The current state of the open page, or null.
kryn::GraphicsState* lineState(Engine* e) {
    return e == nullptr ? nullptr : kryn::currentState(e);
}

} // namespace

extern "C" {

KRYN_EXPORT ResultCode KRYNStroke(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::strokeCurrentPath(e);
}

KRYN_EXPORT ResultCode KRYNSetLineWidth(int32_t width, Engine* e) {
    kryn::GraphicsState* gs = lineState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : kryn::setLineWidth(*gs, width);
}

KRYN_EXPORT ResultCode KRYNSetLineCap(uint16_t cap, Engine* e) {
    kryn::GraphicsState* gs = lineState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : kryn::setLineCap(*gs, cap);
}

KRYN_EXPORT ResultCode KRYNSetLineJoin(uint16_t join, Engine* e) {
    kryn::GraphicsState* gs = lineState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : kryn::setLineJoin(*gs, join);
}

KRYN_EXPORT ResultCode KRYNSetMiterLimit(int32_t limit, Engine* e) {
    kryn::GraphicsState* gs = lineState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : kryn::setMiterLimit(*gs, limit);
}

KRYN_EXPORT ResultCode KRYNSetLineDash(const int32_t* entries, uint16_t count, uint32_t phase,
                                       Engine* e) {
    kryn::GraphicsState* gs = lineState(e);
    return gs == nullptr ? KRYN_ERR_INVALID : kryn::setLineDash(*gs, entries, count, phase);
}

} // extern "C"
