// Points in device space as flattening and scan conversion pass them on.
#pragma once

#include <cstdint>

namespace kryn {

// 16.16 fixed-point device pixels.
struct FixedPoint {
    int32_t x = 0;
    int32_t y = 0;
};

// 16.16 fixed-point device pixels in 64 bits, for curves that reach beyond
// the 32-bit range of 16.16 (outside the fast box) before they are clamped.
struct WidePoint {
    int64_t x = 0;
    int64_t y = 0;
};

// Box of WidePoints, inclusive.
struct WideBox {
    int64_t minX = 0;
    int64_t maxX = 0;
    int64_t minY = 0;
    int64_t maxY = 0;
};

// Float device pixels.
struct FloatPoint {
    float x = 0;
    float y = 0;
};

} // namespace kryn
