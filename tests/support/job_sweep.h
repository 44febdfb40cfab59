// The allocation-failure sweep over a whole job script. The script is played
// once to count its engine allocations and note, after every line, how many
// had been made. Then, for sampled N, it is played again with every
// allocation after the first N failing: the play stops after the line in
// which the first allocation failed (the failing prefix), failures are
// lifted, and a fixed follow-up on the same engine must close the page in
// hand and paint and deliver a new one. After each run every traced call
// must have answered KRYN_OK, KRYN_ERR_NO_MEMORY or what the clean run
// answered, and every engine block must be back. Each N is also played to
// the end of the script with the failures left on (the starved run): every
// answer must be a documented code and nothing may leak.
#pragma once

#include <cstdint>
#include <string>

namespace kryn::test {

struct JobSweepReport {
    uint64_t allocations = 0; // engine allocations of the clean run
    uint64_t failedRuns = 0;  // runs made with allocation N failing
    uint64_t followUps = 0;   // runs whose engine survived into the follow-up
};

// Jobs up to this many allocations fail every one of them in turn; longer
// jobs fail this many evenly spaced ones.
inline constexpr uint64_t JOB_SWEEP_MAX_RUNS = 400;

// Reports problems as GoogleTest failures (stopping at the first failing N).
JobSweepReport sweepJobScript(const std::string& path, uint64_t maxRuns = JOB_SWEEP_MAX_RUNS);

} // namespace kryn::test
