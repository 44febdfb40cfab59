// The band renderer's buffers across creation and page resizes, and the
// allocation-failure sweep over host page close.
#include "render_fixture.h"

#include "support/alloc_sweep.h"

#include "engine/memory.h"
#include "render/band_renderer.h"
#include "render/renderer_lists.h"

namespace kryn::test {
namespace {

const uint8_t ATTRS[3] = {3, 1, 2};

TEST(BandRendererLife, StridesTagsAndPaper) {
    BandRenderer* grey = createBandRenderer({65, 16, ATTRS, 1});
    ASSERT_NE(grey, nullptr);
    EXPECT_EQ(grey->strideWords, 18); // 65 bytes rounded up to 72
    EXPECT_NE(grey->raster, nullptr);
    EXPECT_NE(grey->paintState, nullptr);
    EXPECT_EQ(grey->expandBuffer, nullptr);
    BandRenderer* colour = createBandRenderer({65, 16, ATTRS, 0});
    ASSERT_NE(colour, nullptr);
    EXPECT_EQ(colour->strideWords, 66);
    EXPECT_EQ(colour->tagImageWord, 0x03000000u);
    EXPECT_EQ(colour->tagBitmapWord, 0x02000000u);
    EXPECT_EQ(colour->paperWord, 0x01FFFFFFu);
    destroyBandRenderer(grey);
    destroyBandRenderer(colour);
}

TEST(BandRendererLife, ResizingKeepsWhatStillFitsAndEmptiesThePageLists) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    BandRenderer* r = createBandRenderer({64, 16, ATTRS, 0});
    ASSERT_NE(r, nullptr);
    r->rendererKind = RENDERER_BOX;
    r->expandBuffer = static_cast<uint8_t*>(allocBytes(expandBufferBytes(*r)));
    r->tileList = static_cast<RendererTile*>(allocBytes(sizeof(RendererTile)));
    *r->tileList = {nullptr, 1, 1, 8, 8, nullptr};
    uint8_t* raster = r->raster;

    ASSERT_EQ(resizeBandRenderer(r, {64, 16, ATTRS, 0}), KRYN_OK);
    EXPECT_EQ(r->raster, raster);
    EXPECT_EQ(r->tileList, nullptr);
    EXPECT_EQ(r->rendererKind, RENDERER_BOX);

    ASSERT_EQ(resizeBandRenderer(r, {64, 16, ATTRS, 1}), KRYN_OK);
    EXPECT_EQ(r->rendererKind, RENDERER_UNSET); // the colour space changed
    EXPECT_EQ(r->strideWords, 16);
    ASSERT_NE(r->expandBuffer, nullptr); // reallocated at the new size

    ASSERT_EQ(resizeBandRenderer(r, {100, 8, ATTRS, 1}), KRYN_OK);
    EXPECT_EQ(r->strideWords, 26);
    EXPECT_EQ(r->height, 8);
    destroyBandRenderer(r);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

// Host pages in every playing mode, grey and colour, closed with some
// allocation failing: close always succeeds and nothing leaks.
TEST(PlaybackAllocSweep, HostPageCloseNeverLeaksOrFails) {
    CallbackLog log;
    const SweepReport report = sweepAllocationFailures([&](bool injected) {
        log = CallbackLog();
        Engine* e = KRYNInit(64, 63, 16, 600, 0x8009);
        if (e == nullptr) {
            EXPECT_TRUE(injected);
            return;
        }
        for (int16_t mode : {2, 5, 8, 9}) {
            for (int32_t space : {0, 1}) {
                ResultCode r = KRYNNewPage(mode, e);
                expectOkOrNoMemory(r, "KRYNNewPage");
                if (r != KRYN_OK) {
                    continue;
                }
                expectOkOrNoMemory(KRYNSelectSpace(space, e), "KRYNSelectSpace");
                PageRecord* page = pageOf(e);
                for (int32_t band = 0; band < 3; ++band) {
                    DisplayList* list = nullptr;
                    if (getBandList(page, band, &list) != KRYN_OK) {
                        continue;
                    }
                    page->bands[band].bandMonochrome = band == 2 ? 1 : 0;
                    if (writeRop(list, 0xF0, e->resources) != KRYN_OK ||
                        writePaintColour(list, 0x123456, COLOUR_FORE, e->resources) != KRYN_OK ||
                        writeRect(list, {2, 3}, 10, 4, e->resources) != KRYN_OK) {
                        continue;
                    }
                    uint8_t* runs = runBuffer(0, {{1, 0, 4, 9}, {2, 0, 5, 9}}, {1, 1, 2, 2});
                    if (runs != nullptr && writeRuns(list, runs, 2, e->resources) != KRYN_OK) {
                        freeBytes(runs);
                    }
                }
                EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e), KRYN_OK);
            }
        }
        KRYNEnd(e);
        if (!injected) {
            EXPECT_EQ(log.calls.size(), 4u * 2u * 3u);
        }
    });
    EXPECT_GT(report.allocations, 20u);
    EXPECT_EQ(report.failedRuns, report.allocations);
}

} // namespace
} // namespace kryn::test
