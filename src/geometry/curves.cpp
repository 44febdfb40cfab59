#include "geometry/curves.h"

#include "engine/graphics_state.h"
#include "geometry/path_build.h"
#include "geometry/user_points.h"

namespace kryn {

ResultCode beziersTo(GraphicsState& gs, PathPool& pool, const void* points, int32_t count,
                     bool wide) {
    if (count <= 0 || count % 3 != 0) {
        return KRYN_ERR_INVALID;
    }
    if (points == nullptr || gs.path.last == nullptr) {
        return KRYN_ERR_NO_CURRENT_POINT;
    }
    const PathUndo undo = beginPathChange(gs.path, pool);
    ResultCode r = KRYN_OK;
    Subpath* sub = segmentTarget(gs.path, pool, &r);
    float device[6] = {};
    for (int32_t i = 0; i < count && sub != nullptr && r == KRYN_OK; i += 3) {
        for (int32_t k = 0; k < 3; ++k) {
            const UserPoint u = userPoint(points, i + k, wide);
            gs.transform.transformPoint(u.x, u.y, &device[2 * k], gs.transform);
        }
        r = addCurve(pool, sub, device, gs.integerCoords != 0);
    }
    if (r != KRYN_OK) {
        undoPathChange(gs.path, pool, undo);
        return r;
    }
    mergeBoxes(gs.path.box, sub->box);
    gs.path.currentPoint[0] = device[4];
    gs.path.currentPoint[1] = device[5];
    return KRYN_OK;
}

} // namespace kryn
