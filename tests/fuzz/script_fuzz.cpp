// Fuzz target: any bytes as a job script, played on a fresh engine. The
// player and the engine must neither crash nor leak, whatever the script.
#include "job_player.h"

#include "kryn/platform.h"

#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        std::ostringstream trace;
        std::ostringstream stream;
        kryn::script::PlayerOptions options;
        options.trace = &trace;
        options.stream = &stream;
        options.allowFiles = false;
        options.maxBytes = 1 << 16;
        kryn::script::JobPlayer player("fuzz.kjob", ".", options);
        std::istringstream script(std::string(reinterpret_cast<const char*>(data), size));
        player.run(script);
    }
    if (KRYNPlatformLiveBlocks() != live) {
        std::abort(); // a leak: every engine block must be back
    }
    return 0;
}
