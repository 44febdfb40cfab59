// The player end to end on small scripts: the trace format, engine lifetime,
// and script errors that stop before their line makes any call.
#include "job_player.h"

#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

using namespace kryn::script;

namespace {

struct PlayOutcome {
    PlayResult result;
    std::string trace;
};

PlayOutcome play(const std::string& script) {
    std::ostringstream trace;
    PlayerOptions options;
    options.trace = &trace;
    JobPlayer player("job.kjob", ".", options);
    std::istringstream in(script);
    PlayOutcome run;
    run.result = player.run(in);
    run.trace = trace.str();
    return run;
}

} // namespace

TEST(JobPlayer, TracesCallsOutputsAndTheImplicitEnd) {
    uint64_t live = KRYNPlatformLiveBlocks();
    PlayOutcome run = play("Init 999 299 64 600 0x8009\n"
                           "GetPageResource\n"
                           "\n"
                           "NewPage 3 # a whole-page host mode\n"
                           "GetPageInfo null\n"
                           "SetLogicalFunc 256\n"
                           "DisposePage\n");
    EXPECT_EQ(run.result.status, 0);
    EXPECT_EQ(run.trace, "1 Init ok\n"
                         "2 GetPageResource 0x0000 1000 300\n"
                         "4 NewPage 0x0000\n"
                         "5 GetPageInfo 0xFF02\n"
                         "6 SetLogicalFunc 0xFF02\n"
                         "7 DisposePage 0x0000\n"
                         "8 End 0x0000\n");
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

TEST(JobPlayer, SecondInitEndsTheFirstAndCallsAfterEndGetNoEngine) {
    PlayOutcome run = play("Init 99 99 16 300 0\nInit 0 99 16 300 0\nNewPage 2\nEnd\n");
    EXPECT_EQ(run.result.status, 0);
    EXPECT_EQ(run.trace, "1 Init ok\n2 End 0x0000\n2 Init null\n3 NewPage 0xFF02\n"
                         "4 End 0xFF02\n");
}

TEST(JobPlayer, ScriptErrorsStopBeforeTheirLineCalls) {
    const char* prefix = "Init 99 99 16 300 0\nNewPage 3\n";
    for (const char* bad : {"Fill\n", "Unknown 1\n", "NewPage\n", "NewPage 1 2\n",
                            "SetLogicalFunc 65536\n", "SetColor [1] 0\n", "NextBand -1\n",
                            "SetColor 0x1 0 # ok\nGetPageInfo 5\n", "DisposePage [\n"}) {
        uint64_t live = KRYNPlatformLiveBlocks();
        PlayOutcome run = play(std::string(prefix) + bad);
        EXPECT_EQ(run.result.status, 2) << bad;
        EXPECT_TRUE(run.result.message.starts_with("job.kjob:3: ") ||
                    run.result.message.starts_with("job.kjob:4: "))
            << run.result.message;
        // Nothing was traced for the bad line, nor an End after it.
        std::string last = run.trace.substr(run.trace.rfind('\n', run.trace.size() - 2) + 1);
        EXPECT_TRUE(last == "2 NewPage 0x0000\n" || last == "3 SetColor 0x0000\n") << last;
        EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << "the player ends its engine on error";
    }
}

TEST(JobPlayer, TheFirstCallMustBeInit) {
    PlayOutcome run = play("# nothing yet\nNewPage 0\n");
    EXPECT_EQ(run.result.status, 2);
    EXPECT_EQ(run.result.message, "job.kjob:2: no engine: the first call must be Init");
    EXPECT_EQ(run.trace, "");
}

TEST(JobPlayer, AfterLineSeesEachLineWithItsEngineAndCanStopThePlay) {
    uint64_t live = KRYNPlatformLiveBlocks();
    std::ostringstream trace;
    PlayerOptions options;
    options.trace = &trace;
    std::vector<std::pair<int, bool>> seen;
    options.afterLine = [&](int line, Engine* engine) {
        seen.emplace_back(line, engine != nullptr);
        if (line == 4) {
            // The engine in hand stays usable between lines.
            EXPECT_EQ(KRYNDisposePage(engine), KRYN_OK);
            return false;
        }
        return true;
    };
    JobPlayer player("job.kjob", ".", options);
    std::istringstream in("Init 0 99 16 300 0\nInit 99 99 16 300 0\n# comment\nNewPage 3\n"
                          "NewPage 3\n");
    EXPECT_EQ(player.run(in).status, 0);
    EXPECT_EQ(seen, (std::vector<std::pair<int, bool>>{{1, false}, {2, true}, {4, true}}));
    EXPECT_EQ(trace.str(), "1 Init null\n2 Init ok\n4 NewPage 0x0000\n5 End 0x0000\n");
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}
