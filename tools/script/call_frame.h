// The C arguments of one call, bound from a script line and kept alive for
// the call's duration.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>
#include <vector>

namespace kryn::script {

// One bound argument. Scalars use integer or real; pointers point into the
// vector that matches their element type, or are null when written as null.
struct BoundArg {
    int64_t integer = 0;
    double real = 0.0;
    bool isNull = false;
    std::vector<int32_t> i32;
    std::vector<int16_t> i16;
    std::vector<uint16_t> u16;
    std::vector<uint32_t> u32;
    std::vector<uint8_t> bytes;
    ImageDesc image = {};
    ScreenTile tile = {};
};

class JobPlayer;

struct CallFrame {
    std::vector<BoundArg> args;
    OutputCallback callback = nullptr; // the player's own, for calls that deliver
    uintptr_t context = 0;
    std::vector<int64_t> outputs; // output arguments, appended to the trace line on success
    // Image sample buffers from GlobalAlloc that stay with the player after
    // the call (ownership not passed); the player frees them.
    std::vector<void*> keptBuffers;
    // Buffers whose ownership passes to the engine, unless the call refuses
    // its arguments (KRYN_ERR_INVALID): then the player frees them too.
    std::vector<void*> passedBuffers;

    template <class T>
    T scalar(size_t i) const {
        if constexpr (std::is_floating_point_v<T>) {
            return static_cast<T>(args[i].real);
        } else {
            return static_cast<T>(args[i].integer);
        }
    }
    const int32_t* i32(size_t i) const { return args[i].isNull ? nullptr : args[i].i32.data(); }
    const int16_t* i16(size_t i) const { return args[i].isNull ? nullptr : args[i].i16.data(); }
    const uint16_t* u16(size_t i) const { return args[i].isNull ? nullptr : args[i].u16.data(); }
    const uint32_t* u32(size_t i) const { return args[i].isNull ? nullptr : args[i].u32.data(); }
    const uint8_t* bytes(size_t i) const { return args[i].isNull ? nullptr : args[i].bytes.data(); }
    ImageDesc* image(size_t i) { return args[i].isNull ? nullptr : &args[i].image; }
    const ScreenTile* tile(size_t i) const { return args[i].isNull ? nullptr : &args[i].tile; }
};

} // namespace kryn::script
