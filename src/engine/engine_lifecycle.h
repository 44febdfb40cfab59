// Creating and releasing an engine.
#pragma once

#include "engine/engine.h"

#include <cstdint>

namespace kryn {

// Largest page the records can address: device columns are 16-bit, and band
// indices must leave room for the empty-range marker.
inline constexpr int32_t MAX_PAGE_WIDTH_ARGUMENT = 65535;
inline constexpr int32_t MAX_BAND_COUNT = 32766;
// Rows inside a band are 8-bit in the records.
inline constexpr int32_t MAX_BAND_HEIGHT = 256;
// The clip works in sixteenths of a pixel in 32 bits: every row of the page,
// and the row below it, must stay below 2^27.
inline constexpr int32_t MAX_PAGE_HEIGHT_ARGUMENT = (1 << 27) - 2;

// Null for a bad geometry or when memory runs out.
Engine* createEngine(int32_t width, int32_t height, int16_t bandHeight, uint16_t resolution,
                     uint16_t deviceLevel);

// Disposes of an open page, flushes buffered stream bytes and frees
// everything the engine owns.
void destroyEngine(Engine* e);

} // namespace kryn
