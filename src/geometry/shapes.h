// Whole shapes and arcs added to the current path: arcs continuing the path,
// pies, chords, ellipses, rectangles and rounded rectangles.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path_pool.h"

#include <cstdint>

namespace kryn {

struct GraphicsState;

// An ellipse box (left, top, right, bottom), then the start and end points
// whose rays bound the arc.
struct ArcBox {
    int32_t left, top, right, bottom;
    int32_t xStart, yStart, xEnd, yEnd;
};

enum class ArcShape {
    Open, // continues the current path
    Fan,  // pie: closed through the centre
    Bow,  // chord: closed across the ends
};

ResultCode arcPath(GraphicsState& gs, PathPool& pool, const ArcBox& box, ArcShape shape);
ResultCode ellipsePath(GraphicsState& gs, PathPool& pool, int32_t left, int32_t top, int32_t right,
                       int32_t bottom);
ResultCode rectPath(GraphicsState& gs, PathPool& pool, int32_t x, int32_t y, int32_t w, int32_t h);
ResultCode roundRectPath(GraphicsState& gs, PathPool& pool, int32_t x, int32_t y, int32_t w,
                         int32_t h, int32_t ex, int32_t ey);

} // namespace kryn
