// Stroking a path: every subpath walked segment by segment, curves
// flattened into chords, each line cut into dashes when a pattern is set,
// and each piece (body, join, cap) handed to a piece sink at once.
#pragma once

#include "engine/graphics_state.h"
#include "engine/result_codes.h"
#include "scan/scan_types.h"
#include "stroke/stroke_pieces.h"

#include <cstdint>

namespace kryn {

struct PageRecord;

// The dash work one stroke may do: every pattern entry walked counts 1 and
// every dash drawn counts the device rows it can touch within the clip. A
// stroke that needs more (tiny entries along a long path seen through a
// shrinking transformation, or countless wide dashes) draws the rest of
// its path solid, so that one call takes bounded time and memory.
inline constexpr int64_t DASH_WORK_BUDGET = int64_t{1} << 23;

// Strokes the painted subpaths of the state's path into `sink`, skipping
// subpaths whose pieces cannot reach `clipBox`. Round pens are taken from
// (or added to) the page's pens. The first join drawn with lineJoin 0
// changes it to 3 (round) in the state. KRYN_ERR_NO_MEMORY when a pen
// cannot be built; otherwise the first error of the sink.
ResultCode strokePath(GraphicsState& gs, PageRecord& page, const PieceSink& sink,
                      const ScanFloatBox& clipBox);

} // namespace kryn
