// Float to 32-bit integer conversions for device coordinates that hostile
// matrices or coordinates can push beyond the int32 range, where a plain cast
// is undefined: out-of-range values saturate and NaN becomes 0.
#pragma once

#include <cstdint>

namespace kryn {

inline int32_t saturateToInt32(double v) {
    if (!(v == v)) {
        return 0;
    }
    if (v >= 2147483647.0) {
        return INT32_MAX;
    }
    if (v <= -2147483648.0) {
        return INT32_MIN;
    }
    return static_cast<int32_t>(v);
}

} // namespace kryn
