#include "geometry/path_build.h"

#include "engine/graphics_state.h"
#include "geometry/saturate.h"
#include "geometry/user_points.h"

namespace kryn {
namespace {

int32_t truncateToPixel(float v) {
    return saturateToInt32(v);
}

} // namespace

void segmentEnd(const PathSegment& s, const float start[2], float out[2]) {
    switch (s.type) {
    case SEG_LINE:
        out[0] = s.line[0];
        out[1] = s.line[1];
        break;
    case SEG_CURVE:
        out[0] = s.curve[4];
        out[1] = s.curve[5];
        break;
    case SEG_LINE_INT:
        out[0] = static_cast<float>(s.lineInt[0]);
        out[1] = static_cast<float>(s.lineInt[1]);
        break;
    case SEG_CURVE_INT:
        out[0] = static_cast<float>(s.curveInt[4]);
        out[1] = static_cast<float>(s.curveInt[5]);
        break;
    default: // power form: P3 = P0 + A + B + C
        out[0] = start[0] + s.poly.ax + s.poly.bx + s.poly.cx;
        out[1] = start[1] + s.poly.ay + s.poly.by + s.poly.cy;
        break;
    }
}

PathUndo beginPathChange(const Path& path, const PathPool& pool) {
    PathUndo undo{};
    undo.path = path;
    undo.last = path.last;
    if (path.last != nullptr) {
        undo.lastCopy = *path.last;
        undo.tail = path.last->lastSegment;
        undo.tailNext = undo.tail == nullptr ? nullptr : undo.tail->next;
    }
    undo.mark = poolMark(pool);
    return undo;
}

void undoPathChange(Path& path, PathPool& pool, const PathUndo& undo) {
    path = undo.path;
    if (undo.last != nullptr) {
        *undo.last = undo.lastCopy;
        if (undo.tail != nullptr) {
            undo.tail->next = undo.tailNext;
        }
    }
    poolReleaseToMark(pool, undo.mark);
}

Subpath* newSubpath(PathPool& pool, float x, float y) {
    auto* sub = static_cast<Subpath*>(poolAlloc(pool, sizeof(Subpath)));
    if (sub == nullptr) {
        return nullptr;
    }
    sub->prev = nullptr;
    sub->next = nullptr;
    sub->firstSegment = nullptr;
    sub->lastSegment = nullptr;
    sub->paintFirstSegment = nullptr;
    sub->closed = 0;
    sub->start[0] = x;
    sub->start[1] = y;
    sub->box = pointBox(x, y);
    return sub;
}

void appendSubpath(Path& path, Subpath* sub) {
    if (path.last == nullptr) {
        path.box = sub->box;
    } else {
        mergeBoxes(path.box, sub->box);
        path.last->next = sub;
    }
    sub->prev = path.last;
    if (path.first == nullptr) {
        path.first = sub;
    }
    if (path.paintFirst == nullptr) {
        path.paintFirst = sub;
    }
    path.last = sub;
}

PathSegment* appendSegment(PathPool& pool, Subpath* sub, int32_t type) {
    auto* seg = static_cast<PathSegment*>(poolAlloc(pool, sizeof(PathSegment)));
    if (seg == nullptr) {
        return nullptr;
    }
    seg->type = type;
    seg->next = nullptr;
    seg->prev = sub->lastSegment;
    if (sub->lastSegment != nullptr) {
        sub->lastSegment->next = seg;
    }
    sub->lastSegment = seg;
    if (sub->firstSegment == nullptr) {
        sub->firstSegment = seg;
    }
    if (sub->paintFirstSegment == nullptr) {
        sub->paintFirstSegment = seg;
    }
    return seg;
}

ResultCode addLine(PathPool& pool, Subpath* sub, float x, float y, bool integer) {
    PathSegment* seg = appendSegment(pool, sub, integer ? SEG_LINE_INT : SEG_LINE);
    if (seg == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (integer) {
        seg->lineInt[0] = truncateToPixel(x);
        seg->lineInt[1] = truncateToPixel(y);
        addPointToBox(sub->box, static_cast<float>(seg->lineInt[0]),
                      static_cast<float>(seg->lineInt[1]));
    } else {
        seg->line[0] = x;
        seg->line[1] = y;
        addPointToBox(sub->box, x, y);
    }
    return KRYN_OK;
}

ResultCode addCurve(PathPool& pool, Subpath* sub, const float points[6], bool integer) {
    PathSegment* seg = appendSegment(pool, sub, integer ? SEG_CURVE_INT : SEG_CURVE);
    if (seg == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    for (int i = 0; i < 6; i += 2) {
        if (integer) {
            seg->curveInt[i] = truncateToPixel(points[i]);
            seg->curveInt[i + 1] = truncateToPixel(points[i + 1]);
            addPointToBox(sub->box, static_cast<float>(seg->curveInt[i]),
                          static_cast<float>(seg->curveInt[i + 1]));
        } else {
            seg->curve[i] = points[i];
            seg->curve[i + 1] = points[i + 1];
            addPointToBox(sub->box, points[i], points[i + 1]);
        }
    }
    return KRYN_OK;
}

ResultCode addPowerCurve(PathPool& pool, Subpath* sub, const float p0[2], const float p1[2],
                         const float p2[2], const float p3[2], int32_t radius, int32_t angle) {
    PathSegment* seg = appendSegment(pool, sub, SEG_POLY_CURVE);
    if (seg == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    PowerCubic& pc = seg->poly;
    pc.ax = 3.0f * (p1[0] - p2[0]) + p3[0] - p0[0];
    pc.ay = 3.0f * (p1[1] - p2[1]) + p3[1] - p0[1];
    pc.bx = 3.0f * (p0[0] - 2.0f * p1[0] + p2[0]);
    pc.by = 3.0f * (p0[1] - 2.0f * p1[1] + p2[1]);
    pc.cx = 3.0f * (p1[0] - p0[0]);
    pc.cy = 3.0f * (p1[1] - p0[1]);
    pc.radius = radius;
    pc.angle = angle;
    addPointToBox(sub->box, p1[0], p1[1]);
    addPointToBox(sub->box, p2[0], p2[1]);
    addPointToBox(sub->box, p3[0], p3[1]);
    return KRYN_OK;
}

Subpath* segmentTarget(Path& path, PathPool& pool, ResultCode* result) {
    Subpath* sub = path.last;
    if (sub == nullptr) {
        *result = KRYN_ERR_NO_CURRENT_POINT;
        return nullptr;
    }
    if (sub->closed != 0) {
        sub = newSubpath(pool, path.currentPoint[0], path.currentPoint[1]);
        if (sub == nullptr) {
            *result = KRYN_ERR_NO_MEMORY;
            return nullptr;
        }
        appendSubpath(path, sub);
    }
    *result = KRYN_OK;
    return sub;
}

void freePath(Path& path, PathPool& pool) {
    Subpath* first = path.first;
    if (first != nullptr) {
        if (first->prev != nullptr) {
            first->prev->next = nullptr;
            if (first->firstSegment != nullptr && first->firstSegment->prev != nullptr) {
                first->firstSegment->prev->next = nullptr;
            }
        }
        poolRelease(pool, first);
    }
    path.first = nullptr;
    path.last = nullptr;
    path.paintFirst = nullptr;
}

ResultCode continuePath(const Path& source, Path& copy, PathPool& pool) {
    copy.first = nullptr;
    const Subpath* current = source.last;
    if (current == nullptr || current->closed != 0) {
        return KRYN_OK;
    }
    auto* sub = static_cast<Subpath*>(poolAlloc(pool, sizeof(Subpath)));
    if (sub == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    *sub = *current;
    sub->next = nullptr;
    sub->firstSegment = nullptr;
    appendSubpath(copy, sub);
    return KRYN_OK;
}

ResultCode moveTo(GraphicsState& gs, PathPool& pool, float x, float y) {
    float p[2];
    gs.transform.transformPoint(x, y, p, gs.transform);
    Subpath* sub = newSubpath(pool, p[0], p[1]);
    if (sub == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    appendSubpath(gs.path, sub);
    gs.path.currentPoint[0] = p[0];
    gs.path.currentPoint[1] = p[1];
    return KRYN_OK;
}

ResultCode linesTo(GraphicsState& gs, PathPool& pool, const void* points, int32_t count,
                   bool wide) {
    if (count < 1 || points == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (gs.path.last == nullptr) {
        return KRYN_ERR_NO_CURRENT_POINT;
    }
    const PathUndo undo = beginPathChange(gs.path, pool);
    ResultCode r = KRYN_OK;
    Subpath* sub = segmentTarget(gs.path, pool, &r);
    float p[2] = {0.0f, 0.0f};
    for (int32_t i = 0; i < count && sub != nullptr && r == KRYN_OK; ++i) {
        const UserPoint u = userPoint(points, i, wide);
        gs.transform.transformPoint(u.x, u.y, p, gs.transform);
        r = addLine(pool, sub, p[0], p[1], gs.integerCoords != 0);
    }
    if (r != KRYN_OK) {
        undoPathChange(gs.path, pool, undo);
        return r;
    }
    mergeBoxes(gs.path.box, sub->box);
    gs.path.currentPoint[0] = p[0];
    gs.path.currentPoint[1] = p[1];
    return KRYN_OK;
}

void closePath(GraphicsState& gs) {
    Subpath* sub = gs.path.last;
    if (sub == nullptr || sub->closed != 0) {
        return;
    }
    sub->closed = 1;
    gs.path.currentPoint[0] = sub->start[0];
    gs.path.currentPoint[1] = sub->start[1];
}

} // namespace kryn
