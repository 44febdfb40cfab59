// The output seam of scan conversion: where rows, rectangles and whole-band
// row spans go. The page installs recorders that write band display lists;
// tests install recorders that paint a bitmap.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// Inclusive pixel limits of the raster; nothing is recorded outside them.
struct RasterBounds {
    int32_t minX = 0, maxX = -1, minY = 0, maxY = -1;
};

struct SpanRecorder {
    // Pixels x0..x1 of row y.
    ResultCode (*span)(void* ctx, int32_t x0, int32_t x1, int32_t y) = nullptr;
    // The rectangle x0..x1 by y0..y1.
    ResultCode (*rect)(void* ctx, int32_t x0, int32_t x1, int32_t y0, int32_t y1) = nullptr;
    // Optional: rowCount rows from firstRow (one whole band, starting on its
    // first row), pairs[2i] = left column and pairs[2i + 1] = pixel count of
    // row firstRow + i (count 0: nothing on that row). allEqual is 1 when
    // every pair is the same.
    ResultCode (*bandRowSpans)(void* ctx, int32_t firstRow, int32_t rowCount, const uint16_t* pairs,
                               int32_t allEqual) = nullptr;
    void* ctx = nullptr;
    RasterBounds bounds;
    int32_t bandHeight = 0; // rows per band, for bandRowSpans
};

} // namespace kryn
