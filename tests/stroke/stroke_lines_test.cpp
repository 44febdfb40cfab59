// Strokes whose pixels are known exactly: axis-parallel lines of whole
// widths (thin ones included) with each cap in every page orientation.
// Dash patterns, dots and scan lines: the golden job stroke_dashes_dots.
#include "support/band_coverage.h"
#include "support/engine_fixture.h"

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
