// Exported scan lines and dot painting.
#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/scan_lines.h"
#include "kryn/kryn.h"
#include "scan/dot_paint.h"

namespace {

ResultCode scanLines(Engine* e, const void* runs, int32_t y, int16_t count, bool wide) {
    kryn::GraphicsState* gs = e == nullptr ? nullptr : kryn::currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    return kryn::addScanLines(*gs, kryn::openPage(e)->pathPool, runs, y, count, wide);
}

} // namespace

extern "C" {

KRYN_EXPORT ResultCode KRYNScanLines(const int32_t* runs, int32_t y, int16_t count, Engine* e) {
    return scanLines(e, runs, y, count, true);
}

KRYN_EXPORT ResultCode KRYNScanLines16(const int16_t* runs, int16_t y, int16_t count, Engine* e) {
    return scanLines(e, runs, y, count, false);
}

KRYN_EXPORT ResultCode KRYNDotPaint(int32_t x, int32_t y, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::paintDot(e, x, y);
}

} // extern "C"
