#include "geometry/flatten.h"

#include <cstdlib>

namespace kryn {
namespace {

struct ArcStepRow {
    int32_t steps;
    int32_t threshold;
};

// Chords per quarter circle, by (tolerance / radius) in 16.16: the largest
// threshold not above that ratio gives the step count.
constexpr ArcStepRow ARC_STEP_TABLE[] = {
    {40, 18},  {38, 20},  {36, 22}, {34, 25}, {32, 28},  {30, 32},  {28, 36},
    {26, 42},  {24, 50},  {22, 59}, {20, 71}, {18, 88},  {16, 112}, {14, 146},
    {12, 198}, {10, 286}, {8, 446}, {6, 793}, {4, 1781}, {2, 7055},
};
constexpr int32_t ARC_STEP_ROWS = sizeof(ARC_STEP_TABLE) / sizeof(ARC_STEP_TABLE[0]);
constexpr int32_t QUARTER_FIXED = 5898240;      // 90 degrees in 16.16
constexpr int32_t SMALL_ANGLE_FIXED = 0x500000; // 80 degrees in 16.16

int64_t flatness(int64_t a, int64_t b, int64_t c, int64_t d) {
    return a - b - c + d;
}

int32_t mid(int32_t a, int32_t b) {
    return static_cast<int32_t>((static_cast<int64_t>(a) + b) >> 1);
}

int64_t mid(int64_t a, int64_t b) {
    return (a + b) >> 1; // both within +-WIDE_FIXED_LIMIT
}

FixedPoint mid(FixedPoint a, FixedPoint b) {
    return FixedPoint{mid(a.x, b.x), mid(a.y, b.y)};
}

WidePoint mid(WidePoint a, WidePoint b) {
    return WidePoint{mid(a.x, b.x), mid(a.y, b.y)};
}

FloatPoint mid(FloatPoint a, FloatPoint b) {
    return FloatPoint{(a.x + b.x) * 0.5f, (a.y + b.y) * 0.5f};
}

template <class Point>
void split(const Point p[4], Point left[4], Point right[4]) {
    const Point p01 = mid(p[0], p[1]);
    const Point p12 = mid(p[1], p[2]);
    const Point p23 = mid(p[2], p[3]);
    const Point p012 = mid(p01, p12);
    const Point p123 = mid(p12, p23);
    const Point centre = mid(p012, p123);
    left[0] = p[0], left[1] = p01, left[2] = p012, left[3] = centre;
    right[0] = centre, right[1] = p123, right[2] = p23, right[3] = p[3];
}

bool wideOutsideOneEdge(const WidePoint p[4], const WideBox& clip) {
    bool left = true, right = true, above = true, below = true;
    for (int i = 0; i < 4; ++i) {
        left = left && p[i].x < clip.minX;
        right = right && p[i].x > clip.maxX;
        above = above && p[i].y < clip.minY;
        below = below && p[i].y > clip.maxY;
    }
    return left || right || above || below;
}

bool outsideOneEdge(const FixedPoint[4], const void*) {
    return false;
}

bool outsideOneEdge(const WidePoint p[4], const WideBox* clip) {
    return clip != nullptr && wideOutsideOneEdge(p, *clip);
}

// Midpoint splitting in fixed point, the same arithmetic for 32-bit and
// 64-bit points, so a curve gives the same chords in either.
template <class Point, class Box, class Sink>
ResultCode fixedStep(const Point p[4], int32_t tolerance, const Box* clip, Sink sink, void* context,
                     int32_t depth) {
    if (outsideOneEdge(p, clip)) {
        return sink(context, p[0], p[3]);
    }
    if (depth > 0) {
        const int64_t fx = flatness(p[0].x, p[1].x, p[2].x, p[3].x);
        const int64_t fy = flatness(p[0].y, p[1].y, p[2].y, p[3].y);
        if ((std::llabs(fx) + std::llabs(fy)) / 2 < tolerance || depth >= FLATTEN_MAX_DEPTH) {
            return sink(context, p[0], p[3]);
        }
    }
    Point left[4], right[4];
    split(p, left, right);
    const ResultCode r = fixedStep(left, tolerance, clip, sink, context, depth + 1);
    return failed(r) ? r : fixedStep(right, tolerance, clip, sink, context, depth + 1);
}

bool floatOutsideOneEdge(const FloatPoint p[4], const FloatBox& clip) {
    bool left = true, right = true, above = true, below = true;
    for (int i = 0; i < 4; ++i) {
        left = left && p[i].x < clip.minX;
        right = right && p[i].x > clip.maxX;
        above = above && p[i].y < clip.minY;
        below = below && p[i].y > clip.maxY;
    }
    return left || right || above || below;
}

ResultCode floatStep(const FloatPoint p[4], const FloatBox& clip, float tolerance,
                     FloatChordSink sink, void* context, int32_t depth) {
    if (floatOutsideOneEdge(p, clip)) {
        return sink(context, p[0], p[3]);
    }
    if (depth > 0) {
        const float fx = p[0].x - p[1].x - p[2].x + p[3].x;
        const float fy = p[0].y - p[1].y - p[2].y + p[3].y;
        if ((std::abs(fx) + std::abs(fy)) * 0.5f < tolerance || depth >= FLATTEN_MAX_DEPTH) {
            return sink(context, p[0], p[3]);
        }
    }
    FloatPoint left[4], right[4];
    split(p, left, right);
    const ResultCode r = floatStep(left, clip, tolerance, sink, context, depth + 1);
    return failed(r) ? r : floatStep(right, clip, tolerance, sink, context, depth + 1);
}

} // namespace

int64_t toWideFixed(double pixels) {
    const double v = pixels * 65536.0;
    if (!(v == v)) {
        return 0;
    }
    if (v >= static_cast<double>(WIDE_FIXED_LIMIT)) {
        return WIDE_FIXED_LIMIT;
    }
    if (v <= -static_cast<double>(WIDE_FIXED_LIMIT)) {
        return -WIDE_FIXED_LIMIT;
    }
    return static_cast<int64_t>(v);
}

ResultCode flattenFixed(const FixedPoint p[4], int32_t tolerance, FixedChordSink sink,
                        void* context) {
    if (tolerance < 0) {
        return sink(context, p[0], p[3]);
    }
    return fixedStep(p, tolerance, static_cast<const void*>(nullptr), sink, context, 0);
}

ResultCode flattenWide(const WidePoint p[4], int32_t tolerance, const WideBox* clip,
                       WideChordSink sink, void* context) {
    if (tolerance < 0) {
        return sink(context, p[0], p[3]);
    }
    return fixedStep(p, tolerance, clip, sink, context, 0);
}

ResultCode flattenFloat(const FloatPoint p[4], const FloatBox& clip, float tolerance,
                        FloatChordSink sink, void* context) {
    return floatStep(p, clip, tolerance, sink, context, 0);
}

int32_t arcSteps(int32_t radius, int32_t angle, int32_t tolerance) {
    if (radius == 0) {
        return -1;
    }
    const int64_t ratio = (static_cast<int64_t>(tolerance) << 16) / radius;
    int32_t n = 0;
    if (ratio >= ARC_STEP_TABLE[ARC_STEP_ROWS - 1].threshold) {
        n = ARC_STEP_TABLE[ARC_STEP_ROWS - 1].steps;
    } else if (ratio < ARC_STEP_TABLE[0].threshold) {
        return -1;
    } else {
        int32_t low = 0;                  // threshold <= ratio
        int32_t high = ARC_STEP_ROWS - 1; // threshold > ratio
        while (high - low > 1) {
            const int32_t m = (low + high) / 2;
            if (ARC_STEP_TABLE[m].threshold <= ratio) {
                low = m;
            } else {
                high = m;
            }
        }
        n = ARC_STEP_TABLE[low].steps;
    }
    if (angle < SMALL_ANGLE_FIXED) {
        n = static_cast<int32_t>(static_cast<int64_t>(n) * angle / QUARTER_FIXED);
    }
    return n;
}

ResultCode flattenPowerCurve(WidePoint p0, const PowerCubic& curve, int32_t tolerance,
                             const WideBox* clip, WideChordSink sink, void* context,
                             WidePoint* end) {
    const int64_t ax = toWideFixed(curve.ax), ay = toWideFixed(curve.ay);
    const int64_t bx = toWideFixed(curve.bx), by = toWideFixed(curve.by);
    const int64_t cx = toWideFixed(curve.cx), cy = toWideFixed(curve.cy);
    const WidePoint last{p0.x + ax + bx + cx, p0.y + ay + by + cy};
    *end = last;
    const int32_t n = arcSteps(curve.radius, curve.angle, tolerance);
    if (n == -1) {
        const WidePoint bezier[4] = {
            p0,
            {p0.x + cx / 3, p0.y + cy / 3},
            {p0.x + (bx + 2 * cx) / 3, p0.y + (by + 2 * cy) / 3},
            last,
        };
        return flattenWide(bezier, tolerance, clip, sink, context);
    }
    if (n <= 1) {
        return sink(context, p0, last);
    }
    const int64_t n2 = static_cast<int64_t>(n) * n;
    const int64_t n3 = n2 * n;
    const int64_t a[2] = {ax / n3, ay / n3};
    const int64_t b[2] = {bx / n2, by / n2};
    const int64_t c[2] = {cx / n, cy / n};
    int64_t d1[2], d2[2], d3[2];
    int64_t p[2] = {p0.x, p0.y};
    for (int k = 0; k < 2; ++k) {
        d1[k] = a[k] + b[k] + c[k];
        d2[k] = 6 * a[k] + 2 * b[k];
        d3[k] = 6 * a[k];
    }
    WidePoint from = p0;
    for (int32_t i = 1; i < n; ++i) {
        for (int k = 0; k < 2; ++k) {
            p[k] += d1[k];
            d1[k] += d2[k];
            d2[k] += d3[k];
        }
        const WidePoint to{p[0], p[1]};
        const ResultCode r = sink(context, from, to);
        if (failed(r)) {
            return r;
        }
        from = to;
    }
    return sink(context, from, last);
}

} // namespace kryn
