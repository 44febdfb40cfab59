// Filling a four-cornered shape (stroke segments, image parallelograms)
// without events or a sweep: the corners' two chains are walked between the
// corners' y values.
#pragma once

#include "engine/result_codes.h"
#include "scan/emit_trapezoid.h"
#include "scan/polyline_edges.h"

namespace kryn {

// corners: in order around the shape, 16.16 pixels. A shape whose chains
// are not monotone in y (a crossed or dented quad) goes through the sweep.
ResultCode fillQuad(ScanState* scan, const FixedPoint corners[4], const ClipRegion& clip,
                    int32_t mode, const SpanRecorder* recorder);

} // namespace kryn
