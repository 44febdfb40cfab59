// The page's blend settings: the switch, the constant alpha and the two
// colour keys (key 0 for paint and tiles, key 1 for images). They live in
// the open page's PaintDescriptor, outside the graphics-state stack, from
// the page's start (blending off, no constant alpha, both keys off) until
// changed; every painting call carries them into its bands.
#pragma once

#include "engine/engine.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Blending is on (with the low byte of `value`) only on devices of level
// 0x8009 and above; `value` itself always becomes the engine's alpha mode,
// so a non-zero value records colours with their alpha byte on any device.
// The first value of exactly 1 in a page sets alphaUsed and, on a colour
// page, takes every band off the black-and-white renderer.
ResultCode setAlphaBlend(Engine* e, uint16_t value);

// Constant alpha 0..255 (255: none); other values answer KRYN_ERR_INVALID
// and store nothing.
ResultCode setConstantAlpha(Engine* e, int32_t value);

// Selector 0 addresses key 0, any other key 1. With ranges, the key takes
// `alpha` and the three (low byte minimum, high byte maximum) ranges of
// channels 0, 1 and 2; a null pointer turns the key off (alpha 255) and
// keeps its ranges. Every value is accepted.
ResultCode setAlphaKey(Engine* e, const uint16_t* ranges, uint8_t alpha, uint16_t selector);

} // namespace kryn
