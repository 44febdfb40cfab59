// The raster-operation routines: for every code one routine for 8-bit
// rasters and one for 32-bit tagged rasters, in one table of 512 entries.
// A renderer picks its routine once per logical-function record and calls
// it for every byte or pixel it paints.
#pragma once

#include <cstdint>

namespace kryn {

// One byte: the code's function of the low bytes of S, P and D, bit by bit.
using RopFn8 = uint8_t (*)(uint32_t s, uint32_t p, uint32_t d);

// One 32-bit pixel: bits 0-23 are the code's function of bits 0-23 of S, P
// and D; bits 24-31 are the tag byte of t (the tag of newly painted pixels;
// t's bits 0-23 are ignored), or D's own tag where the code's tag rule
// (ropTagRule) keeps it.
using RopFn24 = uint32_t (*)(uint32_t s, uint32_t p, uint32_t d, uint32_t t);

// Entries 0-255 hold fn8 of the code, entries 256-511 fn24 of code - 256.
union RopRoutine {
    RopFn8 fn8;
    RopFn24 fn24;
};

struct RopTable {
    RopRoutine entry[512];

    const RopRoutine& operator[](uint32_t index) const { return entry[index]; }
};

extern const RopTable ROP_TABLE;

inline RopFn8 ropFn8(uint32_t code) {
    return ROP_TABLE[code & 0xFF].fn8;
}

inline RopFn24 ropFn24(uint32_t code) {
    return ROP_TABLE[256 + (code & 0xFF)].fn24;
}

} // namespace kryn
