// Pixel rows and columns of edges by the page orientation's sample rules.
// Row r is covered by a y range when 16r lies in [yTop, yBottom) for 0 and 1
// quarter turns and in (yTop, yBottom] for 2 and 3. Column c lies inside a
// span when 16c is at or right of the left edge and left of the right edge
// for 0 and 3 quarter turns, strictly right of the left edge and at or left
// of the right edge for 1 and 2.
#pragma once

#include "scan/scan_types.h"
#include "scan/wide_math.h"

#include <cstdint>

namespace kryn {

// Column sampling is strict (first column strictly right of x) for 1 and 2.
inline bool strictColumns(int32_t quarterTurns) {
    return quarterTurns == 1 || quarterTurns == 2;
}

// Rows of the y range [yTop, yBottom] by the orientation's rule; first >
// last when there are none.
void rowsOfRange(int64_t yTop, int64_t yBottom, int32_t quarterTurns, int64_t* first,
                 int64_t* last);

// Fills the row and column fields of an edge whose ends and direction are
// set: firstRow, lastRow, dy, step, remainder and, on firstRow, firstColumn
// and error.
void setupEdgeRows(Edge* edge, int32_t quarterTurns);

// The first column at or right of (strictly right of, for strict sampling)
// an edge, stepped row by row without division. x(Y) * 16dy is tracked as
// quotient and remainder of 16dy.
struct ColumnStepper {
    int64_t quotient = 0;
    int64_t rest = 0; // 0 <= rest < divisor
    int64_t divisor = 1;
    int64_t stepQuotient = 0;
    int64_t stepRest = 0;
    bool strict = false;

    int64_t column() const { return quotient + (strict ? 1 : (rest > 0 ? 1 : 0)); }
    void advance() {
        quotient += stepQuotient;
        rest += stepRest;
        if (rest >= divisor) {
            rest -= divisor;
            ++quotient;
        }
    }
};

// A stepper on row `row` of a non-horizontal edge.
ColumnStepper stepperAt(const Edge& edge, int64_t row, int32_t quarterTurns);

// The edge's column on one row.
inline int64_t columnAt(const Edge& edge, int64_t row, int32_t quarterTurns) {
    return stepperAt(edge, row, quarterTurns).column();
}

} // namespace kryn
