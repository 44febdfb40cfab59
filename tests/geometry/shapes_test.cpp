// Curves and shapes: segment kinds, arc pieces, rectangles and bad input.
#include "geometry/arcs.h"
#include "geometry/path_build.h"
#include "geometry/path_dump.h"

#include <cmath>
#include <gtest/gtest.h>

namespace kryn::test {
namespace {

class Shapes : public ::testing::Test {
  protected:
    void SetUp() override {
        engine = makeEngine(999, 999, 64);
        ASSERT_EQ(KRYNNewPage(3, e()), KRYN_OK);
    }
    Engine* e() { return engine.get(); }
    Path& path() { return topOf(e()).path; }
    std::vector<const PathSegment*> segments() {
        std::vector<const PathSegment*> out;
        for (const PathSegment* s = path().last->firstSegment; s != nullptr; s = s->next) {
            out.push_back(s);
        }
        return out;
    }
    EnginePtr engine;
};

TEST_F(Shapes, BeziersNeedACurrentPointAndWholeGroups) {
    const int32_t pts[] = {1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6};
    EXPECT_EQ(KRYNBezier3To(pts, e()), KRYN_ERR_NO_CURRENT_POINT);
    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);
    EXPECT_EQ(KRYNBezier3To(nullptr, e()), KRYN_ERR_NO_CURRENT_POINT);
    EXPECT_EQ(KRYNGroupBezier3To(pts, 0, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNGroupBezier3To(pts, 4, e()), KRYN_ERR_INVALID);
    ASSERT_EQ(KRYNGroupBezier3To(pts, 6, e()), KRYN_OK);
    ASSERT_EQ(segments().size(), 2u);
    EXPECT_EQ(segments()[1]->type, SEG_CURVE_INT);
    EXPECT_EQ(segments()[1]->curveInt[4], 6);
    ASSERT_EQ(KRYNSetScale(0.5f, e()), KRYN_OK);
    const int16_t small[] = {-2, 4, 6, 8, 10, 12};
    ASSERT_EQ(KRYNBezier3To16(small, e()), KRYN_OK);
    EXPECT_EQ(segments()[2]->type, SEG_CURVE);
    EXPECT_EQ(segments()[2]->curve[0], -1.0f);
    EXPECT_EQ(path().currentPoint[1], 6.0f);
}

TEST_F(Shapes, CircleIsFourQuartersAndAVanishingRemainder) {
    ASSERT_EQ(KRYNEllipsePath(0, 0, 200, 200, e()), KRYN_OK);
    const Subpath* sub = path().last;
    EXPECT_EQ(sub->closed, 1);
    EXPECT_EQ(sub->start[0], 200.0f);
    EXPECT_EQ(sub->start[1], 100.0f);
    const auto segs = segments();
    ASSERT_EQ(segs.size(), 5u);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(segs[static_cast<size_t>(i)]->type, SEG_POLY_CURVE);
        EXPECT_EQ(segs[static_cast<size_t>(i)]->poly.angle, 0x5A0000);
        EXPECT_EQ(segs[static_cast<size_t>(i)]->poly.radius, 100 << 16);
    }
    EXPECT_LT(segs[4]->poly.angle, 2); // about 1e-6 degrees
    float at[2] = {sub->start[0], sub->start[1]};
    for (const PathSegment* s : segs) {
        segmentEnd(*s, at, at);
    }
    EXPECT_NEAR(at[0], 200.0f, 1e-3);
    EXPECT_NEAR(at[1], 100.0f, 1e-3);
    EXPECT_EQ(path().currentPoint[0], 200.0f);
}

TEST_F(Shapes, ScaledArcsAndEllipsesAreFloatCurves) {
    ASSERT_EQ(KRYNMoveTo(200, 100, e()), KRYN_OK);
    ASSERT_EQ(KRYNArcTo(0, 0, 200, 200, 200, 100, 100, 0, e()), KRYN_OK); // 90 degrees
    auto segs = segments();
    ASSERT_EQ(segs.size(), 2u); // no connecting line: the current point is the arc start
    EXPECT_EQ(segs[0]->type, SEG_POLY_CURVE);
    EXPECT_EQ(segs[0]->poly.angle, 0x5A0000);

    ASSERT_EQ(KRYNNewPath(e()), KRYN_OK);
    ASSERT_EQ(KRYNSetScale(2.0f, e()), KRYN_OK);
    ASSERT_EQ(KRYNArcTo(0, 0, 200, 200, 200, 100, 100, 0, e()), KRYN_OK);
    segs = segments();
    ASSERT_EQ(segs.size(), 2u);
    EXPECT_EQ(segs[0]->type, SEG_CURVE);
    EXPECT_NEAR(segs[0]->curve[4], 200.0f, 1e-3); // (100, 0) scaled by 2
    EXPECT_NEAR(segs[0]->curve[5], 0.0f, 1e-3);

    ASSERT_EQ(KRYNSetScale(0.5f, e()), KRYN_OK); // back to unit length, kind stays "scale"
    ASSERT_EQ(KRYNEllipsePath(0, 0, 400, 200, e()), KRYN_OK);
    const Subpath* sub = path().last;
    float at[2] = {sub->start[0], sub->start[1]};
    float maxY = 0;
    for (const PathSegment* s : segments()) {
        EXPECT_EQ(s->type, SEG_CURVE);
        segmentEnd(*s, at, at);
        maxY = std::max(maxY, at[1]);
    }
    EXPECT_NEAR(maxY, 200.0f, 1e-3); // bottom of the ellipse box
}

TEST_F(Shapes, ArcSweepIsRoundedDownToATenthOfADegree) {
    const ArcDesc arc{0, 0, 100, 100, 0.0f, 45.07f, 1};
    PathPool pool;
    Subpath* sub = newSubpath(pool, 100, 0);
    const float s[2] = {100, 0};
    float end[2];
    ASSERT_EQ(buildCircleArc(pool, sub, arc, s, Transform(), end), KRYN_OK);
    ASSERT_EQ(sub->firstSegment, sub->lastSegment);
    EXPECT_EQ(sub->firstSegment->poly.angle, 45 << 16);
    releasePathPool(pool);

    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);
    ASSERT_EQ(KRYNArcTo(-100, -100, 100, 100, 100, 0, 100, 0, e()), KRYN_OK); // no sweep
    const auto segs = segments();
    ASSERT_EQ(segs.size(), 1u); // only the line to the arc's first point
    EXPECT_EQ(path().currentPoint[0], 100.0f);
}

TEST_F(Shapes, PiesAndChordsAreClosedSubpaths) {
    ASSERT_EQ(KRYNFanPath(0, 0, 200, 200, 200, 100, 100, 0, e()), KRYN_OK);
    EXPECT_EQ(path().last->closed, 1);
    EXPECT_EQ(segments().back()->type, SEG_LINE);
    EXPECT_EQ(segments().back()->line[0], 100.0f); // to the centre
    EXPECT_EQ(path().currentPoint[0], 200.0f);
    ASSERT_EQ(KRYNBowPath(0, 0, 200, 200, 200, 100, 100, 0, e()), KRYN_OK);
    EXPECT_EQ(segments().back()->type, SEG_POLY_CURVE);
    EXPECT_EQ(KRYNBowPath(0, 0, 0, 200, 200, 100, 100, 0, e()), KRYN_OK); // flat box: nothing
    EXPECT_EQ(dumpPath(path()).subpaths.size(), 2u);
}

TEST_F(Shapes, RectanglesFollowTheMatrixKind) {
    ASSERT_EQ(KRYNRectPath(10, 20, 30, 40, e()), KRYN_OK);
    auto segs = segments();
    ASSERT_EQ(segs.size(), 3u);
    EXPECT_EQ(segs[1]->type, SEG_LINE_INT);
    EXPECT_EQ(segs[1]->lineInt[0], 40);
    EXPECT_EQ(segs[1]->lineInt[1], 60);

    const int32_t turn[6] = {0, 1, -1, 0, 500, 0};
    ASSERT_EQ(KRYNSetMatrix(turn, e()), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(10, 20, 30, 40, e()), KRYN_OK);
    segs = segments();
    // (10, 20) maps to (480, 10); +30 along x is +30 in device y, +40 along y is -40 in device x.
    EXPECT_EQ(path().last->start[0], 480.0f);
    EXPECT_EQ(segs[1]->lineInt[0], 440);
    EXPECT_EQ(segs[1]->lineInt[1], 40);

    const int32_t general[6] = {2, 1, 1, 3, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(general, e()), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(0, 0, 10, 10, e()), KRYN_OK);
    segs = segments();
    EXPECT_EQ(segs[1]->type, SEG_LINE);
    EXPECT_EQ(segs[1]->line[0], 30.0f); // 10*(2,1) + 10*(1,3)
    EXPECT_EQ(segs[1]->line[1], 40.0f);
    EXPECT_EQ(KRYNRectPath(0, 0, 0, 10, e()), KRYN_ERR_INVALID);
}

TEST_F(Shapes, RoundRectangleRadiiAreChecked) {
    EXPECT_EQ(KRYNRoundRectPath(0, 0, 100, 100, 51, 10, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNRoundRectPath(0, 0, 100, 100, 0, 10, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNRoundRectPath(0, 0, 100, -20, 10, 11, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(path().last, nullptr);
    for (const int32_t w : {100, -100}) {
        for (const int32_t h : {60, -60}) {
            ASSERT_EQ(KRYNNewPath(e()), KRYN_OK);
            ASSERT_EQ(KRYNRoundRectPath(0, 0, w, h, 20, 10, e()), KRYN_OK) << w << "x" << h;
            const Subpath* sub = path().last;
            EXPECT_EQ(sub->closed, 1);
            EXPECT_EQ(sub->start[0], w > 0 ? 20.0f : -20.0f);
            float at[2] = {sub->start[0], sub->start[1]};
            for (const PathSegment* s : segments()) {
                segmentEnd(*s, at, at);
            }
            EXPECT_NEAR(at[0], sub->start[0], 1e-3) << w << "x" << h; // back at the start
            EXPECT_NEAR(at[1], sub->start[1], 1e-3) << w << "x" << h;
            EXPECT_NEAR(sub->box.maxX - sub->box.minX, 100.0f, 1e-3);
            EXPECT_NEAR(sub->box.maxY - sub->box.minY, 60.0f, 1e-3);
            EXPECT_EQ(path().currentPoint[0], 0.0f); // where the last corner begins
            EXPECT_EQ(path().currentPoint[1], h > 0 ? 10.0f : -10.0f);
        }
    }
}

} // namespace
} // namespace kryn::test
