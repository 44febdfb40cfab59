#include "scan/edge_rows.h"

namespace kryn {

void rowsOfRange(int64_t yTop, int64_t yBottom, int32_t quarterTurns, int64_t* first,
                 int64_t* last) {
    if (quarterTurns == 2 || quarterTurns == 3) {
        *first = (yTop + 16) >> 4;
        *last = yBottom >> 4;
    } else {
        *first = (yTop + 15) >> 4;
        *last = (yBottom - 1) >> 4;
    }
}

ColumnStepper stepperAt(const Edge& edge, int64_t row, int32_t quarterTurns) {
    ColumnStepper s;
    int64_t dy = static_cast<int64_t>(edge.yBottom) - edge.yTop;
    int64_t dx = static_cast<int64_t>(edge.xBottom) - edge.xTop;
    if (dy == 0) {
        // A flat edge (the side of an empty rectangular region) stands for
        // the column of its top point, as a vertical edge would.
        dy = 1;
        dx = 0;
    }
    s.divisor = 16 * dy;
    const Int128 n = mul128(edge.xTop, dy) + mul128(dx, 16 * row - edge.yTop);
    const Int128 q = floorDiv128(n, s.divisor);
    s.quotient = static_cast<int64_t>(q);
    s.rest = static_cast<int64_t>(n - q * s.divisor);
    s.stepQuotient = floorDiv64(dx, dy);
    s.stepRest = 16 * (dx - s.stepQuotient * dy);
    s.strict = strictColumns(quarterTurns);
    return s;
}

void setupEdgeRows(Edge* edge, int32_t quarterTurns) {
    int64_t first = 0;
    int64_t last = 0;
    rowsOfRange(edge->yTop, edge->yBottom, quarterTurns, &first, &last);
    edge->firstRow = static_cast<int32_t>(first);
    edge->lastRow = static_cast<int32_t>(last);
    edge->dy = static_cast<int64_t>(edge->yBottom) - edge->yTop;
    if (edge->dy == 0) {
        return;
    }
    const int64_t dx = static_cast<int64_t>(edge->xBottom) - edge->xTop;
    edge->step = floorDiv64(dx, edge->dy);
    edge->remainder = dx - edge->step * edge->dy;
    const ColumnStepper s = stepperAt(*edge, first, quarterTurns);
    edge->firstColumn = s.column();
    // The error term counts from the next column boundary: non-positive.
    edge->error = (s.strict || s.rest > 0) ? s.rest - s.divisor : 0;
}

} // namespace kryn
