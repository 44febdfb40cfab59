// The colour and logical-function setters through the exported calls.
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

GraphicsState& top(Engine* e) {
    return *e->pageSlot->gstateTop;
}

struct PaintSetters : ::testing::Test {
    EnginePtr engine = makeEngine(100, 100, 32);
    Engine* e = engine.get();
    void SetUp() override { ASSERT_EQ(KRYNNewPage(5, e), KRYN_OK); }
};

TEST_F(PaintSetters, SelectorZeroSetsTheColourAndAnyOtherTheBackground) {
    const ColourValue grey = 0x80808080, red = 0x0000FF, blue = 0xFF0000;
    EXPECT_EQ(KRYNSetColor(&grey, 0, e), KRYN_OK);
    EXPECT_EQ(KRYNSetColor(&red, 1, e), KRYN_OK);
    EXPECT_EQ(top(e).colour, grey);
    EXPECT_EQ(top(e).backColour, red);
    EXPECT_EQ(KRYNSetColor(&blue, 2, e), KRYN_OK);
    EXPECT_EQ(top(e).backColour, blue);
    EXPECT_EQ(top(e).colour, grey);
}

TEST_F(PaintSetters, NullColourIsRejectedAndChangesNothing) {
    EXPECT_EQ(KRYNSetColor(nullptr, 0, e), KRYN_ERR_INVALID);
    EXPECT_EQ(top(e).colour, 0u);
}

TEST_F(PaintSetters, BackgroundModeIsStoredUnchecked) {
    EXPECT_EQ(KRYNSetBackground(0xFFFF, e), KRYN_OK);
    EXPECT_EQ(top(e).backgroundMode, 0xFFFF);
    EXPECT_EQ(KRYNSetBackground(0, e), KRYN_OK);
    EXPECT_EQ(top(e).backgroundMode, 0);
}

TEST_F(PaintSetters, LogicalFunctionsAcceptCodesUpTo255AndKeepTheValueOtherwise) {
    EXPECT_EQ(KRYNSetLogicalFunc(256, e), KRYN_ERR_INVALID);
    EXPECT_EQ(top(e).logicalFunction, 0xA8u);
    EXPECT_EQ(KRYNSetLogicalFunc(255, e), KRYN_OK);
    EXPECT_EQ(top(e).logicalFunction, 255u);
    EXPECT_EQ(KRYNSetLogicalFunc(0xFFFF, e), KRYN_ERR_INVALID);
    EXPECT_EQ(top(e).logicalFunction, 255u);

    EXPECT_EQ(KRYNSetLogicalFunc2(256, e), KRYN_ERR_INVALID);
    EXPECT_EQ(top(e).logicalFunction2, 0xA8u);
    EXPECT_EQ(KRYNSetLogicalFunc2(0, e), KRYN_OK);
    EXPECT_EQ(top(e).logicalFunction2, 0u);
    EXPECT_EQ(top(e).logicalFunction, 255u); // each setter has its own field
}

TEST(PaintSettersWithoutPage, AnswerInvalid) {
    const ColourValue c = 0;
    EnginePtr engine = makeEngine(100, 100, 32);
    for (Engine* e : {engine.get(), static_cast<Engine*>(nullptr)}) {
        EXPECT_EQ(KRYNSetColor(&c, 0, e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetBackground(0, e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetLogicalFunc(0, e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetLogicalFunc2(0, e), KRYN_ERR_INVALID);
    }
}

} // namespace
} // namespace kryn::test
