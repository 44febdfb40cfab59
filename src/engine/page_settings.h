// Page-wide settings that only store into the resources or the page: colour
// space, colour attributes and quantisation.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// Switches the open page between 32-bit colour (0) and 8-bit grey (1)
// rendering; other values and engines below level 0x8003 change nothing.
ResultCode selectColourSpace(Engine* e, int32_t space);

void setColourAttributes(Engine* e, uint32_t a, uint32_t b, uint32_t c);

// Quantisation follows the resolution: 300 and 600 keep it, others give 0.
void setQuantization(Engine* e);

} // namespace kryn
