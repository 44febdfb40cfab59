#include "scan/clip_trapezoid.h"

#include "scan/clip_index.h"
#include "scan/edge_rows.h"

#include <algorithm>

namespace kryn {

namespace {

bool bothSidesVertical(const Trapezoid& t) {
    return t.leftEdge->xTop == t.leftEdge->xBottom && t.rightEdge->xTop == t.rightEdge->xBottom;
}

// Every piece of a swept region, in order.
ResultCode emitAllPieces(ScanState* scan, const RegionIndex& index, const ScanTarget& target) {
    for (int32_t b = 0; b < index.bands.count; ++b) {
        scan->cursor.moveTo(&index, b);
        for (const ClipRun* run = scan->cursor.first; run != nullptr; run = run->next) {
            Trapezoid c;
            if (index.piece(index.bands.at(b), *run, &c)) {
                const ResultCode r = emitClippedPiece(scan, c, target);
                if (failed(r)) {
                    return r;
                }
            }
        }
    }
    return KRYN_OK;
}

// x of an edge at y in sixteenths, in double (within a thousandth).
double xAt(const Edge& e, int64_t y) {
    const double dy = static_cast<double>(e.yBottom) - e.yTop;
    return e.xTop +
           (static_cast<double>(e.xBottom) - e.xTop) * (static_cast<double>(y - e.yTop) / dy);
}

// Where piece c lies against t on their common lines y0..y1: -1 wholly
// left of t, 1 wholly right, 0 when they may share a pixel.
int32_t sideOf(const Trapezoid& c, const Trapezoid& t, int64_t y0, int64_t y1) {
    const double margin = 2.0;
    const double cRight = std::max(xAt(*c.rightEdge, y0), xAt(*c.rightEdge, y1));
    const double tLeft = std::min(xAt(*t.leftEdge, y0), xAt(*t.leftEdge, y1));
    if (cRight + margin < tLeft) {
        return -1;
    }
    const double cLeft = std::min(xAt(*c.leftEdge, y0), xAt(*c.leftEdge, y1));
    const double tRight = std::max(xAt(*t.rightEdge, y0), xAt(*t.rightEdge, y1));
    return tRight + margin < cLeft ? 1 : 0;
}

// The pieces of a swept region that meet t in y, in the region's order.
// Pieces that share no pixel with t record nothing and are passed over,
// unless the two could form a tall piece, which records its whole bands.
ResultCode clipByIndex(ScanState* scan, const Trapezoid& t, const RegionIndex& index,
                       const ScanTarget& target) {
    const int32_t q = scan->quarterTurns;
    int32_t lo = 0;
    int32_t hi = index.bands.count;
    while (lo < hi) { // the first band whose pieces end below t's top
        const int32_t mid = lo + (hi - lo) / 2;
        if (index.pieceBottom(mid) <= t.yTop) {
            lo = mid + 1;
        } else {
            hi = mid;
        }
    }
    const bool sloped =
        t.leftEdge->xTop != t.leftEdge->xBottom && t.rightEdge->xTop != t.rightEdge->xBottom;
    for (int32_t b = lo; b < index.bands.count && index.pieceTop(b) < t.yBottom; ++b) {
        const int64_t y0 = std::max<int64_t>(index.pieceTop(b), t.yTop);
        const int64_t y1 = std::min<int64_t>(index.pieceBottom(b), t.yBottom);
        if (y1 <= y0) {
            continue;
        }
        int64_t firstRow = 0;
        int64_t lastRow = 0;
        rowsOfRange(y0, y1, q, &firstRow, &lastRow);
        const bool tall = sloped && lastRow - firstRow >= LONG_TRAPEZOID_ROWS;
        BandView* view = scan->cursor.view(&index, b);
        if (view == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        const ClipBand& band = index.bands.at(b);
        const double leftTop = xAt(*t.leftEdge, y0);
        const double leftBottom = xAt(*t.leftEdge, y1);
        int32_t i = 0;
        if (!tall && view->hintValid && view->hintTop == y0 && view->hintBottom == y1 &&
            leftTop >= view->hintLeftTop && leftBottom >= view->hintLeftBottom) {
            i = view->hint;
        }
        int32_t firstMet = -1;
        for (; i < view->count; ++i) {
            Trapezoid c;
            if (!index.piece(band, *view->runs[i], &c)) {
                continue;
            }
            if (!tall) {
                const int32_t side = sideOf(c, t, y0, y1);
                if (side > 0) {
                    break; // this piece and all after it lie right of t
                }
                if (side < 0) {
                    continue;
                }
                firstMet = firstMet < 0 ? i : firstMet;
            }
            const ResultCode r = emitIntersection(scan, t, c, target);
            if (failed(r)) {
                return r;
            }
        }
        if (!tall) {
            view->hintValid = true;
            view->hintTop = y0;
            view->hintBottom = y1;
            view->hintLeftTop = leftTop;
            view->hintLeftBottom = leftBottom;
            view->hint = firstMet >= 0 ? firstMet : i;
        }
    }
    return KRYN_OK;
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
        if (region.index != nullptr) {
            return emitAllPieces(scan, *region.index, target);
        }
        for (const Trapezoid* c = region.activeList; c != nullptr; c = c->next) {
            const ResultCode r = emitClippedPiece(scan, *c, target);
            if (failed(r)) {
                return r;
            }
        }
        return KRYN_OK;
    }
    if (region.index != nullptr) {
        return clipByIndex(scan, t, *region.index, target);
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
