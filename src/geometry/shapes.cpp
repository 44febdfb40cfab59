#include "geometry/shapes.h"

#include "engine/graphics_state.h"
#include "geometry/arcs.h"
#include "geometry/path_build.h"
#include "geometry/saturate.h"

#include <cstdlib>

namespace kryn {
namespace {

// Runs a path change; on failure puts the path back exactly.
template <class Build>
ResultCode changePath(GraphicsState& gs, PathPool& pool, Build&& build) {
    const PathUndo undo = beginPathChange(gs.path, pool);
    const ResultCode r = build();
    if (failed(r)) {
        undoPathChange(gs.path, pool, undo);
    }
    return r;
}

void setCurrentPoint(GraphicsState& gs, float x, float y) {
    gs.path.currentPoint[0] = x;
    gs.path.currentPoint[1] = y;
}

// Appends sub to the path, closed.
void closeInto(GraphicsState& gs, Subpath* sub) {
    sub->closed = 1;
    appendSubpath(gs.path, sub);
}

int32_t wrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t wrapSub(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// The three further corners of a rectangle under a right-angle kind, whole pixels.
ResultCode integerCorners(PathPool& pool, Subpath* sub, int32_t kind, int32_t x0, int32_t y0,
                          int32_t w, int32_t h) {
    int32_t c[6];
    switch (kind) {
    case TK_TRANSLATE:
        c[0] = wrapAdd(x0, w), c[1] = y0, c[2] = wrapAdd(x0, w), c[3] = wrapAdd(y0, h);
        c[4] = x0, c[5] = wrapAdd(y0, h);
        break;
    case TK_TURN_2:
        c[0] = wrapSub(x0, w), c[1] = y0, c[2] = wrapSub(x0, w), c[3] = wrapSub(y0, h);
        c[4] = x0, c[5] = wrapSub(y0, h);
        break;
    case TK_TURN_1:
        c[0] = x0, c[1] = wrapAdd(y0, w), c[2] = wrapSub(x0, h), c[3] = wrapAdd(y0, w);
        c[4] = wrapSub(x0, h), c[5] = y0;
        break;
    default: // TK_TURN_3
        c[0] = x0, c[1] = wrapSub(y0, w), c[2] = wrapAdd(x0, h), c[3] = wrapSub(y0, w);
        c[4] = wrapAdd(x0, h), c[5] = y0;
        break;
    }
    for (int i = 0; i < 6; i += 2) {
        const ResultCode r =
            addLine(pool, sub, static_cast<float>(c[i]), static_cast<float>(c[i + 1]), true);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

// The three further corners of a rectangle, float device points.
ResultCode floatCorners(PathPool& pool, Subpath* sub, const Transform& m, float x0, float y0,
                        float w, float h) {
    float c[6];
    if (m.kind >= TK_SCALE) {
        c[0] = x0 + w * m.a, c[1] = y0, c[2] = x0 + w * m.a, c[3] = y0 + h * m.d;
        c[4] = x0, c[5] = y0 + h * m.d;
    } else if (m.kind == TK_GENERAL) {
        c[0] = x0 + w * m.a, c[1] = y0 + w * m.b;
        c[2] = c[0] + h * m.c, c[3] = c[1] + h * m.d;
        c[4] = c[2] - w * m.a, c[5] = c[3] - w * m.b;
    } else {
        c[0] = x0, c[1] = y0 + w * m.b, c[2] = x0 + h * m.c, c[3] = y0 + w * m.b;
        c[4] = x0 + h * m.c, c[5] = y0;
    }
    for (int i = 0; i < 6; i += 2) {
        const ResultCode r = addLine(pool, sub, c[i], c[i + 1], false);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace

ResultCode arcPath(GraphicsState& gs, PathPool& pool, const ArcBox& box, ArcShape shape) {
    if (box.left == box.right || box.top == box.bottom) {
        return KRYN_OK;
    }
    const Transform& m = gs.transform;
    const ArcDesc arc = arcFromBox(box.left, box.top, box.right, box.bottom, box.xStart, box.yStart,
                                   box.xEnd, box.yEnd);
    float s[2];
    arcFirstPoint(arc, s);
    float ds[2];
    m.transformPoint(s[0], s[1], ds, m);
    return changePath(gs, pool, [&]() -> ResultCode {
        Subpath* sub = nullptr;
        ResultCode r = KRYN_OK;
        if (shape == ArcShape::Open && gs.path.last != nullptr) {
            sub = segmentTarget(gs.path, pool, &r);
            if (sub == nullptr) {
                return r;
            }
            if (gs.path.currentPoint[0] != ds[0] || gs.path.currentPoint[1] != ds[1]) {
                r = addLine(pool, sub, ds[0], ds[1], false);
            }
        } else {
            sub = newSubpath(pool, ds[0], ds[1]);
            if (sub == nullptr) {
                return KRYN_ERR_NO_MEMORY;
            }
            if (shape == ArcShape::Open) {
                appendSubpath(gs.path, sub);
            }
        }
        float end[2];
        if (!failed(r)) {
            r = buildArc(pool, sub, arc, s, m, end);
        }
        if (!failed(r) && shape == ArcShape::Fan) {
            float centre[2];
            m.transformPoint(arc.cx, arc.cy, centre, m);
            r = addLine(pool, sub, centre[0], centre[1], false);
        }
        if (failed(r)) {
            return r;
        }
        if (shape == ArcShape::Open) {
            mergeBoxes(gs.path.box, sub->box);
            setCurrentPoint(gs, end[0], end[1]);
        } else {
            closeInto(gs, sub);
            setCurrentPoint(gs, ds[0], ds[1]);
        }
        return KRYN_OK;
    });
}

ResultCode ellipsePath(GraphicsState& gs, PathPool& pool, int32_t left, int32_t top, int32_t right,
                       int32_t bottom) {
    if (left == right || top == bottom) {
        return KRYN_OK;
    }
    const Transform& m = gs.transform;
    ArcDesc arc = arcFromBox(left, top, right, bottom, right, 0, right, 0);
    arc.startAngle = 0.0f;
    arc.endAngle = 360.0f;
    arc.direction = 1;
    const float s[2] = {arc.cx + arc.rx, arc.cy};
    float ds[2];
    m.transformPoint(s[0], s[1], ds, m);
    return changePath(gs, pool, [&]() -> ResultCode {
        Subpath* sub = newSubpath(pool, ds[0], ds[1]);
        if (sub == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        float end[2];
        const ResultCode r = buildArc(pool, sub, arc, s, m, end);
        if (failed(r)) {
            return r;
        }
        closeInto(gs, sub);
        setCurrentPoint(gs, ds[0], ds[1]);
        return KRYN_OK;
    });
}

ResultCode rectPath(GraphicsState& gs, PathPool& pool, int32_t x, int32_t y, int32_t w, int32_t h) {
    if (w == 0 || h == 0) {
        return KRYN_ERR_INVALID;
    }
    const Transform& m = gs.transform;
    float p0[2];
    m.transformPoint(static_cast<float>(x), static_cast<float>(y), p0, m);
    const bool integer = gs.integerCoords != 0 && isRightAngleKind(m.kind);
    const auto x0 = saturateToInt32(p0[0]);
    const auto y0 = saturateToInt32(p0[1]);
    if (integer) {
        p0[0] = static_cast<float>(x0);
        p0[1] = static_cast<float>(y0);
    }
    return changePath(gs, pool, [&]() -> ResultCode {
        Subpath* sub = newSubpath(pool, p0[0], p0[1]);
        if (sub == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        const ResultCode r = integer ? integerCorners(pool, sub, m.kind, x0, y0, w, h)
                                     : floatCorners(pool, sub, m, p0[0], p0[1],
                                                    static_cast<float>(w), static_cast<float>(h));
        if (failed(r)) {
            return r;
        }
        closeInto(gs, sub);
        setCurrentPoint(gs, p0[0], p0[1]);
        return KRYN_OK;
    });
}

ResultCode roundRectPath(GraphicsState& gs, PathPool& pool, int32_t x, int32_t y, int32_t w,
                         int32_t h, int32_t ex, int32_t ey) {
    if (w == 0 || h == 0 || ex < 1 || ey < 1 || std::abs(w / 2) < ex || std::abs(h / 2) < ey) {
        return KRYN_ERR_INVALID;
    }
    const Transform& m = gs.transform;
    const bool integer = gs.integerCoords != 0;
    const float fx = static_cast<float>(x);
    const float fy = static_cast<float>(y);
    const float fw = static_cast<float>(w);
    const float fh = static_cast<float>(h);
    const float sx = static_cast<float>(w < 0 ? -ex : ex); // radii with the sides' signs
    const float sy = static_cast<float>(h < 0 ? -ey : ey);
    const int32_t direction = h >= 0 ? (w >= 0 ? 1 : 0) : (w < 0 ? 1 : 0);
    const float step = direction == 1 ? 90.0f : -90.0f;
    float angle = h >= 0 ? 270.0f : 90.0f;

    // Per corner: the arc centre and the arc's first point, where the side
    // before it ends (user units).
    const float corners[4][4] = {
        {fx + fw - sx, fy + sy, fx + fw - sx, fy},
        {fx + fw - sx, fy + fh - sy, fx + fw, fy + fh - sy},
        {fx + sx, fy + fh - sy, fx + sx, fy + fh},
        {fx + sx, fy + sy, fx, fy + sy},
    };
    float start[2];
    m.transformPoint(fx + sx, fy, start, m);
    float lastArcStart[2] = {start[0], start[1]};
    return changePath(gs, pool, [&]() -> ResultCode {
        Subpath* sub = newSubpath(pool, start[0], start[1]);
        if (sub == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        for (int i = 0; i < 4; ++i) {
            const float* k = corners[i];
            float d[2];
            m.transformPoint(k[2], k[3], d, m);
            ResultCode r = addLine(pool, sub, d[0], d[1], integer);
            if (failed(r)) {
                return r;
            }
            lastArcStart[0] = d[0];
            lastArcStart[1] = d[1];
            const ArcDesc arc{
                k[0],         k[1],     static_cast<float>(ex), static_cast<float>(ey), angle,
                angle + step, direction};
            const float s[2] = {k[2], k[3]};
            float end[2];
            r = buildArc(pool, sub, arc, s, m, end);
            if (failed(r)) {
                return r;
            }
            angle += step;
            if (angle >= 360.0f) {
                angle -= 360.0f;
            } else if (angle < 0.0f) {
                angle += 360.0f;
            }
        }
        closeInto(gs, sub);
        setCurrentPoint(gs, lastArcStart[0], lastArcStart[1]);
        return KRYN_OK;
    });
}

} // namespace kryn
