#include "stroke/stroke_geometry.h"

#include "geometry/flatten.h"
#include "stroke/line_style.h"

#include <cmath>
#include <numbers>

namespace kryn {

namespace {

// Lines within 1:16 of an axis keep exactly the half-width across the
// minor axis (narrow lines only).
constexpr double NEAR_AXIS_RATIO = 16.0;
constexpr double NEAR_AXIS_HALF_WIDTH = 2.0;
// The longest round-join arc: two quarter turns of the finest table row,
// twice over, plus the centre and the two ends.
constexpr int32_t MAX_ARC_POINTS = 4 * 40 + 3;

double fix16(double v) {
    return std::trunc(v * 65536.0) / 65536.0;
}

// Offsets are cut to whole sixteenths toward zero on both routes, so that
// the two corners p + n and p - n stay symmetric around p once cut to the
// sixteenths of scan conversion: pieces meeting at a point then share their
// edges exactly, and no sample where they meet is lost between them.
double sixteenths(double v) {
    return std::trunc(v * 16.0) / 16.0;
}

double sign(double v) {
    return v < 0 ? -1.0 : 1.0;
}

StrokePoint add(StrokePoint a, StrokePoint b) {
    return {a.x + b.x, a.y + b.y};
}
StrokePoint sub(StrokePoint a, StrokePoint b) {
    return {a.x - b.x, a.y - b.y};
}
StrokePoint times(StrokePoint a, double k) {
    return {a.x * k, a.y * k};
}

// The offset as the image of the pen circle, for any transformation.
StrokePoint metricOffset(const Transform& t, double w, double dx, double dy) {
    const double xx = t.metricXX, xy = t.metricXY, yy = t.metricYY;
    const double k = w / std::sqrt(yy * dx * dx - 2.0 * xy * dx * dy + xx * dy * dy);
    return {k * (xx * dy - xy * dx), k * (xy * dy - yy * dx)};
}

StrokePoint rightAngleOffset(double w, double dx, double dy) {
    if (dx == 0) {
        return {w * sign(dy), 0};
    }
    if (dy == 0) {
        return {0, -w * sign(dx)};
    }
    if (w <= NEAR_AXIS_HALF_WIDTH) {
        if (std::fabs(dy) >= NEAR_AXIS_RATIO * std::fabs(dx)) {
            return {w * sign(dy), -dx * w / std::fabs(dy)};
        }
        if (std::fabs(dx) >= NEAR_AXIS_RATIO * std::fabs(dy)) {
            return {dy * w / std::fabs(dx), -w * sign(dx)};
        }
    }
    const double k = w / std::hypot(dx, dy);
    return {dy * k, -dx * k};
}

ResultCode emitPolygon(const PieceSink& sink, const StrokePoint* p, int32_t count, bool fixed) {
    return sink.polygon(sink.ctx, p, count, false, fixed);
}

ResultCode emitBevel(const PieceSink& sink, StrokePoint j, StrokePoint outerA, StrokePoint outerB,
                     bool fixed) {
    const StrokePoint triangle[3] = {j, outerA, outerB};
    return emitPolygon(sink, triangle, 3, fixed);
}

// The miter tip is where the outer edges of the two bodies meet, which
// closes the notch between them exactly under every transformation; its
// distance from the corner, measured in user space (where the pen is a
// circle), decides between the miter and the bevel.
ResultCode emitMiter(const StrokeStyle& style, const PieceSink& sink, const StrokeLine& a,
                     const StrokeLine& b, StrokePoint outerA, StrokePoint outerB, bool fixed) {
    const StrokePoint j = b.p;
    const double cross = a.d.x * b.d.y - a.d.y * b.d.x;
    const double u = ((outerB.x - outerA.x) * b.d.y - (outerB.y - outerA.y) * b.d.x) / cross;
    StrokePoint tip = add(outerA, times(a.d, u));
    // Nearly straight joins put the tip within rounding of the bevel's
    // outer side (or, with offsets cut to sixteenths, behind it): the bevel
    // alone closes such a notch.
    const double beyond =
        (outerB.x - outerA.x) * (tip.y - outerA.y) - (outerB.y - outerA.y) * (tip.x - outerA.x);
    const double inner =
        (outerB.x - outerA.x) * (j.y - outerA.y) - (outerB.y - outerA.y) * (j.x - outerA.x);
    if (!(beyond * inner < 0) || !std::isfinite(u)) {
        return emitBevel(sink, j, outerA, outerB, fixed);
    }
    const float* inv = style.transform->inverse;
    const double mx = inv[0] * (tip.x - j.x) + inv[2] * (tip.y - j.y);
    const double my = inv[1] * (tip.x - j.x) + inv[3] * (tip.y - j.y);
    if (!(std::hypot(mx, my) <= style.miterLength)) {
        return emitBevel(sink, j, outerA, outerB, fixed);
    }
    if (fixed) {
        tip = {fix16(tip.x), fix16(tip.y)};
    }
    const StrokePoint quad[4] = {j, outerA, tip, outerB};
    return emitPolygon(sink, quad, 4, fixed);
}

// A short round join: the fan from j over an arc of chords from outerA to
// outerB (the bevel alone when the turn is below a quarter).
ResultCode emitArcJoin(const StrokeStyle& style, const PieceSink& sink, StrokePoint j,
                       StrokePoint outerA, StrokePoint outerB, StrokePoint va, StrokePoint vb,
                       bool fixed) {
    const double cosine =
        (va.x * vb.x + va.y * vb.y) / (std::hypot(va.x, va.y) * std::hypot(vb.x, vb.y));
    double degrees =
        std::floor(std::acos(std::fmax(-1.0, std::fmin(1.0, cosine))) * 1800.0 / std::numbers::pi) /
        10.0;
    degrees = degrees > 180.0 ? 360.0 - degrees : degrees;
    const int32_t quarters = degrees >= 180.0 ? 2 : (degrees >= 90.0 ? 1 : 0);
    int32_t chords = 0;
    if (quarters > 0) {
        const int32_t perQuarter = arcSteps(style.penRadius, 90 << 16, style.flatnessFixed);
        const auto rest = static_cast<int32_t>((degrees - 90.0 * quarters) * 65536.0);
        const int32_t restSteps = arcSteps(style.penRadius, rest, style.flatnessFixed);
        if (perQuarter > 0) {
            chords = quarters * perQuarter + quarters * (restSteps > 0 ? restSteps : 0);
        }
    }
    if (chords < 2) {
        return emitBevel(sink, j, outerA, outerB, fixed);
    }
    StrokePoint fan[MAX_ARC_POINTS];
    int32_t count = 0;
    fan[count++] = j;
    fan[count++] = outerA;
    const double turn = (va.x * vb.y - va.y * vb.x) < 0 ? -1.0 : 1.0;
    const double step = turn * degrees * std::numbers::pi / 180.0 / chords;
    const double c = std::cos(step), s = std::sin(step);
    StrokePoint v = va;
    for (int32_t i = 1; i < chords && count < MAX_ARC_POINTS - 1; ++i) {
        v = {v.x * c - v.y * s, v.x * s + v.y * c};
        fan[count++] = fixed ? StrokePoint{fix16(j.x + v.x), fix16(j.y + v.y)} : add(j, v);
    }
    fan[count++] = outerB;
    return emitPolygon(sink, fan, count, fixed);
}

} // namespace

StrokePoint offsetVector(const StrokeStyle& style, double dx, double dy) {
    StrokePoint n;
    const Transform& t = *style.transform;
    const double w = style.halfWidth;
    if (style.thin) {
        n = std::fabs(dy) <= std::fabs(dx) ? StrokePoint{0, 0.5} : StrokePoint{0.5, 0};
    } else if (t.isQuarterTurn != 0) {
        n = rightAngleOffset(w, dx, dy);
    } else if ((t.kind == TK_SCALE || t.kind == TK_SWAP) && (dx == 0 || dy == 0)) {
        const bool swap = t.kind == TK_SWAP;
        n = dx == 0 ? StrokePoint{w * std::fabs(swap ? t.c : t.a) * sign(dy), 0}
                    : StrokePoint{0, -w * std::fabs(swap ? t.b : t.d) * sign(dx)};
    } else {
        n = metricOffset(t, w, dx, dy);
    }
    if (t.orientation < 0) {
        n = {-n.x, -n.y};
    }
    return {sixteenths(n.x), sixteenths(n.y)};
}

double userLength(const Transform& t, double dx, double dy) {
    if (t.isQuarterTurn != 0) {
        return std::hypot(dx, dy);
    }
    const double q = t.metricYY * dx * dx - 2.0 * t.metricXY * dx * dy + t.metricXX * dy * dy;
    return std::sqrt(std::fmax(q, 0.0)) / std::fabs(static_cast<double>(t.det));
}

StrokeLine makeStrokeLine(const StrokeStyle& style, StrokePoint p, StrokePoint q) {
    StrokeLine line;
    line.p = p;
    line.q = q;
    line.d = sub(q, p);
    line.n = offsetVector(style, line.d.x, line.d.y);
    line.userLength = userLength(*style.transform, line.d.x, line.d.y);
    line.deviceLength = std::hypot(line.d.x, line.d.y);
    return line;
}

StrokePoint pointAlong(const StrokeLine& line, double s, bool fixed) {
    if (s == line.userLength) {
        return line.q;
    }
    if (s == 0) {
        return line.p;
    }
    const StrokePoint at = add(line.p, times(line.d, s / line.userLength));
    return fixed ? StrokePoint{fix16(at.x), fix16(at.y)} : at;
}

ResultCode emitBody(const PieceSink& sink, const StrokeLine& line, StrokePoint a, StrokePoint b,
                    bool fixed) {
    if (a.x == b.x && a.y == b.y) {
        return KRYN_OK;
    }
    const StrokePoint quad[4] = {add(a, line.n), add(b, line.n), sub(b, line.n), sub(a, line.n)};
    return sink.polygon(sink.ctx, quad, 4, true, fixed);
}

ResultCode emitCap(const StrokeStyle& style, const PieceSink& sink, const StrokeLine& line,
                   StrokePoint at, bool start, bool fixed) {
    if (style.thin || style.cap == STROKE_CAP_FLAT) {
        return KRYN_OK;
    }
    if (style.cap == STROKE_CAP_ROUND) {
        return style.pen == nullptr ? KRYN_OK : sink.disc(sink.ctx, at, *style.pen, fixed);
    }
    // Square: a further half-width along the line, the pen's reach in user
    // units mapped to the device.
    StrokePoint e = times(line.d, style.halfWidth / line.userLength);
    e = {sixteenths(e.x), sixteenths(e.y)};
    if (start) {
        e = {-e.x, -e.y};
    }
    const StrokePoint out = add(at, e);
    const StrokePoint quad[4] = {add(at, line.n), add(out, line.n), sub(out, line.n),
                                 sub(at, line.n)};
    return sink.polygon(sink.ctx, quad, 4, true, fixed);
}

ResultCode emitJoin(const StrokeStyle& style, const PieceSink& sink, const StrokeLine& a,
                    const StrokeLine& b, bool fixed) {
    if (style.thin) {
        return KRYN_OK;
    }
    const double cross = a.d.x * b.d.y - a.d.y * b.d.x;
    if (cross == 0 || !std::isfinite(cross)) {
        return KRYN_OK;
    }
    // The outer side of the turn, where the pieces leave a notch to fill.
    const double side = (cross > 0 ? 1.0 : -1.0) * (style.transform->orientation < 0 ? -1.0 : 1.0);
    const StrokePoint va = times(a.n, side);
    const StrokePoint vb = times(b.n, side);
    const StrokePoint j = b.p;
    const StrokePoint outerA = add(a.q, va);
    const StrokePoint outerB = add(b.p, vb);
    switch (style.join) {
    case STROKE_JOIN_BEVEL:
        return emitBevel(sink, j, outerA, outerB, fixed);
    case STROKE_JOIN_MITER:
        return emitMiter(style, sink, a, b, outerA, outerB, fixed);
    default: // round
        if (style.pen == nullptr) {
            return KRYN_OK;
        }
        if (a.deviceLength >= style.deviceHalfWidth && b.deviceLength >= style.deviceHalfWidth) {
            return sink.disc(sink.ctx, j, *style.pen, fixed);
        }
        return emitArcJoin(style, sink, j, outerA, outerB, va, vb, fixed);
    }
}

} // namespace kryn
