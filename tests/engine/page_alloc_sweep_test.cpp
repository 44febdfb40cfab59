// Failed allocations anywhere in a page's life: every call answers OK or
// no-memory, and nothing is left allocated afterwards.
#include "support/alloc_sweep.h"
#include "support/engine_fixture.h"

#include "displaylist/display_list.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

// Records a rectangle into a band; a failure may come from the list, its
// first block, or a later block.
ResultCode tryRecord(Engine* e, int32_t band) {
    DisplayList* list = nullptr;
    const ResultCode r = getBandList(openPage(e), band, &list);
    if (failed(r)) {
        return r;
    }
    uint8_t* at = reserveRecord(list, 8);
    if (at == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    at[0] = DL_OP_RECT;
    at[4] = 1;
    at[6] = 1;
    list->serialBytes += 8;
    return commitRecord(list, e->resources);
}

void pageScenario(bool injected, int16_t mode) {
    CallbackLog log;
    Engine* e = KRYNInit(299, 299, 16, 600, 0x8009);
    if (e == nullptr) {
        EXPECT_TRUE(injected) << "KRYNInit failed without injection";
        return;
    }
    auto check = [&](ResultCode r, const char* what) {
        if (injected) {
            expectOkOrNoMemory(r, what);
        } else {
            EXPECT_EQ(r, KRYN_OK) << what;
        }
    };
    check(KRYNNewPage(mode, e), "NewPage");
    if (openPage(e) != nullptr) {
        for (int32_t i = 0; i < 600; ++i) { // several blocks in several bands
            check(tryRecord(e, (i * 7) % 19), "record");
        }
        check(KRYNNextBand(4, CallbackLog::callback, log.context(), e), "NextBand");
        check(tryRecord(e, 5), "record after flush");
        check(KRYNClosePage(CallbackLog::callback, log.context(), e), "ClosePage");
    }
    check(KRYNNewPage(mode, e), "second NewPage");
    if (openPage(e) != nullptr) {
        check(tryRecord(e, 2), "record on second page");
        check(KRYNDisposePage(e), "DisposePage");
    }
    EXPECT_EQ(KRYNEnd(e), KRYN_OK);
}

TEST(PageAllocationSweep, EveryFailureIsReportedAndLeavesNothingBehind) {
    for (int16_t mode : {0, 1, 3, 6, 9}) {
        const SweepReport report =
            sweepAllocationFailures([&](bool injected) { pageScenario(injected, mode); });
        EXPECT_GT(report.allocations, 20u) << "mode " << mode;
        if (HasFailure()) {
            ADD_FAILURE() << "mode " << mode;
            return;
        }
    }
}

} // namespace
} // namespace kryn::test
