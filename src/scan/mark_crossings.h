// Finds every pair of edges that cross strictly inside both and adds a
// crossing event at the crossing's line, so that the sweep stops there and
// the two edges can change places.
#pragma once

#include "engine/result_codes.h"
#include "scan/scan_state.h"

namespace kryn {

// Takes the horizontal edges out of the table first. The crossing line is
// the crossing's y rounded to the side of the row rule that includes the
// line: up for 0 and 1 quarter turns, down for 2 and 3, so that every
// sampled row sees the edges in their true order.
ResultCode markCrossings(ScanState* scan);

// True when the two (non-horizontal) edges cross strictly inside both.
bool edgesCross(const Edge& a, const Edge& b);

} // namespace kryn
