// Strokes whose pixels are known exactly: axis-parallel lines of whole
// widths (thin ones included) with each cap in every page orientation,
// dash patterns along a line, dots and stroked scan lines.
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 120;
constexpr int32_t H = 100;
const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, W, 0}, {-1, 0, 0, -1, W, H}, {0, -1, 1, 0, 0, H}};
// User point = (u[0] + u[1] dx + u[2] dy, u[3] + u[4] dx + u[5] dy) per orientation.
const int32_t TO_USER[4][6] = {
    {0, 1, 0, 0, 0, 1}, {0, 0, 1, W, -1, 0}, {W, -1, 0, H, 0, -1}, {H, 0, -1, 0, 1, 0}};

std::vector<int32_t> user(int32_t q, int32_t dx, int32_t dy) {
    const int32_t* u = TO_USER[q];
    return {u[0] + u[1] * dx + u[2] * dy, u[3] + u[4] * dx + u[5] * dy};
}

struct Span {
    int32_t first, last;
};
// Pixels whose sample lies in [a, b), or in (a, b] when `below`.
Span sampled(double a, double b, bool below) {
    return below ? Span{int32_t(std::floor(a)) + 1, int32_t(std::floor(b))}
                 : Span{int32_t(std::ceil(a)), int32_t(std::ceil(b)) - 1};
}

struct Box {
    int32_t minX = INT32_MAX, maxX = INT32_MIN, minY = INT32_MAX, maxY = INT32_MIN;
    int64_t count = 0;
};
Box paintedBox(const Coverage& c) {
    Box b;
    for (int32_t y = 0; y < c.height; ++y) {
        for (int32_t x = 0; x < c.width; ++x) {
            if (c.at(x, y) != 0) {
                b = {std::min(b.minX, x), std::max(b.maxX, x), std::min(b.minY, y),
                     std::max(b.maxY, y), b.count + 1};
            }
        }
    }
    return b;
}

EnginePtr pageIn(int32_t q) {
    EnginePtr e = makeEngine(W - 1, H - 1, 16);
    EXPECT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
    EXPECT_EQ(KRYNSetMatrix(ORIENTATIONS[q], e.get()), KRYN_OK);
    return e;
}

// Painted columns of one row as "[first,last]" runs.
std::string rowRuns(const Coverage& c, int32_t y) {
    std::string s;
    for (int32_t x = 0; x < c.width; ++x) {
        if (c.at(x, y) != 0 && (x == 0 || c.at(x - 1, y) == 0)) {
            int32_t last = x;
            while (last + 1 < c.width && c.at(last + 1, y) != 0) {
                ++last;
            }
            s += "[" + std::to_string(x) + "," + std::to_string(last) + "]";
        }
    }
    return s;
}

} // namespace

TEST(StrokeLines, AxisParallelLinesOfWholeWidthsCoverExactRowsAndColumns) {
    for (int32_t q = 0; q < 4; ++q) {
        const bool rowsBelow = q >= 2, columnsStrict = q == 1 || q == 2;
        for (int32_t width : {0, 1, 2, 3, 4, 7, 10}) {
            for (uint16_t cap : {0, 1, 2}) {
                for (bool vertical : {false, true}) {
                    EnginePtr e = pageIn(q);
                    ASSERT_EQ(KRYNSetLineWidth(width, e.get()), KRYN_OK);
                    ASSERT_EQ(KRYNSetLineCap(cap, e.get()), KRYN_OK);
                    const std::vector<int32_t> a = user(q, vertical ? 50 : 20, vertical ? 20 : 50);
                    const std::vector<int32_t> b = user(q, vertical ? 50 : 70, vertical ? 70 : 50);
                    ASSERT_EQ(KRYNMoveTo(a[0], a[1], e.get()), KRYN_OK);
                    ASSERT_EQ(KRYNLinesTo(b.data(), 1, e.get()), KRYN_OK);
                    ASSERT_EQ(KRYNStroke(e.get()), KRYN_OK);
                    // Widths 0 and 1 are one pixel across and have no caps;
                    // square and round caps reach half a width further.
                    const double h = width <= 1 ? 0.5 : width / 2.0;
                    const double ext = cap == 0 || width <= 1 ? 0 : h;
                    const Span along =
                        sampled(20 - ext, 70 + ext, vertical ? rowsBelow : columnsStrict);
                    const Span across =
                        sampled(50 - h, 50 + h, vertical ? columnsStrict : rowsBelow);
                    const Span cols = vertical ? across : along, rows = vertical ? along : across;
                    const Box got = paintedBox(pageCoverage(pageOf(e.get())));
                    const std::string what = "q " + std::to_string(q) + " width " +
                                             std::to_string(width) + " cap " + std::to_string(cap) +
                                             (vertical ? " vertical" : " horizontal");
                    EXPECT_EQ(across.last - across.first + 1, std::max(width, 1)) << what;
                    EXPECT_EQ(got.minX, cols.first) << what;
                    EXPECT_EQ(got.maxX, cols.last) << what;
                    EXPECT_EQ(got.minY, rows.first) << what;
                    EXPECT_EQ(got.maxY, rows.last) << what;
                    const int64_t area =
                        int64_t(cols.last - cols.first + 1) * (rows.last - rows.first + 1);
                    if (cap == 1 && width >= 4) {
                        EXPECT_LT(got.count, area) << what << ": round ends cut the corners";
                    } else if (cap != 1 || width <= 1) {
                        EXPECT_EQ(got.count, area) << what;
                    }
                }
            }
        }
    }
}

TEST(StrokeLines, DashPatternsAlongALine) {
    struct Case {
        std::vector<int32_t> pattern;
        uint32_t phase;
        uint16_t cap;
        std::string runs; // row 50 of a line 2 wide from x 10 to x 40
    };
    const std::string threeTwo = "[10,12][15,17][20,22][25,27][30,32][35,37]";
    const Case cases[] = {
        {{3, 2}, 0, 0, threeTwo},
        {{3, 2}, 5, 0, threeTwo},                                     // a whole period
        {{3, 2}, 4, 0, "[11,13][16,18][21,23][26,28][31,33][36,38]"}, // 1 of the gap left
        {{3, 3}, 0, 2, "[9,13][15,19][21,25][27,31][33,37]"},         // square caps
        {{4}, 0, 0, "[10,39]"},                                       // the wrap keeps the pen down
        {{4}, 2, 0, "[10,11][16,39]"}, // 2 of 4, a gap of 4, then solid
        {{2, 1, 1},
         0,
         0,
         "[10,11][13,15][17,19][21,23][25,27][29,31][33,35][37,39]"}, // odd: wraps merge
        {{0, 4},
         0,
         2,
         "[9,10][13,14][17,18][21,22][25,26][29,30][33,34][37,38]"}, // caps of empty dashes
        {{-1, 3},
         0,
         0,
         "[9,9][11,11][13,13][15,15][17,17][19,19][21,21][23,23][25,25][27,27][29,29]"
         "[31,31][33,33][35,35][37,37]"}, // dashes running backwards
    };
    for (const Case& c : cases) {
        EnginePtr e = pageIn(0);
        ASSERT_EQ(KRYNSetLineWidth(2, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetLineCap(c.cap, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(c.pattern.data(), uint16_t(c.pattern.size()), c.phase, e.get()),
                  KRYN_OK);
        for (int32_t y : {50, 80}) { // two subpaths: both start at the phase
            const int32_t to[2] = {40, y};
            ASSERT_EQ(KRYNMoveTo(10, y, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNLinesTo(to, 1, e.get()), KRYN_OK);
        }
        ASSERT_EQ(KRYNStroke(e.get()), KRYN_OK);
        const Coverage cov = pageCoverage(pageOf(e.get()));
        EXPECT_EQ(rowRuns(cov, 50), c.runs) << c.pattern[0] << "... phase " << c.phase;
        EXPECT_EQ(rowRuns(cov, 80), c.runs) << "second subpath";
    }
}

TEST(StrokeLines, DotsCoverTwoByTwoSamplesThroughTheClip) {
    for (int32_t q = 0; q < 4; ++q) { // down and right of the point (up for 2 and 3 turns)
        EnginePtr e = pageIn(q);
        const std::vector<int32_t> p = user(q, 30, 40);
        ASSERT_EQ(KRYNDotPaint(p[0], p[1], e.get()), KRYN_OK);
        const Box b = paintedBox(pageCoverage(pageOf(e.get())));
        const Span cols = sampled(30, 32, q == 1 || q == 2);
        const Span rows = q <= 1 ? sampled(40, 42, false) : sampled(38, 40, true);
        EXPECT_EQ(b.count, 4) << q;
        EXPECT_TRUE(b.minX == cols.first && b.maxX == cols.last && b.minY == rows.first &&
                    b.maxY == rows.last)
            << q;
    }
    EnginePtr engine = makeEngine(W - 1, H - 1, 16);
    Engine* e = engine.get();
    ASSERT_EQ(KRYNNewPage(0, e), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(10, 10, e), KRYN_OK); // no orientation yet: nothing
    ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[0], e), KRYN_OK);
    ASSERT_EQ(KRYNSetScale(0.5f, e), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(21, 41, e), KRYN_OK); // (10.5, 20.5): the next pixels over
    ASSERT_EQ(KRYNSetScale(2.0f, e), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(0, 0, 50, 50, e), KRYN_OK);
    ASSERT_EQ(KRYNClip(FILL_NONZERO, e), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(49, 30, e), KRYN_OK); // inside a rectangle: not clipped
    EXPECT_EQ(KRYNDotPaint(60, 30, e), KRYN_OK); // outside: nothing
    ASSERT_EQ(KRYNMoveTo(70, 0, e), KRYN_OK);
    const int32_t tri[4] = {100, 0, 70, 30};
    ASSERT_EQ(KRYNLinesTo(tri, 2, e), KRYN_OK);
    ASSERT_EQ(KRYNClip(FILL_NONZERO, e), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(84, 14, e), KRYN_OK); // x + y = 100 is the hypotenuse
    const Coverage c = pageCoverage(pageOf(e));
    EXPECT_EQ(rowRuns(c, 21), "[11,12]");
    EXPECT_EQ(rowRuns(c, 30), "[49,50]") << "one column past the clip, as decided";
    EXPECT_EQ(rowRuns(c, 14), "[84,85]");
    EXPECT_EQ(rowRuns(c, 15), "[84,84]") << "(85, 15) samples the clip's right side";
    EXPECT_EQ(paintedBox(c).count, 4 + 4 + 3);
}

TEST(StrokeLines, ScanLinesAreOpenRunsForTheNextStroke) {
    EnginePtr engine = pageIn(0);
    Engine* e = engine.get();
    const int32_t runs[6] = {10, 20, 30, 45, 60, 61};
    EXPECT_EQ(KRYNScanLines(runs, 7, 0, e), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNScanLines(nullptr, 7, 3, e), KRYN_ERR_INVALID);
    ASSERT_EQ(KRYNScanLines(runs, 7, 3, e), KRYN_OK);
    int32_t subpaths = 0;
    for (const Subpath* sp = currentState(e)->path.first; sp != nullptr; sp = sp->next) {
        EXPECT_TRUE(sp->closed == 0 && sp->start[1] == 7.0f);
        ++subpaths;
    }
    EXPECT_EQ(subpaths, 3);
    EXPECT_EQ(currentState(e)->path.currentPoint[0], 60.0f);
    const int16_t runs16[2] = {5, 9};
    ASSERT_EQ(KRYNScanLines16(runs16, -1, 1, e), KRYN_OK);
    EXPECT_EQ(currentState(e)->path.last->start[1], -1.0f);
    ASSERT_EQ(KRYNFill(FILL_NONZERO, e), KRYN_OK); // runs enclose nothing
    EXPECT_EQ(paintedBox(pageCoverage(pageOf(e))).count, 0);
    ASSERT_EQ(KRYNScanLines(runs, 7, 3, e), KRYN_OK);
    ASSERT_EQ(KRYNStroke(e), KRYN_OK);
    EXPECT_EQ(rowRuns(pageCoverage(pageOf(e)), 7), "[10,19][30,44][60,60]");
}
