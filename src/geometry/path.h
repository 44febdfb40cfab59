// Path records: a path is a list of subpaths, each a start point followed by
// line and curve segments, all in device coordinates. Subpaths and segments
// live in the page's PathPool.
#pragma once

#include <cstdint>

namespace kryn {

// Box in device pixels; empty boxes are never stored (a box starts at a point).
struct FloatBox {
    float minX;
    float maxX;
    float minY;
    float maxY;
};

inline FloatBox pointBox(float x, float y) {
    return FloatBox{x, x, y, y};
}

inline void addPointToBox(FloatBox& box, float x, float y) {
    if (x < box.minX) {
        box.minX = x;
    }
    if (x > box.maxX) {
        box.maxX = x;
    }
    if (y < box.minY) {
        box.minY = y;
    }
    if (y > box.maxY) {
        box.maxY = y;
    }
}

inline void mergeBoxes(FloatBox& into, const FloatBox& other) {
    addPointToBox(into, other.minX, other.minY);
    addPointToBox(into, other.maxX, other.maxY);
}

enum SegmentType : int32_t {
    SEG_LINE = 0,       // end point, float
    SEG_CURVE = 1,      // cubic Bezier: two controls and the end, float
    SEG_POLY_CURVE = 2, // cubic in power form with arc radius and angle
    SEG_LINE_INT = 3,   // end point, whole device pixels
    SEG_CURVE_INT = 4,  // cubic Bezier, whole device pixels
};

// Cubic P0 + C t + B t^2 + A t^3 (P0 is the previous end point), with the
// arc radius and angle in 16.16 pixels and degrees for step selection.
struct PowerCubic {
    float ax, ay;
    float bx, by;
    float cx, cy;
    int32_t radius;
    int32_t angle;
};

struct PathSegment {
    PathSegment* prev;
    PathSegment* next;
    int32_t type;
    union {
        float line[2];
        float curve[6];
        PowerCubic poly;
        int32_t lineInt[2];
        int32_t curveInt[6];
    };
};

struct Subpath {
    Subpath* prev;
    Subpath* next;
    PathSegment* firstSegment;
    PathSegment* lastSegment;
    PathSegment* paintFirstSegment; // differs from firstSegment in a continuation
    int16_t closed;
    float start[2];
    FloatBox box; // start and every point of every segment, controls included
};

struct Path {
    Subpath* first = nullptr;      // first subpath this graphics state added
    Subpath* last = nullptr;       // current subpath; null: no current point
    Subpath* paintFirst = nullptr; // where painting starts walking
    FloatBox box = {0.0f, 0.0f, 0.0f, 0.0f};
    float currentPoint[2] = {0.0f, 0.0f};
};

// End point of a segment that starts at `start`, in device pixels.
void segmentEnd(const PathSegment& s, const float start[2], float out[2]);

} // namespace kryn
