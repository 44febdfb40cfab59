#include "scan/band_walk.h"

#include "scan/clip_index.h"
#include "scan/row_piece.h"

namespace kryn {

namespace {

int32_t minX(const Edge& e) {
    return e.xTop < e.xBottom ? e.xTop : e.xBottom;
}
int32_t maxX(const Edge& e) {
    return e.xTop > e.xBottom ? e.xTop : e.xBottom;
}

// The column of node i on `row` when its walk fields are not on the row
// before: started afresh with one division (vertical edges keep theirs;
// wide ones step in their SweepNode).
__attribute__((noinline)) int64_t restartColumn(const BandWalk& w, int32_t i, int64_t row,
                                                bool strict) {
    WalkNode& n = w.walkNodes[i];
    SweepNode& s = w.nodes[i];
    if (n.vertical != 0) {
        n.stepRow = static_cast<int32_t>(row);
        return n.column(strict);
    }
    if (n.wide != 0) {
        s.stepTo(row, w.quarterTurns);
        return s.column(strict);
    }
    const ColumnStepper st = stepperAt(*s.edge, row, w.quarterTurns);
    if (!n.setStepper(st, row)) {
        n.wide = 1;
        n.stepRow = INT32_MIN;
        s.setStepper(st, row);
    }
    return st.column();
}

// The column of node i on `row`: one step from the row before.
inline int64_t columnOn(const BandWalk& w, int32_t i, int64_t row, bool strict) {
    WalkNode& n = w.walkNodes[i];
    if (n.stepRow == row - 1) {
        n.advance();
        n.stepRow = static_cast<int32_t>(row);
        return n.column(strict);
    }
    if (n.stepRow == row) {
        return n.column(strict);
    }
    return restartColumn(w, i, row, strict);
}

// The piece of rows r0..r1 between two edges, as recordRowPiece records a
// trapezoid without column limits.
ResultCode recordDirect(const BandWalk& w, SweepNode* left, SweepNode* right, int64_t yTop,
                        int64_t yBottom, int64_t r0, int64_t r1) {
    const SpanRecorder& rec = *w.target->recorder;
    const int64_t first = r0 > rec.bounds.minY ? r0 : rec.bounds.minY;
    const int64_t last = r1 < rec.bounds.maxY ? r1 : rec.bounds.maxY;
    const int64_t minCol = rec.bounds.minX;
    const int64_t maxCol = rec.bounds.maxX;
    if (first > last || minCol > maxCol) {
        return KRYN_OK;
    }
    const int32_t q = w.quarterTurns;
    const bool strict = strictColumns(q);
    const int32_t l = left->tableIndex;
    const int32_t r = right->tableIndex;
    if (left->vertical != 0 && right->vertical != 0) {
        return recordBlockWithin(rec, columnOn(w, l, first, strict),
                                 columnOn(w, r, first, strict) - 1, minCol, maxCol, first, last);
    }
    if (left->vertical == 0 && right->vertical == 0 && r1 - r0 >= LONG_TRAPEZOID_ROWS &&
        rec.bandRowSpans != nullptr && rec.bandHeight > 0 && w.scan->rowSpanPairs != nullptr &&
        minCol >= 0 && maxCol <= UINT16_MAX) {
        Trapezoid t;
        t.yTop = static_cast<int32_t>(yTop);
        t.yBottom = static_cast<int32_t>(yBottom);
        t.leftEdge = left->edge;
        t.rightEdge = right->edge;
        return recordRowPiece(pieceOfTrapezoid(t, q), q, rec, w.scan->rowSpanPairs);
    }
    for (int64_t row = first; row <= last; ++row) {
        const int64_t x0 = columnOn(w, l, row, strict);
        const ResultCode res =
            recordSpanWithin(rec, x0, columnOn(w, r, row, strict) - 1, minCol, maxCol, row);
        if (failed(res)) {
            return res;
        }
    }
    return KRYN_OK;
}

ResultCode emitPiece(const BandWalk& w, SweepNode* left, SweepNode* right, int64_t yTop,
                     int64_t yBottom, int64_t r0, int64_t r1) {
    const ClipRegion* clip = w.target->clip;
    if (clip != nullptr) {
        // The piece's box misses the region: nothing to emit.
        const IntBox& box = clip->intBox;
        if (maxX(*right->edge) < box.minX || minX(*left->edge) > box.maxX) {
            return KRYN_OK;
        }
    }
    if (w.target->mode == SCAN_MODE_PAINT) {
        if (clip == nullptr) {
            return recordDirect(w, left, right, yTop, yBottom, r0, r1);
        }
        // Inside a rectangular region the piece is emitted unchanged.
        const IntBox& box = clip->intBox;
        if (clip->isRect != 0 && minX(*left->edge) >= box.minX && maxX(*right->edge) <= box.maxX &&
            yTop >= box.minY && yBottom <= box.maxY) {
            return recordDirect(w, left, right, yTop, yBottom, r0, r1);
        }
    }
    Trapezoid t;
    t.yTop = static_cast<int32_t>(yTop);
    t.yBottom = static_cast<int32_t>(yBottom);
    t.leftEdge = left->edge;
    t.rightEdge = right->edge;
    return emitTrapezoid(w.scan, t, *w.target);
}

// A band of one row with nothing to clip, the common band of big paths:
// every piece is one span, recorded when it holds a pixel.
ResultCode walkRowDirect(const BandWalk& w, int32_t first, int64_t row) {
    const SpanRecorder& rec = *w.target->recorder;
    const int64_t minCol = rec.bounds.minX;
    const int64_t maxCol = rec.bounds.maxX;
    if (minCol > maxCol) {
        return KRYN_OK;
    }
    const bool strict = strictColumns(w.quarterTurns);
    const bool evenOdd = w.rule == FILL_EVEN_ODD;
    const WalkNode* nodes = w.walkNodes;
    int32_t state = 0;
    int32_t left = -1;
    for (int32_t i = first; i >= 0; i = nodes[i].next) {
        const int32_t before = state;
        state = evenOdd ? (state == 0 ? 1 : 0) : state + nodes[i].direction;
        if (before == 0) {
            left = i;
            continue;
        }
        if (state != 0) {
            continue;
        }
        const int64_t x0 = columnOn(w, left, row, strict);
        const ResultCode r =
            recordSpanWithin(rec, x0, columnOn(w, i, row, strict) - 1, minCol, maxCol, row);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace

void prepareBandWalk(BandWalk* w) {
    const ScanTarget& target = *w->target;
    if (target.clip != nullptr) {
        w->minLine = target.clip->intBox.minY;
        w->maxLine = target.clip->intBox.maxY;
    }
    if (target.mode == SCAN_MODE_PAINT) {
        w->minRow = target.recorder->bounds.minY;
        w->maxRow = target.recorder->bounds.maxY;
    }
}

ResultCode walkBand(const BandWalk& w, SweepNode* first, int64_t yTop, int64_t yBottom,
                    int64_t firstRow, int64_t lastRow) {
    if (firstRow == lastRow && w.target->mode == SCAN_MODE_PAINT && w.target->clip == nullptr) {
        return first == nullptr ? KRYN_OK : walkRowDirect(w, first->tableIndex, firstRow);
    }
    RegionBuilder* region = w.region;
    if (region != nullptr) {
        const ResultCode r = region->beginBand(yTop, yBottom);
        if (failed(r)) {
            return r;
        }
    }
    int32_t state = 0;
    SweepNode* left = nullptr;
    const bool evenOdd = w.rule == FILL_EVEN_ODD;
    for (SweepNode* n = first; n != nullptr; n = n->next) {
        const int32_t before = state;
        state = evenOdd ? (state == 0 ? 1 : 0) : state + n->direction;
        if (before == 0) {
            left = n;
        } else if (state == 0) {
            const ResultCode r = region != nullptr
                                     ? region->addPiece(left, n)
                                     : emitPiece(w, left, n, yTop, yBottom, firstRow, lastRow);
            if (failed(r)) {
                return r;
            }
        }
    }
    return region != nullptr ? region->endBand() : KRYN_OK;
}

} // namespace kryn
