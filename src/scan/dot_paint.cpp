#include "scan/dot_paint.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/saturate.h"
#include "paint/paint_setup.h"
#include "scan/emit_trapezoid.h"
#include "scan/page_recorders.h"

namespace kryn {

namespace {

// The dot's side: two pixels, in sixteenths.
constexpr int32_t DOT_SIXTEENTHS = 32;

int32_t sixteenths(float v) {
    return saturateToInt32(static_cast<double>(v) * 16.0);
}

// Keeps a dot's far sides inside int32 at the edge of the coordinate range.
int32_t clampStart(int32_t v) {
    return v > INT32_MAX - DOT_SIXTEENTHS
               ? INT32_MAX - DOT_SIXTEENTHS
               : (v < INT32_MIN + DOT_SIXTEENTHS ? INT32_MIN + DOT_SIXTEENTHS : v);
}

ResultCode emitDot(PageRecord& page, const ClipRegion& clip, int32_t x, int32_t y) {
    ScanState* scan = &page.scan;
    const int32_t q = page.pageQuarterTurns;
    x = clampStart(x);
    y = clampStart(y);
    const int32_t top = q <= 1 ? y : y - DOT_SIXTEENTHS;
    const int32_t bottom = top + DOT_SIXTEENTHS;
    Edge* left = makeEdge(scan, x, top, x, bottom);
    Edge* right = left == nullptr
                      ? nullptr
                      : makeEdge(scan, x + DOT_SIXTEENTHS, top, x + DOT_SIXTEENTHS, bottom);
    if (right == nullptr) {
        releaseEdges(scan);
        return KRYN_ERR_NO_MEMORY;
    }
    Trapezoid t;
    t.yTop = top;
    t.yBottom = bottom;
    t.leftEdge = left;
    t.rightEdge = right;
    SpanRecorder recorder;
    installPageRecorders(&page, &recorder);
    ScanTarget target;
    target.mode = SCAN_MODE_PAINT;
    target.recorder = &recorder;
    // Decision: a dot whose point lies inside a rectangular clip is emitted
    // without clipping, so it may reach one pixel past the clip's right or
    // bottom side (never past the raster: the recorders clamp to it).
    IntBox point;
    point.include(x, y);
    target.clip = clip.isRect != 0 && point.inside(clip.intBox) ? nullptr : &clip;
    const ResultCode r = emitTrapezoid(scan, t, target);
    releaseEdges(scan);
    return r;
}

} // namespace

ResultCode paintDot(Engine* e, int32_t x, int32_t y) {
    GraphicsState* gs = currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    PageRecord& page = *openPage(e);
    float p[2];
    gs->transform.transformPoint(static_cast<float>(x), static_cast<float>(y), p, gs->transform);
    const int32_t sx = sixteenths(p[0]);
    const int32_t sy = sixteenths(p[1]);
    const ClipRegion& clip = gs->clip.current;
    IntBox point;
    point.include(sx, sy);
    ResultCode r = KRYN_OK;
    if (page.pageQuarterTurns != -1 && clip.activeList != nullptr && point.meets(clip.intBox)) {
        // Dots paint whatever the paint: no white-paper or 0xAA shortcut.
        page.paintNotWhite = 1;
        setupPaint(*gs, page.paint);
        setEffectiveRop(gs->logicalFunction, page.paint, false);
        r = emitDot(page, clip, sx, sy);
    }
    const ResultCode flushed = flushPendingRuns(&page);
    return failed(r) ? r : flushed;
}

} // namespace kryn
