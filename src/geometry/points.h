// Points in device space as flattening and scan conversion pass them on.
#pragma once

#include <cstdint>

namespace kryn {

// 16.16 fixed-point device pixels.
struct FixedPoint {
    int32_t x = 0;
    int32_t y = 0;
};

// Float device pixels.
struct FloatPoint {
    float x = 0;
    float y = 0;
};

} // namespace kryn
