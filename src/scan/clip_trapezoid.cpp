#include "scan/clip_trapezoid.h"

namespace kryn {

namespace {

bool bothSidesVertical(const Trapezoid& t) {
    return t.leftEdge->xTop == t.leftEdge->xBottom && t.rightEdge->xTop == t.rightEdge->xBottom;
}

} // namespace

ResultCode clipTrapezoid(ScanState* scan, const Trapezoid& t, const ClipRegion& region,
                         const ScanTarget& target) {
    const int32_t q = scan->quarterTurns;
    const IntBox box = trapezoidBox(t, q);
    if (region.activeList == nullptr || !box.meets(region.intBox)) {
        return KRYN_OK;
    }
    if (region.isRect != 0) {
        if (box.inside(region.intBox)) {
            return emitClippedPiece(scan, t, target);
        }
        return emitIntersection(scan, t, *region.activeList, target);
    }
    // A rectangle covering the whole region admits every pixel of it.
    if (target.mode == SCAN_MODE_PAINT && bothSidesVertical(t) && t.minColumn == NO_COLUMN_MIN &&
        t.maxColumn == NO_COLUMN_MAX && region.intBox.inside(box)) {
        for (const Trapezoid* c = region.activeList; c != nullptr; c = c->next) {
            const ResultCode r = emitClippedPiece(scan, *c, target);
            if (failed(r)) {
                return r;
            }
        }
        return KRYN_OK;
    }
    for (const Trapezoid* c = region.activeList; c != nullptr && c->yTop < t.yBottom; c = c->next) {
        if (c->yBottom <= t.yTop) {
            continue;
        }
        const ResultCode r = emitIntersection(scan, t, *c, target);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace kryn
