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

// Records the mask placed at `quad` (its device rectangle) within the
// state's clip, under the page's paint for mask records: the state's paint
// (colours, screen), its paint colours as the image colours, and the source
// copy 0xCC as the bands' logical function; the state itself is not
// changed. Inside a rectangular clip an upright quad's pixels go straight
// to the band pieces (the same pixels a fill of its box would give, without
// its edges); any other quad or clip is filled through the mask recorders.
// KRYN_ERR_NO_MEMORY stops it (also for a band list that can count no more
// bytes); what earlier bands received stays.
ResultCode paintMaskQuad(const GraphicsState& gs, const MaskPlacement& mask,
                         const DeviceQuad& quad);

} // namespace kryn
