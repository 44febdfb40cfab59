// The allocation-failure sweep: run a scenario once to count its
// allocations, then once for every N with allocation N failing. After every
// run the live-block count must be back where it started.
#pragma once

#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace kryn::test {

struct SweepReport {
    uint64_t allocations = 0; // allocations of the clean run
    uint64_t failedRuns = 0;  // runs made with one allocation failing
};

// Fails the test unless r is KRYN_OK or KRYN_ERR_NO_MEMORY.
inline void expectOkOrNoMemory(ResultCode r, const char* what) {
    EXPECT_TRUE(r == KRYN_OK || r == KRYN_ERR_NO_MEMORY) << what << " answered 0x" << std::hex << r;
}

// scenario(bool injected) runs the whole scenario (engine created and ended
// inside it); `injected` is false for the counting run, where every call
// must succeed.
template <class Scenario>
SweepReport sweepAllocationFailures(Scenario&& scenario) {
    SweepReport report;
    const uint64_t liveBefore = KRYNPlatformLiveBlocks();
    const uint64_t countBefore = KRYNPlatformAllocCount();
    scenario(false);
    report.allocations = KRYNPlatformAllocCount() - countBefore;
    EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore) << "clean run leaked";
    for (uint64_t n = 0; n < report.allocations; ++n) {
        KRYNPlatformFailAfter(static_cast<int64_t>(n));
        scenario(true);
        KRYNPlatformFailAfter(-1);
        ++report.failedRuns;
        EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore)
            << "leak with allocation " << n << " failing";
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << "first failure with allocation " << n << " failing";
            break;
        }
    }
    return report;
}

} // namespace kryn::test
