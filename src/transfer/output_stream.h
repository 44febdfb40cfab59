// The staging stream through which serialised bands leave the engine.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

inline constexpr int32_t STREAM_BUFFER_SIZE = 2048;

struct OutputStream {
    uintptr_t context = 0; // driver context, passed with every call
    OutputCallback callback = nullptr;
    uint8_t* buffer = nullptr; // STREAM_BUFFER_SIZE bytes, owned
    int32_t capacity = 0;
    uint8_t* writePointer = nullptr; // next free byte of the buffer
    int32_t used = 0;                // bytes in the buffer
    uint32_t sum = 0;                // byte sum of the chunk so far
};

} // namespace kryn
