#include "scan/scan_convert.h"

#include "scan/edge_crossing.h"
#include "scan/sweep.h"

namespace kryn {

namespace {

// Two edges that neither cross nor need the sweep: the one left on their
// common rows is the left side of a single trapezoid.
ResultCode tryShortcut(ScanState* scan, const ScanTarget& target, bool* done) {
    const Edge* found[2] = {nullptr, nullptr};
    int32_t count = 0;
    for (const Edge* e = scan->table.edges; e != nullptr && count < 3; e = e->tableNext) {
        if (e->direction != 0 && e->firstRow <= e->lastRow) {
            if (count < 2) {
                found[count] = e;
            }
            ++count;
        }
    }
    *done = false;
    if (count == 0) {
        *done = true;
        return KRYN_OK;
    }
    if (count != 2 || edgesCross(*found[0], *found[1]) ||
        found[0]->firstRow != found[1]->firstRow || found[0]->lastRow != found[1]->lastRow) {
        return KRYN_OK;
    }
    *done = true;
    const Edge& a = *found[0];
    const Edge& b = *found[1];
    Trapezoid t;
    t.yTop = a.yTop > b.yTop ? a.yTop : b.yTop;
    t.yBottom = a.yBottom < b.yBottom ? a.yBottom : b.yBottom;
    const bool aLeft = edgeLeftOf(a, b, t.yTop);
    t.leftEdge = aLeft ? &a : &b;
    t.rightEdge = aLeft ? &b : &a;
    // Rows outside the common y range are rows of neither edge.
    return emitTrapezoid(scan, t, target);
}

ResultCode finish(ScanState* scan, ResultCode r) {
    releaseEdges(scan);
    return r;
}

} // namespace

const ClipRegion* clipNeededFor(const IntBox& box, const ClipRegion& clip, bool* skip) {
    *skip = clip.activeList == nullptr || !box.meets(clip.intBox);
    if (clip.isRect != 0 && box.inside(clip.intBox)) {
        return nullptr;
    }
    return &clip;
}

namespace {

// Where a scan's pieces go; false when there is nothing to sweep (no edges,
// or the fill misses the clip).
bool scanTarget(const ScanState* scan, const ClipRegion& clip, int32_t mode,
                const SpanRecorder* recorder, ScanTarget* target) {
    if (scan->table.edges == nullptr) {
        return false;
    }
    bool skip = false;
    target->mode = mode;
    target->recorder = recorder;
    target->clip = clipNeededFor(scan->table.box, clip, &skip);
    return !skip;
}

} // namespace

ResultCode scanConvert(ScanState* scan, int32_t rule, const ClipRegion& clip, int32_t mode,
                       const SpanRecorder* recorder) {
    ScanTarget target;
    if (!scanTarget(scan, clip, mode, recorder, &target)) {
        return finish(scan, KRYN_OK);
    }
    sortEdgeTable(&scan->table);
    bool done = false;
    const ResultCode r = tryShortcut(scan, target, &done);
    if (done || failed(r)) {
        return finish(scan, r);
    }
    removeHorizontalEdges(&scan->table);
    return finish(scan, sweepEdges(scan, rule, target, true));
}

ResultCode scanConvertStroke(ScanState* scan, const ClipRegion& clip, int32_t mode,
                             const SpanRecorder* recorder) {
    ScanTarget target;
    if (!scanTarget(scan, clip, mode, recorder, &target)) {
        return finish(scan, KRYN_OK);
    }
    sortEdgeTable(&scan->table);
    removeHorizontalEdges(&scan->table);
    return finish(scan, sweepEdges(scan, FILL_EVEN_ODD, target, false));
}

} // namespace kryn
