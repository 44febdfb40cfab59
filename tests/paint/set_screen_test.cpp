// KRYNSetScreen through the exported call: refusals leave everything as it
// was, identifiers by class and serial, one registry entry (one renderer
// definition, one device definition) per distinct tile and page, screens
// under transformations and across the graphics-state stack, and an
// allocation-failure sweep in which a failed call changes nothing.
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
    const ScreenTile& screen() { return currentState(e())->screen; }
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

TEST_F(SetScreen, IdentifiersCountAcrossClassesAndEqualTilesAreRegisteredOnce) {
    open();
    ASSERT_EQ(set(tileOf(CELL8, 8, 8, 1)), KRYN_OK);
    EXPECT_EQ(id(), 1u);
    EXPECT_EQ(screen().width, 32) << "8 wide is stored as four copies";
    ASSERT_EQ(set(tileOf(COLOUR2, 2, 1, 24)), KRYN_OK);
    EXPECT_EQ(id(), 0xC002u);
    EXPECT_EQ(currentState(e())->tileOpaque, 1) << "colour tiles are opaque";
    EXPECT_EQ(currentState(e())->tileKind, TONE_MIXED);
    ASSERT_EQ(set(tileOf(OTHER8, 8, 8, 1), 0), KRYN_OK);
    EXPECT_EQ(id(), 3u);
    const ScreenSnapshot three = ScreenSnapshot::of(e());
    EXPECT_EQ(three.entries, 3);
    EXPECT_EQ(three.rendererTiles, 3);
    EXPECT_EQ(three.downloads, 3);

    // The same tiles again: their identifiers, no new definitions. A 24-bit
    // tile differing only in its fourth bytes is the same tile.
    ASSERT_EQ(set(tileOf(CELL8, 8, 8, 1)), KRYN_OK);
    EXPECT_EQ(id(), 1u);
    const uint8_t sameColours[8] = {0xFF, 0, 0, 7, 0xFF, 0xFF, 0xFF, 9};
    ASSERT_EQ(set(tileOf(sameColours, 2, 1, 24)), KRYN_OK);
    EXPECT_EQ(id(), 0xC002u);
    const ScreenSnapshot again = ScreenSnapshot::of(e());
    EXPECT_EQ(again.entries, 3);
    EXPECT_EQ(again.rendererTiles, 3);
    EXPECT_EQ(again.downloads, 3);

    // A new page starts a new registry: a first 24-bit tile gets 0xC000.
    ASSERT_EQ(KRYNClosePage(nullptr, 0, e()), KRYN_OK);
    EXPECT_EQ(e()->screenList, nullptr);
    ASSERT_EQ(KRYNNewPage(0, e()), KRYN_OK);
    ASSERT_EQ(KRYNSetMatrix(IDENTITY, e()), KRYN_OK);
    ASSERT_EQ(set(tileOf(COLOUR2, 2, 1, 24)), KRYN_OK);
    EXPECT_EQ(id(), 0xC000u);
    EXPECT_EQ(ScreenSnapshot::of(e()).downloads, 1) << "serialised pages define to the device";
}

TEST_F(SetScreen, TilesTurnButKeepTheirDeviceSizeAndNullReturnsToSolid) {
    open();
    ASSERT_EQ(KRYNSetScale(2.0f, e()), KRYN_OK);
    ASSERT_EQ(set(tileOf(CELL8, 8, 4, 1)), KRYN_OK);
    EXPECT_EQ(screen().width, 32);
    EXPECT_EQ(screen().height, 4);
    const int32_t quarter[6] = {0, 3, -3, 0, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(quarter, e()), KRYN_OK);
    ASSERT_EQ(set(tileOf(CELL8, 8, 4, 1)), KRYN_OK);
    EXPECT_EQ(screen().width, 32) << "4 wide after the turn, widened to 32";
    EXPECT_EQ(screen().height, 8);
    EXPECT_EQ(openPage(e())->paint.screenCellHeight, 0) << "setup reads it when painting";

    ASSERT_EQ(KRYNSetScreen(nullptr, 0, e()), KRYN_OK);
    EXPECT_EQ(id(), 0u);
    EXPECT_EQ(screen().data, nullptr);
    EXPECT_EQ(currentState(e())->tileOpaque, 0);
    ASSERT_EQ(set(tileOf(CELL8, 0, 8, 1)), KRYN_OK) << "a width of 0 passes the checks";
    EXPECT_EQ(id(), 0u) << "and has no pixels to paint with";
}

TEST_F(SetScreen, PoppingRestoresTheScreenAndItsIdentifier) {
    open();
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    ASSERT_EQ(set(tileOf(CELL8, 8, 8, 1)), KRYN_OK);
    ASSERT_EQ(KRYNPushGState(e()), KRYN_OK);
    ASSERT_EQ(set(tileOf(COLOUR2, 2, 1, 24)), KRYN_OK);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(id(), 1u);
    EXPECT_EQ(screen().depth, 1);
    ASSERT_EQ(KRYNPopGState(e()), KRYN_OK);
    EXPECT_EQ(id(), 0u) << "a state without a screen paints solid";
}

TEST_F(SetScreen, AnAllWhiteTileUnderTheDefaultFunctionRecordsNothing) {
    open();
    const uint8_t white[8] = {0xFF, 0xFF, 0xFF, 0, 0xFF, 0xFF, 0xFF, 0x55};
    ASSERT_EQ(set(tileOf(white, 2, 1, 24)), KRYN_OK);
    EXPECT_EQ(currentState(e())->tileKind, TONE_ONE);
    ASSERT_EQ(KRYNRectPath(10, 10, 20, 20, e()), KRYN_OK);
    ASSERT_EQ(KRYNFill(1, e()), KRYN_OK);
    EXPECT_TRUE(openPage(e())->dirty.empty());
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
