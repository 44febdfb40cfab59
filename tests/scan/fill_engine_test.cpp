// KRYNFill and KRYNClip end to end: random polygon paths (points far off
// the page too), circles, ellipses and rounded rectangles, under random
// polygon clips, in every page orientation, at three scales and on both
// sides of the rectangle-entry device level, read back from the band lists
// and compared pixel for pixel with the reference rasteriser given the
// outline the flatteners and the arc stepper make of the path (so the test
// checks flattening, scan conversion, clipping and recording, not the
// transformation): every pixel is painted exactly as often as the oracle
// says, once. Unclipped convex shapes must also paint every row as one run
// with no row missing between the first and the last: arc joints and the
// closing line meet the stepped arcs exactly.
#include "support/band_coverage.h"
#include "support/engine_fixture.h"
#include "support/fill_oracle.h"

#include "engine/graphics_state.h"
#include "geometry/flatten.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>

using namespace kryn;
using namespace kryn::test;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr int32_t CASES = 240;
#else
constexpr int32_t CASES = 960;
#endif
constexpr int32_t SIDE = 200; // square page: every orientation keeps it in view

const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, SIDE, 0}, {-1, 0, 0, -1, SIDE, SIDE}, {0, -1, 1, 0, 0, SIDE}};
const uint16_t LEVELS[3] = {0x8000, 0x8003, 0x8009};
const float SCALES[3] = {1.0f, 0.5f, 0.3f};
const OracleBounds PAGE{0, SIDE - 1, 0, SIDE - 1};

// The first flaw of a coverage that should show one convex shape; empty
// when there is none.
std::string convexFlaw(const Coverage& c) {
    int32_t top = -1, bottom = -1;
    for (int32_t y = 0; y < c.height; ++y) {
        int32_t runs = 0;
        bool inside = false;
        for (int32_t x = 0; x < c.width; ++x) {
            const uint8_t n = c.at(x, y);
            if (n > 1) {
                return "pixel " + std::to_string(x) + "," + std::to_string(y) + " painted twice";
            }
            runs += n == 1 && !inside;
            inside = n == 1;
        }
        if (runs > 1) {
            return "row " + std::to_string(y) + " broken into " + std::to_string(runs) + " runs";
        }
        if (runs == 1) {
            if (bottom >= 0 && bottom != y - 1) {
                return "rows " + std::to_string(bottom + 1) + ".." + std::to_string(y - 1) +
                       " missing";
            }
            top = top < 0 ? y : top;
            bottom = y;
        }
    }
    return {};
}

// The outline the edge builder makes of one subpath, in sixteenths: the
// fast-box route cuts 16.16 values to sixteenths (floor), the clamping
// route truncates pixels x 16; every chord starts where the last one ended.
class Outline {
  public:
    explicit Outline(bool direct) : direct_(direct) {}

    OraclePolygon build(const Subpath& sp) {
        to(sp.start[0], sp.start[1]);
        for (const PathSegment* s = sp.paintFirstSegment; s != nullptr; s = s->next) {
            switch (s->type) {
            case SEG_LINE:
                to(s->line[0], s->line[1]);
                break;
            case SEG_LINE_INT:
                to(s->lineInt[0], s->lineInt[1]);
                break;
            case SEG_CURVE:
                curve(s->curve);
                break;
            case SEG_CURVE_INT: {
                float c[6];
                for (int i = 0; i < 6; ++i) {
                    c[i] = float(s->curveInt[i]);
                }
                curve(c);
                break;
            }
            case SEG_POLY_CURVE: {
                WidePoint end;
                flattenPowerCurve({toWideFixed(pen_[0]), toWideFixed(pen_[1])}, s->poly, 0x10000,
                                  nullptr, wideChord, this, &end);
                break;
            }
            }
        }
        return poly_;
    }

  private:
    void to(double x, double y) {
        pen_[0] = x;
        pen_[1] = y;
        poly_.push_back({sixteenths(x), sixteenths(y)});
    }

    int64_t sixteenths(double pixels) const {
        return direct_ ? int64_t(std::trunc(pixels * 65536.0)) >> 12 : oracleSixteenths(pixels);
    }

    void curve(const float* c) {
        if (direct_) {
            auto fixed = [](double v) { return int32_t(std::trunc(v * 65536.0)); };
            const FixedPoint p[4] = {{fixed(pen_[0]), fixed(pen_[1])},
                                     {fixed(c[0]), fixed(c[1])},
                                     {fixed(c[2]), fixed(c[3])},
                                     {fixed(c[4]), fixed(c[5])}};
            flattenFixed(p, 0x10000, fixedChord, this);
            return;
        }
        // Pieces the engine turns into chords outside the clip box change no
        // winding on the page, so no box is needed here.
        const FloatBox everywhere{-1e30f, 1e30f, -1e30f, 1e30f};
        const FloatPoint p[4] = {
            {float(pen_[0]), float(pen_[1])}, {c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}};
        flattenFloat(p, everywhere, 1.0f, floatChord, this);
    }

    static ResultCode fixedChord(void* self, FixedPoint, FixedPoint to) {
        static_cast<Outline*>(self)->to(to.x / 65536.0, to.y / 65536.0);
        return KRYN_OK;
    }
    static ResultCode floatChord(void* self, FloatPoint, FloatPoint to) {
        static_cast<Outline*>(self)->to(to.x, to.y);
        return KRYN_OK;
    }
    static ResultCode wideChord(void* self, WidePoint, WidePoint to) {
        static_cast<Outline*>(self)->to(double(to.x) / 65536.0, double(to.y) / 65536.0);
        return KRYN_OK;
    }

    bool direct_;
    double pen_[2] = {0, 0};
    OraclePolygon poly_;
};

bool inFastBox(const FloatBox& b) {
    return b.minX >= 0 && b.minY >= 0 && b.maxX <= 16384 && b.maxY <= 16384;
}

// The pixels the reference rasteriser finds for the current path.
std::vector<uint8_t> pathPixels(Engine* e, int32_t rule, int32_t q) {
    const Path& path = currentState(e)->path;
    std::vector<OraclePolygon> outline;
    for (const Subpath* sp = path.paintFirst; sp != nullptr; sp = sp->next) {
        outline.push_back(Outline(inFastBox(path.box) || inFastBox(sp->box)).build(*sp));
    }
    return oracleFill(outline, rule, q, PAGE);
}

std::vector<uint8_t> intersect(std::vector<uint8_t> a, const std::vector<uint8_t>& b) {
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] = uint8_t(a[i] & b[i]);
    }
    return a;
}

// Where the painted pixels first differ from the expected ones.
std::string firstDifference(const Coverage& c, const std::vector<uint8_t>& want) {
    for (size_t i = 0; i < want.size(); ++i) {
        if (c.counts[i] != want[i]) {
            return "pixel " + std::to_string(i % size_t(c.width)) + "," +
                   std::to_string(i / size_t(c.width)) + " painted " + std::to_string(c.counts[i]) +
                   " times, want " + std::to_string(want[i]);
        }
    }
    return {};
}

int32_t coordinate(std::mt19937& rng) {
    if (rng() % 40 == 0) {
        return (rng() % 2 == 0 ? -1 : 1) * int32_t(200000000 + rng() % 100000000);
    }
    return int32_t(rng() % uint32_t(SIDE + 120)) - 60;
}

void randomPolygons(Engine* e, std::mt19937& rng, int32_t subpaths, int32_t maxVertices) {
    ASSERT_EQ(KRYNNewPath(e), KRYN_OK);
    for (int32_t s = 0; s < subpaths; ++s) {
        const int32_t n = 3 + int32_t(rng() % uint32_t(maxVertices - 2));
        std::vector<int32_t> points;
        for (int32_t i = 0; i < 2 * n; ++i) {
            points.push_back(coordinate(rng));
        }
        ASSERT_EQ(KRYNMoveTo(points[0], points[1], e), KRYN_OK);
        ASSERT_EQ(KRYNLinesTo(points.data() + 2, int16_t(n - 1), e), KRYN_OK);
    }
}

struct Shape {
    int32_t kind; // 0 circle, 1 ellipse, 2 rounded rectangle
    int32_t x, y, w, h, rx, ry;

    std::string text() const {
        std::ostringstream s;
        s << (kind == 0   ? "circle"
              : kind == 1 ? "ellipse"
                          : "round rect")
          << " at " << x << "," << y << " size " << w << "x" << h;
        if (kind == 2) {
            s << " corners " << rx << "x" << ry;
        }
        return s.str();
    }
};

Shape randomShape(std::mt19937& rng) {
    auto pick = [&](int32_t lo, int32_t hi) { return lo + int32_t(rng() % uint32_t(hi - lo + 1)); };
    Shape s{};
    s.kind = pick(0, 2);
    // Mostly on the page; one in four reaches well past an edge.
    const int32_t extent = rng() % 4 == 0 ? 400 : 160;
    s.w = pick(2, extent);
    s.h = s.kind == 0 ? s.w : pick(2, extent);
    s.x = pick(-s.w + 4, SIDE - 4);
    s.y = pick(-s.h + 4, SIDE - 4);
    s.rx = pick(1, std::max(1, s.w / 2));
    s.ry = rng() % 2 == 0 ? s.rx : pick(1, std::max(1, s.h / 2));
    s.ry = std::min(s.ry, std::max(1, s.h / 2));
    return s;
}

ResultCode addShape(Engine* e, const Shape& s) {
    if (s.kind == 2) {
        return KRYNRoundRectPath(s.x, s.y, s.w, s.h, s.rx, s.ry, e);
    }
    return KRYNEllipsePath(s.x, s.y, s.x + s.w, s.y + s.h, e);
}

} // namespace

TEST(FillEngine, RandomPathsShapesAndClipsMatchTheReferenceRasteriserExactly) {
    std::mt19937 rng(20261123);
    // Every region is cut by the page rectangle under the orientation's
    // tie rules (the reset clip is that rectangle itself).
    const OraclePolygon pageRect{{0, 0}, {SIDE * 16, 0}, {SIDE * 16, SIDE * 16}, {0, SIDE * 16}};
    std::vector<uint8_t> pageClips[4];
    for (int32_t q = 0; q < 4; ++q) {
        pageClips[q] = oracleFill({pageRect}, 0, q, PAGE);
    }
    for (int32_t n = 0; n < CASES; ++n) {
        const int32_t q = n % 4;
        const uint16_t level = LEVELS[n / 4 % 3];
        EnginePtr e = makeEngine(SIDE - 1, SIDE - 1, 32, level);
        ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[q], e.get()), KRYN_OK);
        ASSERT_EQ(pageOf(e.get())->pageQuarterTurns, q);
        ASSERT_EQ(KRYNSetScale(SCALES[n / 12 % 3], e.get()), KRYN_OK);
        std::vector<uint8_t> clip = pageClips[q];
        const bool clipped = n % 3 == 1;
        if (clipped) {
            randomPolygons(e.get(), rng, 1 + int32_t(rng() % 2), 5);
            const uint16_t clipRule = uint16_t(rng() % 2);
            clip = intersect(clip, pathPixels(e.get(), clipRule, q));
            ASSERT_EQ(KRYNClip(clipRule, e.get()), KRYN_OK);
        }
        const bool shape = n % 2 == 0;
        const Shape s = randomShape(rng);
        std::ostringstream what;
        if (shape) {
            ASSERT_EQ(addShape(e.get(), s), KRYN_OK) << s.text();
            what << s.text();
        } else {
            randomPolygons(e.get(), rng, 1 + int32_t(rng() % 3), 9);
            what << "polygons";
        }
        const uint16_t rule = uint16_t(rng() % 2);
        what << ", case " << n << ", quarter turns " << q << ", rule " << rule << ", level 0x"
             << std::hex << level;
        const std::vector<uint8_t> want = intersect(pathPixels(e.get(), rule, q), clip);
        ASSERT_EQ(KRYNFill(rule, e.get()), KRYN_OK);
        const Coverage got = pageCoverage(pageOf(e.get()));
        ASSERT_EQ(got.outside, 0) << what.str();
        if (shape && !clipped) {
            ASSERT_EQ(convexFlaw(got), "") << what.str();
        }
        ASSERT_EQ(firstDifference(got, want), "") << what.str();
    }
}
