// Edge building from subpaths given as polylines: the seam through which a
// path walker (or a test) hands points to scan conversion. Every subpath is
// closed back to its first point.
#pragma once

#include "engine/result_codes.h"
#include "geometry/points.h"
#include "scan/scan_state.h"

#include <cstdint>

namespace kryn {

// One subpath: either float points or 16.16 points.
struct Polyline {
    const FloatPoint* floatPoints = nullptr;
    const FixedPoint* fixedPoints = nullptr;
    int32_t count = 0;
};

// Builds the edges of the subpaths into the table. pathRecords picks the
// table's layout; subpaths whose box misses `clip` are skipped; subpaths
// inside the 16384-pixel fast box convert directly, others are clamped to
// +-2^27 pixels.
ResultCode buildEdges(ScanState* scan, const Polyline* subpaths, int32_t subpathCount,
                      int32_t pathRecords, const ScanFloatBox& clip);

// One line by the clamping conversion (two or three edges when it leaves
// the limit box). Points in pixels; doubles hold float path points and
// 16.16 points alike exactly.
ResultCode addLineClamped(ScanState* scan, double x0, double y0, double x1, double y1);

// One float line by the direct conversion (both points inside the fast box).
ResultCode addLineDirect(ScanState* scan, float x0, float y0, float x1, float y1);

} // namespace kryn
