// The walk every member of the mask family (record 131) shares: the piece
// clipped to the raster, the dirty box widened by what is left, and each
// row's bits read most significant bit first from the recorded bit phase,
// eight at a time. Whole groups of 0x00 are skipped without a look at their
// bits; runs of whole 0xFF groups go to the paint as one run; only the
// other groups are handed over bit by bit (as a byte, first pixel in bit 7).
//
//   paint.beginRow(state, y, left)       before the groups of band row y
//   paint.run(at, x, n)                  n pixels from row offset x, all set
//   paint.group(at, x, bits, n)          the n (1..8) pixels from x, `bits`
//                                        (never 0 or a whole 0xFF of eight)
//
// Columns the record asks for past the mask's own columns repeat its last
// column, rows past its own rows its last row, as for 1-bit images.
#pragma once

#include "render/image_operand.h"
#include "render/paint_state.h"

#include <algorithm>
#include <cstdint>

namespace kryn {

// Eight bits of a row from bit `phase` (1..7) of byte k on.
inline uint32_t shiftedGroup(const uint8_t* bytes, int32_t k, uint32_t phase, bool twoBytes) {
    const uint32_t high = uint32_t{bytes[k]} << phase;
    return (twoBytes ? high | (uint32_t{bytes[k + 1]} >> (8 - phase)) : high) & 0xFFu;
}

template <class Pixel, class Paint>
void walkMaskRow(Pixel* at, const uint8_t* bytes, uint32_t phase, int32_t bits, Paint& paint) {
    int32_t runStart = -1;
    const int32_t whole = bits >> 3;
    for (int32_t k = 0; k < whole; ++k) {
        const uint32_t v = phase == 0 ? bytes[k] : shiftedGroup(bytes, k, phase, true);
        if (v == 0xFF) {
            runStart = runStart < 0 ? 8 * k : runStart;
            continue;
        }
        if (runStart >= 0) {
            paint.run(at + runStart, runStart, 8 * k - runStart);
            runStart = -1;
        }
        if (v != 0) {
            paint.group(at + 8 * k, 8 * k, v, 8);
        }
    }
    if (runStart >= 0) {
        paint.run(at + runStart, runStart, 8 * whole - runStart);
    }
    const int32_t rest = bits - 8 * whole;
    if (rest > 0) {
        // The last bits: the next byte is read only when they reach into it.
        const bool twoBytes = phase + static_cast<uint32_t>(rest) > 8;
        const uint32_t v =
            (phase == 0 ? bytes[whole] : shiftedGroup(bytes, whole, phase, twoBytes)) &
            (0xFF00u >> rest);
        if (v != 0) {
            paint.group(at + 8 * whole, 8 * whole, v, rest);
        }
    }
}

template <class Pixel, class Paint>
void walkMask(PaintState& state, const ImageOperand& op, Paint& paint) {
    if (op.data == nullptr || op.sourceColumns == 0 || op.sourceRows == 0 || op.width == 0 ||
        op.rows == 0 || op.left >= state.width || op.top >= state.height) {
        return;
    }
    const int32_t n =
        static_cast<int32_t>(std::min<uint32_t>(op.width, uint32_t(state.width - op.left)));
    const int32_t rows =
        static_cast<int32_t>(std::min<uint32_t>(op.rows, uint32_t(state.height - op.top)));
    widenDirtyBox(*state.box, op.left, op.top, op.left + n - 1, op.top + rows - 1);
    const uint32_t phase = state.bitPhase & 7u;
    const int32_t bits = static_cast<int32_t>(std::min<uint32_t>(uint32_t(n), op.sourceColumns));
    const uint32_t lastBit = phase + static_cast<uint32_t>(bits) - 1;
    for (int32_t i = 0; i < rows; ++i) {
        const uint32_t sourceRow = std::min<uint32_t>(uint32_t(i), op.sourceRows - 1);
        const uint8_t* bytes = op.data + uint64_t{op.sourceStride} * sourceRow;
        const int32_t y = op.top + i;
        Pixel* at =
            reinterpret_cast<Pixel*>(state.raster + int64_t{y} * state.strideBytes) + op.left;
        paint.beginRow(state, y, op.left);
        walkMaskRow(at, bytes, phase, bits, paint);
        if (n > bits && ((bytes[lastBit >> 3] >> (7 - (lastBit & 7))) & 1u) != 0) {
            paint.run(at + bits, bits, n - bits);
        }
    }
}

} // namespace kryn
