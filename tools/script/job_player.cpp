#include "job_player.h"

#include "argument_binding.h"
#include "line_parser.h"
#include "operation_table.h"
#include "script_error.h"

#include <zlib.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <new>

namespace kryn::script {

namespace {

const OperationEntry INIT_ENTRY{
    "Init",
    {{ParamType::I32}, {ParamType::I32}, {ParamType::I16}, {ParamType::U16}, {ParamType::U16}},
    nullptr};
const OperationEntry RESTART_ENTRY{"Restart", {{ParamType::U32}}, nullptr};

std::string resultText(ResultCode r) {
    static const char DIGITS[] = "0123456789ABCDEF";
    return {
        '0',           'x', DIGITS[(r >> 12) & 15], DIGITS[(r >> 8) & 15], DIGITS[(r >> 4) & 15],
        DIGITS[r & 15]};
}

void writeHex(std::ostream& out, const uint8_t* data, uint32_t bytes) {
    static const char DIGITS[] = "0123456789abcdef";
    std::string hex(size_t{bytes} * 2, '0');
    for (uint32_t i = 0; i < bytes; ++i) {
        hex[2 * i] = DIGITS[data[i] >> 4];
        hex[2 * i + 1] = DIGITS[data[i] & 15];
    }
    out << hex;
}

bool isRasterCode(uint32_t code) {
    return code >= CB_RASTER_STANDARD && code <= CB_RASTER_DIRECT;
}

} // namespace

void PageBands::newPage(int32_t pageMode) {
    const int32_t count = bandCount;
    *this = PageBands();
    bandCount = count;
    mode = pageMode;
}

void PageBands::nextBand(uint32_t bandsPerGroup) {
    const bool groups = mode == 1 || mode == 2 || mode == 4 || mode == 6 || mode == 8;
    // Page mode 3 has one band entry more than the engine has bands.
    const int32_t pageLastBand = mode == 3 ? bandCount : bandCount - 1;
    const bool endedOnLastBand = groups && groupLast == pageLastBand;
    if (!endedOnLastBand) {
        bandBase = static_cast<uint16_t>(bandsPerGroup * moves);
        moves = static_cast<uint16_t>(moves + 1);
    }
    groupLast = static_cast<int16_t>(int64_t{groupLast} + int64_t{bandsPerGroup});
}

uint32_t PageBands::pageBandOf(uint32_t band) const {
    const auto numbered = static_cast<uint16_t>(band + bandBase);
    if (reverse) {
        return static_cast<uint16_t>(bandCount - 1 - numbered);
    }
    return numbered;
}

JobPlayer::JobPlayer(std::string scriptName, std::string baseDirectory, PlayerOptions options)
    : scriptName_(std::move(scriptName)), baseDirectory_(std::move(baseDirectory)),
      options_(std::move(options)) {}

JobPlayer::~JobPlayer() {
    if (engine_ != nullptr) {
        KRYNEnd(engine_);
    }
}

uint32_t JobPlayer::deliver(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                            uintptr_t context, const RasterRect* rect) {
    auto* player = reinterpret_cast<JobPlayer*>(context);
    return player->onDelivery(code, band, static_cast<const uint8_t*>(data), bytes, rect);
}

uint32_t JobPlayer::onDelivery(uint32_t code, uint32_t band, const uint8_t* data, uint32_t bytes,
                               const RasterRect* rect) {
    std::ostream* trace = options_.trace;
    if (code == CB_STREAM_BEGIN) {
        if (trace != nullptr) {
            *trace << "cb 0x101 band=" << band << " bytes=" << bytes << '\n';
        }
        return 0;
    }
    if (code == CB_STREAM_DATA || code == CB_STREAM_END) {
        if (trace != nullptr) {
            *trace << (code == CB_STREAM_DATA ? "cb 0x100" : "cb 0x102") << " bytes=" << bytes
                   << " data=";
            writeHex(*trace, data, data == nullptr ? 0 : bytes);
            *trace << '\n';
        }
        if (options_.stream != nullptr && data != nullptr) {
            options_.stream->write(reinterpret_cast<const char*>(data), bytes);
        }
        return 0;
    }
    if (trace != nullptr) {
        uLong crc = crc32(0L, Z_NULL, 0);
        if (data != nullptr && bytes != 0) {
            crc = crc32(crc, data, bytes);
        }
        char text[16];
        std::snprintf(text, sizeof text, "%08lx", crc);
        *trace << "cb 0x" << std::hex << code << std::dec << " band=" << band << " bytes=" << bytes
               << " rect=";
        if (rect != nullptr) {
            *trace << rect->left << ',' << rect->top << ',' << rect->right << ',' << rect->bottom;
        } else {
            *trace << "none";
        }
        *trace << " crc=" << text << '\n';
    }
    if (options_.onRaster && (code == CB_RASTER_BOX || isRasterCode(code)) && data != nullptr) {
        options_.onRaster(RasterDelivery{code, band, data, bytes, rect, bands_.pageBandOf(band)});
    }
    if (isRasterCode(code) && restartsLeft_ > 0) {
        --restartsLeft_;
        return KRYN_CB_RESTART;
    }
    return 0;
}

void JobPlayer::followPage(const std::string& name, const CallFrame& frame) {
    if (name == "NewPage") {
        bands_.newPage(frame.scalar<int16_t>(0));
    } else if (name == "SetReverseSide") {
        bands_.reverse = true;
    } else if (name == "NextBand") {
        bands_.nextBand(frame.scalar<uint32_t>(0));
    }
}

void JobPlayer::noteResult(int lineNumber, const std::string& name, bool failed,
                           const std::string& answer) {
    if (!failed) {
        return;
    }
    if (calls_.failedCalls++ == 0) {
        calls_.firstFailure =
            scriptName_ + ":" + std::to_string(lineNumber) + ": " + name + " " + answer;
    }
}

void JobPlayer::endEngine(int lineNumber, bool traced) {
    ResultCode r = KRYNEnd(engine_);
    engine_ = nullptr;
    noteResult(lineNumber, "End", r != KRYN_OK, resultText(r));
    if (traced && options_.trace != nullptr) {
        *options_.trace << lineNumber << " End " << resultText(r) << '\n';
    }
}

void JobPlayer::init(const ScriptLine& line) {
    CallFrame f = bindArguments(INIT_ENTRY, line, options_.maxBytes);
    if (engine_ != nullptr) {
        endEngine(line.number, true);
    }
    engine_ = KRYNInit(f.scalar<int32_t>(0), f.scalar<int32_t>(1), f.scalar<int16_t>(2),
                       f.scalar<uint16_t>(3), f.scalar<uint16_t>(4));
    initSeen_ = true;
    noteResult(line.number, "Init", engine_ == nullptr, "null");
    const int32_t height = f.scalar<int32_t>(1);
    const int32_t bandHeight = f.scalar<int16_t>(2);
    bands_.bandCount = bandHeight > 0 && height >= 0
                           ? static_cast<int32_t>((int64_t{height} + bandHeight) / bandHeight)
                           : 0;
    if (engine_ != nullptr && options_.onInit) {
        options_.onInit(static_cast<uint32_t>(f.scalar<int32_t>(0)) + 1,
                        static_cast<uint32_t>(f.scalar<int32_t>(1)) + 1,
                        static_cast<uint32_t>(f.scalar<int16_t>(2)));
    }
    if (options_.trace != nullptr) {
        *options_.trace << line.number << " Init " << (engine_ != nullptr ? "ok" : "null") << '\n';
    }
}

void JobPlayer::playLine(const ScriptLine& line) {
    if (line.name == "Init") {
        init(line);
        return;
    }
    if (line.name == "Restart") {
        CallFrame f = bindArguments(RESTART_ENTRY, line, options_.maxBytes);
        restartsLeft_ = f.scalar<uint32_t>(0);
        return;
    }
    const OperationEntry* op = findOperation(line.name);
    if (op == nullptr) {
        throw ScriptError("unknown operation '" + line.name + "'");
    }
    CallFrame frame = bindArguments(*op, line, options_.maxBytes, options_.allocateSamples);
    if (!initSeen_) {
        releaseKeptBuffers(frame, KRYN_ERR_INVALID); // no call made: every buffer is ours
        throw ScriptError("no engine: the first call must be Init");
    }
    frame.callback = &JobPlayer::deliver;
    frame.context = reinterpret_cast<uintptr_t>(this);
    ResultCode r = op->invoke(engine_, frame);
    releaseKeptBuffers(frame, r);
    if (line.name == "End") {
        engine_ = nullptr;
    }
    if (r == KRYN_OK) {
        followPage(line.name, frame);
    }
    noteResult(line.number, line.name, r != KRYN_OK, resultText(r));
    if (options_.trace != nullptr) {
        *options_.trace << line.number << ' ' << line.name << ' ' << resultText(r);
        for (int64_t v : frame.outputs) {
            *options_.trace << ' ' << v;
        }
        *options_.trace << '\n';
    }
    if (line.name == "ClosePage" && options_.onPageClosed) {
        options_.onPageClosed();
    }
}

PlayResult JobPlayer::run(std::istream& script) {
    std::string text;
    int number = 0;
    const ByteDataSource source{baseDirectory_, options_.allowFiles, options_.maxBytes};
    try {
        while (std::getline(script, text)) {
            ++number;
            if (auto line = parseLine(text, number, source)) {
                playLine(*line);
                if (options_.afterLine && !options_.afterLine(number, engine_)) {
                    break;
                }
            }
        }
    } catch (const ScriptError& error) {
        calls_.status = 2;
        calls_.message = scriptName_ + ":" + std::to_string(number) + ": " + error.what();
        return calls_;
    } catch (const std::bad_alloc&) {
        calls_.status = 1;
        calls_.message =
            scriptName_ + ":" + std::to_string(number) + ": the player ran out of memory";
        return calls_;
    }
    if (engine_ != nullptr) {
        endEngine(number + 1, true);
    }
    return calls_;
}

PlayResult playScriptFile(const std::string& path, PlayerOptions options) {
    if (path == "-") {
        JobPlayer player("<stdin>", ".", std::move(options));
        return player.run(std::cin);
    }
    PlayResult unreadable;
    unreadable.status = 2;
    unreadable.message = "kryn-play: cannot read script '" + path + "': ";
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        unreadable.message += "it is a directory";
        return unreadable;
    }
    std::ifstream in(path);
    if (!in) {
        unreadable.message += std::strerror(errno);
        return unreadable;
    }
    size_t slash = path.find_last_of('/');
    std::string base = slash == std::string::npos ? "." : path.substr(0, slash);
    JobPlayer player(path, base, std::move(options));
    return player.run(in);
}

} // namespace kryn::script
