// Capability thresholds of the target device. The deviceLevel given to
// KRYNInit switches features on at these values; a level below the first
// selects none of them. The values are the public ones of kryn.h.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Band header chunk in the stream; KRYNSelectSpace honoured.
inline constexpr uint32_t LEVEL_BAND_HEADER = KRYN_LEVEL_BAND_HEADER;
// Screen phase sent as a full 16-bit value; wide images.
inline constexpr uint32_t LEVEL_WIDE_FIELDS = KRYN_LEVEL_WIDE_FIELDS;
// Fills record spans as rectangle lists and single-width rectangle runs.
inline constexpr uint32_t LEVEL_RECT_SPANS = KRYN_LEVEL_RECT_SPANS;
// Short span records (full-band columns).
inline constexpr uint32_t LEVEL_SHORT_SPANS = KRYN_LEVEL_SHORT_SPANS;
// Monochrome band playback and content-typed raster codes.
inline constexpr uint32_t LEVEL_TYPED_RASTERS = KRYN_LEVEL_TYPED_RASTERS;
// Alpha blending takes effect.
inline constexpr uint32_t LEVEL_ALPHA_BLEND = KRYN_LEVEL_ALPHA_BLEND;

} // namespace kryn
