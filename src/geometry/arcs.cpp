#include "geometry/arcs.h"

#include "geometry/path_build.h"
#include "geometry/saturate.h"

#include <cmath>

namespace kryn {
namespace {

inline constexpr float PI_F = 3.1415927f;
inline constexpr float TWO_PI_F = 6.2831855f;
inline constexpr float TENTH_F = 0.1f;
inline constexpr float NINETIETH_F = 0.011111111f;
inline constexpr int32_t QUARTER_ANGLE_FIXED = 0x5A0000; // 90 degrees, 16.16

struct Vec {
    float x, y;
};

Vec operator+(Vec a, Vec b) {
    return Vec{a.x + b.x, a.y + b.y};
}
Vec operator*(float k, Vec a) {
    return Vec{k * a.x, k * a.y};
}

// A quarter turn in the arc's direction.
Vec rotate(Vec v, int32_t direction) {
    return direction == 1 ? Vec{-v.y, v.x} : Vec{v.y, -v.x};
}

Vec mapVector(const Transform& m, Vec v) {
    float out[2];
    m.transformVector(v.x, v.y, out, m);
    return Vec{out[0], out[1]};
}

ResultCode appendArcCurve(PathPool& pool, Subpath* sub, const Transform& m, Vec p0, Vec p1, Vec p2,
                          Vec p3, int32_t radius, int32_t angle) {
    if (m.isQuarterTurn == 1) {
        const float a0[2] = {p0.x, p0.y};
        const float a1[2] = {p1.x, p1.y};
        const float a2[2] = {p2.x, p2.y};
        const float a3[2] = {p3.x, p3.y};
        return addPowerCurve(pool, sub, a0, a1, a2, a3, radius, angle);
    }
    const float points[6] = {p1.x, p1.y, p2.x, p2.y, p3.x, p3.y};
    return addCurve(pool, sub, points, false);
}

} // namespace

float arcAngle(float rx, float ry, float vx, float vy) {
    if (vx == 0.0f) {
        return vy >= 0.0f ? 90.0f : 270.0f;
    }
    if (vy == 0.0f) {
        return vx >= 0.0f ? 0.0f : 180.0f;
    }
    if (rx == ry) {
        if (std::fabs(vx) == std::fabs(vy)) {
            if (vx >= 0.0f) {
                return vy >= 0.0f ? 45.0f : 315.0f;
            }
            return vy >= 0.0f ? 135.0f : 225.0f;
        }
        float a = std::atan2(vy, vx) * DEGREES_PER_RADIAN;
        if (a < 0.0f) {
            a += 360.0f;
        }
        return a;
    }
    const float t = std::atan(rx * vy / (ry * vx));
    if (vx < 0.0f) {
        return (t + PI_F) * DEGREES_PER_RADIAN;
    }
    if (vy >= 0.0f) {
        return t * DEGREES_PER_RADIAN;
    }
    return (t + TWO_PI_F) * DEGREES_PER_RADIAN;
}

ArcDesc arcFromBox(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                   int32_t yStart, int32_t xEnd, int32_t yEnd) {
    ArcDesc arc{};
    const float l = static_cast<float>(left);
    const float t = static_cast<float>(top);
    const float r = static_cast<float>(right);
    const float b = static_cast<float>(bottom);
    arc.rx = (r - l) * 0.5f;
    arc.ry = (b - t) * 0.5f;
    arc.cx = (l + r) * 0.5f;
    arc.cy = (t + b) * 0.5f;
    arc.startAngle = arcAngle(arc.rx, arc.ry, static_cast<float>(xStart) - arc.cx,
                              static_cast<float>(yStart) - arc.cy);
    arc.endAngle = arcAngle(arc.rx, arc.ry, static_cast<float>(xEnd) - arc.cx,
                            static_cast<float>(yEnd) - arc.cy);
    arc.direction = 0;
    return arc;
}

void arcFirstPoint(const ArcDesc& arc, float out[2]) {
    const float a = arc.startAngle * RADIANS_PER_DEGREE;
    out[0] = arc.cx + arc.rx * std::cos(a);
    out[1] = arc.cy + arc.ry * std::sin(a);
}

ResultCode buildCircleArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                          const Transform& m, float end[2]) {
    float sweep =
        arc.direction == 1 ? arc.endAngle - arc.startAngle : arc.startAngle - arc.endAngle;
    while (sweep < 0.0f) {
        sweep += 360.0f;
    }
    // Rounded down to a tenth of a degree. The float constants lie slightly
    // above 1/10 and 1/90, so a whole number of quarters leaves a vanishing
    // remainder curve; the product is kept wide so that remainder survives.
    const double rounded =
        std::floor(static_cast<double>(sweep) * 10.0) * static_cast<double>(TENTH_F);
    const auto quarters = static_cast<int32_t>(rounded * static_cast<double>(NINETIETH_F));
    const auto rest = static_cast<float>(rounded - 90.0 * quarters);

    const float r = arc.rx;
    const Vec v{s[0] - arc.cx, s[1] - arc.cy};
    const Vec q = rotate(v, arc.direction);
    float centre[2];
    m.transformPoint(arc.cx, arc.cy, centre, m);
    const Vec c{centre[0], centre[1]};
    Vec dv = mapVector(m, v);
    Vec dq = mapVector(m, q);
    Vec p0 = c + dv;
    const auto radius = saturateToInt32(static_cast<double>(r) * 65536.0);

    for (int32_t i = 0; i < quarters; ++i) {
        const Vec p1 = p0 + ARC_KAPPA * dq;
        const Vec p3 = c + dq;
        const Vec p2 = p3 + ARC_KAPPA * dv;
        const ResultCode res =
            appendArcCurve(pool, sub, m, p0, p1, p2, p3, radius, QUARTER_ANGLE_FIXED);
        if (failed(res)) {
            return res;
        }
        const Vec next = dq;
        dq = -1.0f * dv;
        dv = next;
        p0 = p3;
    }
    if (rest != 0.0f) {
        const float endRad = arc.endAngle * RADIANS_PER_DEGREE;
        const Vec e{r * std::cos(endRad), r * std::sin(endRad)};
        const float half = rest * 0.5f * RADIANS_PER_DEGREE;
        const float h = 4.0f * (1.0f - std::cos(half)) / (3.0f * std::sin(half));
        const Vec startTangent = (h * ARC_KAPPA_RECIPROCAL) * (ARC_KAPPA * dq);
        const Vec endTangent = mapVector(m, -h * rotate(e, arc.direction));
        const Vec p3 = c + mapVector(m, e);
        const Vec p2 = p3 + endTangent;
        const Vec p1 = p0 + startTangent;
        const ResultCode res = appendArcCurve(pool, sub, m, p0, p1, p2, p3, radius,
                                              static_cast<int32_t>(rest * 65536.0f));
        if (failed(res)) {
            return res;
        }
        p0 = p3;
    }
    end[0] = p0.x;
    end[1] = p0.y;
    return KRYN_OK;
}

ResultCode buildEllipseArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                           const Transform& m, float end[2]) {
    Transform scaled = m;
    ArcDesc circle = arc;
    float first[2] = {s[0], s[1]};
    if (arc.rx < arc.ry) {
        const float k = arc.rx / arc.ry;
        scaled.a *= k;
        scaled.b *= k;
        circle.rx = arc.ry;
        circle.cx = arc.cx / k;
        first[0] = s[0] / k;
    } else {
        const float k = arc.ry / arc.rx;
        scaled.c *= k;
        scaled.d *= k;
        circle.ry = arc.rx;
        circle.cy = arc.cy / k;
        first[1] = s[1] / k;
    }
    circle.ry = circle.rx = arc.rx < arc.ry ? arc.ry : arc.rx;
    scaled.kind = classifyMatrix(scaled.a, scaled.b, scaled.c, scaled.d);
    computeMetrics(scaled);
    selectTransformOps(scaled);
    return buildCircleArc(pool, sub, circle, first, scaled, end);
}

ResultCode buildArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                    const Transform& m, float end[2]) {
    return arc.rx == arc.ry ? buildCircleArc(pool, sub, arc, s, m, end)
                            : buildEllipseArc(pool, sub, arc, s, m, end);
}

} // namespace kryn
