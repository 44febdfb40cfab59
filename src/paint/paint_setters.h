// The colour and logical-function setters. Each changes the current
// graphics state of the open page and nothing else; painting calls read the
// values later. Without an open page they answer KRYN_ERR_INVALID.
#pragma once

#include "engine/engine.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Selector 0 sets the colour, any other selector the background colour.
ResultCode setColour(Engine* e, ColourValue colour, uint16_t selector);

// Stores the background mode unchecked.
ResultCode setBackgroundMode(Engine* e, uint16_t mode);

// Codes above 255 answer KRYN_ERR_INVALID and store nothing.
ResultCode setLogicalFunction(Engine* e, uint16_t code);
ResultCode setLogicalFunction2(Engine* e, uint16_t code);

} // namespace kryn
