// Where the trapezoids of a sweep go: painted through the recorder (mode 0),
// or collected as a clip region (mode 2), in both cases intersected with the
// clip region first when the fill is not wholly inside it.
#pragma once

#include "engine/result_codes.h"
#include "scan/clip_region.h"
#include "scan/scan_state.h"
#include "scan/span_recorder.h"

namespace kryn {

struct ScanTarget {
    int32_t mode = SCAN_MODE_PAINT;
    const ClipRegion* clip = nullptr; // null: no clipping needed
    const SpanRecorder* recorder = nullptr;
};

// Emits one trapezoid (edges and y range set; corners are filled here when
// clipping needs them).
ResultCode emitTrapezoid(ScanState* scan, Trapezoid& t, const ScanTarget& target);

// Emits a trapezoid that is already inside the clip.
ResultCode emitClippedPiece(ScanState* scan, const Trapezoid& t, const ScanTarget& target);

// Emits the intersection of two trapezoids (mode 0: up to two edges per
// side; mode 2: `c` has vertical sides and becomes column limits).
ResultCode emitIntersection(ScanState* scan, const Trapezoid& t, const Trapezoid& c,
                            const ScanTarget& target);

} // namespace kryn
