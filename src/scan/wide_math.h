// Exact integer helpers for scan conversion: 128-bit products of 64-bit
// coordinate differences and floor division.
#pragma once

#include <cstdint>

namespace kryn {

__extension__ typedef __int128 Int128;

inline Int128 mul128(int64_t a, int64_t b) {
    return static_cast<Int128>(a) * static_cast<Int128>(b);
}

// floor(n / d) for d > 0.
inline Int128 floorDiv128(Int128 n, Int128 d) {
    Int128 q = n / d;
    if (n % d != 0 && n < 0) {
        --q;
    }
    return q;
}

inline int64_t floorDiv64(int64_t n, int64_t d) {
    int64_t q = n / d;
    if (n % d != 0 && n < 0) {
        --q;
    }
    return q;
}

inline int sign128(Int128 v) {
    return v > 0 ? 1 : (v < 0 ? -1 : 0);
}

} // namespace kryn
