// KRYNStroke end to end on random polylines in every page orientation:
//  - the painted pixels (read back from the band lists) equal the union of
//    the stroke's own pieces filled one by one by the reference rasteriser,
//    within the clip; under XOR every pixel is painted exactly once;
//  - independently of the pieces, they agree with the ideal stroke (segment
//    rectangles, caps and joins from the line attributes) wherever a
//    sample lies more than a pixel from its outline.
#include "stroke_pieces_log.h"
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"
#include "stroke/stroke_path.h"

#include <gtest/gtest.h>

#include <random>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 200;
constexpr int32_t H = 160;
const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, W, 0}, {-1, 0, 0, -1, W, H}, {0, -1, 1, 0, 0, H}};
// User point = (ux0 + ux[0] dx + ux[1] dy, uy0 + uy[0] dx + uy[1] dy) per orientation.
const int32_t TO_USER[4][6] = {
    {0, 1, 0, 0, 0, 1}, {0, 0, 1, W, -1, 0}, {W, -1, 0, H, 0, -1}, {H, 0, -1, 0, 1, 0}};

using P = StrokePoint;
P at(P a, P d, double k) {
    return {a.x + k * d.x, a.y + k * d.y};
}

// The ideal stroke: convex polygons and discs of radius w; `optional`
// discs may be painted (short round joins) but are never required.
struct Ideal {
    std::vector<std::vector<P>> polygons;
    std::vector<P> discs, optional;
    double w = 0;

    static double convexDistance(const std::vector<P>& poly, P s) { // < 0 inside
        double area = 0, best = 1e300;
        for (size_t i = 0; i < poly.size(); ++i) {
            const P a = poly[i], b = poly[(i + 1) % poly.size()];
            area += a.x * b.y - b.x * a.y;
        }
        bool inside = std::fabs(area) > 1e-9;
        for (size_t i = 0; i < poly.size(); ++i) {
            const P a = poly[i], b = poly[(i + 1) % poly.size()];
            const double ex = b.x - a.x, ey = b.y - a.y, l2 = ex * ex + ey * ey;
            const double t =
                l2 > 0 ? std::clamp(((s.x - a.x) * ex + (s.y - a.y) * ey) / l2, 0.0, 1.0) : 0;
            best = std::fmin(best, std::hypot(s.x - a.x - t * ex, s.y - a.y - t * ey));
            inside = inside && (area > 0 ? 1 : -1) * (ex * (s.y - a.y) - ey * (s.x - a.x)) >= 0;
        }
        return inside ? -best : best;
    }
    // Signed distances without and with the optional discs; polygons more
    // than two pixels away cannot change either verdict and are passed over.
    void distances(P s, double* required, double* allowed) const {
        double d = 1e300;
        for (const auto& p : polygons) {
            double x0 = 1e300, x1 = -1e300, y0 = 1e300, y1 = -1e300;
            for (const P& q : p) {
                x0 = std::fmin(x0, q.x), x1 = std::fmax(x1, q.x);
                y0 = std::fmin(y0, q.y), y1 = std::fmax(y1, q.y);
            }
            if (s.x > x0 - 2 && s.x < x1 + 2 && s.y > y0 - 2 && s.y < y1 + 2) {
                d = std::fmin(d, convexDistance(p, s));
            }
        }
        for (const P& c : discs) {
            d = std::fmin(d, std::hypot(s.x - c.x, s.y - c.y) - w);
        }
        *required = d;
        for (const P& c : optional) {
            d = std::fmin(d, std::hypot(s.x - c.x, s.y - c.y) - w);
        }
        *allowed = d;
    }

    void add(std::vector<P> in, bool closed, uint32_t cap, uint32_t join, double limit) {
        std::vector<P> pts;
        for (const P& p : in) {
            if (pts.empty() || p.x != pts.back().x || p.y != pts.back().y) {
                pts.push_back(p);
            }
        }
        if (closed && pts.size() > 1 && pts.front().x == pts.back().x &&
            pts.front().y == pts.back().y) {
            pts.pop_back();
        }
        if (pts.size() < 2) {
            return;
        }
        const size_t n = closed ? pts.size() : pts.size() - 1; // segments
        auto dir = [&](size_t i) {
            const P a = pts[i % pts.size()], b = pts[(i + 1) % pts.size()];
            const double l = std::hypot(b.x - a.x, b.y - a.y);
            return P{(b.x - a.x) / l, (b.y - a.y) / l};
        };
        auto length = [&](size_t i) {
            const P a = pts[i % pts.size()], b = pts[(i + 1) % pts.size()];
            return std::hypot(b.x - a.x, b.y - a.y);
        };
        auto box = [&](P a, P b, P d) { // the rectangle from a to b, w to each side
            const P n{d.y * w, -d.x * w};
            polygons.push_back({at(a, n, 1), at(b, n, 1), at(b, n, -1), at(a, n, -1)});
        };
        for (size_t i = 0; i < n; ++i) {
            box(pts[i], pts[(i + 1) % pts.size()], dir(i));
        }
        for (int end = 0; end < 2 && !closed; ++end) {
            const P p = end == 0 ? pts.front() : pts.back(), d = dir(end == 0 ? 0 : n - 1);
            if (cap == 1) {
                discs.push_back(p);
            } else if (cap == 2) {
                box(p, at(p, d, end == 0 ? -w : w), d);
            }
        }
        for (size_t k = 0; k + (closed ? 0 : 1) < n; ++k) {
            const P da = dir(k), db = dir((k + 1) % n), j = pts[(k + 1) % pts.size()];
            const double cross = da.x * db.y - da.y * db.x, side = cross > 0 ? w : -w;
            if (std::fabs(cross) < 1e-12) {
                continue;
            }
            const P va{side * da.y, -side * da.x}, vb{side * db.y, -side * db.x};
            const double miter = w / std::sqrt((1 + da.x * db.x + da.y * db.y) / 2);
            if (join == 2 && miter <= limit * w) {
                const P bis{va.x + vb.x, va.y + vb.y};
                const P tip = at(j, bis, miter / std::hypot(bis.x, bis.y));
                polygons.push_back({j, at(j, va, 1), tip, at(j, vb, 1)});
            } else if (join != 1 && join != 2 && length(k) >= w && length((k + 1) % n) >= w) {
                discs.push_back(j);
            } else {
                polygons.push_back({j, at(j, va, 1), at(j, vb, 1)}); // the bevel
                if (join != 1 && join != 2) {
                    optional.push_back(j); // a short round join: bevel and maybe an arc
                }
            }
        }
    }
};

struct Case {
    int32_t width = 1, cap = 0, join = 2, limit = 10;
    std::vector<int32_t> dash;
    bool curves = false, general = false, scaled = false;
    std::vector<std::vector<P>> polylines; // device points, for the ideal stroke
    std::vector<bool> closed;
};

int32_t pick(std::mt19937& rng, std::initializer_list<int32_t> values) {
    return *(values.begin() + rng() % values.size());
}

// A random path of one or two subpaths (some points repeated, some lines
// axis-parallel), built through the exported calls.
void randomPath(Engine* e, std::mt19937& rng, int32_t q, Case* c) {
    for (int32_t s = 1 + int32_t(rng() % 2); s > 0; --s) {
        const int32_t n = 2 + int32_t(rng() % 5);
        std::vector<P> device;
        std::vector<int32_t> user;
        for (int32_t i = 0; i < n; ++i) {
            int32_t dx = int32_t(rng() % (W + 40)) - 20, dy = int32_t(rng() % (H + 40)) - 20;
            if (i > 0 && rng() % 8 == 0) {
                dx = int32_t(device.back().x), dy = int32_t(device.back().y);
            } else if (i > 0 && rng() % 4 == 0) {
                (rng() % 2 == 0 ? dx : dy) =
                    int32_t(rng() % 2 == 0 ? device.back().x : device.back().y);
            }
            device.push_back({double(dx), double(dy)});
            const int32_t* m = TO_USER[q];
            user.push_back(c->general ? dx / 5 : m[0] + m[1] * dx + m[2] * dy);
            user.push_back(c->general ? dy / 5 : m[3] + m[4] * dx + m[5] * dy);
        }
        ASSERT_EQ(KRYNMoveTo(user[0], user[1], e), KRYN_OK);
        if (c->curves && n >= 4) {
            ASSERT_EQ(KRYNBezier3To(user.data() + 2, e), KRYN_OK);
        } else {
            ASSERT_EQ(KRYNLinesTo(user.data() + 2, int16_t(n - 1), e), KRYN_OK);
        }
        c->closed.push_back(rng() % 3 == 0);
        if (c->closed.back()) {
            ASSERT_EQ(KRYNClosePath(e), KRYN_OK);
        }
        c->polylines.push_back(device);
    }
}

} // namespace

TEST(StrokeEngine, RandomStrokesMatchTheirPiecesAndTheIdealStroke) {
    std::mt19937 rng(20261125);
    int64_t idealChecked = 0;
    for (int32_t n = 0; n < 300; ++n) {
        EnginePtr engine = makeEngine(W - 1, H - 1, 32, n % 2 == 0 ? 0x8009 : 0x8000);
        Engine* e = engine.get();
        ASSERT_EQ(KRYNNewPage(0, e), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[n % 4], e), KRYN_OK);
        const int32_t q = pageOf(e)->pageQuarterTurns;
        ASSERT_EQ(q, n % 4);
        Case c;
        c.width = pick(rng, {0, 1, 2, 3, 4, 5, 7, 8, 12, 17, 26});
        c.cap = int32_t(rng() % 3);
        c.join = int32_t(rng() % 4);
        c.limit = pick(rng, {1, 2, 4, 10, 20000}); // 20000: the float route
        c.curves = rng() % 6 == 0;
        if (rng() % 4 == 0) {
            c.dash = {1 + int32_t(rng() % 15), int32_t(rng() % 9)};
            if (rng() % 3 == 0) {
                c.dash.push_back(1 + int32_t(rng() % 6));
            }
            c.width = std::min(c.width, 8); // many round caps: keep the reference's discs small
            ASSERT_EQ(KRYNSetLineDash(c.dash.data(), uint16_t(c.dash.size()), rng() % 30, e),
                      KRYN_OK);
        }
        const bool merged = n % 3 != 2;
        ASSERT_EQ(KRYNSetLogicalFunc(merged ? 0x5A : 0xA8, e), KRYN_OK);
        ASSERT_EQ(KRYNSetLineWidth(c.width, e), KRYN_OK);
        ASSERT_EQ(KRYNSetLineCap(uint16_t(c.cap), e), KRYN_OK);
        ASSERT_EQ(KRYNSetLineJoin(uint16_t(c.join), e), KRYN_OK);
        ASSERT_EQ(KRYNSetMiterLimit(c.limit, e), KRYN_OK);
        const OracleBounds page{0, W - 1, 0, H - 1};
        std::vector<uint8_t> clip = oracleFill(
            {{{0, 0}, {W * 16, 0}, {W * 16, H * 16}, {0, H * 16}}}, FILL_NONZERO, q, page);
        if (n % 5 == 1) { // a triangle clip: pieces and discs cut against a region
            const int32_t tri[3][2] = {{10, 5}, {W - 5, 40}, {40, H - 3}};
            std::vector<int32_t> u;
            OraclePolygon poly;
            for (const auto& p : tri) {
                const int32_t* m = TO_USER[q];
                u.push_back(m[0] + m[1] * p[0] + m[2] * p[1]);
                u.push_back(m[3] + m[4] * p[0] + m[5] * p[1]);
                poly.push_back({p[0] * 16, p[1] * 16});
            }
            ASSERT_EQ(KRYNMoveTo(u[0], u[1], e), KRYN_OK);
            ASSERT_EQ(KRYNLinesTo(u.data() + 2, 2, e), KRYN_OK);
            ASSERT_EQ(KRYNClip(FILL_NONZERO, e), KRYN_OK);
            const std::vector<uint8_t> region = oracleFill({poly}, FILL_NONZERO, q, page);
            for (size_t i = 0; i < clip.size(); ++i) {
                clip[i] &= region[i];
            }
        }
        if (n % 7 == 3) {
            c.scaled = true; // pen ellipses: kinds TK_SCALE and TK_SWAP
            ASSERT_EQ(KRYNSetScale(rng() % 2 == 0 ? 1.5f : 0.75f, e), KRYN_OK);
        } else if (n % 11 == 5) {
            const int32_t rotation[6] = {4, 3, -3, 4, 60, 0}; // 36.87 degrees, times 5
            ASSERT_EQ(KRYNSetMatrix(rotation, e), KRYN_OK);
            c.general = true;
        }
        randomPath(e, rng, q, &c);
        // The pieces, from the sealed path, then the stroke itself.
        ASSERT_EQ(KRYNSealedPath(e), KRYN_OK);
        PieceLog log;
        GraphicsState* gs = currentState(e);
        ASSERT_EQ(strokePath(*gs, *pageOf(e), log.sink(), gs->clip.current.clipBox), KRYN_OK);
        ASSERT_EQ(KRYNStroke(e), KRYN_OK);
        const Coverage got = pageCoverage(pageOf(e));
        ASSERT_EQ(got.outside, 0) << "case " << n;
        const std::vector<uint8_t> pieces = pieceUnion(log.pieces, q, page);
        int64_t mismatches = 0;
        for (size_t i = 0; i < clip.size(); ++i) {
            const uint8_t have = merged ? got.counts[i] : uint8_t(got.counts[i] > 0);
            mismatches += have != (pieces[i] & clip[i]);
        }
        ASSERT_EQ(mismatches, 0) << "case " << n << " q " << q << " width " << c.width << " cap "
                                 << c.cap << " join " << c.join << " pieces " << log.pieces.size();
        // The ideal stroke, for solid polylines wider than a pixel at scale 1.
        if (!c.dash.empty() || c.width < 3 || c.curves || c.scaled || c.general) {
            continue;
        }
        Ideal ideal;
        ideal.w = c.width / 2.0;
        for (size_t s = 0; s < c.polylines.size(); ++s) {
            ideal.add(c.polylines[s], c.closed[s], uint32_t(c.cap), uint32_t(c.join), c.limit);
        }
        for (int32_t y = 0; y < H; ++y) {
            for (int32_t x = 0; x < W; ++x) {
                const size_t i = size_t(y) * W + size_t(x);
                double required = 0, allowed = 0;
                ideal.distances({double(x), double(y)}, &required, &allowed);
                if (clip[i] != 0 && (required < -1.0 || allowed > 1.0)) {
                    ASSERT_EQ(got.counts[i] != 0, required < -1.0)
                        << "case " << n << ": pixel " << x << "," << y;
                    ++idealChecked;
                }
            }
        }
    }
    EXPECT_GT(idealChecked, 100000);
}
