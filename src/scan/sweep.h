// The sweep: walks the lines where edges start, end or cross, keeps the
// active edges in left-to-right order, and emits the trapezoid between each
// left and right edge that the fill rule pairs.
#pragma once

#include "engine/result_codes.h"
#include "scan/emit_trapezoid.h"

namespace kryn {

// Folds one crossed edge into the running inside state.
inline int32_t foldFillRule(int32_t rule, int32_t state, const Edge& e) {
    return rule == FILL_EVEN_ODD ? (state == 0 ? 1 : 0) : state + e.direction;
}

// Sweeps the (non-horizontal) edges of the sorted table with the fill rule.
// With crossingLines, every crossing of two edges is an event line of its
// own (fills); without, crossings only reorder the edges (stroke outlines).
ResultCode sweepEdges(ScanState* scan, int32_t rule, const ScanTarget& target, bool crossingLines);

// Order of two edges on the rows that follow line y: x on the line (on the
// line below for 2 and 3 quarter turns), then slope. Exact.
bool edgeLeftOf(const Edge& a, const Edge& b, int64_t y);

} // namespace kryn
