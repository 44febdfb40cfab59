// Properties of ternary raster-operation codes, derived from their truth
// tables: bit (4p + 2s + d) of a code is the result for pattern bit p,
// source bit s and destination bit d.
#pragma once

#include <cstdint>

namespace kryn {

inline constexpr uint8_t ROP_PATTERN = 0xF0;     // P
inline constexpr uint8_t ROP_SOURCE = 0xCC;      // S
inline constexpr uint8_t ROP_DESTINATION = 0xAA; // D: paints nothing
inline constexpr uint8_t ROP_PATTERN_XOR = 0x5A; // P XOR D
inline constexpr uint8_t ROP_WHITENESS = 0xFF;

// Result bit of a code for one bit of each operand.
inline constexpr bool ropBit(uint8_t code, bool p, bool s, bool d) {
    return ((code >> ((p ? 4 : 0) + (s ? 2 : 0) + (d ? 1 : 0))) & 1) != 0;
}

// The result never depends on S.
inline constexpr bool isSourceIndependent(uint8_t code) {
    for (int p = 0; p < 2; ++p) {
        for (int d = 0; d < 2; ++d) {
            if (ropBit(code, p, false, d) != ropBit(code, p, true, d)) {
                return false;
            }
        }
    }
    return true;
}

// A source-independent code f(P, D) for which painting a pixel twice gives
// something else than painting it once: f(P, f(P, D)) != f(P, D).
inline constexpr bool isNonIdempotent(uint8_t code) {
    if (!isSourceIndependent(code)) {
        return false;
    }
    for (int p = 0; p < 2; ++p) {
        for (int d = 0; d < 2; ++d) {
            const bool once = ropBit(code, p, false, d);
            if (ropBit(code, p, false, once) != once) {
                return true;
            }
        }
    }
    return false;
}

} // namespace kryn
