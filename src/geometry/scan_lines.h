// Scan lines: a row of horizontal runs added to the current path, one open
// subpath per run, for whatever painting call consumes the path next.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path_pool.h"

#include <cstdint>

namespace kryn {

struct GraphicsState;

// count (x0, x1) user pairs on user row y; `wide` selects int32 values over
// int16 ones (sign-extended). Each run becomes a subpath from (x0, y) with
// one float line to (x1, y), and the current point moves to the run's
// start. KRYN_ERR_INVALID for count < 1 or a null array; on
// KRYN_ERR_NO_MEMORY the failing run adds nothing and the runs before it
// stay.
ResultCode addScanLines(GraphicsState& gs, PathPool& pool, const void* runs, int32_t y,
                        int32_t count, bool wide);

} // namespace kryn
