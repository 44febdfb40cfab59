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
using WideChordSink = ResultCode (*)(void* context, WidePoint from, WidePoint to);

// Magnitude to which 64-bit 16.16 values are clamped: far beyond the
// coordinate limit, and small enough that curve arithmetic cannot overflow.
inline constexpr int64_t WIDE_FIXED_LIMIT = int64_t{1} << 50;

// A float pixel value in 64-bit 16.16, truncated toward zero and clamped to
// +-WIDE_FIXED_LIMIT (NaN gives 0).
int64_t toWideFixed(double pixels);

// Deepest split; a curve still not flat there is finished with chords.
inline constexpr int32_t FLATTEN_MAX_DEPTH = 16;

// Cubic p[0..3] in 16.16 pixels; tolerance is the 16.16 flatness (negative:
// the curve becomes its chord).
ResultCode flattenFixed(const FixedPoint p[4], int32_t tolerance, FixedChordSink sink,
                        void* context);

// The same for a cubic in 64-bit 16.16. With a clip box, a piece whose
// four points lie outside one edge of it becomes its chord (that changes no
// winding inside the box), which bounds the work for curves far off it.
ResultCode flattenWide(const WidePoint p[4], int32_t tolerance, const WideBox* clip,
                       WideChordSink sink, void* context);

// Cubic in float pixels. A curve wholly outside one edge of clip becomes
// its chord; otherwise it is split until flat within tolerance pixels.
ResultCode flattenFloat(const FloatPoint p[4], const FloatBox& clip, float tolerance,
                        FloatChordSink sink, void* context);

// Chord count for an arc piece of the given radius (16.16 pixels) and angle
// (16.16 degrees); -1 asks for Bezier flattening instead.
int32_t arcSteps(int32_t radius, int32_t angle, int32_t tolerance);

// Flattens a power-form segment starting at p0: stepped by forward
// differencing in 16.16 with the step count of arcSteps, or, beyond the
// table, flattened as its Bezier form (by flattenWide with `clip`, which may
// be null). The last chord ends at the stepped end point, which is stored in
// *end; whatever follows the segment must start there.
ResultCode flattenPowerCurve(WidePoint p0, const PowerCubic& curve, int32_t tolerance,
                             const WideBox* clip, WideChordSink sink, void* context,
                             WidePoint* end);

} // namespace kryn
