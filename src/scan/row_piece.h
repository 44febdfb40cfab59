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

// The piece of one trapezoid alone.
RowPiece pieceOfTrapezoid(const Trapezoid& t, int32_t quarterTurns);

// Records the piece's rows, clamped to the recorder's raster bounds:
// rectangles for vertical sides, whole-band row spans for tall sloped
// trapezoids (when the recorder takes them; `pairBuffer` holds bandHeight
// pairs), spans otherwise.
ResultCode recordRowPiece(const RowPiece& piece, int32_t quarterTurns, const SpanRecorder& rec,
                          uint16_t* pairBuffer);

} // namespace kryn
