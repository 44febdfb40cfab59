// A deliberately simple scan converter kept as the reference for the sweep:
// the edges sorted by inserting each into a list, every pair of edges tested
// for a crossing before the sweep, and the active list re-sorted by
// insertion at every line that has rows. It emits through the engine's own
// trapezoid emission (emitTrapezoid), and builds clip regions as the plain
// sorted list of every piece, so that the engine's sweep, band walk and clip
// regions can be compared with it record for record.
#pragma once

#include "scan/clip_stack.h"
#include "scan/scan_convert.h"

namespace kryn::test {

// As scanConvert, from the same unsorted edge table.
ResultCode referenceScanConvert(ScanState* scan, int32_t rule, const ClipRegion& clip, int32_t mode,
                                const SpanRecorder* recorder);

// As scanConvertStroke.
ResultCode referenceScanConvertStroke(ScanState* scan, const ClipRegion& clip, int32_t mode,
                                      const SpanRecorder* recorder);

// As clipWithPolylines, the region being the list of every piece.
ResultCode referenceClip(ClipStack* stack, ScanState* scan, const BaseClip& base,
                         const Polyline* subpaths, int32_t count, int32_t pathRecords, int32_t rule,
                         const ClipPage& page);

} // namespace kryn::test
