#include "scan/row_piece.h"

#include "scan/edge_rows.h"
#include "scan/wide_math.h"

namespace kryn {

namespace {

struct PieceSteppers {
    ColumnStepper left[2];
    ColumnStepper right[2];
    int32_t leftCount = 0, rightCount = 0;

    int64_t leftColumn() const {
        int64_t c = left[0].column();
        if (leftCount == 2 && left[1].column() > c) {
            c = left[1].column();
        }
        return c;
    }
    int64_t rightColumn() const { // exclusive
        int64_t c = right[0].column();
        if (rightCount == 2 && right[1].column() < c) {
            c = right[1].column();
        }
        return c;
    }
    void advance() {
        for (int32_t i = 0; i < leftCount; ++i) {
            left[i].advance();
        }
        for (int32_t i = 0; i < rightCount; ++i) {
            right[i].advance();
        }
    }
};

bool isVertical(const Edge* e) {
    return e->xTop == e->xBottom;
}

ResultCode recordRows(PieceSteppers& s, int64_t first, int64_t last, int64_t minCol, int64_t maxCol,
                      const SpanRecorder& rec) {
    for (int64_t row = first; row <= last; ++row) {
        const ResultCode r =
            recordSpanWithin(rec, s.leftColumn(), s.rightColumn() - 1, minCol, maxCol, row);
        if (failed(r)) {
            return r;
        }
        if (row < last) {
            s.advance();
        }
    }
    return KRYN_OK;
}

// Rows of whole bands go to the recorder a band at a time.
ResultCode recordLongRows(PieceSteppers& s, int64_t first, int64_t last, int64_t minCol,
                          int64_t maxCol, const SpanRecorder& rec, uint16_t* pairs) {
    const int64_t h = rec.bandHeight;
    int64_t row = first;
    while (row <= last) {
        const int64_t bandStart = -floorDiv64(-row, h) * h; // first band start at or below row
        if (row == bandStart && row + h - 1 <= last) {
            bool allEqual = true;
            for (int64_t i = 0; i < h; ++i) {
                int64_t x0 = s.leftColumn();
                int64_t x1 = s.rightColumn() - 1;
                x0 = x0 < minCol ? minCol : x0;
                x1 = x1 > maxCol ? maxCol : x1;
                const int64_t count = x0 <= x1 ? x1 - x0 + 1 : 0;
                pairs[2 * i] = static_cast<uint16_t>(count > 0 ? x0 : minCol);
                pairs[2 * i + 1] = static_cast<uint16_t>(count);
                allEqual = allEqual && pairs[2 * i] == pairs[0] && pairs[2 * i + 1] == pairs[1];
                s.advance();
            }
            const ResultCode r = rec.bandRowSpans(rec.ctx, static_cast<int32_t>(row),
                                                  static_cast<int32_t>(h), pairs, allEqual ? 1 : 0);
            if (failed(r)) {
                return r;
            }
            row += h;
            continue;
        }
        int64_t stop = bandStart > row ? bandStart - 1 : row + h - 1;
        stop = stop > last ? last : stop;
        const ResultCode r = recordRows(s, row, stop, minCol, maxCol, rec);
        if (failed(r)) {
            return r;
        }
        if (stop < last) {
            s.advance();
        }
        row = stop + 1;
    }
    return KRYN_OK;
}

} // namespace

RowPiece pieceOfTrapezoid(const Trapezoid& t, int32_t quarterTurns) {
    RowPiece p;
    rowsOfRange(t.yTop, t.yBottom, quarterTurns, &p.firstRow, &p.lastRow);
    p.left[0] = t.leftEdge;
    p.right[0] = t.rightEdge;
    p.leftCount = p.rightCount = 1;
    p.minColumn = t.minColumn;
    p.maxColumn = t.maxColumn;
    return p;
}

ResultCode recordRowPiece(const RowPiece& piece, int32_t quarterTurns, const SpanRecorder& rec,
                          uint16_t* pairBuffer) {
    const int64_t first = piece.firstRow > rec.bounds.minY ? piece.firstRow : rec.bounds.minY;
    const int64_t last = piece.lastRow < rec.bounds.maxY ? piece.lastRow : rec.bounds.maxY;
    if (first > last) {
        return KRYN_OK;
    }
    const int64_t minCol = piece.minColumn > rec.bounds.minX ? piece.minColumn : rec.bounds.minX;
    const int64_t maxCol = piece.maxColumn < rec.bounds.maxX ? piece.maxColumn : rec.bounds.maxX;
    if (minCol > maxCol) {
        return KRYN_OK;
    }
    PieceSteppers s;
    bool allVertical = true;
    s.leftCount = piece.leftCount;
    s.rightCount = piece.rightCount;
    for (int32_t i = 0; i < piece.leftCount; ++i) {
        s.left[i] = stepperAt(*piece.left[i], first, quarterTurns);
        allVertical = allVertical && isVertical(piece.left[i]);
    }
    for (int32_t i = 0; i < piece.rightCount; ++i) {
        s.right[i] = stepperAt(*piece.right[i], first, quarterTurns);
        allVertical = allVertical && isVertical(piece.right[i]);
    }
    if (allVertical) {
        return recordBlockWithin(rec, s.leftColumn(), s.rightColumn() - 1, minCol, maxCol, first,
                                 last);
    }
    const bool longSloped = piece.leftCount == 1 && piece.rightCount == 1 &&
                            !isVertical(piece.left[0]) && !isVertical(piece.right[0]) &&
                            piece.lastRow - piece.firstRow >= LONG_TRAPEZOID_ROWS &&
                            rec.bandRowSpans != nullptr && rec.bandHeight > 0 &&
                            pairBuffer != nullptr && minCol >= 0 && maxCol <= UINT16_MAX;
    if (longSloped) {
        return recordLongRows(s, first, last, minCol, maxCol, rec, pairBuffer);
    }
    return recordRows(s, first, last, minCol, maxCol, rec);
}

} // namespace kryn
