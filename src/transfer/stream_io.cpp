#include "transfer/stream_io.h"

#include "kryn/kryn.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

int32_t freeBytes(const OutputStream& s) {
    return s.capacity - s.used;
}

void resetBuffer(OutputStream& s) {
    s.used = 0;
    s.writePointer = s.buffer;
}

void call(OutputStream& s, uint32_t code, uint32_t band, const void* data, uint32_t bytes) {
    if (s.callback != nullptr) {
        s.callback(code, band, data, bytes, s.context, nullptr);
    }
}

void store(OutputStream& s, uint8_t b) {
    *s.writePointer++ = b;
    ++s.used;
}

// Fills n bytes through fill(destination, count) in pieces that fit the
// buffer, handing the buffer over each time it becomes full.
template <class Fill>
void putPieces(OutputStream& stream, size_t n, Fill fill);

} // namespace

void streamBegin(OutputStream& stream, uint32_t band, uint32_t bytes) {
    call(stream, CB_STREAM_BEGIN, band, nullptr, bytes + 4);
}

void streamFlush(OutputStream& stream, StreamFlushMode mode) {
    for (int32_t i = 0; i < stream.used; ++i) {
        stream.sum += stream.buffer[i];
    }
    if (mode == STREAM_END_OF_CHUNK) {
        if (freeBytes(stream) < 4) {
            call(stream, CB_STREAM_DATA, 0, stream.buffer, static_cast<uint32_t>(stream.used));
            resetBuffer(stream);
        }
        const uint32_t sum = stream.sum;
        store(stream, static_cast<uint8_t>(sum >> 24));
        store(stream, static_cast<uint8_t>(sum >> 16));
        store(stream, static_cast<uint8_t>(sum >> 8));
        store(stream, static_cast<uint8_t>(sum));
        stream.sum = 0;
    }
    const uint32_t code = CB_STREAM_DATA + mode;
    if (stream.used == 0) {
        call(stream, code, 0, nullptr, 0);
    } else {
        call(stream, code, 0, stream.buffer, static_cast<uint32_t>(stream.used));
        resetBuffer(stream);
    }
}

void putByte(OutputStream& stream, uint8_t b) {
    if (stream.used == stream.capacity) {
        streamFlush(stream, STREAM_BUFFER_FULL);
    }
    store(stream, b);
}

void putU16(OutputStream& stream, uint16_t v) {
    if (freeBytes(stream) < 2) {
        streamFlush(stream, STREAM_BUFFER_FULL);
    }
    store(stream, static_cast<uint8_t>(v >> 8));
    store(stream, static_cast<uint8_t>(v));
}

void putU32(OutputStream& stream, uint32_t v) {
    if (freeBytes(stream) < 4) {
        streamFlush(stream, STREAM_BUFFER_FULL);
    }
    store(stream, static_cast<uint8_t>(v >> 24));
    store(stream, static_cast<uint8_t>(v >> 16));
    store(stream, static_cast<uint8_t>(v >> 8));
    store(stream, static_cast<uint8_t>(v));
}

namespace {

template <class Fill>
void putPieces(OutputStream& stream, size_t n, Fill fill) {
    while (n > 0) {
        const size_t piece = std::min(n, static_cast<size_t>(freeBytes(stream)));
        fill(stream.writePointer, piece);
        stream.writePointer += piece;
        stream.used += static_cast<int32_t>(piece);
        n -= piece;
        if (stream.used == stream.capacity) {
            streamFlush(stream, STREAM_BUFFER_FULL);
        }
    }
}

} // namespace

void putBytes(OutputStream& stream, const uint8_t* source, size_t n) {
    putPieces(stream, n, [&source](uint8_t* to, size_t piece) {
        std::memcpy(to, source, piece);
        source += piece;
    });
}

void putZeros(OutputStream& stream, size_t n) {
    putPieces(stream, n, [](uint8_t* to, size_t piece) { std::memset(to, 0, piece); });
}

} // namespace kryn
