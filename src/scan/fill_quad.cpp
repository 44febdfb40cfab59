#include "scan/fill_quad.h"

#include "scan/edge_crossing.h"
#include "scan/scan_convert.h"
#include "scan/sweep.h"

namespace kryn {

namespace {

struct Corner {
    int32_t x = 0, y = 0; // 1/16 pixel
};

// The chain from corner `from` to corner `to` stepping by `dir` around the
// quad, as edges; false when it is not monotone in y.
bool buildChain(ScanState* scan, const Corner* c, int32_t from, int32_t to, int32_t dir,
                Edge** edges, int32_t* count, ResultCode* r) {
    *count = 0;
    for (int32_t i = from; i != to; i = (i + dir + 4) % 4) {
        const int32_t j = (i + dir + 4) % 4;
        if (c[j].y < c[i].y) {
            return false;
        }
        if (c[j].y == c[i].y) {
            continue;
        }
        Edge* e = makeEdge(scan, c[i].x, c[i].y, c[j].x, c[j].y);
        if (e == nullptr) {
            *r = KRYN_ERR_NO_MEMORY;
            return false;
        }
        edges[(*count)++] = e;
    }
    return true;
}

const Edge* chainEdgeAt(Edge* const* edges, int32_t count, int32_t y) {
    for (int32_t i = 0; i < count; ++i) {
        if (edges[i]->yTop <= y && y < edges[i]->yBottom) {
            return edges[i];
        }
    }
    return nullptr;
}

ResultCode sweepQuad(ScanState* scan, const Corner* c, const ClipRegion& clip, int32_t mode,
                     const SpanRecorder* recorder) {
    ResultCode r = KRYN_OK;
    for (int32_t i = 0; i < 4 && !failed(r); ++i) {
        const int32_t j = (i + 1) % 4;
        r = addEdge(scan, c[i].x, c[i].y, c[j].x, c[j].y);
    }
    closeEdgeChain(scan);
    if (failed(r)) {
        releaseEdges(scan);
        return r;
    }
    return scanConvert(scan, FILL_NONZERO, clip, mode, recorder);
}

} // namespace

ResultCode fillQuad(ScanState* scan, const FixedPoint corners[4], const ClipRegion& clip,
                    int32_t mode, const SpanRecorder* recorder) {
    Corner c[4];
    IntBox box;
    int32_t top = 0;
    int32_t bottom = 0;
    for (int32_t i = 0; i < 4; ++i) {
        c[i].x = (corners[i].x & ~0xFFF) >> 12;
        c[i].y = (corners[i].y & ~0xFFF) >> 12;
        box.include(c[i].x, c[i].y);
        if (c[i].y < c[top].y || (c[i].y == c[top].y && c[i].x < c[top].x)) {
            top = i;
        }
        if (c[i].y > c[bottom].y || (c[i].y == c[bottom].y && c[i].x > c[bottom].x)) {
            bottom = i;
        }
    }
    bool skip = false;
    ScanTarget target;
    target.mode = mode;
    target.recorder = recorder;
    target.clip = clipNeededFor(box, clip, &skip);
    if (skip || box.minY == box.maxY) {
        return KRYN_OK;
    }
    Edge* a[3];
    Edge* b[3];
    int32_t na = 0;
    int32_t nb = 0;
    ResultCode r = KRYN_OK;
    const bool monotone = buildChain(scan, c, top, bottom, 1, a, &na, &r) &&
                          buildChain(scan, c, top, bottom, -1, b, &nb, &r);
    if (failed(r)) {
        releaseEdges(scan);
        return r;
    }
    bool crossed = false;
    for (int32_t i = 0; i < na && monotone; ++i) {
        for (int32_t k = 0; k < nb; ++k) {
            crossed = crossed || edgesCross(*a[i], *b[k]);
        }
    }
    if (!monotone || crossed) {
        releaseEdges(scan);
        return sweepQuad(scan, c, clip, mode, recorder);
    }
    // Trapezoids between consecutive distinct corner y values.
    int32_t ys[4];
    for (int32_t i = 0; i < 4; ++i) {
        ys[i] = c[i].y;
    }
    for (int32_t i = 1; i < 4; ++i) {
        for (int32_t k = i; k > 0 && ys[k] < ys[k - 1]; --k) {
            const int32_t t = ys[k];
            ys[k] = ys[k - 1];
            ys[k - 1] = t;
        }
    }
    for (int32_t i = 0; i + 1 < 4 && !failed(r); ++i) {
        if (ys[i] == ys[i + 1]) {
            continue;
        }
        const Edge* ea = chainEdgeAt(a, na, ys[i]);
        const Edge* eb = chainEdgeAt(b, nb, ys[i]);
        if (ea == nullptr || eb == nullptr) {
            continue;
        }
        const bool aLeft = edgeLeftOf(*ea, *eb, scan->quarterTurns >= 2 ? ys[i] + 1 : ys[i]);
        Trapezoid t;
        t.yTop = ys[i];
        t.yBottom = ys[i + 1];
        t.leftEdge = aLeft ? ea : eb;
        t.rightEdge = aLeft ? eb : ea;
        r = emitTrapezoid(scan, t, target);
    }
    releaseEdges(scan);
    return r;
}

} // namespace kryn
