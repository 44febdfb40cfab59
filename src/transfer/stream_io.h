// Writing to the device stream: chunks of big-endian bytes staged in a
// 2048-byte buffer, each closed by the 32-bit byte sum of its data.
#pragma once

#include "transfer/output_stream.h"

#include <cstddef>
#include <cstdint>

namespace kryn {

enum StreamFlushMode : uint32_t {
    STREAM_BUFFER_FULL = 0,  // hand over the staged bytes, the chunk goes on
    STREAM_END_OF_CHUNK = 2, // append the checksum and close the chunk
};

// Announces a chunk of `bytes` data bytes (the driver is told bytes + 4).
void streamBegin(OutputStream& stream, uint32_t band, uint32_t bytes);
void streamFlush(OutputStream& stream, StreamFlushMode mode);

void putByte(OutputStream& stream, uint8_t b);
void putU16(OutputStream& stream, uint16_t v);
void putU32(OutputStream& stream, uint32_t v);
void putBytes(OutputStream& stream, const uint8_t* source, size_t n);
void putZeros(OutputStream& stream, size_t n);

} // namespace kryn
