// KRYNSetScreen through the exported call: refusals leave everything as it
// was (the screen, the identifier, the registry and the renderer and device
// definitions), also when an allocation fails. Identifiers, definitions,
// turned and scaled tiles and the graphics-state stack are pinned by the
// golden jobs screen_stream, screen_bits and screen_patterns.
#include "paint/screen_list.h"

#include "engine/graphics_state.h"
#include "render/band_renderer.h"
#include "render/renderer_lists.h"
#include "support/alloc_sweep.h"
#include "support/engine_fixture.h"
#include "transfer/download_tables.h"

#include <gtest/gtest.h>

#include <vector>

namespace kryn::test {
namespace {

const int32_t IDENTITY[6] = {1, 0, 0, 1, 0, 0};
const uint8_t CELL8[8] = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};
const uint8_t OTHER8[8] = {0xFF, 0, 0, 0, 0, 0, 0, 0};
// 2 x 1 colour pixels: red, white (fourth bytes 1 and 2).
const uint8_t COLOUR2[8] = {0xFF, 0, 0, 1, 0xFF, 0xFF, 0xFF, 2};

ScreenTile tileOf(const void* data, int32_t w, int32_t h, uint8_t depth, int32_t bpr = 1) {
    return ScreenTile{data, w, h, bpr, depth};
}

// What a screen call may change, to compare before and after.
struct ScreenSnapshot {
    ScreenTile screen;
    uint16_t tileOpaque;
    uint32_t tileKind;
    uint32_t screenId;
    int entries;
    int rendererTiles;
    int downloads;

    static ScreenSnapshot of(Engine* e) {
        const GraphicsState& gs = *currentState(e);
        ScreenSnapshot s{gs.screen, gs.tileOpaque, gs.tileKind, openPage(e)->paint.screenId, 0, 0,
                         0};
        for (const TileEntry* t = e->screenList; t != nullptr; t = t->next) {
            ++s.entries;
        }
        if (e->resources->renderer != nullptr) {
            for (const RendererTile* t = e->resources->renderer->tileList; t; t = t->next) {
                ++s.rendererTiles;
            }
        }
        for (const DownloadNode* n = e->resources->downloadB; n != nullptr; n = n->next) {
            s.downloads += n->count;
        }
        return s;
    }
    bool operator==(const ScreenSnapshot& o) const {
        return screen.data == o.screen.data && screen.width == o.screen.width &&
               screen.height == o.screen.height && screen.depth == o.screen.depth &&
               tileOpaque == o.tileOpaque && tileKind == o.tileKind && screenId == o.screenId &&
               entries == o.entries && rendererTiles == o.rendererTiles && downloads == o.downloads;
    }
};

class SetScreen : public ::testing::Test {
  protected:
    void open(int16_t mode = 5, bool grey = false) {
        engine_ = makeEngine(99, 99, 16);
        ASSERT_NE(engine_, nullptr);
        ASSERT_EQ(KRYNNewPage(mode, e()), KRYN_OK);
        if (grey) {
            ASSERT_EQ(KRYNSelectSpace(1, e()), KRYN_OK);
        }
        ASSERT_EQ(KRYNSetMatrix(IDENTITY, e()), KRYN_OK);
    }
    Engine* e() { return engine_.get(); }
    ResultCode set(const ScreenTile& t, uint16_t opaque = 1) {
        return KRYNSetScreen(&t, opaque, e());
    }
    uint32_t id() { return openPage(e())->paint.screenId; }
    EnginePtr engine_;
};

TEST_F(SetScreen, RefusalsChangeNothing) {
    open();
    ASSERT_EQ(set(tileOf(CELL8, 8, 8, 1), 0), KRYN_OK);
    const ScreenSnapshot before = ScreenSnapshot::of(e());
    const struct {
        ScreenTile tile;
        ResultCode result;
        const char* what;
    } cases[] = {
        {tileOf(CELL8, 8, 0, 1), KRYN_ERR_INVALID, "height 0"},
        {tileOf(CELL8, 8, 4097, 1), KRYN_ERR_INVALID, "height 4097"},
        {tileOf(CELL8, 4097, 8, 1), KRYN_ERR_INVALID, "width 4097"},
        {tileOf(CELL8, -1, 8, 1), KRYN_ERR_INVALID, "negative width"},
        {tileOf(CELL8, 8, 8, 1, 0), KRYN_ERR_INVALID, "bytesPerRow 0"},
        {tileOf(CELL8, 8, 1, 8), KRYN_ERR_INVALID, "8-bit on a colour page"},
        {tileOf(CELL8, 2, 1, 124), KRYN_ERR_INVALID, "alpha tile without blending"},
        {tileOf(CELL8, 2, 1, 254), KRYN_ERR_INVALID, "two-byte tile without blending"},
        {tileOf(CELL8, 2, 1, 32), KRYN_ERR_INVALID, "unknown depth"},
        {tileOf(nullptr, 8, 8, 1), KRYN_ERR_INVALID, "null data"},
        {tileOf(CELL8, 2049, 1, 1), KRYN_ERR_INVALID, "widened row above 65535 pixels"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(set(c.tile), c.result) << c.what;
        EXPECT_TRUE(ScreenSnapshot::of(e()) == before) << c.what;
    }
    // A 30-degree rotation cannot turn a tile: the previous screen stays.
    const int32_t rotated[6] = {866, 500, -500, 866, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(rotated, e()), KRYN_OK);
    EXPECT_EQ(set(tileOf(OTHER8, 8, 8, 1)), KRYN_ERR_NO_MEMORY);
    EXPECT_EQ(set(tileOf(COLOUR2, 2, 1, 24)), KRYN_ERR_NO_MEMORY);
    EXPECT_TRUE(ScreenSnapshot::of(e()) == before);
    // No page, no engine.
    ASSERT_EQ(KRYNDisposePage(e()), KRYN_OK);
    EXPECT_EQ(set(tileOf(CELL8, 8, 8, 1)), KRYN_ERR_INVALID);
    const ScreenTile t = tileOf(CELL8, 8, 8, 1);
    EXPECT_EQ(KRYNSetScreen(&t, 1, nullptr), KRYN_ERR_INVALID);
}

// Every allocation of a screened page failing in turn: a refused screen
// call changes nothing, and everything is freed.
TEST(SetScreenSweep, AFailedCallChangesNothingAndLeaksNothing) {
    for (const int16_t mode : {5, 0}) {
        const SweepReport report = sweepAllocationFailures([&](bool injected) {
            Engine* e = KRYNInit(99, 99, 16, 300, 0x8009);
            if (e == nullptr) {
                return;
            }
            if (KRYNNewPage(mode, e) == KRYN_OK && KRYNSetMatrix(IDENTITY, e) == KRYN_OK) {
                const ScreenTile tiles[] = {tileOf(CELL8, 8, 8, 1), tileOf(COLOUR2, 2, 1, 24),
                                            tileOf(CELL8, 8, 8, 1), tileOf(OTHER8, 5, 3, 1)};
                for (const ScreenTile& t : tiles) {
                    const ScreenSnapshot before = ScreenSnapshot::of(e);
                    const ResultCode r = KRYNSetScreen(&t, 1, e);
                    expectOkOrNoMemory(r, "SetScreen");
                    if (r != KRYN_OK) {
                        EXPECT_TRUE(injected);
                        EXPECT_TRUE(ScreenSnapshot::of(e) == before);
                    }
                    KRYNRectPath(0, 0, 50, 50, e);
                    expectOkOrNoMemory(KRYNFill(1, e), "Fill");
                }
                expectOkOrNoMemory(KRYNNextBand(0, nullptr, 0, e), "NextBand");
                expectOkOrNoMemory(KRYNClosePage(nullptr, 0, e), "ClosePage");
            }
            KRYNEnd(e);
        });
        EXPECT_GT(report.failedRuns, 10u) << "mode " << mode;
    }
}

} // namespace
} // namespace kryn::test
