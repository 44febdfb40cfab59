#include "stroke/stroke_pieces.h"

#include "geometry/saturate.h"
#include "scan/edge_rows.h"
#include "scan/emit_trapezoid.h"
#include "scan/fill_quad.h"
#include "scan/polyline_edges.h"
#include "scan/scan_convert.h"
#include "scan/wide_math.h"

#include <algorithm>
#include <cmath>

namespace kryn {

namespace {

// A float disc centre beyond this many pixels is skipped.
constexpr double DISC_CENTRE_LIMIT = 16384.0;

int32_t toSixteenths(double v) {
    return saturateToInt32(v * 16.0);
}

int32_t toFixed(double v) {
    return saturateToInt32(v * 65536.0);
}

// Also true for a piece with a point at no finite place (a degenerate
// transformation), which paints nothing.
bool boxMissesClip(const StrokePoint* p, int32_t count, const ScanFloatBox& clip) {
    for (int32_t i = 0; i < count; ++i) {
        if (!std::isfinite(p[i].x) || !std::isfinite(p[i].y)) {
            return true;
        }
    }
    double minX = p[0].x, maxX = p[0].x, minY = p[0].y, maxY = p[0].y;
    for (int32_t i = 1; i < count; ++i) {
        minX = std::fmin(minX, p[i].x);
        maxX = std::fmax(maxX, p[i].x);
        minY = std::fmin(minY, p[i].y);
        maxY = std::fmax(maxY, p[i].y);
    }
    // One pixel of slack: the float box is the integer box in whole pixels.
    return maxX < clip.minX - 1.0 || minX > clip.maxX + 1.0 || maxY < clip.minY - 1.0 ||
           minY > clip.maxY + 1.0;
}

ResultCode sweepPolygon(const PieceScan& t, const StrokePoint* p, int32_t count, bool fixed) {
    setTableMode(&t.scan->table, count);
    ResultCode r = KRYN_OK;
    for (int32_t i = 0; i < count && !failed(r); ++i) {
        const StrokePoint& a = p[i];
        const StrokePoint& b = p[(i + 1) % count];
        if (fixed) {
            r = addEdge(t.scan, toSixteenths(a.x), toSixteenths(a.y), toSixteenths(b.x),
                        toSixteenths(b.y));
        } else {
            r = addLineClamped(t.scan, static_cast<float>(a.x), static_cast<float>(a.y),
                               static_cast<float>(b.x), static_cast<float>(b.y));
        }
    }
    closeEdgeChain(t.scan);
    if (failed(r)) {
        releaseEdges(t.scan);
        return r;
    }
    // The full sweep (crossing events, non-zero rule): a join or a body cut
    // to sixteenths or rounded to float may come out as a sliver whose sides
    // cross, and must still paint exactly its own pixels.
    return scanConvert(t.scan, FILL_NONZERO, *t.clip, SCAN_MODE_PAINT, t.recorder);
}

ResultCode scanPolygon(void* ctx, const StrokePoint* p, int32_t count, bool quad, bool fixed) {
    const PieceScan& t = *static_cast<PieceScan*>(ctx);
    if (boxMissesClip(p, count, t.clip->clipBox)) {
        return KRYN_OK;
    }
    if (quad && fixed) {
        const FixedPoint corners[4] = {{toFixed(p[0].x), toFixed(p[0].y)},
                                       {toFixed(p[1].x), toFixed(p[1].y)},
                                       {toFixed(p[2].x), toFixed(p[2].y)},
                                       {toFixed(p[3].x), toFixed(p[3].y)}};
        return fillQuad(t.scan, corners, *t.clip, SCAN_MODE_PAINT, t.recorder);
    }
    return sweepPolygon(t, p, count, fixed);
}

ResultCode scanDisc(void* ctx, StrokePoint centre, const PenCircle& pen, bool fixed) {
    int32_t x = 0;
    int32_t y = 0;
    if (!discCentre(centre, fixed, &x, &y)) {
        return KRYN_OK;
    }
    return stampDisc(*static_cast<PieceScan*>(ctx), x, y, pen);
}

int64_t ceilDiv64(int64_t a, int64_t b) {
    return -floorDiv64(-a, b);
}

// Columns and rows a rectangular region admits: pixels whose sample point
// lies inside its box.
struct PixelLimits {
    int64_t minX, maxX, minY, maxY;
};

// The disc's rows cut straight into spans. Row r samples the line 16r; the
// disc's half extent there is interpolated between the two table rows
// around it (2 sixteenths apart), so x = cx -+ N / 2 exactly.
ResultCode cutDisc(const PieceScan& t, int64_t cx, int64_t cy, const PenCircle& pen,
                   const PixelLimits& limits) {
    const int32_t q = t.scan->quarterTurns;
    int64_t first = 0;
    int64_t last = -1;
    rowsOfRange(cy + pen.top(), cy + pen.bottom(), q, &first, &last);
    first = first > limits.minY ? first : limits.minY;
    last = last < limits.maxY ? last : limits.maxY;
    const bool strict = strictColumns(q);
    for (int64_t row = first; row <= last; ++row) {
        const int64_t offset = 16 * row - cy;
        int64_t i = (offset - pen.top()) / 2;
        i = i < pen.rowCount - 1 ? i : pen.rowCount - 2;
        const PenRow& a = pen.rows[i];
        const PenRow& b = pen.rows[i + 1];
        const int64_t n =
            2 * int64_t{a.extent} + int64_t{b.extent - a.extent} * (offset - a.offset);
        int64_t x0 = strict ? floorDiv64(2 * cx - n, 32) + 1 : ceilDiv64(2 * cx - n, 32);
        int64_t x1 = strict ? floorDiv64(2 * cx + n, 32) : ceilDiv64(2 * cx + n, 32) - 1;
        x0 = x0 > limits.minX ? x0 : limits.minX;
        x1 = x1 < limits.maxX ? x1 : limits.maxX;
        if (x0 <= x1) {
            const ResultCode r =
                t.recorder->span(t.recorder->ctx, static_cast<int32_t>(x0),
                                 static_cast<int32_t>(x1), static_cast<int32_t>(row));
            if (failed(r)) {
                return r;
            }
        }
    }
    return KRYN_OK;
}

// The disc clipped to a region: one trapezoid per pair of table rows that
// holds a sample row, each intersected with the region. The polygon is
// monotone in y, so its pixels are exactly those of these trapezoids.
ResultCode clipDisc(const PieceScan& t, int32_t cx, int32_t cy, const PenCircle& pen) {
    ScanTarget target;
    target.mode = SCAN_MODE_PAINT;
    target.clip = t.clip;
    target.recorder = t.recorder;
    const int32_t q = t.scan->quarterTurns;
    ResultCode r = KRYN_OK;
    // Only the table rows within the region's rows (2 sixteenths apart).
    const IntBox& box = t.clip->intBox;
    const int64_t base = int64_t{cy} + pen.top();
    const int64_t from = std::max<int64_t>(0, floorDiv64(box.minY - base, 2) - 1);
    const int64_t end = std::min<int64_t>(pen.rowCount - 1, floorDiv64(box.maxY - base, 2) + 2);
    for (auto i = static_cast<int32_t>(from); i < end && !failed(r); ++i) {
        const PenRow& a = pen.rows[i];
        const PenRow& b = pen.rows[i + 1];
        int64_t first = 0;
        int64_t last = -1;
        rowsOfRange(cy + a.offset, cy + b.offset, q, &first, &last);
        if (first > last) {
            continue;
        }
        Edge* left = makeEdge(t.scan, cx - a.extent, cy + a.offset, cx - b.extent, cy + b.offset);
        Edge* right = left == nullptr ? nullptr
                                      : makeEdge(t.scan, cx + a.extent, cy + a.offset,
                                                 cx + b.extent, cy + b.offset);
        if (right == nullptr) {
            r = KRYN_ERR_NO_MEMORY;
        } else {
            Trapezoid piece;
            piece.yTop = cy + a.offset;
            piece.yBottom = cy + b.offset;
            piece.leftEdge = left;
            piece.rightEdge = right;
            r = emitTrapezoid(t.scan, piece, target);
        }
        releaseEdges(t.scan);
    }
    return r;
}

} // namespace

PieceSink scanPieceSink(PieceScan* target) {
    PieceSink sink;
    sink.polygon = scanPolygon;
    sink.disc = scanDisc;
    sink.ctx = target;
    return sink;
}

bool discCentre(StrokePoint centre, bool fixed, int32_t* x, int32_t* y) {
    if (!std::isfinite(centre.x) || !std::isfinite(centre.y)) {
        return false;
    }
    if (fixed) {
        *x = toFixed(centre.x) >> 12;
        *y = toFixed(centre.y) >> 12;
        return true;
    }
    const auto fx = static_cast<float>(centre.x);
    const auto fy = static_cast<float>(centre.y);
    if (!(std::fabs(fx) <= DISC_CENTRE_LIMIT) || !(std::fabs(fy) <= DISC_CENTRE_LIMIT)) {
        return false;
    }
    *x = toSixteenths(fx);
    *y = toSixteenths(fy);
    return true;
}

ResultCode stampDisc(const PieceScan& t, int32_t x, int32_t y, const PenCircle& pen) {
    IntBox box;
    box.include(x - pen.maxExtent, y + pen.top());
    box.include(x + pen.maxExtent, y + pen.bottom());
    bool skip = false;
    const ClipRegion* clip = clipNeededFor(box, *t.clip, &skip);
    if (skip) {
        return KRYN_OK;
    }
    const RasterBounds& b = t.recorder->bounds;
    PixelLimits limits{b.minX, b.maxX, b.minY, b.maxY};
    if (clip != nullptr && clip->isRect == 0) {
        return clipDisc(t, x, y, pen);
    }
    if (clip != nullptr) {
        // The rectangle's own rows and columns, by the orientation's rules.
        const Trapezoid& r = *clip->activeList;
        const int32_t q = t.scan->quarterTurns;
        int64_t first = 0;
        int64_t last = -1;
        rowsOfRange(r.yTop, r.yBottom, q, &first, &last);
        limits.minY = std::max(limits.minY, first);
        limits.maxY = std::min(limits.maxY, last);
        limits.minX = std::max({limits.minX, columnAt(*r.leftEdge, 0, q), r.minColumn});
        limits.maxX = std::min({limits.maxX, columnAt(*r.rightEdge, 0, q) - 1, r.maxColumn});
    }
    return cutDisc(t, x, y, pen, limits);
}

} // namespace kryn
