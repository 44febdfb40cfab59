// Strokes under hostile input: every call answers a documented code,
// nothing is painted outside the page, every allocation is freed, and
// pathological patterns finish in bounded work. (Strokes under failed
// memory: api/paint_alloc_sweep_test.)
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 200;
constexpr int32_t H = 160;
const int32_t IDENTITY[6] = {1, 0, 0, 1, 0, 0};

struct Style {
    const char* name;
    int32_t width;
    uint16_t cap, join;
    int32_t limit;
    std::vector<int32_t> dash;
};

struct Figure {
    const char* name;
    std::vector<int32_t> points; // move, then lines
    bool closed;
};

} // namespace

TEST(StrokeRobustness, HostileWidthsPatternsMatricesAndFiguresPaintOnlyThePage) {
    std::vector<int32_t> longPattern(65535, 1);
    const Style styles[] = {
        {"hairline", 0, 0, 2, 10, {}},
        {"round pens", 31, 1, 3, 10, {}},
        {"miter limit 1", 12, 2, 2, 1, {}},
        {"huge limit", 12, 0, 2, INT32_MAX, {}},
        {"width beyond 16.16", 40000, 1, 3, 10, {}},
        {"width INT32_MAX", INT32_MAX, 2, 2, INT32_MAX, {}},
        {"zero dashes", 5, 1, 1, 10, {0, 3, 0, 0}},
        {"negative dash", 5, 2, 2, 10, {7, -2, 4}},
        {"huge dash", 5, 1, 2, 10, {INT32_MAX, 1}},
        {"huge gap", 5, 1, 2, 10, {1, INT32_MAX}},
        {"65535 entries", 3, 2, 0, 10, longPattern},
    };
    const std::vector<int32_t> matrices[] = {
        {1, 0, 0, 1, 0, 0},
        {0, 1, -1, 0, W, 0},
        {866, 500, -500, 866, 0, 0}, // with the scale below: a 30 degree turn
        {INT32_MAX, 0, 0, INT32_MAX, INT32_MIN, 0},
    };
    const Figure figures[] = {
        {"one point", {50, 50}, false},
        {"zero-length segments", {50, 50, 50, 50, 50, 50}, true},
        {"spike", {20, 20, 150, 100, 20, 20, 21, 20}, false},
        {"far away", {INT32_MIN, 5, INT32_MAX, 100, 100, INT32_MAX, -7, -9}, true},
        {"page crossing", {-300, 40, 500, 60, 100, -400, 100, 900}, false},
    };
    int32_t strokes = 0;
    for (const auto& m : matrices) {
        for (const Style& s : styles) {
            const uint64_t live = KRYNPlatformLiveBlocks();
            {
                EnginePtr engine = makeEngine(W - 1, H - 1, 32, 0x8009);
                Engine* e = engine.get();
                ASSERT_EQ(KRYNNewPage(0, e), KRYN_OK);
                ASSERT_EQ(KRYNSetMatrix(IDENTITY, e), KRYN_OK); // the page orientation
                ASSERT_TRUE(documented(KRYNSetMatrix(m.data(), e)));
                if (m[0] == 866) {
                    ASSERT_EQ(KRYNSetScale(0.001f, e), KRYN_OK);
                }
                ASSERT_EQ(KRYNSetLogicalFunc(0x5A, e), KRYN_OK);
                ASSERT_EQ(KRYNSetLineWidth(s.width, e), KRYN_OK);
                ASSERT_EQ(KRYNSetLineCap(s.cap, e), KRYN_OK);
                ASSERT_EQ(KRYNSetLineJoin(s.join, e), KRYN_OK);
                ASSERT_EQ(KRYNSetMiterLimit(s.limit, e), KRYN_OK);
                if (!s.dash.empty()) {
                    ASSERT_EQ(KRYNSetLineDash(s.dash.data(), uint16_t(s.dash.size()), 3, e),
                              KRYN_OK);
                }
                for (const Figure& f : figures) {
                    // Dashes along lines of 2^32 pixels spend the whole dash
                    // budget (PathologicalDashes): one pattern at a time here.
                    if (!s.dash.empty() && (m[0] == INT32_MAX || f.points[0] == INT32_MIN)) {
                        continue;
                    }
                    const std::string what =
                        std::string(s.name) + ", " + f.name + ", matrix " + std::to_string(m[0]);
                    ASSERT_EQ(KRYNMoveTo(f.points[0], f.points[1], e), KRYN_OK) << what;
                    if (f.points.size() > 2) {
                        ASSERT_EQ(
                            KRYNLinesTo(f.points.data() + 2, int16_t(f.points.size() / 2 - 1), e),
                            KRYN_OK)
                            << what;
                    }
                    if (f.closed) {
                        ASSERT_EQ(KRYNClosePath(e), KRYN_OK);
                    }
                    const ResultCode r = KRYNStroke(e);
                    ASSERT_EQ(r, KRYN_OK) << what;
                    ++strokes;
                }
                EXPECT_EQ(pageCoverage(pageOf(e)).outside, 0) << s.name;
                EXPECT_EQ(KRYNClosePage(nullptr, 0, e), KRYN_OK);
            }
            EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << s.name;
        }
    }
    RecordProperty("strokes", strokes);
}

TEST(StrokeRobustness, PathologicalDashesEndSolidInBoundedWork) {
    // Thin: {1, 1} along five million pixels left of the page spends the
    // dash budget before the page, where the line is solid (still dashed
    // it would paint every other column). Wide: one-unit dashes 8000 pixels
    // wide with round caps (a pen still exists) against a triangle clip
    // under XOR paint the triangle once.
    for (bool wide : {false, true}) {
        EnginePtr engine = makeEngine(W - 1, H - 1, 32, 0x8009);
        Engine* e = engine.get();
        ASSERT_EQ(KRYNNewPage(0, e), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(IDENTITY, e), KRYN_OK);
        const int32_t pattern[2] = {1, 1};
        int32_t from[2] = {-5000000, 50}, to[2] = {W + 10, 50};
        ASSERT_EQ(KRYNSetLineWidth(2, e), KRYN_OK);
        if (wide) {
            ASSERT_EQ(KRYNMoveTo(0, 0, e), KRYN_OK);
            const int32_t tri[4] = {W, 0, 0, H};
            ASSERT_EQ(KRYNLinesTo(tri, 2, e), KRYN_OK);
            ASSERT_EQ(KRYNClip(FILL_NONZERO, e), KRYN_OK);
            ASSERT_EQ(KRYNSetLogicalFunc(0x5A, e), KRYN_OK);
            ASSERT_EQ(KRYNSetLineWidth(8000, e), KRYN_OK);
            ASSERT_EQ(KRYNSetLineCap(1, e), KRYN_OK);
            from[0] = -300, to[0] = 300;
        }
        ASSERT_EQ(KRYNSetLineDash(pattern, 2, 0, e), KRYN_OK);
        ASSERT_EQ(KRYNMoveTo(from[0], from[1], e), KRYN_OK);
        ASSERT_EQ(KRYNLinesTo(to, 1, e), KRYN_OK);
        ASSERT_EQ(KRYNStroke(e), KRYN_OK);
        const Coverage c = pageCoverage(pageOf(e));
        EXPECT_EQ(c.outside, 0);
        for (int32_t x = 0; x < (wide ? 60 : W); ++x) {
            ASSERT_EQ(c.at(x, wide ? 10 : 50), 1) << wide << " " << x;
        }
        EXPECT_EQ(c.at(W - 10, H - 10), 0);
    }
}
