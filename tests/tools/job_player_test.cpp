// The player on small scripts: script errors stop before their line makes
// any call, and the afterLine hook the allocation sweep relies on. The trace
// format and the engine's lifetime are pinned by every golden job.
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
