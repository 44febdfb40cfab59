#include "image/device_quad.h"

#include "geometry/saturate.h"
#include "scan/edge_table.h"
#include "scan/fill_quad.h"
#include "scan/polyline_edges.h"
#include "scan/scan_convert.h"

#include <algorithm>
#include <cmath>

namespace kryn {

namespace {

constexpr double FAST_BOX_LIMIT = 16384.0;

bool takesFixedRoute(const DeviceBox& box) {
    return box.minX >= 0.0 && box.minY >= 0.0 && box.maxX <= FAST_BOX_LIMIT &&
           box.maxY <= FAST_BOX_LIMIT;
}

int32_t toFixed(double v) {
    return saturateToInt32(v * 65536.0);
}

// The sixteenth a coordinate is cut to by the route the fill takes: 16.16
// with the low 12 bits cleared, or the clamping conversion's truncation.
int64_t toFillSixteenths(double v, bool fixedRoute) {
    if (fixedRoute) {
        return (toFixed(v) & ~0xFFF) >> 12;
    }
    return saturateToInt32(v * 16.0);
}

int64_t firstCovered(int64_t sixteenths, bool strict) {
    return (sixteenths + (strict ? 16 : 15)) >> 4;
}

} // namespace

DeviceQuad userRectQuad(const Transform& t, int32_t x, int32_t y, int32_t width, int32_t height) {
    const double xs[4] = {double(x), double(x) + width, double(x) + width, double(x)};
    const double ys[4] = {double(y), double(y), double(y) + height, double(y) + height};
    DeviceQuad q;
    for (int i = 0; i < 4; ++i) {
        q.x[i] = double(t.a) * xs[i] + double(t.c) * ys[i] + double(t.tx);
        q.y[i] = double(t.b) * xs[i] + double(t.d) * ys[i] + double(t.ty);
    }
    return q;
}

bool quadIsFinite(const DeviceQuad& quad) {
    for (int i = 0; i < 4; ++i) {
        if (!std::isfinite(quad.x[i]) || !std::isfinite(quad.y[i])) {
            return false;
        }
    }
    return true;
}

DeviceBox quadBox(const DeviceQuad& quad) {
    DeviceBox box{quad.x[0], quad.y[0], quad.x[0], quad.y[0]};
    for (int i = 1; i < 4; ++i) {
        box.minX = std::min(box.minX, quad.x[i]);
        box.maxX = std::max(box.maxX, quad.x[i]);
        box.minY = std::min(box.minY, quad.y[i]);
        box.maxY = std::max(box.maxY, quad.y[i]);
    }
    return box;
}

bool quadMissesClip(const DeviceQuad& quad, const ClipRegion& clip) {
    if (clip.activeList == nullptr || !quadIsFinite(quad)) {
        return true;
    }
    const DeviceBox box = quadBox(quad);
    const ScanFloatBox& c = clip.clipBox;
    return box.maxX < double(c.minX) || box.minX > double(c.maxX) || box.maxY < double(c.minY) ||
           box.minY > double(c.maxY);
}

DevicePixel devicePosition(const DeviceQuad& quad, int32_t quarterTurns) {
    const DeviceBox box = quadBox(quad);
    const bool fixed = takesFixedRoute(box);
    const int32_t q = quarterTurns < 0 ? 0 : quarterTurns;
    return {firstCovered(toFillSixteenths(box.minX, fixed), q == 1 || q == 2),
            firstCovered(toFillSixteenths(box.minY, fixed), q >= 2)};
}

ResultCode fillDeviceQuad(ScanState* scan, const DeviceQuad& quad, const ClipRegion& clip,
                          const SpanRecorder* recorder) {
    if (takesFixedRoute(quadBox(quad))) {
        FixedPoint corners[4];
        for (int i = 0; i < 4; ++i) {
            corners[i] = {toFixed(quad.x[i]), toFixed(quad.y[i])};
        }
        return fillQuad(scan, corners, clip, SCAN_MODE_PAINT, recorder);
    }
    setTableMode(&scan->table, 4);
    ResultCode r = KRYN_OK;
    for (int i = 0; i < 4 && !failed(r); ++i) {
        const int j = (i + 1) % 4;
        r = addLineClamped(scan, quad.x[i], quad.y[i], quad.x[j], quad.y[j]);
    }
    closeEdgeChain(scan);
    if (failed(r)) {
        releaseEdges(scan);
        return r;
    }
    return scanConvertStroke(scan, clip, SCAN_MODE_PAINT, recorder);
}

} // namespace kryn
