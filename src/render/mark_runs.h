// Run marks on a finished 32-bit band, so that the receiver can skip white
// and repeated pixels without reading them all.
//
// Within the painted box's rows each row is cut into runs of equal pixels
// (white pixels before the row's first non-white one all join the run that
// starts at column 0). A run of n pixels marks its head pixel's tag byte:
// n > 3 sets RUN_TAG_LONG and stores n as a little-endian word in the pixel
// after the head; otherwise n x 2 is ORed into the tag. RUN_TAG_BLANK on a
// run head says the row is white from there to its end; rows outside the box
// carry it on their first pixel.
#pragma once

#include "render/dirty_box.h"

#include <cstdint>

namespace kryn {

inline constexpr uint32_t RUN_TAG_LONG = 0x10;
inline constexpr uint32_t RUN_TAG_BLANK = 0x20;

// Marks the rows of a raster of `height` rows of `strideWords` pixels;
// answers whether any pixel in the box is other than white.
bool markRuns(uint32_t* raster, int32_t strideWords, int32_t height, const DirtyBox& box);

} // namespace kryn
