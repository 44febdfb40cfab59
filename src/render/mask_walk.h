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
//                                        (never 0; a whole 0xFF of eight only
//                                        to paints that take no runs:
//                                        Paint::GROUPS_ONLY)
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

// The whole groups of a row. Paints that store a whole group as cheaply
// as a run (Paint::GROUPS_ONLY) get every group that is not 0x00, 0xFF
// included; others get runs of 0xFF groups gathered.
template <bool SHIFTED, class Pixel, class Paint>
void walkWholeGroups(Pixel* at, const uint8_t* bytes, uint32_t phase, int32_t whole, Paint& paint) {
    const auto group = [&](int32_t k) -> uint32_t {
        if constexpr (SHIFTED) {
            return shiftedGroup(bytes, k, phase, true);
        } else {
            return bytes[k];
        }
    };
    if constexpr (Paint::GROUPS_ONLY) {
        for (int32_t k = 0; k < whole; ++k) {
            const uint32_t v = group(k);
            if (v != 0) {
                paint.group(at + 8 * k, 8 * k, v, 8);
            }
        }
        return;
    }
    int32_t runStart = -1;
    for (int32_t k = 0; k < whole; ++k) {
        const uint32_t v = group(k);
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
}

template <class Pixel, class Paint>
void walkMaskRow(Pixel* at, const uint8_t* bytes, uint32_t phase, int32_t bits, Paint& paint) {
    const int32_t whole = bits >> 3;
    if (phase == 0) {
        walkWholeGroups<false>(at, bytes, phase, whole, paint);
    } else {
        walkWholeGroups<true>(at, bytes, phase, whole, paint);
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
    const uint8_t* bytes = op.data;
    uint8_t* row = state.raster + int64_t{op.top} * state.strideBytes;
    for (int32_t i = 0; i < rows; ++i, row += state.strideBytes) {
        Pixel* at = reinterpret_cast<Pixel*>(row) + op.left;
        paint.beginRow(state, op.top + i, op.left);
        walkMaskRow(at, bytes, phase, bits, paint);
        if (n > bits && ((bytes[lastBit >> 3] >> (7 - (lastBit & 7))) & 1u) != 0) {
            paint.run(at + bits, bits, n - bits);
        }
        if (uint32_t(i) + 1 < op.sourceRows) {
            bytes += op.sourceStride;
        }
    }
}

} // namespace kryn
