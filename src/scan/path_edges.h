// Edge building from the current path: walks the painted subpaths and their
// segments, flattening curves, and adds every line as edges.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path.h"
#include "scan/scan_state.h"

#include <cstdint>

namespace kryn {

// Curve flattening tolerance: the 16.16 value for the fixed flatteners and
// the float value for the clamping ones.
struct FlattenTolerance {
    int32_t fixed = 0x10000;
    float real = 1.0f;
};

// Builds the edges of every painted subpath of `path` into the table.
// pathRecords (the path pool's record count) picks the table's layout;
// subpaths whose box misses `clip` are skipped; subpaths inside the fast box
// convert in 16.16 fixed point, others through the clamping conversion.
// Every subpath is closed back to its start.
ResultCode buildPathEdges(ScanState* scan, const Path& path, const FlattenTolerance& tolerance,
                          int32_t pathRecords, const ScanFloatBox& clip);

} // namespace kryn
