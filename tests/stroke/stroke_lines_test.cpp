// Strokes whose pixels are known exactly: axis-parallel lines of whole
// widths with each cap in every page orientation, thin lines and
// hairlines, dash patterns along a line, dots and stroked scan lines.
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

// User point of a device point under orientation q.
std::vector<int32_t> user(int32_t q, int32_t dx, int32_t dy) {
    switch (q) {
    case 0:
        return {dx, dy};
    case 1:
        return {dy, W - dx};
    case 2:
        return {W - dx, H - dy};
    default:
        return {H - dy, dx};
    }
}

// Pixels whose sample lies in [a, b) (rows of 0, 1 and columns of 0, 3
// quarter turns) or (a, b] (the others), for a <= b in pixels.
struct Span {
    int32_t first, last;
};
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
                b.minX = std::min(b.minX, x), b.maxX = std::max(b.maxX, x);
                b.minY = std::min(b.minY, y), b.maxY = std::max(b.maxY, y);
                ++b.count;
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

void strokeLine(Engine* e, int32_t q, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    const std::vector<int32_t> a = user(q, x0, y0), b = user(q, x1, y1);
    ASSERT_EQ(KRYNMoveTo(a[0], a[1], e), KRYN_OK);
    ASSERT_EQ(KRYNLinesTo(b.data(), 1, e), KRYN_OK);
    ASSERT_EQ(KRYNStroke(e), KRYN_OK);
}

// Painted columns of one row, as [first, last] runs.
std::vector<Span> rowRuns(const Coverage& c, int32_t y) {
    std::vector<Span> runs;
    for (int32_t x = 0; x < c.width; ++x) {
        if (c.at(x, y) == 0) {
            continue;
        }
        if (!runs.empty() && runs.back().last == x - 1) {
            runs.back().last = x;
        } else {
            runs.push_back({x, x});
        }
    }
    return runs;
}

std::string describe(const std::vector<Span>& runs) {
    std::string s;
    for (const Span& r : runs) {
        s += "[" + std::to_string(r.first) + "," + std::to_string(r.last) + "]";
    }
    return s;
}

} // namespace

TEST(StrokeLines, AxisParallelLinesOfWholeWidthsCoverExactRowsAndColumns) {
    for (int32_t q = 0; q < 4; ++q) {
        const bool rowsBelow = q >= 2, columnsStrict = q == 1 || q == 2;
        for (int32_t width : {2, 3, 4, 7, 10}) {
            for (uint16_t cap : {0, 1, 2}) {
                for (bool vertical : {false, true}) {
                    EnginePtr e = pageIn(q);
                    ASSERT_EQ(KRYNSetLineWidth(width, e.get()), KRYN_OK);
                    ASSERT_EQ(KRYNSetLineCap(cap, e.get()), KRYN_OK);
                    const double h = width / 2.0;
                    const double ext = cap == 0 ? 0 : h; // square and round caps reach h further
                    Span along, across;
                    if (vertical) {
                        strokeLine(e.get(), q, 50, 20, 50, 70);
                        along = sampled(20 - ext, 70 + ext, rowsBelow);
                        across = sampled(50 - h, 50 + h, columnsStrict);
                    } else {
                        strokeLine(e.get(), q, 20, 50, 70, 50);
                        along = sampled(20 - ext, 70 + ext, columnsStrict);
                        across = sampled(50 - h, 50 + h, rowsBelow);
                    }
                    const Box b = paintedBox(pageCoverage(pageOf(e.get())));
                    const Span cols = vertical ? across : along;
                    const Span rows = vertical ? along : across;
                    const std::string what = "q " + std::to_string(q) + " width " +
                                             std::to_string(width) + " cap " + std::to_string(cap) +
                                             (vertical ? " vertical" : " horizontal");
                    EXPECT_EQ(across.last - across.first + 1, width) << what;
                    EXPECT_EQ(b.minX, cols.first) << what;
                    EXPECT_EQ(b.maxX, cols.last) << what;
                    EXPECT_EQ(b.minY, rows.first) << what;
                    EXPECT_EQ(b.maxY, rows.last) << what;
                    const int64_t area =
                        int64_t(cols.last - cols.first + 1) * (rows.last - rows.first + 1);
                    if (cap == 1 && width >= 4) {
                        EXPECT_LT(b.count, area) << what << ": round ends cut the corners";
                    } else if (cap == 1) {
                        EXPECT_LE(b.count, area) << what;
                    } else {
                        EXPECT_EQ(b.count, area) << what;
                    }
                }
            }
        }
    }
}

TEST(StrokeLines, ThinLinesAndHairlinesAreOnePixelAcrossTheirMinorAxis) {
    for (int32_t q = 0; q < 4; ++q) {
        for (int32_t width : {0, 1}) {
            EnginePtr e = pageIn(q);
            ASSERT_EQ(KRYNSetLineWidth(width, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNSetLineCap(2, e.get()), KRYN_OK); // thin lines have no caps
            ASSERT_EQ(KRYNSetLineJoin(2, e.get()), KRYN_OK);
            const std::vector<int32_t> a = user(q, 10, 10), b = user(q, 100, 40),
                                       c = user(q, 100, 90);
            ASSERT_EQ(KRYNMoveTo(a[0], a[1], e.get()), KRYN_OK);
            const int32_t rest[4] = {b[0], b[1], c[0], c[1]};
            ASSERT_EQ(KRYNLinesTo(rest, 2, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNStroke(e.get()), KRYN_OK);
            const Coverage cov = pageCoverage(pageOf(e.get()));
            // The shallow part: one pixel per column; the vertical part: one
            // pixel per row.
            for (int32_t x = 20; x <= 90; ++x) {
                int32_t n = 0;
                for (int32_t y = 0; y < 45; ++y) {
                    n += cov.at(x, y) != 0;
                }
                ASSERT_EQ(n, 1) << "q " << q << " width " << width << " column " << x;
            }
            const Span rows = sampled(42, 90, q >= 2);
            for (int32_t y = rows.first; y <= rows.last; ++y) {
                int32_t n = 0;
                for (int32_t x = 0; x < W; ++x) {
                    n += cov.at(x, y) != 0;
                }
                ASSERT_EQ(n, 1) << "q " << q << " width " << width << " row " << y;
            }
        }
    }
}

TEST(StrokeLines, DashPatternsAlongALine) {
    struct Case {
        std::vector<int32_t> pattern;
        uint32_t phase;
        uint16_t cap;
        std::vector<Span> runs; // row 50, line from x 10 to x 40, width 2
    };
    const std::vector<Span> threeTwo{{10, 12}, {15, 17}, {20, 22}, {25, 27}, {30, 32}, {35, 37}};
    const Case cases[] = {
        {{3, 2}, 0, 0, threeTwo},
        {{3, 2}, 5, 0, threeTwo},  // a whole period: as phase 0
        {{3, 2}, 10, 0, threeTwo}, // two periods
        {{3, 2},
         4,
         0,
         {{11, 13}, {16, 18}, {21, 23}, {26, 28}, {31, 33}, {36, 38}}},    // 1 of gap left
        {{3, 3}, 0, 2, {{9, 13}, {15, 19}, {21, 25}, {27, 31}, {33, 37}}}, // square caps
        {{4}, 0, 0, {{10, 39}}},           // one entry: the wrap keeps the pen down
        {{4}, 2, 0, {{10, 11}, {16, 39}}}, // 2 of the dash, a gap of 4, then solid
        {{2, 1, 1},
         0,
         0,
         {{10, 11}, {13, 15}, {17, 19}, {21, 23}, {25, 27}, {29, 31}, {33, 35}, {37, 39}}},
        {{0, 4},
         0,
         2,
         {{9, 10}, {13, 14}, {17, 18}, {21, 22}, {25, 26}, {29, 30}, {33, 34}, {37, 38}}},
        {{-1, 3},
         0,
         0,
         {{9, 9},
          {11, 11},
          {13, 13},
          {15, 15},
          {17, 17},
          {19, 19},
          {21, 21},
          {23, 23},
          {25, 25},
          {27, 27},
          {29, 29},
          {31, 31},
          {33, 33},
          {35, 35},
          {37, 37}}},
    };
    for (const Case& c : cases) {
        EnginePtr e = pageIn(0);
        ASSERT_EQ(KRYNSetLineWidth(2, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetLineCap(c.cap, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(c.pattern.data(), uint16_t(c.pattern.size()), c.phase, e.get()),
                  KRYN_OK);
        // Two subpaths: both start at the phase.
        ASSERT_EQ(KRYNMoveTo(10, 50, e.get()), KRYN_OK);
        const int32_t to[2] = {40, 50};
        ASSERT_EQ(KRYNLinesTo(to, 1, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNMoveTo(10, 80, e.get()), KRYN_OK);
        const int32_t to2[2] = {40, 80};
        ASSERT_EQ(KRYNLinesTo(to2, 1, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNStroke(e.get()), KRYN_OK);
        const Coverage cov = pageCoverage(pageOf(e.get()));
        const std::string want = describe(c.runs);
        EXPECT_EQ(describe(rowRuns(cov, 50)), want)
            << "pattern of " << c.pattern.size() << " phase " << c.phase << " cap " << c.cap;
        EXPECT_EQ(describe(rowRuns(cov, 80)), want) << "second subpath";
    }
}

TEST(StrokeLines, DotsCoverTwoByTwoSamples) {
    for (int32_t q = 0; q < 4; ++q) {
        EnginePtr e = pageIn(q);
        const std::vector<int32_t> p = user(q, 30, 40);
        ASSERT_EQ(KRYNDotPaint(p[0], p[1], e.get()), KRYN_OK);
        const Box b = paintedBox(pageCoverage(pageOf(e.get())));
        // The dot spans two pixels down and right from the point (up for 2
        // and 3 quarter turns), sampled by the orientation's rules.
        const Span cols = sampled(30, 32, q == 1 || q == 2);
        const Span rows = q <= 1 ? sampled(40, 42, false) : sampled(38, 40, true);
        EXPECT_EQ(b.count, 4) << q;
        EXPECT_EQ(b.minX, cols.first) << q;
        EXPECT_EQ(b.maxX, cols.last) << q;
        EXPECT_EQ(b.minY, rows.first) << q;
        EXPECT_EQ(b.maxY, rows.last) << q;
    }
    // Half a pixel on: the next pixels over.
    EnginePtr e = pageIn(0);
    ASSERT_EQ(KRYNSetScale(0.5f, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNDotPaint(21, 41, e.get()), KRYN_OK);
    const Box b = paintedBox(pageCoverage(pageOf(e.get())));
    EXPECT_EQ(b.minX, 11);
    EXPECT_EQ(b.maxY, 22);
    EXPECT_EQ(b.count, 4);
}

TEST(StrokeLines, DotsAndTheClip) {
    EnginePtr e = makeEngine(W - 1, H - 1, 16);
    Engine* eng = e.get();
    ASSERT_EQ(KRYNNewPage(0, eng), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(10, 10, eng), KRYN_OK); // no orientation yet: nothing
    ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[0], eng), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(0, 0, 50, 50, eng), KRYN_OK);
    ASSERT_EQ(KRYNClip(FILL_NONZERO, eng), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(49, 10, eng), KRYN_OK); // inside a rectangle: not clipped
    EXPECT_EQ(KRYNDotPaint(60, 10, eng), KRYN_OK); // outside: nothing
    Coverage c = pageCoverage(pageOf(eng));
    EXPECT_EQ(paintedBox(c).count, 4);
    EXPECT_EQ(c.at(50, 11), 1) << "one column past the clip, as decided";
    // A triangle clip cuts the dot exactly.
    ASSERT_EQ(KRYNMoveTo(70, 0, eng), KRYN_OK);
    const int32_t tri[4] = {100, 0, 70, 30};
    ASSERT_EQ(KRYNLinesTo(tri, 2, eng), KRYN_OK);
    ASSERT_EQ(KRYNClip(FILL_NONZERO, eng), KRYN_OK);
    EXPECT_EQ(KRYNDotPaint(84, 14, eng), KRYN_OK); // x + y = 100 is the hypotenuse
    c = pageCoverage(pageOf(eng));
    EXPECT_EQ(c.at(84, 14) + c.at(85, 14) + c.at(84, 15), 3);
    EXPECT_EQ(c.at(85, 15), 0) << "its sample lies on the clip's right side";
}

TEST(StrokeLines, ScanLinesAreOpenRunsForTheNextStroke) {
    EnginePtr e = pageIn(0);
    Engine* eng = e.get();
    const int32_t runs[6] = {10, 20, 30, 45, 60, 61};
    EXPECT_EQ(KRYNScanLines(runs, 7, 0, eng), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNScanLines(nullptr, 7, 3, eng), KRYN_ERR_INVALID);
    EXPECT_EQ(currentState(eng)->path.first, nullptr);
    ASSERT_EQ(KRYNScanLines(runs, 7, 3, eng), KRYN_OK);
    int32_t subpaths = 0;
    for (const Subpath* sp = currentState(eng)->path.first; sp != nullptr; sp = sp->next) {
        EXPECT_EQ(sp->closed, 0);
        EXPECT_EQ(sp->start[1], 7.0f);
        ++subpaths;
    }
    EXPECT_EQ(subpaths, 3);
    EXPECT_EQ(currentState(eng)->path.currentPoint[0], 60.0f);
    const int16_t runs16[2] = {5, 9};
    ASSERT_EQ(KRYNScanLines16(runs16, -1, 1, eng), KRYN_OK);
    EXPECT_EQ(currentState(eng)->path.last->start[1], -1.0f);
    ASSERT_EQ(KRYNFill(FILL_NONZERO, eng), KRYN_OK); // runs enclose nothing
    EXPECT_EQ(paintedBox(pageCoverage(pageOf(eng))).count, 0);
    ASSERT_EQ(KRYNScanLines(runs, 7, 3, eng), KRYN_OK);
    ASSERT_EQ(KRYNStroke(eng), KRYN_OK);
    EXPECT_EQ(describe(rowRuns(pageCoverage(pageOf(eng)), 7)), "[10,19][30,44][60,60]");
}
