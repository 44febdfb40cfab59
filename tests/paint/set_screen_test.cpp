// KRYNSetScreen under failed memory: a refused call leaves everything as it
// was (the screen, the identifier, the registry and the renderer and device
// definitions). Refused tiles: the golden job screen_refusals; identifiers,
// definitions, turned and scaled tiles and the graphics-state stack: the
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
