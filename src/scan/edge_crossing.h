// Exact crossing tests of two edges, and the line at which the sweep meets
// a crossing.
#pragma once

#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

// True when the two (non-horizontal) edges cross strictly inside both.
bool edgesCross(const Edge& a, const Edge& b);

// The y of a strict crossing of a and b (which must cross) as a half-step
// key, exact: 2 * ceil(y) when y is a whole sixteenth, 2 * ceil(y) - 1
// otherwise. Keys order crossings by their exact y.
int64_t crossingKey(const Edge& a, const Edge& b);

// The sweep line of a crossing: its y rounded to the side of the row rule
// that includes the line (up for 0 and 1 quarter turns, down for 2 and 3),
// so that every sampled row sees the edges in their true order.
inline int64_t crossingLine(int64_t key, bool roundDown) {
    return roundDown ? key >> 1 : (key + 1) >> 1;
}

// The first line whose following rows see the crossed order: ceil(y).
inline int64_t crossingFlipLine(int64_t key) {
    return (key + 1) >> 1;
}

} // namespace kryn
