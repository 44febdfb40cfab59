// A piece of a fill cut into pixel rows: a row range bounded on the left by
// the rightmost of up to two left edges and on the right by the leftmost of
// up to two right edges, within column limits. A trapezoid intersected with
// one trapezoid of a clip region is such a piece; so is a plain trapezoid.
#pragma once

#include "engine/result_codes.h"
#include "scan/scan_types.h"
#include "scan/span_recorder.h"

#include <cstdint>

namespace kryn {

struct RowPiece {
    int64_t firstRow = 0, lastRow = -1;
    const Edge* left[2] = {nullptr, nullptr};
    const Edge* right[2] = {nullptr, nullptr};
    int32_t leftCount = 0, rightCount = 0;
    int64_t minColumn = NO_COLUMN_MIN;
    int64_t maxColumn = NO_COLUMN_MAX;
};

// Records the span of `row` from column x0 to x1 cut to minCol..maxCol,
// when it keeps a pixel.
inline ResultCode recordSpanWithin(const SpanRecorder& rec, int64_t x0, int64_t x1, int64_t minCol,
                                   int64_t maxCol, int64_t row) {
    x0 = x0 < minCol ? minCol : x0;
    x1 = x1 > maxCol ? maxCol : x1;
    if (x0 > x1) {
        return KRYN_OK;
    }
    return rec.span(rec.ctx, static_cast<int32_t>(x0), static_cast<int32_t>(x1),
                    static_cast<int32_t>(row));
}

// Records rows first..last (first <= last) from column x0 to x1 cut to
// minCol..maxCol, when they keep a pixel: a span for one row, a rectangle
// for more.
inline ResultCode recordBlockWithin(const SpanRecorder& rec, int64_t x0, int64_t x1, int64_t minCol,
                                    int64_t maxCol, int64_t first, int64_t last) {
    if (first == last) {
        return recordSpanWithin(rec, x0, x1, minCol, maxCol, first);
    }
    x0 = x0 < minCol ? minCol : x0;
    x1 = x1 > maxCol ? maxCol : x1;
    if (x0 > x1) {
        return KRYN_OK;
    }
    return rec.rect(rec.ctx, static_cast<int32_t>(x0), static_cast<int32_t>(x1),
                    static_cast<int32_t>(first), static_cast<int32_t>(last));
}

// The piece of one trapezoid alone.
RowPiece pieceOfTrapezoid(const Trapezoid& t, int32_t quarterTurns);

// Records the piece's rows, clamped to the recorder's raster bounds:
// rectangles for vertical sides, whole-band row spans for tall sloped
// trapezoids (when the recorder takes them; `pairBuffer` holds bandHeight
// pairs), spans otherwise.
ResultCode recordRowPiece(const RowPiece& piece, int32_t quarterTurns, const SpanRecorder& rec,
                          uint16_t* pairBuffer);

} // namespace kryn
