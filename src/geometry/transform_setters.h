// The calls that change the current transformation of the open page.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// m = a, b, c, d, tx, ty as integers. KRYN_ERR_INVALID for a singular matrix.
ResultCode setMatrix(Engine* e, const int32_t m[6]);

// Multiplies the linear part by s; KRYN_ERR_INVALID when that makes it singular.
ResultCode setScale(Engine* e, float s);

// Adds (dx, dy) device pixels to the translation.
ResultCode setTranslation(Engine* e, int32_t dx, int32_t dy);

// Puts a float matrix back (the clip reset uses it); leaves integerCoords,
// the page orientation and the clip alone.
ResultCode restoreTransform(Engine* e, const float m[6], float scale);

} // namespace kryn
