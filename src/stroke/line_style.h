// Line attributes of the graphics state: width, caps, joins and the miter
// limit, with their setters. Setters validate and store only; a value equal
// to the stored one changes nothing.
#pragma once

#include "engine/graphics_state.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// Cap and join codes as the setters take them.
inline constexpr uint32_t STROKE_CAP_FLAT = 0;
inline constexpr uint32_t STROKE_CAP_ROUND = 1;
inline constexpr uint32_t STROKE_CAP_SQUARE = 2;
inline constexpr uint32_t STROKE_JOIN_DEFAULT = 0; // becomes STROKE_JOIN_ROUND at the first join
inline constexpr uint32_t STROKE_JOIN_BEVEL = 1;
inline constexpr uint32_t STROKE_JOIN_MITER = 2;
inline constexpr uint32_t STROKE_JOIN_ROUND = 3;

// Largest value whose 16.16 form fits; larger ones are stored as -1.
inline constexpr double FIXED_VALUE_LIMIT = 16383.0;

// trunc(v * 65536) for v <= 16383, else -1.
int32_t fixedOrMinusOne(double v);

// width < 0: KRYN_ERR_INVALID. The half-width, its 16.16 form and the
// miter length follow.
ResultCode setLineWidth(GraphicsState& gs, int32_t width);
// cap above 2: KRYN_ERR_INVALID.
ResultCode setLineCap(GraphicsState& gs, uint32_t cap);
// join above 3: KRYN_ERR_INVALID.
ResultCode setLineJoin(GraphicsState& gs, uint32_t join);
// limit below 1: KRYN_ERR_INVALID.
ResultCode setMiterLimit(GraphicsState& gs, int32_t limit);

} // namespace kryn
