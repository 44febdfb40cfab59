// Plays a job script on one engine and records what the engine delivers.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <ostream>
#include <string>

namespace kryn::script {

struct ScriptLine;
struct CallFrame;

// A band raster as the callback received it.
struct RasterDelivery {
    uint32_t code;
    uint32_t band; // the band index the engine passed
    const uint8_t* data;
    uint32_t bytes;
    const RasterRect* rect;
    // The band's position on the page: the engine numbers bands from the
    // bottom on a reverse side and from the open group in band-group modes.
    uint32_t pageBand = band;
};

// What the player knows of the open page's band numbering, followed from
// the calls that answered KRYN_OK. The engine hands a band to the callback
// as (its number - base) in 16 bits, where its number counts from the
// bottom on a reverse side, and every KRYNNextBand(n) moves the base to
// n x (the moves made so far), unless the range it flushed ended on the
// page's last band. In band-group modes that range is the open group; in
// whole-page modes it is the recorded range, which the calls alone do not
// show: it is taken not to reach the last band. That holds unless the
// page's last band is drawn into before the last of two or more NextBand
// calls of a whole-page page (nothing the engine delivers tells then).
struct PageBands {
    int32_t bandCount = 0; // bands of the engine's page
    int32_t mode = 0;
    bool reverse = false;
    uint16_t bandBase = 0;
    uint16_t moves = 0;     // base moves so far
    int16_t groupLast = -1; // last band of the open group (band-group modes)

    void newPage(int32_t pageMode);
    void nextBand(uint32_t bandsPerGroup);
    uint32_t pageBandOf(uint32_t band) const;
};

struct PlayerOptions {
    std::ostream* trace = nullptr;  // one line per call and delivery
    std::ostream* stream = nullptr; // the bytes of every stream data and end call
    std::function<void(const RasterDelivery&)> onRaster; // every raster delivery
    std::function<void()> onPageClosed;                  // after every ClosePage call
    // After an Init that opened an engine: page width and height in pixels
    // (the Init arguments + 1) and the band height.
    std::function<void(uint32_t, uint32_t, uint32_t)> onInit;
    // After every line that holds a call or directive, with the engine in hand
    // (null when none is open). Answering false stops the script after that
    // line; the player then ends the engine as it does at end of file.
    std::function<bool(int, Engine*)> afterLine;
    // Image sample buffers the player hands to the engine; GlobalAlloc when
    // empty.
    std::function<void*(size_t)> allocateSamples;
    bool allowFiles = true;            // file: byte data may be read
    size_t maxBytes = size_t{1} << 30; // the most one argument's data may take
};

struct PlayResult {
    int status = 0;      // 0 ran, 1 the player failed, 2 script error
    std::string message; // "FILE:LINE: ..." for a script error
    // Engine calls that answered an error code (Init: no engine), and the
    // first of them as "FILE:LINE: NAME 0xCODE".
    uint64_t failedCalls = 0;
    std::string firstFailure;
};

class JobPlayer {
  public:
    JobPlayer(std::string scriptName, std::string baseDirectory, PlayerOptions options);
    ~JobPlayer();
    JobPlayer(const JobPlayer&) = delete;
    JobPlayer& operator=(const JobPlayer&) = delete;

    // Runs every line of the script; ends an engine left open at the end.
    PlayResult run(std::istream& script);

  private:
    static uint32_t deliver(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                            uintptr_t context, const RasterRect* rect);
    uint32_t onDelivery(uint32_t code, uint32_t band, const uint8_t* data, uint32_t bytes,
                        const RasterRect* rect);
    void playLine(const ScriptLine& line);
    void init(const ScriptLine& line);
    void endEngine(int lineNumber, bool traced);
    void followPage(const std::string& name, const CallFrame& frame);
    void noteResult(int lineNumber, const std::string& name, bool failed,
                    const std::string& answer);

    std::string scriptName_;
    std::string baseDirectory_;
    PlayerOptions options_;
    Engine* engine_ = nullptr;
    bool initSeen_ = false;
    PageBands bands_;
    uint64_t restartsLeft_ = 0;
    PlayResult calls_; // what run() answers: the status and the failed calls
};

// The exit status of kryn-play for a whole run from a file, or from
// standard input when the path is "-". A path that is no readable file is a
// status-2 error.
PlayResult playScriptFile(const std::string& path, PlayerOptions options);

} // namespace kryn::script
