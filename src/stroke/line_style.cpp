#include "stroke/line_style.h"

namespace kryn {

namespace {

void updateMiterLength(GraphicsState& gs) {
    gs.miterLength = gs.lineWidth * gs.miterLimit;
    gs.miterLengthFixed = fixedOrMinusOne(static_cast<double>(gs.miterLength));
}

} // namespace

int32_t fixedOrMinusOne(double v) {
    if (!(v <= FIXED_VALUE_LIMIT)) {
        return -1;
    }
    return static_cast<int32_t>(v * 65536.0);
}

ResultCode setLineWidth(GraphicsState& gs, int32_t width) {
    if (width < 0) {
        return KRYN_ERR_INVALID;
    }
    const auto half = static_cast<float>(static_cast<double>(width) * 0.5);
    if (half == gs.lineWidth) {
        return KRYN_OK;
    }
    gs.lineWidth = half;
    gs.lineWidthFixed = fixedOrMinusOne(static_cast<double>(half));
    updateMiterLength(gs);
    return KRYN_OK;
}

ResultCode setLineCap(GraphicsState& gs, uint32_t cap) {
    if (cap > STROKE_CAP_SQUARE) {
        return KRYN_ERR_INVALID;
    }
    gs.lineCap = cap;
    return KRYN_OK;
}

ResultCode setLineJoin(GraphicsState& gs, uint32_t join) {
    if (join > STROKE_JOIN_ROUND) {
        return KRYN_ERR_INVALID;
    }
    gs.lineJoin = join;
    return KRYN_OK;
}

ResultCode setMiterLimit(GraphicsState& gs, int32_t limit) {
    if (limit < 1) {
        return KRYN_ERR_INVALID;
    }
    const auto value = static_cast<float>(limit);
    if (value == gs.miterLimit) {
        return KRYN_OK;
    }
    gs.miterLimit = value;
    gs.miterLimitFixed = limit <= 16383 ? limit << 16 : -1;
    updateMiterLength(gs);
    return KRYN_OK;
}

} // namespace kryn
