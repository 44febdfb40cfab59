// Reading user coordinates from the driver's int32 or int16 point arrays.
#pragma once

#include <cstdint>

namespace kryn {

struct UserPoint {
    float x;
    float y;
};

// Point i of an array of (x, y) pairs; int16 pairs are sign-extended.
inline UserPoint userPoint(const void* points, int32_t i, bool wide) {
    if (wide) {
        const int32_t* p = static_cast<const int32_t*>(points) + 2 * i;
        return UserPoint{static_cast<float>(p[0]), static_cast<float>(p[1])};
    }
    const int16_t* p = static_cast<const int16_t*>(points) + 2 * i;
    return UserPoint{static_cast<float>(p[0]), static_cast<float>(p[1])};
}

} // namespace kryn
