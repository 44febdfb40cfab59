// The blend settings through the exported calls: the device-level gate of
// KRYNAlphaBlend and what it does beside blendOn (alpha mode, alphaUsed, the
// bands' black-and-white flag), the checks of the constant alpha, the two
// keys, and the settings' life with the page rather than the graphics state.
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

TEST(AlphaBlend, BlendsFromTheDeviceLevelOnAndRecordsColoursWithAlphaOnAnyDevice) {
    struct Case {
        uint16_t level;
        int16_t space;
        uint16_t value;
        uint8_t blendOn;
        bool used; // alphaUsed; colour pages leave the black-and-white renderer
    };
    const Case cases[] = {
        {0x8009, 0, 1, 1, true},         {0x8009, 0, 0x0201, 1, false},
        {0x8009, 0, 0x0100, 0, false},   {0x8009, 1, 1, 1, true},
        {0x8008, 0, 1, 0, true},         {0x8008, 0, 0x00FF, 0, false},
        {0x800A, 0, 0x00FF, 255, false},
    };
    for (const Case& c : cases) {
        EnginePtr engine = makeEngine(99, 99, 32, c.level);
        Engine* e = engine.get();
        ASSERT_EQ(KRYNNewPage(5, e), KRYN_OK);
        ASSERT_EQ(KRYNSelectSpace(c.space, e), KRYN_OK);
        ASSERT_EQ(KRYNAlphaBlend(c.value, e), KRYN_OK);
        const PageRecord* page = pageOf(e);
        EXPECT_EQ(page->paint.blendOn, c.blendOn) << std::hex << c.level << " " << c.value;
        EXPECT_EQ(e->resources->alphaMode, c.value);
        EXPECT_EQ(e->alphaUsed, c.used ? 1 : 0) << std::hex << c.level << " " << c.value;
        for (int32_t i = 0; c.space == 0 && i < page->bandCount; ++i) {
            EXPECT_EQ(page->bands[i].bandMonochrome, c.used ? 0 : 1);
        }
        // The next page starts with blending off and alphaUsed clear; the
        // alpha mode stays with the engine.
        ASSERT_EQ(KRYNDisposePage(e), KRYN_OK);
        ASSERT_EQ(KRYNNewPage(5, e), KRYN_OK);
        EXPECT_EQ(pageOf(e)->paint.blendOn, 0);
        EXPECT_EQ(e->alphaUsed, 0);
        EXPECT_EQ(e->resources->alphaMode, c.value);
    }
}

TEST(AlphaBlend, ConstantAndKeysAreChecked) {
    EnginePtr engine = makeEngine(99, 99, 32);
    Engine* e = engine.get();
    ASSERT_EQ(KRYNNewPage(5, e), KRYN_OK);
    PaintDescriptor& p = pageOf(e)->paint;
    for (const int32_t bad : {-1, 256, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(KRYNSetConstAlphaBlend(bad, e), KRYN_ERR_INVALID);
        EXPECT_EQ(p.blendSelect, 255);
    }
    EXPECT_EQ(KRYNSetConstAlphaBlend(0, e), KRYN_OK);
    EXPECT_EQ(p.blendSelect, 0);

    const uint16_t a[3] = {0x8040, 0xFF00, 0x1010};
    const uint16_t b[3] = {0x2010, 0x3020, 0x4030};
    EXPECT_EQ(KRYNSetAlphaBlendTable(a, 0x40, 0, e), KRYN_OK);
    EXPECT_EQ(KRYNSetAlphaBlendTable(b, 0x50, 7, e), KRYN_OK); // any selector but 0: key 1
    EXPECT_EQ(p.blendSelectA, 0x40);
    EXPECT_EQ(p.blendSelectB, 0x50);
    EXPECT_EQ(std::vector<uint16_t>(p.blendDataA, p.blendDataA + 3),
              std::vector<uint16_t>(a, a + 3));
    EXPECT_EQ(std::vector<uint16_t>(p.blendDataB, p.blendDataB + 3),
              std::vector<uint16_t>(b, b + 3));
    // A null table turns its key off and keeps its ranges; the other key stays.
    EXPECT_EQ(KRYNSetAlphaBlendTable(nullptr, 0x10, 1, e), KRYN_OK);
    EXPECT_EQ(p.blendSelectB, 255);
    EXPECT_EQ(p.blendDataB[2], 0x4030);
    EXPECT_EQ(p.blendSelectA, 0x40);

    // The settings belong to the page: a pop does not bring older ones back.
    ASSERT_EQ(KRYNPushGState(e), KRYN_OK);
    ASSERT_EQ(KRYNAlphaBlend(1, e), KRYN_OK);
    ASSERT_EQ(KRYNSetConstAlphaBlend(9, e), KRYN_OK);
    ASSERT_EQ(KRYNPopGState(e), KRYN_OK);
    EXPECT_EQ(p.blendOn, 1);
    EXPECT_EQ(p.blendSelect, 9);

    EXPECT_EQ(KRYNGradientFill(1, 2, 3, 4, 5, e), KRYN_OK);
    EXPECT_EQ(KRYNFitImage(0, 0, 0, 0, 0, nullptr), KRYN_OK);
}

} // namespace
} // namespace kryn::test
