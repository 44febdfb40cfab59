// The device quadrilateral of a placed image or mask: its corners, the
// device pixel where its first sample lands, and the fill that cuts it into
// the spans and rectangles the installed recorders turn into band pieces.
#pragma once

#include "engine/result_codes.h"
#include "geometry/transform.h"
#include "scan/clip_region.h"
#include "scan/scan_state.h"
#include "scan/span_recorder.h"

#include <cstdint>

namespace kryn {

// Corners in order around the shape, device pixels. Corner 0 is where
// sample (0, 0) lies, corner 1 the end of the first row, corner 3 the start
// of the last row.
struct DeviceQuad {
    double x[4] = {0, 0, 0, 0};
    double y[4] = {0, 0, 0, 0};
};

struct DeviceBox {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
};

// The user rectangle x..x + width, y..y + height through the transformation,
// corner 0 at (x, y) and the corners in order around it (a negative width
// or height mirrors it).
DeviceQuad userRectQuad(const Transform& t, int32_t x, int32_t y, int32_t width, int32_t height);

// Every corner is a finite point.
bool quadIsFinite(const DeviceQuad& quad);

DeviceBox quadBox(const DeviceQuad& quad);

// Nothing of the quad can show: a corner at no finite place, an empty clip
// region, or a box wholly outside the clip box.
bool quadMissesClip(const DeviceQuad& quad, const ClipRegion& clip);

// A device pixel (64-bit: far outside the page for clamped quads).
struct DevicePixel {
    int64_t x = 0;
    int64_t y = 0;
};

// The first column and row the page's pixel rule covers at the box's
// minimum, taken in the sixteenths the fill cuts the corners to: column c is
// covered from 16c >= x on (orientations 0 and 3) or 16c > x (1 and 2), row
// r from 16r >= y (0 and 1) or 16r > y (2 and 3). An unset orientation (-1)
// rounds as orientation 0.
DevicePixel devicePosition(const DeviceQuad& quad, int32_t quarterTurns);

// Fills the quad within the clip through the recorder: its 16.16 corners
// through fillQuad when its box lies within 0..16384 pixels, else its four
// sides, clamped to +-2^27 pixels, swept with the even-odd rule. Edges are
// released afterwards either way.
ResultCode fillDeviceQuad(ScanState* scan, const DeviceQuad& quad, const ClipRegion& clip,
                          const SpanRecorder* recorder);

} // namespace kryn
