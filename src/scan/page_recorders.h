// The page's recorders: where scan conversion's rows, rectangles and
// whole-band row spans become display-list records of the bands they fall in.
#pragma once

#include "engine/result_codes.h"
#include "scan/span_recorder.h"

namespace kryn {

struct PageRecord;

// Fills *recorder with the page's recorders for its device level. Spans
// collect in per-band buffers (runs below the rectangle-span level,
// rectangle entries from it), rectangles are written at once, and nothing is
// recorded outside the band raster.
void installPageRecorders(PageRecord* page, SpanRecorder* recorder);

// Writes every band's collected runs, column runs and rectangle entries into
// its list, after the band's state records. A buffer that cannot be written
// is dropped (its runs belong to the failing call) and the first error is
// returned.
ResultCode flushPendingRuns(PageRecord* page);

} // namespace kryn
