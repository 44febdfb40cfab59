#include "stroke/stroke_path.h"

#include "geometry/flatten.h"
#include "geometry/path.h"
#include "geometry/saturate.h"
#include "stroke/line_style.h"
#include "stroke/stroke_geometry.h"

#include <algorithm>
#include <cmath>

namespace kryn {

namespace {

// Pieces inside this box (device pixels) take the 16.16 route.
constexpr double FIXED_BOX_PIXELS = 16384.0;
// Half-widths from this 16.16 value on have no round pen.
constexpr int32_t PEN_HALF_WIDTH_LIMIT = 0x10000000;

// Where the pen is along the dash pattern. The arrays belong to the state.
struct DashWalk {
    const float* entries = nullptr;
    int32_t count = 0; // 0: solid
    int32_t index = 0;
    bool on = true;
    double remaining = 0; // 0: load entry `index` first
    bool open = false;    // a dash (or the solid line) runs through the current point
};

class Stroker {
  public:
    // reach: how far any piece reaches from the path (miter tips);
    // capReach: how far a dash's body and caps reach.
    Stroker(GraphicsState& gs, const StrokeStyle& style, const PieceSink& sink,
            const ScanFloatBox& clip, bool fixedAllowed, double reach, double capReach)
        : gs_(gs), style_(style), sink_(sink), fixedAllowed_(fixedAllowed), reach_(reach),
          capReach_(capReach) {
        clip_ =
            FloatBox{clip.minX - static_cast<float>(reach), clip.maxX + static_cast<float>(reach),
                     clip.minY - static_cast<float>(reach), clip.maxY + static_cast<float>(reach)};
        solid_ = gs.dashCount == 0 || gs.dashArray == nullptr;
        // A dash costs at most the rows of the clip it can reach.
        clipRows_ = static_cast<double>(clip.maxY) - clip.minY + 2.0 * capReach + 1.0;
    }

    ResultCode subpath(const Subpath& sp) {
        if (!reaches(sp.box)) {
            return KRYN_OK;
        }
        fixed_ = fixedAllowed_ && insideFixedBox(sp.box);
        closed_ = sp.closed != 0;
        atStart_ = true;
        haveFirst_ = havePrev_ = false;
        walk_ = DashWalk();
        if (!solid_) {
            walk_.entries = gs_.dashArray;
            walk_.count = gs_.dashCount;
            walk_.index = gs_.dashIndex;
            walk_.on = gs_.dashOn != 0;
            walk_.remaining = gs_.dashRemaining;
        }
        downAtStart_ = walk_.on;
        const StrokePoint start{sp.start[0], sp.start[1]};
        cur_ = start;
        for (const PathSegment* s = sp.paintFirstSegment; s != nullptr; s = s->next) {
            const ResultCode r = walkSegment(*s, *this);
            if (failed(r)) {
                return r;
            }
        }
        if (closed_) {
            const bool gap = std::floor(std::fabs(cur_.x - start.x) * 8.0) != 0 ||
                             std::floor(std::fabs(cur_.y - start.y) * 8.0) != 0;
            ResultCode r = gap ? line(start) : KRYN_OK;
            if (!failed(r) && walk_.open && downAtStart_ && haveFirst_ && havePrev_) {
                r = join(prev_, first_);
            }
            return r;
        }
        if (walk_.open && havePrev_) {
            return emitCap(style_, sink_, prev_, prev_.q, false, fixed_);
        }
        return KRYN_OK;
    }

  private:
    // walkSegment hands each segment to lineTo, curve and powerCurve.
    friend ResultCode kryn::walkSegment<Stroker>(const PathSegment& s, Stroker& walker);

    bool reaches(const FloatBox& b) const {
        return b.minX <= clip_.maxX && clip_.minX <= b.maxX && b.minY <= clip_.maxY &&
               clip_.minY <= b.maxY;
    }

    bool insideFixedBox(const FloatBox& b) const {
        return b.minX - reach_ >= 0 && b.minY - reach_ >= 0 &&
               b.maxX + reach_ <= FIXED_BOX_PIXELS && b.maxY + reach_ <= FIXED_BOX_PIXELS;
    }

    ResultCode join(const StrokeLine& a, const StrokeLine& b) {
        if (gs_.lineJoin == STROKE_JOIN_DEFAULT && !style_.thin) {
            gs_.lineJoin = STROKE_JOIN_ROUND;
        }
        return emitJoin(style_, sink_, a, b, fixed_);
    }

    // One line from the current point; a zero-length line draws nothing and
    // leaves the current point.
    ResultCode lineTo(double x, double y) { return line({x, y}); }
    ResultCode line(StrokePoint q) {
        if (q.x == cur_.x && q.y == cur_.y) {
            return KRYN_OK;
        }
        const StrokeLine l = makeStrokeLine(style_, cur_, q);
        cur_ = q;
        if (!std::isfinite(l.userLength) || !(l.userLength > 0) || !std::isfinite(l.deviceLength)) {
            walk_.open = false; // no place on the device, or no length in user space: a break
            return KRYN_OK;
        }
        if (!haveFirst_) {
            first_ = l;
            haveFirst_ = true;
        }
        const ResultCode r = solid_ ? solidLine(l) : dashedLine(l);
        prev_ = l;
        havePrev_ = true;
        atStart_ = false;
        return r;
    }

    // A start cap, except on the first dash of a closed subpath when it
    // starts the subpath: the closing join meets it instead.
    bool startCapped(double from) const { return !(closed_ && atStart_ && from == 0); }

    ResultCode dash(const StrokeLine& l, double from, double to, bool startCap, bool endCap) {
        const StrokePoint a = pointAlong(l, from, fixed_);
        const StrokePoint b = pointAlong(l, to, fixed_);
        if (!solid_) {
            const double rows = std::fabs(b.y - a.y) + 2.0 * capReach_;
            budget_ -= 1 + static_cast<int64_t>(std::fmin(rows, clipRows_));
        }
        ResultCode r = emitBody(sink_, l, a, b, fixed_);
        if (!failed(r) && startCap) {
            r = emitCap(style_, sink_, l, a, true, fixed_);
        }
        if (!failed(r) && endCap) {
            r = emitCap(style_, sink_, l, b, false, fixed_);
        }
        return r;
    }

    ResultCode solidLine(const StrokeLine& l) {
        ResultCode r = walk_.open ? join(prev_, l) : KRYN_OK;
        if (!failed(r)) {
            r = dash(l, 0, l.userLength, !walk_.open && startCapped(0), false);
        }
        walk_.open = true;
        return r;
    }

    // Walks the pattern along the line: a dash running in from the previous
    // line is joined to it, a dash that starts here gets its start cap, one
    // that ends here its end cap; a dash running on into the next line (or
    // into entry 0 after the last entry, both dashes) gets neither.
    ResultCode dashedLine(const StrokeLine& l) {
        const double length = l.userLength;
        DashWalk& w = walk_;
        double r = w.remaining;
        if (r == 0) {
            if (budget_ <= 0) {
                return runOutSolid(l, 0, false, false);
            }
            r = w.entries[w.index++];
            --budget_;
        }
        double from = 0;
        bool capFrom = false;
        ResultCode result = KRYN_OK;
        if (w.on) {
            if (w.open) {
                result = join(prev_, l);
            } else {
                capFrom = startCapped(0);
            }
        }
        double pos = 0;
        while (!failed(result)) {
            const double end = pos + r;
            const double rest = length - end;
            if (rest < 0) {
                if (w.on) {
                    result = dash(l, from, length, capFrom, false);
                }
                w.remaining = -rest;
                w.open = w.on;
                return result;
            }
            const bool wasOn = w.on;
            if (w.index >= w.count) {
                w.index = 0;
                w.on = true;
            } else {
                w.on = !w.on;
            }
            const bool continuing = wasOn && w.on;
            if (wasOn && !continuing) {
                result = dash(l, from, end, capFrom, true);
            }
            if (rest == 0 || failed(result)) {
                if (continuing && !failed(result)) {
                    result = dash(l, from, length, capFrom, false);
                }
                w.remaining = 0;
                w.open = continuing;
                return result;
            }
            if (w.on && !continuing) {
                from = end;
                capFrom = true;
            }
            pos = end;
            if (budget_ <= 0) {
                return runOutSolid(l, w.on ? from : pos, w.on ? capFrom : true, true);
            }
            r = w.entries[w.index++];
            --budget_;
        }
        return result;
    }

    // The dash budget is spent: the rest of the stroke is solid, from
    // `from` on this line.
    ResultCode runOutSolid(const StrokeLine& l, double from, bool capFrom, bool midLine) {
        solid_ = true;
        if (!midLine) {
            return solidLine(l);
        }
        walk_.open = true;
        return dash(l, from, l.userLength, capFrom, false);
    }

    static ResultCode fixedChord(void* ctx, FixedPoint, FixedPoint to) {
        return static_cast<Stroker*>(ctx)->line({to.x / 65536.0, to.y / 65536.0});
    }
    static ResultCode wideChord(void* ctx, WidePoint, WidePoint to) {
        return static_cast<Stroker*>(ctx)->line(
            {static_cast<double>(to.x) / 65536.0, static_cast<double>(to.y) / 65536.0});
    }
    static ResultCode floatChord(void* ctx, FloatPoint, FloatPoint to) {
        return static_cast<Stroker*>(ctx)->line({to.x, to.y});
    }

    static int32_t toFixed(double v) { return saturateToInt32(v * 65536.0); }

    ResultCode curve(const float c[6]) {
        if (fixed_) {
            const FixedPoint p[4] = {{toFixed(cur_.x), toFixed(cur_.y)},
                                     {toFixed(c[0]), toFixed(c[1])},
                                     {toFixed(c[2]), toFixed(c[3])},
                                     {toFixed(c[4]), toFixed(c[5])}};
            return flattenFixed(p, style_.flatnessFixed, fixedChord, this);
        }
        const FloatPoint p[4] = {{static_cast<float>(cur_.x), static_cast<float>(cur_.y)},
                                 {c[0], c[1]},
                                 {c[2], c[3]},
                                 {c[4], c[5]}};
        return flattenFloat(p, clip_, gs_.strokeFlatness, floatChord, this);
    }

    // Arc pieces step by the arc chord table on the 16.16 route of a
    // right-angle transformation, and flatten as Bezier curves otherwise.
    ResultCode powerCurve(const PowerCubic& pc) {
        if (fixed_ && style_.transform->isQuarterTurn != 0) {
            WidePoint end;
            return flattenPowerCurve(WidePoint{toFixed(cur_.x), toFixed(cur_.y)}, pc,
                                     style_.flatnessFixed, nullptr, wideChord, this, &end);
        }
        const auto x = static_cast<float>(cur_.x);
        const auto y = static_cast<float>(cur_.y);
        const float c1x = x + pc.cx / 3.0f;
        const float c1y = y + pc.cy / 3.0f;
        const float c[6] = {c1x,
                            c1y,
                            c1x + (pc.cx + pc.bx) / 3.0f,
                            c1y + (pc.cy + pc.by) / 3.0f,
                            x + pc.ax + pc.bx + pc.cx,
                            y + pc.ay + pc.by + pc.cy};
        return curve(c);
    }

    GraphicsState& gs_;
    StrokeStyle style_;
    PieceSink sink_;
    FloatBox clip_;
    bool fixedAllowed_;
    double reach_;
    double capReach_;
    double clipRows_ = 1;
    bool solid_ = true;
    int64_t budget_ = DASH_WORK_BUDGET;
    // The subpath being stroked.
    bool fixed_ = false;
    bool closed_ = false;
    bool atStart_ = true;
    bool downAtStart_ = true;
    bool haveFirst_ = false;
    bool havePrev_ = false;
    StrokeLine first_;
    StrokeLine prev_;
    StrokePoint cur_;
    DashWalk walk_;
};

// A subpath continued by the next one (after a graphics-state push) is
// stroked by that one.
bool continuedByNext(const Subpath& sp) {
    return sp.next != nullptr && sp.next->paintFirstSegment == sp.paintFirstSegment;
}

// The pen for round caps and joins, when the style needs one and can have
// one: not thin, a half-width with a 16.16 form below the pen limit, and
// a transformation that maps circles to axis-aligned ellipses.
ResultCode choosePen(const GraphicsState& gs, PageRecord& page, StrokeStyle* style) {
    const bool wanted = style->cap == STROKE_CAP_ROUND || style->join == STROKE_JOIN_ROUND;
    if (!wanted || style->thin || gs.lineWidthFixed == -1 ||
        gs.lineWidthFixed >= PEN_HALF_WIDTH_LIMIT || gs.transform.kind == TK_GENERAL) {
        return KRYN_OK;
    }
    double radius = gs.lineWidthFixed;
    if (gs.scale != 1.0f) {
        radius = std::trunc(radius * std::fabs(static_cast<double>(gs.scale)));
    }
    if (!(radius > 0 && radius < static_cast<double>(PEN_RADIUS_LIMIT))) {
        return KRYN_OK;
    }
    style->penRadius = static_cast<int32_t>(radius);
    style->pen = findOrBuildPen(&page, style->penRadius);
    return style->pen == nullptr ? KRYN_ERR_NO_MEMORY : KRYN_OK;
}

} // namespace

ResultCode strokePath(GraphicsState& gs, PageRecord& page, const PieceSink& sink,
                      const ScanFloatBox& clipBox) {
    const Transform& t = gs.transform;
    StrokeStyle style;
    style.transform = &t;
    style.halfWidth = gs.lineWidth;
    style.deviceHalfWidth = gs.lineWidth * std::fabs(static_cast<double>(gs.scale));
    style.thin = !(style.deviceHalfWidth > 0.5);
    style.cap = gs.lineCap;
    style.join = gs.lineJoin == STROKE_JOIN_DEFAULT ? STROKE_JOIN_ROUND : gs.lineJoin;
    style.miterLength = gs.miterLength;
    style.flatnessFixed = gs.strokeFlatnessFixed;
    ResultCode r = choosePen(gs, page, &style);
    if (failed(r)) {
        return r;
    }
    // How far any piece reaches from the path: miter tips, square caps.
    const double stretch =
        std::sqrt(static_cast<double>(t.a) * t.a + static_cast<double>(t.b) * t.b +
                  static_cast<double>(t.c) * t.c + static_cast<double>(t.d) * t.d);
    double reach =
        stretch * style.halfWidth * std::max(2.0, static_cast<double>(gs.miterLimit)) + 2.0;
    reach = std::isfinite(reach) ? reach : 1e30;
    double capReach = stretch * style.halfWidth * 2.0 + 2.0;
    capReach = std::isfinite(capReach) ? capReach : 1e30;
    const bool fixedAllowed = gs.lineWidthFixed != -1 && gs.miterLimitFixed != -1 &&
                              gs.miterLengthFixed != -1 &&
                              (gs.dashCount == 0 || gs.dashFixedOk != 0);
    Stroker stroker(gs, style, sink, clipBox, fixedAllowed, reach, capReach);
    for (const Subpath* sp = gs.path.paintFirst; sp != nullptr && !failed(r); sp = sp->next) {
        if (!continuedByNext(*sp)) {
            r = stroker.subpath(*sp);
        }
    }
    return r;
}

} // namespace kryn
