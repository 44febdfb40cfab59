// Image samples in memory and the copies placement makes of them: turned
// into device orientation, resampled by picking, unpacked from nibbles.
// Every copy is packed (rows of whole bytes, no padding) and belongs to the
// SampleBuffer it is returned in; the source is left as it was.
#pragma once

#include "engine/result_codes.h"
#include "image/sample_buffer.h"
#include "paint/tile_turning.h"

#include <cstdint>

namespace kryn {

struct SampleImage {
    const uint8_t* data = nullptr;
    int32_t width = 0;  // samples a row
    int32_t height = 0; // rows
    int64_t stride = 0; // bytes from one row to the next
    int32_t bits = 8;   // bits a sample: 1 (most significant bit first), 4, 8, 16 or 32
};

// Bytes of a packed row of `width` samples.
inline int64_t packedRowBytes(int64_t width, int32_t bits) {
    return (width * bits + 7) / 8;
}

// The samples picked through `pick` (orientation, output size, 16.16
// steps; see TilePick) into a new packed image. 1-, 8-, 16- and 32-bit
// samples. KRYN_ERR_NO_MEMORY when memory runs out or the copy would be
// too large; KRYN_ERR_INVALID for 4-bit samples or an unusable pick.
ResultCode pickSamples(const SampleImage& source, const TilePick& pick, SampleBuffer& out,
                       SampleImage& picked);

// Resampling by picking to width x height samples: output column j takes
// source column (j x s) >> 16 and output row i source row (i x t) >> 16,
// with s = (source width << 16) / width and t likewise, truncated.
TilePick resamplePick(const SampleImage& source, int64_t width, int64_t height);

// 4-bit samples (high nibble first) unpacked to one byte a sample.
ResultCode unpackNibbles(const SampleImage& source, SampleBuffer& out, SampleImage& unpacked);

} // namespace kryn
