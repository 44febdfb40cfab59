// The allocation-failure sweep over host page close.
#include "support/page_fixture.h"

#include "support/alloc_sweep.h"

#include "engine/memory.h"

namespace kryn::test {
namespace {

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
