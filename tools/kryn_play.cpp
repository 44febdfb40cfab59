// kryn-play: plays a job script on the engine and writes what it delivers.
#include "job_player.h"

#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

namespace {

void usage() {
    std::cerr << "usage: kryn-play SCRIPT [--trace FILE|-] [--stream FILE]\n";
}

struct Arguments {
    std::string script;
    std::string trace;
    std::string stream;
};

bool parseArguments(int argc, char** argv, Arguments& out) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        bool hasValue = i + 1 < argc;
        if (arg == "--trace" && hasValue) {
            out.trace = argv[++i];
        } else if (arg == "--stream" && hasValue) {
            out.stream = argv[++i];
        } else if (!arg.starts_with("--") && out.script.empty()) {
            out.script = arg;
        } else {
            return false;
        }
    }
    return !out.script.empty();
}

} // namespace

int main(int argc, char** argv) {
    Arguments args;
    if (!parseArguments(argc, argv, args)) {
        usage();
        return 1;
    }
    kryn::script::PlayerOptions options;
    std::ofstream traceFile;
    std::ofstream streamFile;
    if (args.trace == "-") {
        options.trace = &std::cout;
    } else if (!args.trace.empty()) {
        traceFile.open(args.trace);
        options.trace = &traceFile;
    }
    if (!args.stream.empty()) {
        streamFile.open(args.stream, std::ios::binary);
        options.stream = &streamFile;
    }
    if ((options.trace == &traceFile && !traceFile) || (options.stream != nullptr && !streamFile)) {
        std::cerr << "kryn-play: cannot open an output file\n";
        return 1;
    }
    kryn::script::PlayResult result = kryn::script::playScriptFile(args.script, options);
    if (!result.message.empty()) {
        std::cerr << result.message << '\n';
    }
    std::cout.flush();
    bool writeFailed = !std::cout;
    for (std::ofstream* file : {&traceFile, &streamFile}) {
        if (file->is_open()) {
            file->close();
            writeFailed = writeFailed || file->fail();
        }
    }
    if (result.status == 0 && writeFailed) {
        std::cerr << "kryn-play: writing an output file failed\n";
        return 1;
    }
    return result.status;
}
