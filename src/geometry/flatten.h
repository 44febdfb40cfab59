// Flattening curves into chords for scan conversion. Each flattener hands
// its chords, in order, to a sink; a sink's failure stops the flattening and
// is returned.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path.h"
#include "geometry/points.h"

#include <cstdint>

namespace kryn {

using FixedChordSink = ResultCode (*)(void* context, FixedPoint from, FixedPoint to);
using FloatChordSink = ResultCode (*)(void* context, FloatPoint from, FloatPoint to);

// Deepest split; a curve still not flat there is finished with chords.
inline constexpr int32_t FLATTEN_MAX_DEPTH = 16;

// Cubic p[0..3] in 16.16 pixels; tolerance is the 16.16 flatness (negative:
// the curve becomes its chord).
ResultCode flattenFixed(const FixedPoint p[4], int32_t tolerance, FixedChordSink sink,
                        void* context);

// Cubic in float pixels. A curve wholly outside one edge of clip becomes
// its chord; otherwise it is split until flat within tolerance pixels.
ResultCode flattenFloat(const FloatPoint p[4], const FloatBox& clip, float tolerance,
                        FloatChordSink sink, void* context);

// Chord count for an arc piece of the given radius (16.16 pixels) and angle
// (16.16 degrees); -1 asks for Bezier flattening instead.
int32_t arcSteps(int32_t radius, int32_t angle, int32_t tolerance);

// Flattens a power-form segment starting at p0 (16.16) and stores its end
// point in *end.
ResultCode flattenPowerCurve(FixedPoint p0, const PowerCubic& curve, int32_t tolerance,
                             FixedChordSink sink, void* context, FixedPoint* end);

} // namespace kryn
