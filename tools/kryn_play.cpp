// kryn-play: plays a job script on the engine and writes what it delivers.
#include "job_player.h"
#include "page_picture.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr int EXIT_PLAYER_FAILED = 1; // an output could not be written, out of memory
constexpr int EXIT_SCRIPT_ERROR = 2;  // bad command line, unreadable or wrong script
constexpr int EXIT_ENGINE_ERROR = 3;  // --strict: an engine call answered an error

const char USAGE[] =
    "usage: kryn-play [options] SCRIPT    (- reads the script from standard input,\n"
    "                                     file: data then from the current directory)\n"
    "Plays a job script, one engine call a line, and writes what the engine delivers.\n"
    "  --trace FILE|-   every call's result and every delivery (- : standard output)\n"
    "  --stream FILE    the bytes of every stream chunk (the device stream)\n"
    "  --out FILE       each page's delivered bands as one picture (.png, .pgm or .ppm;\n"
    "                   several pages: FILE-1.png, FILE-2.png, ...)\n"
    "  --shrink N       pictures N times smaller on each side (1..64), each pixel the\n"
    "                   average of the N x N it stands for\n"
    "  --strict         end with status 3 when an engine call answered an error code\n"
    "                   (or Init opened no engine); the script still runs to its end\n"
    "  -h, --help       this help\n"
    "  --version        the version of the player and of the engine it is built with\n"
    "Exit status: 0 the script ran (engine result codes are data, not failures);\n"
    "  1 the player failed (an output file could not be written, out of memory);\n"
    "  2 bad command line, or the script cannot be read or has an error (FILE:LINE: ...);\n"
    "  3 with --strict, an engine call answered an error code.\n";

struct Arguments {
    std::string script;
    std::string trace;
    std::string stream;
    std::string out;
    uint32_t shrink = 1;
    bool strict = false;
    bool help = false;
    bool version = false;
};

// Answers an error message for a command line it cannot take.
std::string parseArguments(int argc, char** argv, Arguments& out) {
    bool haveScript = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "-h" || arg == "--help") {
            out.help = true;
        } else if (arg == "--version") {
            out.version = true;
        } else if (arg == "--strict") {
            out.strict = true;
        } else if (arg == "--shrink") {
            const std::string value = hasValue ? argv[++i] : "";
            const bool digits = !value.empty() && value.size() <= 2 &&
                                value.find_first_not_of("0123456789") == std::string::npos;
            const int n = digits ? std::stoi(value) : 0;
            if (n < 1 || n > 64) {
                return "--shrink needs a factor from 1 to 64";
            }
            out.shrink = static_cast<uint32_t>(n);
        } else if (arg == "--trace" || arg == "--stream" || arg == "--out") {
            if (!hasValue) {
                return arg + " needs a file name";
            }
            std::string& value = arg == "--trace"    ? out.trace
                                 : arg == "--stream" ? out.stream
                                                     : out.out;
            value = argv[++i];
        } else if (arg.size() > 1 && arg[0] == '-') {
            return "unknown option '" + arg + "'";
        } else if (haveScript) {
            return "one script at a time ('" + out.script + "', then '" + arg + "')";
        } else {
            out.script = arg;
            haveScript = true;
        }
    }
    if (!haveScript && !out.help && !out.version) {
        return "no script given";
    }
    return "";
}

// Collects the rasters of each page and writes one picture per closed page:
// FILE for a single page, FILE-1, FILE-2, ... (before the extension) once a
// second page appears.
class PictureOutput {
  public:
    PictureOutput(std::string path, uint32_t shrink) : path_(std::move(path)), shrink_(shrink) {}

    void startEngine(uint32_t width, uint32_t height, uint32_t bandHeight) {
        width_ = width;
        height_ = height;
        bandHeight_ = bandHeight;
        page_.reset();
    }
    void raster(const kryn::script::RasterDelivery& d) { current().placeBand(d); }
    void pageClosed() {
        ++pages_;
        if (pages_ == 2) {
            std::rename(path_.c_str(), numbered(1).c_str());
        }
        std::string error;
        current().shrink(shrink_);
        if (!kryn::script::writePicture(current(), pages_ == 1 ? path_ : numbered(pages_), error)) {
            error_ = error;
        }
        page_.reset();
    }
    const std::string& error() const { return error_; }

  private:
    kryn::script::PagePicture& current() {
        if (!page_) {
            page_ = std::make_unique<kryn::script::PagePicture>(width_, height_, bandHeight_);
        }
        return *page_;
    }
    std::string numbered(int n) const {
        size_t dot = path_.find_last_of('.');
        return path_.substr(0, dot) + "-" + std::to_string(n) + path_.substr(dot);
    }

    std::string path_;
    uint32_t shrink_ = 1;
    uint32_t width_ = 0;
    uint32_t height_ = 0;
    uint32_t bandHeight_ = 0;
    int pages_ = 0;
    std::unique_ptr<kryn::script::PagePicture> page_;
    std::string error_;
};

bool pictureNameIsValid(const std::string& path) {
    for (const char* ext : {".png", ".pgm", ".ppm"}) {
        if (path.size() > 4 && path.compare(path.size() - 4, 4, ext) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    Arguments args;
    const std::string usageError = parseArguments(argc, argv, args);
    if (!usageError.empty()) {
        std::cerr << "kryn-play: " << usageError << " (kryn-play --help for usage)\n";
        return EXIT_SCRIPT_ERROR;
    }
    if (args.help) {
        std::cout << USAGE;
        return std::cout.flush() ? 0 : EXIT_PLAYER_FAILED;
    }
    if (args.version) {
        std::cout << "kryn-play " << KRYN_VERSION_STRING << " (Kryn " << KRYN_VERSION_STRING
                  << ", licensed under Apache-2.0)\n";
        return std::cout.flush() ? 0 : EXIT_PLAYER_FAILED;
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
        return EXIT_PLAYER_FAILED;
    }
    std::unique_ptr<PictureOutput> pictures;
    if (!args.out.empty()) {
        if (!pictureNameIsValid(args.out)) {
            std::cerr << "kryn-play: --out needs a .png, .pgm or .ppm file\n";
            return EXIT_SCRIPT_ERROR;
        }
        pictures = std::make_unique<PictureOutput>(args.out, args.shrink);
        options.onInit = [&](uint32_t w, uint32_t h, uint32_t b) {
            pictures->startEngine(w, h, b);
        };
        options.onRaster = [&](const kryn::script::RasterDelivery& d) { pictures->raster(d); };
        options.onPageClosed = [&] { pictures->pageClosed(); };
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
    if (pictures && !pictures->error().empty()) {
        std::cerr << "kryn-play: " << pictures->error() << '\n';
        writeFailed = true;
    }
    if (result.status != 0) {
        return result.status;
    }
    if (writeFailed) {
        std::cerr << "kryn-play: writing an output file failed\n";
        return EXIT_PLAYER_FAILED;
    }
    if (args.strict && result.failedCalls != 0) {
        std::cerr << "kryn-play: " << result.failedCalls
                  << " engine call(s) answered an error code, the first: " << result.firstFailure
                  << '\n';
        return EXIT_ENGINE_ERROR;
    }
    return 0;
}
