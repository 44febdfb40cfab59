// Entry points of fill scan conversion over the edges in the page's table.
#pragma once

#include "engine/result_codes.h"
#include "scan/emit_trapezoid.h"

namespace kryn {

// Sweeps the table's edges with the rule into `clip`: mode 0 paints through
// the recorder, mode 2 collects the trapezoids as a clip region. Edges and
// events are released afterwards (mode 2 keeps the region's edges).
ResultCode scanConvert(ScanState* scan, int32_t rule, const ClipRegion& clip, int32_t mode,
                       const SpanRecorder* recorder);

// Stroke outlines and image shapes: no simple-shape shortcut, no crossing
// events, even-odd rule, horizontal edges dropped.
ResultCode scanConvertStroke(ScanState* scan, const ClipRegion& clip, int32_t mode,
                             const SpanRecorder* recorder);

// The clip part of a scan: null when the fill box lies inside a rectangular
// region (no clipping needed); *skip when nothing can be painted.
const ClipRegion* clipNeededFor(const IntBox& box, const ClipRegion& clip, bool* skip);

} // namespace kryn
