// KRYNStroke: paints the current path as a line of the current width, caps,
// joins and dash pattern, through the clip region with the current paint.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

namespace kryn {

// KRYN_ERR_INVALID without an open page; KRYN_OK for an empty path. The path
// is consumed (kept once when sealed; freed after an error).
ResultCode strokeCurrentPath(Engine* e);

} // namespace kryn
