// Every example and golden job survives the allocation-failure sweep: each
// engine allocation (or, for long jobs, an even sample of them) fails in
// turn, and the engine answers, recovers and frees everything.
#include "support/job_sweep.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// Adds the file, or every file of the directory.
void addJobs(const std::string& path, std::vector<std::string>& jobs) {
    if (!std::filesystem::is_directory(path)) {
        jobs.push_back(path);
        return;
    }
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        if (entry.is_regular_file()) {
            jobs.push_back(entry.path().string());
        }
    }
}

// The example and golden jobs, or the ':'-separated files and directories in
// KRYN_SWEEP_JOBS (for sweeping by hand, a fuzzing corpus for instance:
// kryn_tests --gtest_filter='Jobs/JobSweep*').
std::vector<std::string> jobScripts() {
    std::vector<std::string> jobs;
    if (const char* list = std::getenv("KRYN_SWEEP_JOBS")) {
        std::string rest = list;
        for (size_t colon; (colon = rest.find(':')) != std::string::npos;
             rest.erase(0, colon + 1)) {
            addJobs(rest.substr(0, colon), jobs);
        }
        addJobs(rest, jobs);
        std::sort(jobs.begin(), jobs.end());
        return jobs;
    }
    for (const char* dir : {KRYN_SOURCE_DIR "/examples", KRYN_SOURCE_DIR "/tests/golden"}) {
        for (const auto& entry : std::filesystem::directory_iterator(dir)) {
            if (entry.path().extension() == ".kjob") {
                jobs.push_back(entry.path().string());
            }
        }
    }
    std::sort(jobs.begin(), jobs.end());
    return jobs;
}

std::string testName(const ::testing::TestParamInfo<std::string>& info) {
    std::string name = std::filesystem::path(info.param).parent_path().filename().string() + "_" +
                       std::filesystem::path(info.param).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
    return name;
}

class JobSweep : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(JobSweep, EveryFailedAllocationAnswersRecoversAndFreesEverything) {
    kryn::test::JobSweepReport report = kryn::test::sweepJobScript(GetParam());
    RecordProperty("allocations", static_cast<int>(report.allocations));
    RecordProperty("failedRuns", static_cast<int>(report.failedRuns));
    RecordProperty("followUps", static_cast<int>(report.followUps));
    std::printf("%s: %llu allocations, %llu failed runs, %llu follow-ups\n", GetParam().c_str(),
                static_cast<unsigned long long>(report.allocations),
                static_cast<unsigned long long>(report.failedRuns),
                static_cast<unsigned long long>(report.followUps));
}

INSTANTIATE_TEST_SUITE_P(Jobs, JobSweep, ::testing::ValuesIn(jobScripts()), testName);

TEST(JobSweepSampling, LongJobsFailAnEvenSampleOfTheirAllocations) {
    const std::string job = KRYN_SOURCE_DIR "/examples/first_page.kjob";
    kryn::test::JobSweepReport report = kryn::test::sweepJobScript(job, 5);
    ASSERT_GT(report.allocations, 5u);
    EXPECT_EQ(report.failedRuns, 5u);
}
