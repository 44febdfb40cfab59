// Building paths in the page's pool: subpaths, segments, the current point,
// and the exact undo of a call that runs out of memory.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path.h"
#include "geometry/path_pool.h"

#include <cstdint>

namespace kryn {

struct GraphicsState;

// Everything a path call may change, taken before it starts so that a call
// that fails leaves the path exactly as it was.
struct PathUndo {
    Path path;
    Subpath* last;
    Subpath lastCopy;
    PathSegment* tail;     // last segment of `last`
    PathSegment* tailNext; // its successor link
    PathPoolMark mark;
};

PathUndo beginPathChange(const Path& path, const PathPool& pool);
void undoPathChange(Path& path, PathPool& pool, const PathUndo& undo);

// A subpath starting at a device point (not yet appended). Null without memory.
Subpath* newSubpath(PathPool& pool, float x, float y);

// Links a subpath after the path's last one and merges its box.
void appendSubpath(Path& path, Subpath* sub);

// Appends a segment of the given type; the caller fills the body and box.
PathSegment* appendSegment(PathPool& pool, Subpath* sub, int32_t type);

// Line to a device point, stored in whole pixels when `integer` is set.
ResultCode addLine(PathPool& pool, Subpath* sub, float x, float y, bool integer);

// Cubic with controls and end (six floats, device), whole pixels if `integer`.
ResultCode addCurve(PathPool& pool, Subpath* sub, const float points[6], bool integer);

// Cubic from p0 with controls p1, p2 and end p3, stored in power form.
ResultCode addPowerCurve(PathPool& pool, Subpath* sub, const float p0[2], const float p1[2],
                         const float p2[2], const float p3[2], int32_t radius, int32_t angle);

// The subpath that segment calls extend: the current one, or a new subpath
// at the current point when the current one is closed. Null without memory;
// KRYN_ERR_NO_CURRENT_POINT is reported through *result.
Subpath* segmentTarget(Path& path, PathPool& pool, ResultCode* result);

// Releases what this state's path took from the pool and unlinks a
// continuation from the enclosing state's path.
void freePath(Path& path, PathPool& pool);

// Gives a pushed copy of a state its own empty path, continuing the source's
// open current subpath so that the current point carries over.
ResultCode continuePath(const Path& source, Path& copy, PathPool& pool);

ResultCode moveTo(GraphicsState& gs, PathPool& pool, float x, float y);
// count (x, y) user pairs; `wide` selects int32 pairs over int16 pairs.
ResultCode linesTo(GraphicsState& gs, PathPool& pool, const void* points, int32_t count, bool wide);
void closePath(GraphicsState& gs);

} // namespace kryn
