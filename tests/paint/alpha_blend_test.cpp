// KRYNAlphaBlend: the device-level gate and what it does beside blendOn
// (alpha mode, alphaUsed, the bands' black-and-white flag), and what the
// next page starts with. The checks of the constant alpha and the keys, and
// the settings' life with the page rather than the graphics state: the
// golden job blend_settings.
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

} // namespace
} // namespace kryn::test
