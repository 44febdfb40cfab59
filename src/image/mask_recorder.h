// The recorders of masks and cached bitmaps: the pieces of a 1-bit device
// bitmap that the fill (or the cache's rectangle path) hands over become
// records 131 of the bands they fall in, each pointing into the bitmap at
// the byte that holds its first sample, with the bit phase before it.
#pragma once

#include "engine/result_codes.h"
#include "image/band_pieces.h"
#include "image/device_quad.h"

#include <cstdint>

namespace kryn {

struct GraphicsState;
struct PageRecord;

// A bitmap in device orientation, rows most significant bit first, and
// the device pixel of its first sample. Pieces are cut to its rectangle,
// so a fill that reaches past it records nothing there.
struct MaskPlacement {
    PageRecord* page = nullptr;
    const uint8_t* bits = nullptr;
    int32_t width = 0;  // device pixels a row
    int32_t height = 0; // rows
    int32_t stride = 0; // bytes from one row to the next, at most 65535
    int64_t deviceX = 0;
    int64_t deviceY = 0;
};

// The page's paint for mask records: the state's paint (colours, screen),
// its paint colours as the image colours, and the source copy 0xCC as the
// bands' logical function. The state itself is not changed.
void setupMaskPaint(const GraphicsState& gs, PageRecord& page);

// Records the mask's pixels in columns x0..x1 of rows y0..y1 (inside the
// page raster), band by band. KRYN_ERR_NO_MEMORY stops it; what earlier
// bands received stays.
ResultCode recordMaskRect(const MaskPlacement& mask, int32_t x0, int32_t x1, int32_t y0,
                          int32_t y1);

// The rectangular-clip path: records the pixels of the device box (the
// mask's own rectangle, corners in pixels) that the rectangular clip admits
// by the page's pixel rule, straight into the recorder: the same pixels a
// fill of the box would give, without its edges.
ResultCode recordMaskInsideRect(const MaskPlacement& mask, const ClipRegion& clip,
                                int32_t quarterTurns, const DeviceBox& box);

// Fills *pieces and *recorder so that a fill records the mask through
// recordMaskRect; *mask must outlive the fill.
void installMaskRecorders(const MaskPlacement* mask, BandPieceRecorder* pieces,
                          SpanRecorder* recorder);

} // namespace kryn
