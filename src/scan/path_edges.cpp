#include "scan/path_edges.h"

#include "geometry/flatten.h"
#include "geometry/saturate.h"
#include "scan/polyline_edges.h"

namespace kryn {

namespace {

// 16.16 of a pen position inside the fast box (saturated, so a value that
// rounding pushed past it stays defined).
int32_t fixedOf(double pixels) {
    return saturateToInt32(pixels * 65536.0);
}

bool boxesMeet(const FloatBox& b, const ScanFloatBox& c) {
    return b.minX <= c.maxX && c.minX <= b.maxX && b.minY <= c.maxY && c.minY <= b.maxY;
}

bool inFastBox(const FloatBox& b) {
    return b.minX >= 0 && b.minY >= 0 && b.maxX <= FAST_BOX_PIXELS && b.maxY <= FAST_BOX_PIXELS;
}

// Walks one subpath into edges. The pen is where the next edge starts, in
// pixels held as a double, which is exact both for float path points and
// for 16.16 points: after a stepped arc it is the arc's stepped end, so the
// next segment and the closing line start exactly where the arc's last
// chord ended and the outline has no gap or overlap at the joint.
class SubpathWalker {
  public:
    SubpathWalker(ScanState* scan, const FlattenTolerance& tolerance, const ScanFloatBox& clip,
                  bool direct)
        : scan_(scan), tolerance_(tolerance), direct_(direct) {
        clip_ = FloatBox{clip.minX, clip.maxX, clip.minY, clip.maxY};
        wideClip_ = WideBox{toWideFixed(clip.minX), toWideFixed(clip.maxX), toWideFixed(clip.minY),
                            toWideFixed(clip.maxY)};
    }

    ResultCode walk(const Subpath& sp) {
        pen_[0] = sp.start[0];
        pen_[1] = sp.start[1];
        for (const PathSegment* s = sp.paintFirstSegment; s != nullptr; s = s->next) {
            const ResultCode r = walkSegment(*s, *this);
            if (failed(r)) {
                return r;
            }
        }
        if (pen_[0] != static_cast<double>(sp.start[0]) ||
            pen_[1] != static_cast<double>(sp.start[1])) {
            const ResultCode r = lineTo(sp.start[0], sp.start[1]);
            if (failed(r)) {
                return r;
            }
        }
        closeEdgeChain(scan_);
        return KRYN_OK;
    }

  private:
    // walkSegment hands each segment to lineTo, curve and powerCurve.
    friend ResultCode kryn::walkSegment<SubpathWalker>(const PathSegment& s, SubpathWalker& walker);

    // One line from the pen; the pen moves to its end.
    ResultCode lineTo(double x, double y) {
        if (x == pen_[0] && y == pen_[1]) {
            return KRYN_OK;
        }
        const ResultCode r = direct_ ? addEdgeFixed(scan_, fixedOf(pen_[0]), fixedOf(pen_[1]),
                                                    fixedOf(x), fixedOf(y))
                                     : addLineClamped(scan_, pen_[0], pen_[1], x, y);
        pen_[0] = x;
        pen_[1] = y;
        return r;
    }

    // Chord sinks: every flattener emits its chords in order from the pen,
    // so only the chord's end is taken.
    static ResultCode fixedChord(void* context, FixedPoint, FixedPoint to) {
        return static_cast<SubpathWalker*>(context)->lineTo(to.x / 65536.0, to.y / 65536.0);
    }

    static ResultCode floatChord(void* context, FloatPoint, FloatPoint to) {
        return static_cast<SubpathWalker*>(context)->lineTo(to.x, to.y);
    }

    static ResultCode wideChord(void* context, WidePoint, WidePoint to) {
        return static_cast<SubpathWalker*>(context)->lineTo(static_cast<double>(to.x) / 65536.0,
                                                            static_cast<double>(to.y) / 65536.0);
    }

    // A float cubic from the pen through controls c[0..3] to c[4..5].
    ResultCode curve(const float c[6]) {
        if (direct_) {
            const FixedPoint p[4] = {{fixedOf(pen_[0]), fixedOf(pen_[1])},
                                     {fixedOf(c[0]), fixedOf(c[1])},
                                     {fixedOf(c[2]), fixedOf(c[3])},
                                     {fixedOf(c[4]), fixedOf(c[5])}};
            return flattenFixed(p, tolerance_.fixed, fixedChord, this);
        }
        const FloatPoint p[4] = {{static_cast<float>(pen_[0]), static_cast<float>(pen_[1])},
                                 {c[0], c[1]},
                                 {c[2], c[3]},
                                 {c[4], c[5]}};
        return flattenFloat(p, clip_, tolerance_.real, floatChord, this);
    }

    // A power-form cubic is stepped in 16.16 from the pen, inside the fast
    // box and outside it alike (there with 64-bit points, each chord then
    // clamped), so an arc gives the same chords wherever it lies.
    ResultCode powerCurve(const PowerCubic& pc) {
        const WidePoint from{toWideFixed(pen_[0]), toWideFixed(pen_[1])};
        WidePoint end;
        return flattenPowerCurve(from, pc, tolerance_.fixed, direct_ ? nullptr : &wideClip_,
                                 wideChord, this, &end);
    }

    ScanState* scan_;
    FlattenTolerance tolerance_;
    FloatBox clip_;
    WideBox wideClip_;
    bool direct_;
    double pen_[2] = {0.0, 0.0};
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
