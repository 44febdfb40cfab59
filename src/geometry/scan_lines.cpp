#include "geometry/scan_lines.h"

#include "engine/graphics_state.h"
#include "geometry/path_build.h"
#include "geometry/user_points.h"

namespace kryn {

ResultCode addScanLines(GraphicsState& gs, PathPool& pool, const void* runs, int32_t y,
                        int32_t count, bool wide) {
    if (count < 1 || runs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    const auto row = static_cast<float>(y);
    for (int32_t i = 0; i < count; ++i) {
        const UserPoint run = userPoint(runs, i, wide); // (x0, x1)
        float from[2];
        float to[2];
        gs.transform.transformPoint(run.x, row, from, gs.transform);
        gs.transform.transformPoint(run.y, row, to, gs.transform);
        const PathUndo undo = beginPathChange(gs.path, pool);
        Subpath* sub = newSubpath(pool, from[0], from[1]);
        ResultCode r =
            sub == nullptr ? KRYN_ERR_NO_MEMORY : addLine(pool, sub, to[0], to[1], false);
        if (failed(r)) {
            undoPathChange(gs.path, pool, undo);
            return r;
        }
        appendSubpath(gs.path, sub);
        gs.path.currentPoint[0] = from[0];
        gs.path.currentPoint[1] = from[1];
    }
    return KRYN_OK;
}

} // namespace kryn
