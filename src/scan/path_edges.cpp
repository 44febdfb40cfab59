#include "scan/path_edges.h"

#include "geometry/flatten.h"
#include "geometry/saturate.h"
#include "scan/polyline_edges.h"

namespace kryn {

namespace {

// Largest whole pixel whose 16.16 value fits 32 bits.
constexpr int32_t FIXED_PIXEL_LIMIT = 32767;

int32_t toFixed(float v) {
    return static_cast<int32_t>(v * 65536.0f);
}

ResultCode fixedChord(void* context, FixedPoint from, FixedPoint to) {
    return addEdgeFixed(static_cast<ScanState*>(context), from.x, from.y, to.x, to.y);
}

ResultCode clampedChord(void* context, FloatPoint from, FloatPoint to) {
    return addLineClamped(static_cast<ScanState*>(context), from.x, from.y, to.x, to.y);
}

bool boxesMeet(const FloatBox& b, const ScanFloatBox& c) {
    return b.minX <= c.maxX && c.minX <= b.maxX && b.minY <= c.maxY && c.minY <= b.maxY;
}

bool inFastBox(const FloatBox& b) {
    return b.minX >= 0 && b.minY >= 0 && b.maxX <= FAST_BOX_PIXELS && b.maxY <= FAST_BOX_PIXELS;
}

bool fitsFixed(const int32_t* v, int n) {
    for (int i = 0; i < n; ++i) {
        if (v[i] > FIXED_PIXEL_LIMIT || v[i] < -FIXED_PIXEL_LIMIT) {
            return false;
        }
    }
    return true;
}

class SubpathWalker {
  public:
    SubpathWalker(ScanState* scan, const FlattenTolerance& tolerance, const ScanFloatBox& clip,
                  bool direct)
        : scan_(scan), tolerance_(tolerance), direct_(direct) {
        clip_ = FloatBox{clip.minX, clip.maxX, clip.minY, clip.maxY};
    }

    ResultCode walk(const Subpath& sp) {
        float at[2] = {sp.start[0], sp.start[1]};
        for (const PathSegment* s = sp.paintFirstSegment; s != nullptr; s = s->next) {
            const ResultCode r = segment(*s, at);
            if (failed(r)) {
                return r;
            }
            segmentEnd(*s, at, at);
        }
        if (at[0] != sp.start[0] || at[1] != sp.start[1]) {
            const ResultCode r = line(at[0], at[1], sp.start[0], sp.start[1]);
            if (failed(r)) {
                return r;
            }
        }
        closeEdgeChain(scan_);
        return KRYN_OK;
    }

  private:
    ResultCode line(float x0, float y0, float x1, float y1) {
        return direct_ ? addLineDirect(scan_, x0, y0, x1, y1)
                       : addLineClamped(scan_, x0, y0, x1, y1);
    }

    ResultCode curve(const float at[2], const float c[6]) {
        if (direct_) {
            const FixedPoint p[4] = {{toFixed(at[0]), toFixed(at[1])},
                                     {toFixed(c[0]), toFixed(c[1])},
                                     {toFixed(c[2]), toFixed(c[3])},
                                     {toFixed(c[4]), toFixed(c[5])}};
            return flattenFixed(p, tolerance_.fixed, fixedChord, scan_);
        }
        const FloatPoint p[4] = {{at[0], at[1]}, {c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}};
        return flattenFloat(p, clip_, tolerance_.real, clampedChord, scan_);
    }

    // A power-form cubic steps in fixed point inside the fast box; outside
    // it the same cubic is flattened as its Bezier form with clamping.
    ResultCode powerCurve(const float at[2], const PowerCubic& pc) {
        if (direct_) {
            FixedPoint end;
            return flattenPowerCurve(FixedPoint{toFixed(at[0]), toFixed(at[1])}, pc,
                                     tolerance_.fixed, fixedChord, scan_, &end);
        }
        const float c1x = at[0] + pc.cx / 3.0f;
        const float c1y = at[1] + pc.cy / 3.0f;
        const float c[6] = {c1x,
                            c1y,
                            c1x + (pc.cx + pc.bx) / 3.0f,
                            c1y + (pc.cy + pc.by) / 3.0f,
                            at[0] + pc.ax + pc.bx + pc.cx,
                            at[1] + pc.ay + pc.by + pc.cy};
        return curve(at, c);
    }

    ResultCode segment(const PathSegment& s, const float at[2]) {
        switch (s.type) {
        case SEG_LINE:
            return line(at[0], at[1], s.line[0], s.line[1]);
        case SEG_LINE_INT: {
            // at may lie beyond int32 (a float path point): saturate, the
            // comparison below then sends it the float way.
            const int32_t from[2] = {saturateToInt32(at[0]), saturateToInt32(at[1])};
            if (at[0] == static_cast<float>(from[0]) && at[1] == static_cast<float>(from[1]) &&
                fitsFixed(from, 2) && fitsFixed(s.lineInt, 2)) {
                return addEdgeFixed(scan_, from[0] * 65536, from[1] * 65536, s.lineInt[0] * 65536,
                                    s.lineInt[1] * 65536);
            }
            return line(at[0], at[1], static_cast<float>(s.lineInt[0]),
                        static_cast<float>(s.lineInt[1]));
        }
        case SEG_CURVE:
            return curve(at, s.curve);
        case SEG_CURVE_INT: {
            float c[6];
            for (int i = 0; i < 6; ++i) {
                c[i] = static_cast<float>(s.curveInt[i]);
            }
            return curve(at, c);
        }
        case SEG_POLY_CURVE:
            return powerCurve(at, s.poly);
        default:
            return KRYN_OK;
        }
    }

    ScanState* scan_;
    FlattenTolerance tolerance_;
    FloatBox clip_;
    bool direct_;
};

// A subpath whose next one continues it (the same first painted segment,
// after a graphics-state push) is drawn by that next one.
bool continuedByNext(const Subpath& sp) {
    return sp.next != nullptr && sp.next->paintFirstSegment == sp.paintFirstSegment;
}

} // namespace

ResultCode buildPathEdges(ScanState* scan, const Path& path, const FlattenTolerance& tolerance,
                          int32_t pathRecords, const ScanFloatBox& clip) {
    setTableMode(&scan->table, pathRecords);
    if (path.paintFirst == nullptr || !boxesMeet(path.box, clip)) {
        return KRYN_OK;
    }
    const bool allDirect = inFastBox(path.box);
    for (const Subpath* sp = path.paintFirst; sp != nullptr; sp = sp->next) {
        if (continuedByNext(*sp) || (!allDirect && !boxesMeet(sp->box, clip))) {
            continue;
        }
        SubpathWalker walker(scan, tolerance, clip, allDirect || inFastBox(sp->box));
        const ResultCode r = walker.walk(*sp);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace kryn
