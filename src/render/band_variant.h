// The three ways a band is played, which differ in raster layout and in the
// records they understand.
#pragma once

#include <cstdint>

namespace kryn {

enum BandVariant : uint8_t {
    BAND_GREY,   // 8-bit grey page
    BAND_MONO,   // black-and-white band of a colour page, played as 8-bit grey
    BAND_COLOUR, // 32-bit tagged colour
};

} // namespace kryn
