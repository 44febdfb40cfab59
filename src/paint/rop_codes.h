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

// A set of codes, one bit per code.
struct RopCodeSet {
    uint64_t words[4] = {0, 0, 0, 0};

    constexpr bool contains(uint32_t code) const {
        return code < 256 && ((words[code >> 6] >> (code & 63)) & 1) != 0;
    }
    constexpr int size() const {
        int n = 0;
        for (uint32_t code = 0; code < 256; ++code) {
            n += contains(code) ? 1 : 0;
        }
        return n;
    }
};

// Every code for which the predicate holds.
template <class Predicate>
constexpr RopCodeSet ropCodesWhere(Predicate predicate) {
    RopCodeSet set;
    for (uint32_t code = 0; code < 256; ++code) {
        if (predicate(static_cast<uint8_t>(code))) {
            set.words[code >> 6] |= uint64_t{1} << (code & 63);
        }
    }
    return set;
}

// Strokes merge overlapping pieces before painting with these codes.
inline constexpr RopCodeSet NON_IDEMPOTENT_ROPS = ropCodesWhere(isNonIdempotent);
// Image placement with these codes does not need the image's pixels.
inline constexpr RopCodeSet S_INDEPENDENT_ROPS = ropCodesWhere(isSourceIndependent);

// What the 32-bit routine of a code does with the tag byte (bits 24-31) of
// the pixel it writes. Painting gives the pixel the caller's tag; the other
// rules keep the destination's own tag, always or when the named operand's
// colour bits (0-23) are all zero or all one. This is a fixed list: a code
// that reduces to D by other means (0x2A with S zero) still paints the tag.
enum class RopTagRule : uint8_t {
    Paint,
    KeepAlways,
    KeepWhenSourceZero,
    KeepWhenSourceOnes,
    KeepWhenPatternZero,
    KeepWhenPatternOnes,
};

inline constexpr RopTagRule ropTagRule(uint8_t code) {
    switch (code) {
    case 0x55:
    case 0x5A:
    case 0x66:
    case 0x99:
    case 0xA5:
    case 0xAA:
        return RopTagRule::KeepAlways;
    case 0x11:
    case 0x15:
    case 0x1D:
    case 0x22:
    case 0xDD:
    case 0xE2:
    case 0xEA:
    case 0xEE:
        return RopTagRule::KeepWhenSourceZero;
    case 0x44:
    case 0x47:
    case 0x77:
    case 0x88:
    case 0xB8:
    case 0xBB:
        return RopTagRule::KeepWhenSourceOnes;
    case 0x05:
    case 0x0A:
    case 0xF5:
    case 0xFA:
        return RopTagRule::KeepWhenPatternZero;
    case 0x50:
    case 0x5F:
    case 0xA0:
    case 0xAF:
        return RopTagRule::KeepWhenPatternOnes;
    default:
        return RopTagRule::Paint;
    }
}

} // namespace kryn
