// Path construction: moves, lines, closing, the pool, and bad input.
#include "geometry/path_dump.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

class PathBuilding : public ::testing::Test {
  protected:
    void SetUp() override {
        engine = makeEngine(999, 999, 64);
        ASSERT_EQ(KRYNNewPage(3, e()), KRYN_OK);
    }
    Engine* e() { return engine.get(); }
    Path& path() { return topOf(e()).path; }
    EnginePtr engine;
};

TEST_F(PathBuilding, LinesAreIntegerUnderRightAnglesAndFloatAfterScaling) {
    ASSERT_EQ(KRYNSetTranslation(0, 0, e()), KRYN_OK);
    ASSERT_EQ(KRYNMoveTo(1, 2, e()), KRYN_OK);
    const int32_t pts[] = {10, 20, -5, 7};
    ASSERT_EQ(KRYNLinesTo(pts, 2, e()), KRYN_OK);
    const PathSegment* first = path().last->firstSegment;
    EXPECT_EQ(first->type, SEG_LINE_INT);
    EXPECT_EQ(first->lineInt[0], 10);
    EXPECT_EQ(path().box.minX, -5.0f);
    EXPECT_EQ(path().box.maxY, 20.0f);

    ASSERT_EQ(KRYNSetScale(1.5f, e()), KRYN_OK);
    const int16_t small[] = {3, 3};
    ASSERT_EQ(KRYNLinesTo16(small, 1, e()), KRYN_OK);
    EXPECT_EQ(path().last->lastSegment->type, SEG_LINE);
    EXPECT_EQ(path().last->lastSegment->line[0], 4.5f);
    EXPECT_EQ(path().currentPoint[0], 4.5f);
}

TEST_F(PathBuilding, TruncationIsTowardZeroButCurrentPointIsExact) {
    const int32_t turn[6] = {-1, 0, 0, -1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(turn, e()), KRYN_OK);
    ASSERT_EQ(KRYNSetTranslation(0, 0, e()), KRYN_OK);
    topOf(e()).transform.tx = 0.5f; // half-pixel offset through the back door
    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);
    EXPECT_EQ(path().last->start[0], 0.5f); // a start is never truncated
    const int32_t p[] = {3, 0};
    ASSERT_EQ(KRYNLinesTo(p, 1, e()), KRYN_OK);
    EXPECT_EQ(path().last->lastSegment->lineInt[0], -2); // -2.5 toward zero
    EXPECT_EQ(path().currentPoint[0], -2.5f);
}

TEST_F(PathBuilding, CloseThenLineStartsANewSubpathAtTheStart) {
    ASSERT_EQ(KRYNMoveTo(5, 5, e()), KRYN_OK);
    const int32_t p[] = {50, 5, 50, 50};
    ASSERT_EQ(KRYNLinesTo(p, 2, e()), KRYN_OK);
    ASSERT_EQ(KRYNClosePath(e()), KRYN_OK);
    EXPECT_EQ(path().currentPoint[0], 5.0f);
    const PathDump closed = dumpPath(path());
    ASSERT_EQ(KRYNClosePath(e()), KRYN_OK); // second close: nothing
    EXPECT_EQ(dumpPath(path()), closed);
    const int32_t q[] = {9, 9};
    ASSERT_EQ(KRYNLinesTo(q, 1, e()), KRYN_OK);
    const PathDump after = dumpPath(path());
    ASSERT_EQ(after.subpaths.size(), 2u);
    EXPECT_EQ(after.subpaths[0], closed.subpaths[0]);
    EXPECT_EQ(after.subpaths[1].start[0], 5.0f);
    EXPECT_EQ(after.subpaths[1].closed, 0);
}

TEST_F(PathBuilding, BadInputLeavesThePathAlone) {
    const int32_t p[] = {1, 1};
    EXPECT_EQ(KRYNLinesTo(p, 1, e()), KRYN_ERR_NO_CURRENT_POINT);
    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);
    const PathDump before = dumpPath(path());
    EXPECT_EQ(KRYNLinesTo(p, 0, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNLinesTo(p, -3, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNLinesTo(nullptr, 1, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(dumpPath(path()), before);
    EXPECT_EQ(KRYNMoveTo(0, 0, nullptr), KRYN_ERR_INVALID);
    ASSERT_EQ(KRYNDisposePage(e()), KRYN_OK);
    EXPECT_EQ(KRYNMoveTo(0, 0, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNNewPath(e()), KRYN_ERR_INVALID);
}

TEST_F(PathBuilding, PoolCountsRecordsAndNewPathReturnsBlocks) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);
    int32_t pts[80];
    for (int i = 0; i < 40; ++i) {
        pts[2 * i] = i;
        pts[2 * i + 1] = i * 2;
    }
    ASSERT_EQ(KRYNLinesTo(pts, 40, e()), KRYN_OK);
    EXPECT_EQ(pageOf(e())->pathPool.recordCount, 41u);
    EXPECT_GT(KRYNPlatformLiveBlocks(), live + 1); // several blocks
    ASSERT_EQ(KRYNNewPath(e()), KRYN_OK);
    EXPECT_EQ(path().last, nullptr);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live + 1); // the first block is kept
    EXPECT_EQ(pageOf(e())->pathPool.recordCount, 0u);
    ASSERT_EQ(KRYNSealedPath(e()), KRYN_OK);
    EXPECT_EQ(topOf(e()).pathSealed, 1);
}

} // namespace
} // namespace kryn::test
