// The pieces of a stroke (bodies, caps, joins, pen discs) and where they go:
// each piece is handed to scan conversion on its own, as a small polygon or
// a stamped disc, and never collected into an outline.
#pragma once

#include "engine/result_codes.h"
#include "scan/clip_region.h"
#include "scan/scan_state.h"
#include "scan/span_recorder.h"
#include "stroke/pen_circle.h"

#include <cstdint>

namespace kryn {

// A device point, in pixels.
struct StrokePoint {
    double x = 0;
    double y = 0;
};

// Where a stroke's pieces go. `fixed` tells the number route of the piece:
// true inside the fast box, where points convert exactly to 16.16 and edges
// come from truncated sixteenths; false for the clamping float route.
struct PieceSink {
    // A closed polygon of `count` points in order around it; `quad` marks
    // four-cornered bodies and square caps.
    ResultCode (*polygon)(void* ctx, const StrokePoint* points, int32_t count, bool quad,
                          bool fixed) = nullptr;
    // The pen's disc around a centre.
    ResultCode (*disc)(void* ctx, StrokePoint centre, const PenCircle& pen, bool fixed) = nullptr;
    void* ctx = nullptr;
};

// The page's scan conversion as a piece sink.
struct PieceScan {
    ScanState* scan = nullptr;
    const ClipRegion* clip = nullptr;
    const SpanRecorder* recorder = nullptr;
};

PieceSink scanPieceSink(PieceScan* target);

// The centre of a disc in sixteenths: 16.16 cut to sixteenths on the fixed
// route, truncated on the float route. False when a float centre lies
// beyond +-16384 pixels (the disc is skipped).
bool discCentre(StrokePoint centre, bool fixed, int32_t* x, int32_t* y);

// Stamps the pen's disc at (x, y) in sixteenths: rows whose sample line
// crosses the disc's polygon are cut into spans directly inside a
// rectangular clip, or as trapezoids intersected with the region otherwise.
ResultCode stampDisc(const PieceScan& target, int32_t x, int32_t y, const PenCircle& pen);

} // namespace kryn
