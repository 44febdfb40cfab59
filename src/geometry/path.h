// Path records: a path is a list of subpaths, each a start point followed by
// line and curve segments, all in device coordinates. Subpaths and segments
// live in the page's PathPool.
#pragma once

#include "engine/result_codes.h"

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

// Hands segment s to a walker: walker.lineTo(x, y) for both line forms,
// walker.curve(c) (controls and end) for both Bezier forms, whole pixels
// widened, and walker.powerCurve(pc) for the power form.
template <class Walker>
ResultCode walkSegment(const PathSegment& s, Walker& walker) {
    switch (s.type) {
    case SEG_LINE:
        return walker.lineTo(s.line[0], s.line[1]);
    case SEG_LINE_INT:
        return walker.lineTo(s.lineInt[0], s.lineInt[1]);
    case SEG_CURVE:
        return walker.curve(s.curve);
    case SEG_CURVE_INT: {
        float c[6];
        for (int i = 0; i < 6; ++i) {
            c[i] = static_cast<float>(s.curveInt[i]);
        }
        return walker.curve(c);
    }
    case SEG_POLY_CURVE:
        return walker.powerCurve(s.poly);
    default:
        return KRYN_OK;
    }
}

} // namespace kryn
