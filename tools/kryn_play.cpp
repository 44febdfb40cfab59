// kryn-play: plays a job script on the engine and writes what it delivers.
#include "job_player.h"
#include "page_picture.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

namespace {

void usage() {
    std::cerr
        << "usage: kryn-play SCRIPT [--trace FILE|-] [--stream FILE] [--out FILE.png|.pgm|.ppm]\n";
}

struct Arguments {
    std::string script;
    std::string trace;
    std::string stream;
    std::string out;
};

bool parseArguments(int argc, char** argv, Arguments& out) {
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        bool hasValue = i + 1 < argc;
        if (arg == "--trace" && hasValue) {
            out.trace = argv[++i];
        } else if (arg == "--stream" && hasValue) {
            out.stream = argv[++i];
        } else if (arg == "--out" && hasValue) {
            out.out = argv[++i];
        } else if (!arg.starts_with("--") && out.script.empty()) {
            out.script = arg;
        } else {
            return false;
        }
    }
    return !out.script.empty();
}

// Collects the rasters of each page and writes one picture per closed page:
// FILE for a single page, FILE-1, FILE-2, ... (before the extension) once a
// second page appears.
class PictureOutput {
  public:
    explicit PictureOutput(std::string path) : path_(std::move(path)) {}

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
    std::unique_ptr<PictureOutput> pictures;
    if (!args.out.empty()) {
        if (!pictureNameIsValid(args.out)) {
            std::cerr << "kryn-play: --out needs a .png, .pgm or .ppm file\n";
            return 1;
        }
        pictures = std::make_unique<PictureOutput>(args.out);
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
    if (result.status == 0 && writeFailed) {
        std::cerr << "kryn-play: writing an output file failed\n";
        return 1;
    }
    return result.status;
}
