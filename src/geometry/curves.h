// Cubic Bezier segments given by their control points.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path_pool.h"

#include <cstdint>

namespace kryn {

struct GraphicsState;

// count user points in groups of three (control 1, control 2, end); `wide`
// selects int32 pairs over int16 pairs. KRYN_ERR_INVALID unless count is a
// positive multiple of 3; KRYN_ERR_NO_CURRENT_POINT without a current point
// or for a null array. A failure leaves the path as it was.
ResultCode beziersTo(GraphicsState& gs, PathPool& pool, const void* points, int32_t count,
                     bool wide);

} // namespace kryn
