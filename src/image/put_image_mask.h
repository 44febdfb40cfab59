// KRYNPutImageMask: a 1-bit stencil painted in the current paint colour.
#pragma once

#include "engine/result_codes.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Paints the mask with sample (0, 0) at user (x, y), one sample a user
// unit. Ownership 1 hands the samples to the engine once the arguments
// pass the checks (KRYN_ERR_INVALID leaves them with the caller); any
// other value makes the engine paint from a copy of its own.
ResultCode putImageMask(Engine* e, const ImageDesc* mask, int32_t x, int32_t y, uint16_t ownership);

} // namespace kryn
