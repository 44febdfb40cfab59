// KRYNSetScreen: the screen tile of the current graphics state. The tile is
// turned as the transformation turns user space (never resampled: a cell
// keeps its size in device pixels), 1-bit rows are widened to whole 32-bit
// words, and the result is registered once per page.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

struct PixelTile;

// Tone class of a colour tile's pixels (tileKind): TONE_ZERO when every
// pixel is black, TONE_ONE when every pixel is white, TONE_MIXED otherwise.
// Four-byte pixels count their first three bytes, one-byte pixels
// themselves; two-byte pixels always answer TONE_MIXED.
uint32_t tileUniformity(const PixelTile& tile);

// Validates and sets the screen; see KRYNSetScreen in kryn.h for the answers.
ResultCode setScreen(Engine* e, const ScreenTile* tile, uint16_t opaque);

} // namespace kryn
