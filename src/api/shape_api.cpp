// Exported curves and shapes.
#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/curves.h"
#include "geometry/shapes.h"
#include "kryn/kryn.h"

namespace {

// Runs a geometry operation on the open page's current state and pool;
// KRYN_ERR_INVALID without an engine or an open page.
template <class Op>
ResultCode onPath(Engine* e, Op&& op) {
    if (e == nullptr) {
        return KRYN_ERR_INVALID;
    }
    kryn::PageRecord* page = kryn::openPage(e);
    kryn::GraphicsState* gs = kryn::currentState(e);
    if (page == nullptr || gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    return op(*gs, page->pathPool);
}

ResultCode arcShape(const kryn::ArcBox& box, kryn::ArcShape shape, Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::arcPath(gs, pool, box, shape);
    });
}

} // namespace

extern "C" {

KRYN_EXPORT ResultCode KRYNBezier3To(const int32_t points[6], Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::beziersTo(gs, pool, points, 3, true);
    });
}

KRYN_EXPORT ResultCode KRYNBezier3To16(const int16_t points[6], Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::beziersTo(gs, pool, points, 3, false);
    });
}

KRYN_EXPORT ResultCode KRYNGroupBezier3To(const int32_t* points, uint16_t count, Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::beziersTo(gs, pool, points, count, true);
    });
}

KRYN_EXPORT ResultCode KRYNGroupBezier3To16(const int16_t* points, uint16_t count, Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::beziersTo(gs, pool, points, count, false);
    });
}

KRYN_EXPORT ResultCode KRYNArcTo(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                 int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                 Engine* e) {
    return arcShape({left, top, right, bottom, xStart, yStart, xEnd, yEnd}, kryn::ArcShape::Open,
                    e);
}

KRYN_EXPORT ResultCode KRYNFanPath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                   int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                   Engine* e) {
    return arcShape({left, top, right, bottom, xStart, yStart, xEnd, yEnd}, kryn::ArcShape::Fan, e);
}

KRYN_EXPORT ResultCode KRYNBowPath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                   int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                   Engine* e) {
    return arcShape({left, top, right, bottom, xStart, yStart, xEnd, yEnd}, kryn::ArcShape::Bow, e);
}

KRYN_EXPORT ResultCode KRYNEllipsePath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                       Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::ellipsePath(gs, pool, left, top, right, bottom);
    });
}

KRYN_EXPORT ResultCode KRYNRectPath(int32_t x, int32_t y, int32_t width, int32_t height,
                                    Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::rectPath(gs, pool, x, y, width, height);
    });
}

KRYN_EXPORT ResultCode KRYNRoundRectPath(int32_t x, int32_t y, int32_t width, int32_t height,
                                         int32_t ex, int32_t ey, Engine* e) {
    return onPath(e, [&](kryn::GraphicsState& gs, kryn::PathPool& pool) {
        return kryn::roundRectPath(gs, pool, x, y, width, height, ex, ey);
    });
}

} // extern "C"
