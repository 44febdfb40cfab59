// How a 1-bit bitmap given in user orientation (a mask, or a bitmap stored
// in the image cache) becomes a bitmap in device orientation under the
// linear part (a, b, c, d) of a transformation: which way its rows and
// columns run on the device, and how many device pixels each sample
// covers, so that one sample of the device bitmap is one device pixel.
//
// Quarter turns and mirrors, at any scale on each axis, are taken exactly
// (a scale of 1 copies, any other resamples by picking). Any other matrix
// (rotated by another angle, or sheared) takes the nearest such
// orientation, with the matrix's components along those device axes as
// the scales, as sampled images do: the bitmap is painted upright.
#pragma once

#include "paint/tile_turning.h"

#include <cstdint>

namespace kryn {

// Largest device bitmap the engine makes by resampling (bytes): a scale
// factor alone never makes it allocate more.
inline constexpr int64_t MAX_DEVICE_BITMAP_BYTES = int64_t{1} << 26;
// Rows of device bitmaps must fit the 16-bit stride of the mask record.
inline constexpr int64_t MAX_DEVICE_BITMAP_ROW_BYTES = 65535;

struct BitmapOrientation {
    TilePick pick;       // user bitmap to device bitmap
    bool copies = false; // 1:1: the pick only turns or mirrors (or is the identity)
};

enum class BitmapFit : uint8_t {
    FITS,
    EMPTY,     // nothing can show: a zero or non-finite scale
    TOO_LARGE, // past the limits above, or a scale of 65536 or more
};

// The orientation of a width x height bitmap (both >= 1) under (a, b, c, d).
// Enlarging scales step by the 16.16 step rounded up, so that a whole
// scale factor k gives every sample exactly k pixels.
BitmapFit orientBitmap(double a, double b, double c, double d, int32_t width, int32_t height,
                       BitmapOrientation& out);

// The pick turns or mirrors nothing and keeps the size.
inline bool isIdentityPick(const BitmapOrientation& o) {
    return o.copies && !o.pick.swap && !o.pick.flipX && !o.pick.flipY;
}

} // namespace kryn
