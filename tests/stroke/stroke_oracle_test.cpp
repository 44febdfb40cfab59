// KRYNStroke end to end on random polylines in every page orientation:
//  - the painted pixels (read back from the band lists) equal the union of
//    the stroke's pieces filled one by one by the reference rasteriser, with
//    the clip applied, and with a raster operation that must not paint a
//    pixel twice every pixel is painted exactly once;
//  - independently of the pieces, the pixels agree with the ideal stroke
//    (segment rectangles, caps, joins from the line attributes) wherever a
//    pixel's sample point lies more than one pixel from its outline.
#include "stroke_pieces_log.h"
#include "support/band_coverage.h"
#include "support/engine_fixture.h"
#include "support/fill_oracle.h"

#include "engine/graphics_state.h"
#include "stroke/stroke_path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 200;
constexpr int32_t H = 160;
const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, W, 0}, {-1, 0, 0, -1, W, H}, {0, -1, 1, 0, 0, H}};

struct P2 {
    double x, y;
};

// User coordinates of a device point under orientation q at scale 1.
void userOf(int32_t q, int32_t dx, int32_t dy, int32_t* ux, int32_t* uy) {
    switch (q) {
    case 0:
        *ux = dx, *uy = dy;
        break;
    case 1:
        *ux = dy, *uy = W - dx;
        break;
    case 2:
        *ux = W - dx, *uy = H - dy;
        break;
    default:
        *ux = H - dy, *uy = dx;
        break;
    }
}

struct Case {
    int32_t width = 1, cap = 0, join = 2, limit = 10;
    std::vector<int32_t> dash;
    uint32_t phase = 0;
    bool curves = false;
    bool general = false; // a rotation that keeps no right angles
    float scale = 1.0f;
    std::vector<std::vector<P2>> polylines; // device points, for the ideal stroke
    std::vector<bool> closed;
};

// Signed distance to a convex polygon given in order (either direction).
double convexDistance(const std::vector<P2>& poly, P2 s) {
    double area = 0;
    for (size_t i = 0; i < poly.size(); ++i) {
        const P2& a = poly[i];
        const P2& b = poly[(i + 1) % poly.size()];
        area += a.x * b.y - b.x * a.y;
    }
    const double orient = area >= 0 ? 1.0 : -1.0;
    bool inside = std::fabs(area) > 1e-9;
    double best = 1e300;
    for (size_t i = 0; i < poly.size(); ++i) {
        const P2& a = poly[i];
        const P2& b = poly[(i + 1) % poly.size()];
        const double ex = b.x - a.x, ey = b.y - a.y;
        const double len2 = ex * ex + ey * ey;
        double t = len2 > 0 ? ((s.x - a.x) * ex + (s.y - a.y) * ey) / len2 : 0;
        t = std::fmax(0, std::fmin(1, t));
        best = std::fmin(best, std::hypot(s.x - a.x - t * ex, s.y - a.y - t * ey));
        inside = inside && orient * (ex * (s.y - a.y) - ey * (s.x - a.x)) >= 0;
    }
    return inside ? -best : best;
}

// The ideal stroke of one device polyline: convex pieces and discs.
struct Ideal {
    std::vector<std::vector<P2>> polygons;
    std::vector<P2> discs;
    std::vector<P2> outerDiscs; // may be painted (short round joins), never required
    double w = 0;

    // Signed distance to the stroke (< 0 inside); pieces more than two
    // pixels away are passed over (they cannot change either verdict).
    void distances(P2 s, double* required, double* allowed) const {
        double d = 1e300;
        for (const auto& p : polygons) {
            double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300;
            for (const P2& q : p) {
                minX = std::fmin(minX, q.x), maxX = std::fmax(maxX, q.x);
                minY = std::fmin(minY, q.y), maxY = std::fmax(maxY, q.y);
            }
            if (s.x >= minX - 2 && s.x <= maxX + 2 && s.y >= minY - 2 && s.y <= maxY + 2) {
                d = std::fmin(d, convexDistance(p, s));
            }
        }
        for (const P2& c : discs) {
            d = std::fmin(d, std::hypot(s.x - c.x, s.y - c.y) - w);
        }
        *required = d;
        for (const P2& c : outerDiscs) {
            d = std::fmin(d, std::hypot(s.x - c.x, s.y - c.y) - w);
        }
        *allowed = d;
    }
};

P2 plus(P2 a, P2 b, double k = 1) {
    return {a.x + k * b.x, a.y + k * b.y};
}

void idealOf(const Case& c, const std::vector<P2>& in, bool closed, Ideal* ideal) {
    const double w = c.width / 2.0;
    ideal->w = w;
    std::vector<P2> pts;
    for (const P2& p : in) {
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
        const P2 a = pts[i % pts.size()], b = pts[(i + 1) % pts.size()];
        const double l = std::hypot(b.x - a.x, b.y - a.y);
        return P2{(b.x - a.x) / l, (b.y - a.y) / l};
    };
    auto len = [&](size_t i) {
        const P2 a = pts[i % pts.size()], b = pts[(i + 1) % pts.size()];
        return std::hypot(b.x - a.x, b.y - a.y);
    };
    for (size_t i = 0; i < n; ++i) {
        const P2 a = pts[i], b = pts[(i + 1) % pts.size()], d = dir(i), nn{d.y * w, -d.x * w};
        ideal->polygons.push_back({plus(a, nn), plus(b, nn), plus(b, nn, -1), plus(a, nn, -1)});
    }
    auto cap = [&](P2 at, P2 d, double sign) {
        const P2 nn{d.y * w, -d.x * w};
        if (c.cap == 1) {
            ideal->discs.push_back(at);
        } else if (c.cap == 2) {
            const P2 out = plus(at, d, sign * w);
            ideal->polygons.push_back(
                {plus(at, nn), plus(out, nn), plus(out, nn, -1), plus(at, nn, -1)});
        }
    };
    if (!closed) {
        cap(pts.front(), dir(0), -1);
        cap(pts.back(), dir(n - 1), 1);
    }
    const size_t joins = closed ? n : n - 1;
    for (size_t k = 0; k < joins; ++k) {
        const size_t ia = k, ib = (k + 1) % n;
        const P2 da = dir(ia), db = dir(ib), j = pts[(k + 1) % pts.size()];
        const double cross = da.x * db.y - da.y * db.x;
        if (std::fabs(cross) < 1e-12) {
            continue;
        }
        const double side = cross > 0 ? 1 : -1;
        const P2 va{side * da.y * w, -side * da.x * w}, vb{side * db.y * w, -side * db.x * w};
        const std::vector<P2> bevel{j, plus(j, va), plus(j, vb)};
        const double cosTurn = da.x * db.x + da.y * db.y;
        if (c.join == 2) {
            const double miter = w / std::sqrt((1 + cosTurn) / 2); // w / cos(turn / 2)
            if (miter <= c.limit * w) {
                const P2 bis{va.x + vb.x, va.y + vb.y};
                const double bl = std::hypot(bis.x, bis.y);
                const P2 tip = plus(j, {bis.x / bl, bis.y / bl}, miter);
                ideal->polygons.push_back({j, plus(j, va), tip, plus(j, vb)});
                continue;
            }
            ideal->polygons.push_back(bevel);
        } else if (c.join == 1) {
            ideal->polygons.push_back(bevel);
        } else if (len(ia) >= w && len(ib) >= w) {
            ideal->discs.push_back(j);
        } else {
            ideal->polygons.push_back(bevel);
            ideal->outerDiscs.push_back(j);
        }
    }
}

int32_t pick(std::mt19937& rng, std::initializer_list<int32_t> values) {
    return *(values.begin() + rng() % values.size());
}

// Builds a random path in the engine (and its device polylines in the case).
void randomPath(Engine* e, std::mt19937& rng, int32_t q, Case* c) {
    const int32_t subpaths = 1 + int32_t(rng() % 2);
    for (int32_t s = 0; s < subpaths; ++s) {
        const int32_t n = 2 + int32_t(rng() % 5);
        std::vector<P2> device;
        std::vector<int32_t> user;
        for (int32_t i = 0; i < n; ++i) {
            int32_t dx = int32_t(rng() % (W + 40)) - 20;
            int32_t dy = int32_t(rng() % (H + 40)) - 20;
            if (i > 0 && rng() % 8 == 0) { // a zero-length segment
                dx = int32_t(device.back().x);
                dy = int32_t(device.back().y);
            } else if (i > 0 && rng() % 4 == 0) { // an axis-parallel one
                (rng() % 2 == 0 ? dx : dy) =
                    int32_t(rng() % 2 == 0 ? device.back().x : device.back().y);
                if (rng() % 2 == 0) {
                    dx = int32_t(device.back().x);
                } else {
                    dy = int32_t(device.back().y);
                }
            }
            device.push_back({double(dx), double(dy)});
            int32_t ux = 0, uy = 0;
            if (c->general) {
                ux = dx / 5, uy = dy / 5; // the rotation keeps them near the page
            } else {
                userOf(q, dx, dy, &ux, &uy);
            }
            user.push_back(ux);
            user.push_back(uy);
        }
        ASSERT_EQ(KRYNMoveTo(user[0], user[1], e), KRYN_OK);
        if (c->curves && n >= 4) {
            ASSERT_EQ(KRYNBezier3To(user.data() + 2, e), KRYN_OK);
            device.clear(); // curves take no part in the ideal check
        } else {
            ASSERT_EQ(KRYNLinesTo(user.data() + 2, int16_t(n - 1), e), KRYN_OK);
        }
        const bool closed = rng() % 3 == 0;
        if (closed) {
            ASSERT_EQ(KRYNClosePath(e), KRYN_OK);
        }
        c->polylines.push_back(device);
        c->closed.push_back(closed);
    }
}

} // namespace

TEST(StrokeEngine, RandomStrokesMatchTheirPiecesAndTheIdealStroke) {
    std::mt19937 rng(20261125);
    bool seenTurns[4] = {};
    int64_t idealChecked = 0;
    for (int32_t n = 0; n < 300; ++n) {
        EnginePtr e = makeEngine(W - 1, H - 1, 32, n % 2 == 0 ? 0x8009 : 0x8000);
        Engine* eng = e.get();
        ASSERT_EQ(KRYNNewPage(0, eng), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[n % 4], eng), KRYN_OK);
        const int32_t q = pageOf(eng)->pageQuarterTurns;
        seenTurns[q] = true;
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
            c.phase = rng() % 30;
            c.width = std::min(c.width, 8); // many round caps: keep the reference's discs small
        }
        const bool merged = n % 3 != 2;
        ASSERT_EQ(KRYNSetLogicalFunc(merged ? 0x5A : 0xA8, eng), KRYN_OK);
        ASSERT_EQ(KRYNSetLineWidth(c.width, eng), KRYN_OK);
        ASSERT_EQ(KRYNSetLineCap(uint16_t(c.cap), eng), KRYN_OK);
        ASSERT_EQ(KRYNSetLineJoin(uint16_t(c.join), eng), KRYN_OK);
        ASSERT_EQ(KRYNSetMiterLimit(c.limit, eng), KRYN_OK);
        if (!c.dash.empty()) {
            ASSERT_EQ(KRYNSetLineDash(c.dash.data(), uint16_t(c.dash.size()), c.phase, eng),
                      KRYN_OK);
        }
        const OracleBounds page{0, W - 1, 0, H - 1};
        std::vector<uint8_t> clip = oracleFill(
            {{{0, 0}, {W * 16, 0}, {W * 16, H * 16}, {0, H * 16}}}, FILL_NONZERO, q, page);
        if (n % 5 == 1) { // a triangle clip: discs and pieces through the region
            const int32_t tri[6][2] = {{10, 5}, {W - 5, 40}, {40, H - 3}};
            std::vector<int32_t> u;
            OraclePolygon poly;
            for (int i = 0; i < 3; ++i) {
                int32_t ux = 0, uy = 0;
                userOf(q, tri[i][0], tri[i][1], &ux, &uy);
                u.push_back(ux), u.push_back(uy);
                poly.push_back({tri[i][0] * 16, tri[i][1] * 16});
            }
            ASSERT_EQ(KRYNMoveTo(u[0], u[1], eng), KRYN_OK);
            ASSERT_EQ(KRYNLinesTo(u.data() + 2, 2, eng), KRYN_OK);
            ASSERT_EQ(KRYNClip(FILL_NONZERO, eng), KRYN_OK);
            const std::vector<uint8_t> region = oracleFill({poly}, FILL_NONZERO, q, page);
            for (size_t i = 0; i < clip.size(); ++i) {
                clip[i] = uint8_t(clip[i] & region[i]);
            }
        }
        if (n % 7 == 3) {
            c.scale = rng() % 2 == 0 ? 1.5f : 0.75f;
            ASSERT_EQ(KRYNSetScale(c.scale, eng), KRYN_OK);
        } else if (n % 11 == 5) {
            const int32_t rotation[6] = {4, 3, -3, 4, 60, 0}; // 36.87 degrees, times 5
            ASSERT_EQ(KRYNSetMatrix(rotation, eng), KRYN_OK);
            c.general = true;
        }
        randomPath(eng, rng, q, &c);
        if (c.scale != 1.0f || c.general) {
            c.polylines.assign(c.polylines.size(), {});
        }
        // The pieces, from the sealed path, then the stroke itself.
        ASSERT_EQ(KRYNSealedPath(eng), KRYN_OK);
        PieceLog log;
        GraphicsState* gs = currentState(eng);
        ASSERT_EQ(strokePath(*gs, *pageOf(eng), log.sink(), gs->clip.current.clipBox), KRYN_OK);
        ASSERT_EQ(KRYNStroke(eng), KRYN_OK);
        const Coverage got = pageCoverage(pageOf(eng));
        ASSERT_EQ(got.outside, 0) << "case " << n;
        const std::vector<uint8_t> pieces = pieceUnion(log.pieces, q, page);
        int64_t mismatches = 0;
        for (size_t i = 0; i < clip.size(); ++i) {
            const uint8_t want = uint8_t(pieces[i] & clip[i]);
            const uint8_t have = merged ? got.counts[i] : uint8_t(got.counts[i] > 0 ? 1 : 0);
            if (have != want && mismatches < 8 && getenv("KRYN_DEBUG")) {
                printf("case %d: x=%zu y=%zu got %d want %d\n", n, i % W, i / W, got.counts[i],
                       want);
                for (size_t k = 0; k < log.pieces.size(); ++k) {
                    const LoggedPiece& lp = log.pieces[k];
                    const auto one = pieceUnion({lp}, q, page);
                    if (one[i] != 0) {
                        printf("  piece %zu disc %d fixed %d:", k, int(lp.disc), int(lp.fixed));
                        for (const auto& pt : lp.points) {
                            printf(" (%.6f,%.6f)", pt.x, pt.y);
                        }
                        printf("\n");
                    }
                }
            }
            mismatches += have != want;
        }
        ASSERT_EQ(mismatches, 0) << "case " << n << " q " << q << " width " << c.width << " cap "
                                 << c.cap << " join " << c.join << " pieces " << log.pieces.size();
        // The ideal stroke, for solid lines wider than a pixel.
        if (!c.dash.empty() || c.width < 3 || c.curves || c.scale != 1.0f || c.general) {
            continue;
        }
        Ideal ideal;
        if (getenv("KRYN_DEBUG")) {
            printf("case %d: width %d cap %d join %d limit %d q %d\n", n, c.width, c.cap, c.join,
                   c.limit, q);
            for (size_t s = 0; s < c.polylines.size(); ++s) {
                printf("  closed %d:", int(c.closed[s]));
                for (const P2& p : c.polylines[s]) {
                    printf(" (%g,%g)", p.x, p.y);
                }
                printf("\n");
            }
        }
        for (size_t s = 0; s < c.polylines.size(); ++s) {
            idealOf(c, c.polylines[s], c.closed[s], &ideal);
        }
        if (ideal.polygons.empty() && ideal.discs.empty()) {
            continue;
        }
        for (int32_t y = 0; y < H; ++y) {
            for (int32_t x = 0; x < W; ++x) {
                const size_t i = size_t(y) * W + size_t(x);
                if (clip[i] == 0) {
                    continue;
                }
                const P2 s{double(x), double(y)};
                double required = 0, allowed = 0;
                ideal.distances(s, &required, &allowed);
                const bool surelyIn = required < -1.0;
                const bool surelyOut = allowed > 1.0;
                ASSERT_FALSE(surelyIn && got.counts[i] == 0)
                    << "case " << n << ": pixel " << x << "," << y << " missing";
                ASSERT_FALSE(surelyOut && got.counts[i] != 0)
                    << "case " << n << ": pixel " << x << "," << y << " painted outside the stroke";
                idealChecked += surelyIn || surelyOut;
            }
        }
    }
    EXPECT_TRUE(seenTurns[0] && seenTurns[1] && seenTurns[2] && seenTurns[3]);
    EXPECT_GT(idealChecked, 100000);
}
