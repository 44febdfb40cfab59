#include "scan/emit_trapezoid.h"

#include "engine/memory.h"
#include "scan/clip_trapezoid.h"
#include "scan/edge_rows.h"
#include "scan/row_piece.h"

namespace kryn {

namespace {

bool isVerticalEdge(const Edge& e) {
    return e.xTop == e.xBottom;
}

bool goesAfter(const Trapezoid* a, const Trapezoid* b) {
    return a->yTop > b->yTop || (a->yTop == b->yTop && a->yBottom >= b->yBottom);
}

// Stores a copy of t in the region being built, kept in order of yTop, then
// yBottom, and widens the collected box.
ResultCode collectTrapezoid(ScanState* scan, const Trapezoid& t) {
    int64_t first = 0;
    int64_t last = 0;
    rowsOfRange(t.yTop, t.yBottom, scan->quarterTurns, &first, &last);
    if (first > last || t.minColumn > t.maxColumn) {
        return KRYN_OK; // holds no pixel
    }
    Trapezoid* copy = copyRecord(t);
    if (copy == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    copy->next = nullptr;
    setTrapezoidCorners(copy);
    const IntBox b = trapezoidBox(*copy, scan->quarterTurns);
    scan->collectedBox.include(b.minX, b.minY);
    scan->collectedBox.include(b.maxX, b.maxY);
    if (scan->collectedTail == nullptr || goesAfter(copy, scan->collectedTail)) {
        if (scan->collectedTail == nullptr) {
            scan->collected = copy;
        } else {
            scan->collectedTail->next = copy;
        }
        scan->collectedTail = copy;
        return KRYN_OK;
    }
    Trapezoid** link = &scan->collected;
    while (goesAfter(copy, *link)) {
        link = &(*link)->next;
    }
    copy->next = *link;
    *link = copy;
    return KRYN_OK;
}

} // namespace

ResultCode emitClippedPiece(ScanState* scan, const Trapezoid& t, const ScanTarget& target) {
    if (target.mode == SCAN_MODE_CLIP) {
        return collectTrapezoid(scan, t);
    }
    const RowPiece piece = pieceOfTrapezoid(t, scan->quarterTurns);
    return recordRowPiece(piece, scan->quarterTurns, *target.recorder, scan->rowSpanPairs);
}

ResultCode emitIntersection(ScanState* scan, const Trapezoid& t, const Trapezoid& c,
                            const ScanTarget& target) {
    const int32_t q = scan->quarterTurns;
    const int32_t yTop = t.yTop > c.yTop ? t.yTop : c.yTop;
    const int32_t yBottom = t.yBottom < c.yBottom ? t.yBottom : c.yBottom;
    if (yBottom <= yTop) {
        return KRYN_OK;
    }
    const int64_t minColumn = t.minColumn > c.minColumn ? t.minColumn : c.minColumn;
    const int64_t maxColumn = t.maxColumn < c.maxColumn ? t.maxColumn : c.maxColumn;
    if (target.mode == SCAN_MODE_CLIP) {
        // Clip paths are cut against the page rectangle, whose sides are
        // vertical: they become column limits of the stored trapezoid.
        if (!isVerticalEdge(*c.leftEdge) || !isVerticalEdge(*c.rightEdge)) {
            return KRYN_ERR_INVALID;
        }
        Trapezoid piece = t;
        piece.yTop = yTop;
        piece.yBottom = yBottom;
        const int64_t left = columnAt(*c.leftEdge, 0, q);
        const int64_t right = columnAt(*c.rightEdge, 0, q) - 1;
        piece.minColumn = minColumn > left ? minColumn : left;
        piece.maxColumn = maxColumn < right ? maxColumn : right;
        return collectTrapezoid(scan, piece);
    }
    // Vertical sides of the region's trapezoid become column limits, so
    // that a piece cut by a rectangle keeps a single edge per side.
    RowPiece piece;
    rowsOfRange(yTop, yBottom, q, &piece.firstRow, &piece.lastRow);
    piece.left[0] = t.leftEdge;
    piece.right[0] = t.rightEdge;
    piece.leftCount = piece.rightCount = 1;
    piece.minColumn = minColumn;
    piece.maxColumn = maxColumn;
    if (isVerticalEdge(*c.leftEdge)) {
        const int64_t left = columnAt(*c.leftEdge, 0, q);
        piece.minColumn = left > piece.minColumn ? left : piece.minColumn;
    } else {
        piece.left[piece.leftCount++] = c.leftEdge;
    }
    if (isVerticalEdge(*c.rightEdge)) {
        const int64_t right = columnAt(*c.rightEdge, 0, q) - 1;
        piece.maxColumn = right < piece.maxColumn ? right : piece.maxColumn;
    } else {
        piece.right[piece.rightCount++] = c.rightEdge;
    }
    return recordRowPiece(piece, q, *target.recorder, scan->rowSpanPairs);
}

ResultCode emitTrapezoid(ScanState* scan, Trapezoid& t, const ScanTarget& target) {
    if (target.clip == nullptr) {
        return emitClippedPiece(scan, t, target);
    }
    setTrapezoidCorners(&t);
    return clipTrapezoid(scan, t, *target.clip, target);
}

} // namespace kryn
