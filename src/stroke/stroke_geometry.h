// Geometry of stroke pieces: the offset vector of a line (half the line's
// width across it, the image of the user-space pen), the line's length in
// user units, and the body, cap and join pieces built from them.
#pragma once

#include "engine/result_codes.h"
#include "geometry/transform.h"
#include "stroke/stroke_pieces.h"

#include <cstdint>

namespace kryn {

struct StrokeStyle {
    const Transform* transform = nullptr;
    double halfWidth = 0.5;       // user units
    double deviceHalfWidth = 0.5; // halfWidth x |scale|
    bool thin = true;             // at most one device pixel wide: bodies only
    uint32_t cap = 0;
    uint32_t join = 2;              // never STROKE_JOIN_DEFAULT here
    double miterLength = 5.0;       // user units
    const PenCircle* pen = nullptr; // null: round caps and joins draw nothing
    int32_t penRadius = 0;          // 16.16, for the arc chord table
    int32_t flatnessFixed = 0x10000;
};

// A line being stroked, from p to q in device pixels.
struct StrokeLine {
    StrokePoint p, q;
    StrokePoint d; // q - p
    StrokePoint n; // offset vector: corners p + n, q + n, q - n, p - n
    double userLength = 0;
    double deviceLength = 0;
};

// The offset vector for the device direction (dx, dy), in whole sixteenths
// of a pixel.
StrokePoint offsetVector(const StrokeStyle& style, double dx, double dy);

// Length in user units of the device vector (dx, dy).
double userLength(const Transform& t, double dx, double dy);

StrokeLine makeStrokeLine(const StrokeStyle& style, StrokePoint p, StrokePoint q);

// The point `s` user units along the line from p (truncated to 16.16 on the
// fixed route); s = userLength gives q exactly.
StrokePoint pointAlong(const StrokeLine& line, double s, bool fixed);

// The body between two points of the line.
ResultCode emitBody(const PieceSink& sink, const StrokeLine& line, StrokePoint a, StrokePoint b,
                    bool fixed);

// The cap at `at` on the line: backward for a start cap, forward for an
// end cap. Nothing for a thin line or a flat cap.
ResultCode emitCap(const StrokeStyle& style, const PieceSink& sink, const StrokeLine& line,
                   StrokePoint at, bool start, bool fixed);

// The join where line a ends and line b starts. Nothing for a thin line or
// collinear lines.
ResultCode emitJoin(const StrokeStyle& style, const PieceSink& sink, const StrokeLine& a,
                    const StrokeLine& b, bool fixed);

} // namespace kryn
