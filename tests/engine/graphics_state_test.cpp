// The graphics-state stack: defaults, push and pop, the carried current
// point, and the page-wide settings.
#include "engine/graphics_state.h"
#include "geometry/path_dump.h"
#include "render/band_renderer.h"
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

class GraphicsStateStack : public ::testing::Test {
  protected:
    void SetUp() override {
        engine = makeEngine(999, 999, 64);
        ASSERT_EQ(KRYNNewPage(3, e()), KRYN_OK);
    }
    Engine* e() { return engine.get(); }
    EnginePtr engine;
};

TEST_F(GraphicsStateStack, FirstStateHasTheDefaults) {
    const GraphicsState& gs = topOf(e());
    EXPECT_EQ(gs.depth, 0);
    EXPECT_EQ(gs.pageWidth, 1000);
    EXPECT_EQ(gs.lineWidth, 0.5f);
    EXPECT_EQ(gs.miterLimit, 10.0f);
    EXPECT_EQ(gs.miterLength, 5.0f);
    EXPECT_EQ(gs.lineWidthFixed, 0x8000);
    EXPECT_EQ(gs.miterLimitFixed, 0xA0000);
    EXPECT_EQ(gs.miterLengthFixed, 0x50000);
    EXPECT_EQ(gs.transform.kind, TK_TRANSLATE);
    EXPECT_EQ(gs.integerCoords, 1);
    EXPECT_EQ(gs.dashOn, 1);
    EXPECT_EQ(gs.path.last, nullptr);
    EXPECT_EQ(gs.clip.current.activeList, nullptr) << "no clip until the orientation is set";
}

TEST_F(GraphicsStateStack, PopUndoesSettersAndUnderflowsAtTheBottom) {
    const ColourValue red = 0xFF;
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    EXPECT_EQ(topOf(e()).depth, 1);
    ASSERT_EQ(KRYNSetColor(&red, 0, e()), KRYN_OK);
    ASSERT_EQ(KRYNSetScale(3.0f, e()), KRYN_OK);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(topOf(e()).colour, 0u);
    EXPECT_EQ(topOf(e()).transform.a, 1.0f);
    EXPECT_EQ(KRYNPopGState(e()), KRYN_ERR_GSTATE_UNDERFLOW);
}

TEST_F(GraphicsStateStack, PopRestoresTheScreenIdentifier) {
    pageOf(e())->paint.screenId = 7;
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(pageOf(e())->paint.screenId, 0u) << "a state without a screen has none";
    static const uint8_t tile[8] = {};
    topOf(e()).screen.data = tile;
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(pageOf(e())->paint.screenId, 0xFFFFu) << "no registered screen matches";
}

TEST_F(GraphicsStateStack, PushedStateContinuesTheCurrentSubpath) {
    ASSERT_EQ(KRYNMoveTo(10, 10, e()), KRYN_OK);
    const int32_t first[] = {20, 10};
    ASSERT_EQ(KRYNLinesTo(first, 1, e()), KRYN_OK);
    const PathDump before = dumpPath(topOf(e()).path);

    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    const int32_t more[] = {20, 30, 40, 30};
    ASSERT_EQ(KRYNLinesTo(more, 2, e()), KRYN_OK); // the current point came along
    const PathDump pushed = dumpPath(topOf(e()).path);
    ASSERT_EQ(pushed.subpaths.size(), 2u); // enclosing subpath, then the continuation
    EXPECT_EQ(pushed.subpaths[1].segments.size(), 3u);
    ASSERT_EQ(KRYNMoveTo(0, 0, e()), KRYN_OK);

    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(dumpPath(topOf(e()).path), before);
    ASSERT_EQ(KRYNLinesTo(more, 2, e()), KRYN_OK); // the enclosing path goes on
    EXPECT_EQ(dumpPath(topOf(e()).path).subpaths[0].segments.size(), 3u);
}

TEST_F(GraphicsStateStack, ContinuationOfASubpathWithoutSegments) {
    ASSERT_EQ(KRYNMoveTo(3, 4, e()), KRYN_OK);
    const PathDump before = dumpPath(topOf(e()).path);
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    const int32_t p[] = {8, 9};
    ASSERT_EQ(KRYNLinesTo(p, 1, e()), KRYN_OK);
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK); // a continuation of a continuation
    ASSERT_EQ(KRYNLinesTo(p, 1, e()), KRYN_OK);
    EXPECT_EQ(topOf(e()).depth, 2);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(dumpPath(topOf(e()).path).subpaths.back().segments.size(), 1u);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(dumpPath(topOf(e()).path), before);
    EXPECT_EQ(topOf(e()).path.last->firstSegment, nullptr);
}

TEST_F(GraphicsStateStack, PushedStateAfterCloseStartsWithoutContinuation) {
    ASSERT_EQ(KRYNRectPath(0, 0, 5, 5, e()), KRYN_OK);
    const PathDump before = dumpPath(topOf(e()).path);
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    const int32_t p[] = {9, 9};
    ASSERT_EQ(KRYNLinesTo(p, 1, e()), KRYN_OK); // new subpath at the closed start
    ASSERT_EQ(KRYNNewPath(e()), KRYN_OK);
    EXPECT_EQ(KRYNLinesTo(p, 1, e()), KRYN_ERR_NO_CURRENT_POINT);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(dumpPath(topOf(e()).path), before);
}

TEST_F(GraphicsStateStack, PageWideSettings) {
    RenderResources* res = e()->resources;
    EXPECT_EQ(KRYNSelectSpace(2, e()), KRYN_OK);
    EXPECT_EQ(res->colourSpace, 0u);
    ASSERT_EQ(KRYNSelectSpace(1, e()), KRYN_OK);
    EXPECT_EQ(res->colourSpace, 1u);
    EXPECT_EQ(pageOf(e())->colourSpace, 1u);
    EXPECT_EQ(pageOf(e())->bands[0].bandMonochrome, 0);
    ASSERT_EQ(KRYNSelectSpace(0, e()), KRYN_OK);
    ASSERT_EQ(KRYNColorAttribute(0x104, 5, 6, e()), KRYN_OK);
    EXPECT_EQ(res->colourAttr[0], 4);
    ASSERT_NE(res->renderer, nullptr);
    EXPECT_EQ(res->renderer->tagGraphicsWord, 0x05000000u);
    EXPECT_EQ(res->renderer->paperWord, 0x05FFFFFFu);
    ASSERT_EQ(KRYNSetQuantization(e()), KRYN_OK);
    EXPECT_EQ(res->quantization, 600u);
}

TEST(GraphicsStateSettings, LevelAndResolutionGates) {
    EnginePtr old = makeEngine(99, 99, 16, 0x8002, 1200);
    ASSERT_EQ(KRYNNewPage(3, old.get()), KRYN_OK);
    EXPECT_EQ(KRYNSelectSpace(1, old.get()), KRYN_OK);
    EXPECT_EQ(old->resources->colourSpace, 0u);
    old->resources->quantization = 5;
    ASSERT_EQ(KRYNSetQuantization(old.get()), KRYN_OK);
    EXPECT_EQ(old->resources->quantization, 0u);
}

TEST(GraphicsStateSettings, CallsWithoutAPageOrEngine) {
    EnginePtr engine = makeEngine(99, 99, 16);
    EXPECT_EQ(KRYNPushGState(engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNPopGState(engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSealedPath(engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSelectSpace(1, engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNColorAttribute(1, 2, 3, engine.get()), KRYN_OK); // needs no page
    EXPECT_EQ(KRYNPushGState(nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetQuantization(nullptr), KRYN_ERR_INVALID);
}

} // namespace
} // namespace kryn::test
