// Reference evaluation of raster-operation codes straight from their truth
// tables, and operand patterns that put every combination of operand bits
// at every bit position.
#pragma once

#include <cstdint>
#include <vector>

namespace kryn::test {

// Bit (4p + 2s + d) of the code, applied to each of the low `bits` bits.
inline uint32_t referenceRop(uint32_t code, uint32_t s, uint32_t p, uint32_t d, int bits) {
    uint32_t result = 0;
    for (int k = 0; k < bits; ++k) {
        const uint32_t index = 4 * ((p >> k) & 1) + 2 * ((s >> k) & 1) + ((d >> k) & 1);
        result |= ((code >> index) & 1) << k;
    }
    return result;
}

struct Operands {
    uint32_t s, p, d;
};

inline uint32_t rotateByte(uint32_t byte, int r) {
    return ((byte << r) | (byte >> (8 - r))) & 0xFF;
}

// Bytes P = 0xF0, S = 0xCC, D = 0xAA hold the eight operand combinations in
// their eight bits; the eight rotations move each combination through every
// bit position. Each channel of a 24-bit operand gets its own rotation.
inline std::vector<Operands> everyBitCombination(int channels) {
    std::vector<Operands> out;
    for (int r = 0; r < 8; ++r) {
        Operands o{0, 0, 0};
        for (int c = 0; c < channels; ++c) {
            const int shift = 8 * c;
            const int rot = (r + 3 * c) % 8;
            o.s |= rotateByte(0xCC, rot) << shift;
            o.p |= rotateByte(0xF0, rot) << shift;
            o.d |= rotateByte(0xAA, rot) << shift;
        }
        out.push_back(o);
    }
    return out;
}

} // namespace kryn::test
