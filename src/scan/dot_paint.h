// Dot painting: a 2 x 2 pixel square at a user point, painted at once
// through the clip region and the band recorders, without a path.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// KRYN_ERR_INVALID without an open page. Nothing is painted before the page
// orientation is set, outside the clip's box, or with an empty clip; the
// answer is then KRYN_OK. Otherwise the answer of the band recorders.
ResultCode paintDot(Engine* e, int32_t x, int32_t y);

} // namespace kryn
