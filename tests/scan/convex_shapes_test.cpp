// Property test over filled convex shapes (circles, ellipses, rounded
// rectangles) of random sizes and positions, partly off the page too: in
// every page orientation, under both fill rules and on both sides of the
// rectangle-entry device level, every painted row is one run, no row
// between the top and bottom painted rows is empty, and no pixel is painted
// twice. Arc joints and the closing line must meet the stepped arcs exactly
// for this to hold. Each fill is also compared pixel for pixel with the
// reference rasteriser given the outline that the flatteners and the arc
// stepper make of the path, on the route (fast box or clamping) its box
// takes: arcs are stepped the same way on both routes.
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

constexpr int32_t SIDE = 200; // square page: every orientation keeps it in view

const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, SIDE, 0}, {-1, 0, 0, -1, SIDE, SIDE}, {0, -1, 1, 0, 0, SIDE}};
const uint16_t LEVELS[2] = {0x8003, 0x8009};

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

// The page rectangle's pixels under the orientation's tie rules.
std::vector<uint8_t> pageClip(int32_t q) {
    const OraclePolygon pageRect{{0, 0}, {SIDE * 16, 0}, {SIDE * 16, SIDE * 16}, {0, SIDE * 16}};
    return oracleFill({pageRect}, 0, q, {0, SIDE - 1, 0, SIDE - 1});
}

// The painted pixels the reference rasteriser finds for the current path,
// within the page rectangle.
std::vector<uint8_t> expectedPixels(Engine* e, int32_t rule, int32_t q) {
    const Path& path = currentState(e)->path;
    std::vector<OraclePolygon> outline;
    for (const Subpath* sp = path.paintFirst; sp != nullptr; sp = sp->next) {
        outline.push_back(Outline(inFastBox(path.box) || inFastBox(sp->box)).build(*sp));
    }
    const OracleBounds page{0, SIDE - 1, 0, SIDE - 1};
    std::vector<uint8_t> want = oracleFill(outline, rule, q, page);
    static const std::vector<uint8_t> clips[4] = {pageClip(0), pageClip(1), pageClip(2),
                                                  pageClip(3)};
    const std::vector<uint8_t>& clip = clips[q];
    for (size_t i = 0; i < want.size(); ++i) {
        want[i] = uint8_t(want[i] & clip[i]);
    }
    return want;
}

// Where the painted pixels first differ from the expected ones.
std::string firstDifference(const Coverage& c, const std::vector<uint8_t>& want) {
    for (size_t i = 0; i < want.size(); ++i) {
        if (c.counts[i] != want[i]) {
            return "pixel " + std::to_string(i % size_t(c.width)) + "," +
                   std::to_string(i / size_t(c.width)) + (want[i] ? " not painted" : " painted");
        }
    }
    return {};
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

TEST(ConvexShapes, EveryOrientationRuleAndLevelPaintsWholeRowsWithoutGaps) {
    std::mt19937 rng(20240611);
    for (int32_t q = 0; q < 4; ++q) {
        for (uint16_t level : LEVELS) {
            for (uint16_t rule = 0; rule < 2; ++rule) {
                for (int32_t n = 0; n < 40; ++n) {
                    const Shape s = randomShape(rng);
                    EnginePtr e = makeEngine(SIDE - 1, SIDE - 1, 32, level);
                    ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
                    ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[q], e.get()), KRYN_OK);
                    ASSERT_EQ(addShape(e.get(), s), KRYN_OK) << s.text();
                    const std::vector<uint8_t> want = expectedPixels(e.get(), rule, q);
                    ASSERT_EQ(KRYNFill(rule, e.get()), KRYN_OK);
                    const Coverage c = pageCoverage(pageOf(e.get()));
                    ASSERT_EQ(c.outside, 0);
                    std::ostringstream what;
                    what << s.text() << ", quarter turns " << q << ", rule " << rule << ", level 0x"
                         << std::hex << level;
                    ASSERT_EQ(convexFlaw(c), "") << what.str();
                    ASSERT_EQ(firstDifference(c, want), "") << what.str();
                }
            }
        }
    }
}
