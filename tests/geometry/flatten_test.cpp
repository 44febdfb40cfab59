// Flatteners: the arc step table, chords within tolerance of the exact
// cubic, clamping against a box and power-form stepping.
#include "geometry/flatten.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace kryn::test {
namespace {

struct Chords {
    std::vector<std::pair<double, double>> points; // chord ends in pixels, first start included
    static ResultCode fixedSink(void* ctx, FixedPoint from, FixedPoint to) {
        auto* self = static_cast<Chords*>(ctx);
        if (self->points.empty()) {
            self->points.emplace_back(from.x / 65536.0, from.y / 65536.0);
        }
        self->points.emplace_back(to.x / 65536.0, to.y / 65536.0);
        return KRYN_OK;
    }
    static ResultCode wideSink(void* ctx, WidePoint from, WidePoint to) {
        return fixedSink(ctx, {int32_t(from.x), int32_t(from.y)}, {int32_t(to.x), int32_t(to.y)});
    }
    static ResultCode floatSink(void* ctx, FloatPoint from, FloatPoint to) {
        auto* self = static_cast<Chords*>(ctx);
        if (self->points.empty()) {
            self->points.emplace_back(from.x, from.y);
        }
        self->points.emplace_back(to.x, to.y);
        return KRYN_OK;
    }
};

double distanceToPolyline(const std::vector<std::pair<double, double>>& line, double x, double y) {
    double best = 1e300;
    for (size_t i = 1; i < line.size(); ++i) {
        const double ax = line[i - 1].first, ay = line[i - 1].second;
        const double dx = line[i].first - ax, dy = line[i].second - ay;
        const double len2 = dx * dx + dy * dy;
        double t = len2 == 0 ? 0 : ((x - ax) * dx + (y - ay) * dy) / len2;
        t = t < 0 ? 0 : (t > 1 ? 1 : t);
        best = std::min(best, std::hypot(ax + t * dx - x, ay + t * dy - y));
    }
    return best;
}

// Largest distance from the exact cubic to the chords, sampled.
double maxError(const double p[8], const Chords& chords) {
    double worst = 0;
    for (int i = 0; i <= 400; ++i) {
        const double t = i / 400.0, u = 1 - t;
        const double x =
            u * u * u * p[0] + 3 * u * u * t * p[2] + 3 * u * t * t * p[4] + t * t * t * p[6];
        const double y =
            u * u * u * p[1] + 3 * u * u * t * p[3] + 3 * u * t * t * p[5] + t * t * t * p[7];
        worst = std::max(worst, distanceToPolyline(chords.points, x, y));
    }
    return worst;
}

const double CURVES[][8] = {
    {0, 0, 100, 0, 200, 100, 200, 200},     // bend
    {10, 10, 400, 10, 400, 300, 10, 300},   // deep U
    {0, 0, 55.23, 0, 100, 44.77, 100, 100}, // quarter circle, radius 100
    {5, 5, 6, 7, 8, 9, 300, 2},             // near-degenerate start
};

TEST(CurveFlattening, FixedChordsStayWithinTolerance) {
    for (const auto& c : CURVES) {
        FixedPoint p[4];
        for (int i = 0; i < 4; ++i) {
            p[i] = {static_cast<int32_t>(c[2 * i] * 65536),
                    static_cast<int32_t>(c[2 * i + 1] * 65536)};
        }
        Chords chords;
        ASSERT_EQ(flattenFixed(p, 0x10000, Chords::fixedSink, &chords), KRYN_OK);
        EXPECT_GE(chords.points.size(), 3u); // the first call always splits
        EXPECT_LE(maxError(c, chords), 1.0) << c[0] << "," << c[1] << " .. " << c[6];
        EXPECT_DOUBLE_EQ(chords.points.back().first, c[6]);
    }
}

TEST(CurveFlattening, FloatChordsStayWithinToleranceAndClampOutside) {
    const FloatBox page{0, 1000, 0, 1000};
    for (const auto& c : CURVES) {
        FloatPoint p[4];
        for (int i = 0; i < 4; ++i) {
            p[i] = {static_cast<float>(c[2 * i]), static_cast<float>(c[2 * i + 1])};
        }
        Chords chords;
        ASSERT_EQ(flattenFloat(p, page, 0.5f, Chords::floatSink, &chords), KRYN_OK);
        EXPECT_LE(maxError(c, chords), 0.5);
    }
    const FloatPoint left[4] = {{-50, 0}, {-10, 500}, {-20, 700}, {-1, 900}};
    Chords outside;
    ASSERT_EQ(flattenFloat(left, page, 0.5f, Chords::floatSink, &outside), KRYN_OK);
    EXPECT_EQ(outside.points.size(), 2u); // one chord
}

TEST(CurveFlattening, NegativeToleranceGivesTheChordAndSinkFailuresStop) {
    const FixedPoint p[4] = {{0, 0}, {0x640000, 0}, {0x640000, 0x640000}, {0, 0x640000}};
    Chords chords;
    ASSERT_EQ(flattenFixed(p, -1, Chords::fixedSink, &chords), KRYN_OK);
    EXPECT_EQ(chords.points.size(), 2u);
    auto failing = [](void*, FixedPoint, FixedPoint) -> ResultCode { return KRYN_ERR_NO_MEMORY; };
    EXPECT_EQ(flattenFixed(p, 0x10000, failing, nullptr), KRYN_ERR_NO_MEMORY);
}

TEST(ArcStepTable, StepsFollowRadiusToleranceAndAngle) {
    EXPECT_EQ(arcSteps(100 << 16, 0x5A0000, 0x10000), 8);    // ratio 655: between 793 and 446
    EXPECT_EQ(arcSteps(1 << 16, 0x5A0000, 0x10000), 2);      // ratio 65536
    EXPECT_EQ(arcSteps(9 << 16, 0x5A0000, 0x10000), 2);      // ratio 7281
    EXPECT_EQ(arcSteps(10000 << 16, 0x5A0000, 0x10000), -1); // ratio 6: too fine for the table
    EXPECT_EQ(arcSteps(0, 0x5A0000, 0x10000), -1);
    EXPECT_EQ(arcSteps(100 << 16, 0x2D0000, 0x10000), 4);   // half a quarter: half the steps
    EXPECT_EQ(arcSteps(100 << 16, 0x550000, 0x10000), 8);   // 85 degrees: not scaled
    EXPECT_EQ(arcSteps(3640 << 16, 0x5A0000, 0x10000), 40); // ratio 18: last row
}

TEST(ArcStepTable, PowerFormIsSteppedAlongTheCurve) {
    // Quarter circle of radius 100 from (200, 100) around (100, 100).
    const double c[8] = {200, 100, 200, 155.22847, 155.22847, 200, 100, 200};
    PowerCubic pc{};
    pc.ax = static_cast<float>(3 * (c[2] - c[4]) + c[6] - c[0]);
    pc.ay = static_cast<float>(3 * (c[3] - c[5]) + c[7] - c[1]);
    pc.bx = static_cast<float>(3 * (c[0] - 2 * c[2] + c[4]));
    pc.by = static_cast<float>(3 * (c[1] - 2 * c[3] + c[5]));
    pc.cx = static_cast<float>(3 * (c[2] - c[0]));
    pc.cy = static_cast<float>(3 * (c[3] - c[1]));
    pc.radius = 100 << 16;
    pc.angle = 0x5A0000;
    Chords chords;
    WidePoint end{};
    ASSERT_EQ(flattenPowerCurve({200 << 16, 100 << 16}, pc, 0x10000, nullptr, Chords::wideSink,
                                &chords, &end),
              KRYN_OK);
    EXPECT_EQ(chords.points.size(), 9u); // 8 chords
    EXPECT_NEAR(end.x / 65536.0, 100.0, 1e-3);
    EXPECT_NEAR(end.y / 65536.0, 200.0, 1e-3);
    EXPECT_LE(maxError(c, chords), 1.0);

    pc.radius = 10000 << 16; // beyond the table: flattened as a Bezier
    Chords bezier;
    ASSERT_EQ(flattenPowerCurve({200 << 16, 100 << 16}, pc, 0x10000, nullptr, Chords::wideSink,
                                &bezier, &end),
              KRYN_OK);
    EXPECT_LE(maxError(c, bezier), 1.0);
}

} // namespace
} // namespace kryn::test
