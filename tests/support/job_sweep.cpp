#include "support/job_sweep.h"

#include "support/engine_fixture.h"

#include "job_player.h"
#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace kryn::test {

namespace {

using CallKey = std::pair<int, std::string>; // script line, operation name

// One played run: the trace's call results.
struct PlayedRun {
    script::PlayResult result;
    std::map<CallKey, std::string> answers;
};

// Call lines of a trace ("12 Fill 0x0000", "1 Init ok"); deliveries are skipped.
std::map<CallKey, std::string> traceAnswers(const std::string& trace) {
    std::map<CallKey, std::string> answers;
    std::istringstream in(trace);
    std::string text;
    while (std::getline(in, text)) {
        std::istringstream words(text);
        std::string line, name, answer;
        if (!(words >> line >> name >> answer) || line == "cb") {
            continue;
        }
        answers[{std::stoi(line), name}] = answer;
    }
    return answers;
}

// Engine allocations made since `start`, not counting the image sample
// buffers the player makes for the calls (the driver's memory, not the
// engine's): those are made with failures lifted, and then the engine's
// remaining allocations before failure are set again.
struct EngineAllocations {
    explicit EngineAllocations(int64_t n = -1) : failAfter(n) { KRYNPlatformFailAfter(n); }
    ~EngineAllocations() { KRYNPlatformFailAfter(-1); }

    uint64_t made() const { return KRYNPlatformAllocCount() - start - playerBuffers; }
    void lift() {
        failAfter = -1;
        KRYNPlatformFailAfter(-1);
    }
    void* samples(size_t bytes) {
        const int64_t left =
            failAfter < 0 ? -1 : std::max<int64_t>(failAfter - static_cast<int64_t>(made()), 0);
        KRYNPlatformFailAfter(-1);
        void* buffer = GlobalAlloc(GMEM_FIXED, bytes);
        ++playerBuffers;
        KRYNPlatformFailAfter(left);
        return buffer;
    }

    uint64_t start = KRYNPlatformAllocCount();
    uint64_t playerBuffers = 0;
    int64_t failAfter; // engine allocations that succeed; -1: all do
};

PlayedRun play(const std::string& path, std::function<bool(int, Engine*)> afterLine,
               EngineAllocations* allocations = nullptr) {
    std::ostringstream trace;
    script::PlayerOptions options;
    options.trace = &trace;
    options.afterLine = std::move(afterLine);
    if (allocations != nullptr) {
        options.allocateSamples = [allocations](size_t bytes) {
            return allocations->samples(bytes);
        };
    }
    const size_t slash = path.find_last_of('/');
    const std::string base = slash == std::string::npos ? "." : path.substr(0, slash);
    std::ifstream in(path);
    EXPECT_TRUE(in.good()) << "cannot read " << path;
    PlayedRun run;
    {
        script::JobPlayer player(path, base, options);
        run.result = player.run(in);
    }
    run.answers = traceAnswers(trace.str());
    return run;
}

std::vector<uint64_t> sampledFailures(uint64_t allocations, uint64_t maxRuns) {
    std::vector<uint64_t> samples;
    const uint64_t runs = std::min(allocations, maxRuns);
    for (uint64_t i = 0; i < runs; ++i) {
        samples.push_back(i * allocations / runs);
    }
    return samples;
}

bool acceptable(const CallKey& key, const std::string& answer, int failingLine,
                const std::map<CallKey, std::string>& clean) {
    if (answer == "0x0000" || answer == "0xFF01" || answer == "ok") {
        return true;
    }
    if (answer == "null" && key.first == failingLine) {
        return true; // the Init whose engine could not be made
    }
    auto it = clean.find(key);
    return it != clean.end() && it->second == answer;
}

bool documentedAnswer(const std::string& answer) {
    for (const char* known : {"ok", "null", "0x0000", "0xFF01", "0xFF02", "0xFF03", "0xFF05"}) {
        if (answer == known) {
            return true;
        }
    }
    return false;
}

} // namespace

JobSweepReport sweepJobScript(const std::string& path, uint64_t maxRuns) {
    JobSweepReport report;
    const uint64_t liveBefore = KRYNPlatformLiveBlocks();
    std::vector<std::pair<int, uint64_t>> afterLine;
    PlayedRun clean;
    {
        EngineAllocations counted;
        clean = play(
            path,
            [&](int line, Engine*) {
                afterLine.emplace_back(line, counted.made());
                return true;
            },
            &counted);
        report.allocations = counted.made();
    }
    EXPECT_NE(clean.result.status, 1) << clean.result.message;
    EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore) << path << ": clean run leaked";

    for (uint64_t n : sampledFailures(report.allocations, maxRuns)) {
        // The line in which allocation n is made; the play stops after it.
        int failingLine = INT_MAX;
        for (const auto& [line, made] : afterLine) {
            if (made > n) {
                failingLine = line;
                break;
            }
        }
        bool followedUp = false;
        PlayedRun run;
        {
            EngineAllocations failing(static_cast<int64_t>(n));
            run = play(
                path,
                [&](int line, Engine* engine) {
                    if (line < failingLine) {
                        return true;
                    }
                    failing.lift();
                    if (engine != nullptr) {
                        expectEnginePaints(engine, "the follow-up");
                        followedUp = true;
                    }
                    return false;
                },
                &failing);
        }
        ++report.failedRuns;
        report.followUps += followedUp ? 1 : 0;
        EXPECT_NE(run.result.status, 1) << run.result.message;
        for (const auto& [key, answer] : run.answers) {
            EXPECT_TRUE(acceptable(key, answer, failingLine, clean.answers))
                << "line " << key.first << ' ' << key.second << " answered " << answer;
        }
        EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore) << "leak";

        // The whole script again with every allocation after the first n
        // failing to its end: later calls may also find no page or no
        // current point, but every answer is a documented one.
        PlayedRun starved;
        {
            EngineAllocations starving(static_cast<int64_t>(n));
            starved = play(path, nullptr, &starving);
        }
        EXPECT_NE(starved.result.status, 1) << starved.result.message;
        for (const auto& [key, answer] : starved.answers) {
            EXPECT_TRUE(documentedAnswer(answer))
                << "starved: line " << key.first << ' ' << key.second << " answered " << answer;
        }
        EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore) << "leak in the starved run";
        if (::testing::Test::HasFailure()) {
            ADD_FAILURE() << path << ": first failure with allocation " << n << " failing (line "
                          << failingLine << ")";
            break;
        }
    }
    return report;
}

} // namespace kryn::test
