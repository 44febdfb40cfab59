// Shared helpers for engine tests: an owning engine handle, a recording
// output callback, and access to the open page.
#pragma once

#include "displaylist/opcodes.h"
#include "engine/engine.h"
#include "engine/page_record.h"
#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kryn::test {

struct EngineDeleter {
    void operator()(Engine* e) const { KRYNEnd(e); }
};
using EnginePtr = std::unique_ptr<Engine, EngineDeleter>;

inline EnginePtr makeEngine(int32_t width, int32_t height, int16_t bandHeight,
                            uint16_t level = 0x8009, uint16_t resolution = 600) {
    return EnginePtr(KRYNInit(width, height, bandHeight, resolution, level));
}

// One call the engine made through the OutputCallback.
struct Delivery {
    uint32_t code;
    uint32_t band;
    uint32_t bytes;
    std::vector<uint8_t> data;
    bool hasRect;
    RasterRect rect;
};

// Records every call; answers KRYN_CB_RESTART to the raster calls listed in
// restartAt (counted from 0 over raster calls).
struct CallbackLog {
    std::vector<Delivery> calls;
    std::vector<int> restartAt;
    int rasterCalls = 0;

    static uint32_t callback(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                             uintptr_t context, const RasterRect* rect);
    uintptr_t context() { return reinterpret_cast<uintptr_t>(this); }

    // Concatenation of the bytes of every stream data and end call.
    std::vector<uint8_t> streamBytes() const;
};

inline PageRecord* pageOf(Engine* e) {
    return openPage(e);
}

// The result codes the engine documents for its calls.
inline bool documented(ResultCode r) {
    return r == KRYN_OK || r == KRYN_ERR_NO_MEMORY || r == KRYN_ERR_INVALID ||
           r == KRYN_ERR_NO_CURRENT_POINT || r == KRYN_ERR_GSTATE_UNDERFLOW;
}

// After whatever went before (`after` names it): a page left open closes,
// and a new page takes a black rectangle and delivers it.
void expectEnginePaints(Engine* e, const std::string& after);

// Appends a hand-built record to a band's list (creating it) and commits it.
void recordBytes(Engine* e, int32_t band, const std::vector<uint8_t>& record, uint32_t serialBytes);

} // namespace kryn::test
