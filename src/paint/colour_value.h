// Colour values and the tag byte of 32-bit pixels. A ColourValue holds red
// in bits 0-7, green in 8-15 and blue in 16-23; bits 24-31 are alpha (used
// only while blending) or, in a 32-bit band raster, the pixel's tag byte.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

inline constexpr uint32_t COLOUR_CHANNELS = 0x00FFFFFF; // red, green, blue
inline constexpr uint32_t TAG_BITS = 0xFF000000;        // alpha or pixel tag

// Channel 0 (red), 1 (green) or 2 (blue).
inline constexpr uint8_t colourChannel(ColourValue c, int channel) {
    return static_cast<uint8_t>(c >> (8 * channel));
}

// The three channels are equal.
inline constexpr bool isGrey(ColourValue c) {
    return colourChannel(c, 0) == colourChannel(c, 1) && colourChannel(c, 0) == colourChannel(c, 2);
}

// Same red, green and blue; alpha is not compared.
inline constexpr bool sameChannels(ColourValue a, ColourValue b) {
    return ((a ^ b) & COLOUR_CHANNELS) == 0;
}

} // namespace kryn
