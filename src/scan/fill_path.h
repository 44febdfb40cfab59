// Filling the current path (KRYNFill).
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// Paints the interior of the current path by the fill rule (FILL_EVEN_ODD or
// FILL_NONZERO) within the clip region. KRYN_ERR_INVALID without an open page
// or for another rule (when there is a path to fill).
ResultCode fillPath(Engine* e, uint32_t rule);

} // namespace kryn
