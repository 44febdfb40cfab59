// Capability thresholds of the target device. The deviceLevel given to
// KRYNInit switches features on at these values; a level below the first
// selects none of them.
#pragma once

#include <cstdint>

namespace kryn {

// Band header chunk in the stream; KRYNSelectSpace honoured.
inline constexpr uint32_t LEVEL_BAND_HEADER = 0x8003;
// Screen phase sent as a full 16-bit value; wide images.
inline constexpr uint32_t LEVEL_WIDE_FIELDS = 0x8004;
// Fills record spans as rectangle lists and single-width rectangle runs.
inline constexpr uint32_t LEVEL_RECT_SPANS = 0x8005;
// Short span records (full-band columns).
inline constexpr uint32_t LEVEL_SHORT_SPANS = 0x8006;
// Monochrome band playback and content-typed raster codes.
inline constexpr uint32_t LEVEL_TYPED_RASTERS = 0x8008;
// Alpha blending takes effect.
inline constexpr uint32_t LEVEL_ALPHA_BLEND = 0x8009;

} // namespace kryn
