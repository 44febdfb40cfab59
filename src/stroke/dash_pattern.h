// The dash pattern of the graphics state: entries (dash, gap, dash, ...) in
// user units and a phase already reduced to a position inside the pattern.
#pragma once

#include "engine/graphics_state.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// count 0 makes the line solid. Otherwise the entries are stored (a float
// copy, and a 16.16 copy when every entry lies within +-16383) and the phase
// is reduced to (dashIndex, dashOn, dashRemaining). The same entries again
// keep the arrays and only reduce the phase.
// KRYN_ERR_INVALID, nothing changed: a null array with count > 0, no entry
// above 0, or entries whose sum is 0 or less (such a pattern never moves
// along the path, and its phase cannot be reduced).
// KRYN_ERR_NO_MEMORY, nothing changed: an array could not be allocated.
ResultCode setLineDash(GraphicsState& gs, const int32_t* entries, uint16_t count, uint32_t phase);

} // namespace kryn
