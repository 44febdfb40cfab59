#include "transfer/record_serialiser.h"

#include "displaylist/display_list.h"
#include "displaylist/image_data_size.h"
#include "displaylist/record_writers.h"
#include "engine/memory.h"
#include "transfer/stream_io.h"

namespace kryn {

namespace {

inline constexpr uint32_t SCREEN_CLASS_BITS = 0xC000;
inline constexpr uint32_t SCREEN_CLASS_SHARED = 0x8000;
inline constexpr uint32_t SCREEN_CLASS_COLOUR = 0xC000;
inline constexpr uint32_t SCREEN_CLASS_GREY = 0x4000;
inline constexpr uint16_t BIT_15 = 0x8000;

uint32_t word(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    return (a & 0xFFu) << 24 | (b & 0xFFu) << 16 | (c & 0xFFu) << 8 | (d & 0xFFu);
}
uint32_t word(uint32_t a, uint32_t b, uint32_t low16) {
    return (a & 0xFFu) << 24 | (b & 0xFFu) << 16 | (low16 & 0xFFFFu);
}

// Counts what would be sent.
struct CountingSink {
    static constexpr bool LIVE = false;
    uint64_t total = 0;
    void u32(uint32_t) { total += 4; }
    void u16(uint16_t) { total += 2; }
    void byte(uint8_t) { total += 1; }
    void bytes(const uint8_t*, uint64_t n) { total += n; }
    void zeros(uint64_t n) { total += n; }
    void chunk(bool, uint32_t) {}
};

// Sends into the stream.
struct StreamSink {
    static constexpr bool LIVE = true;
    OutputStream& stream;
    uint16_t band;
    bool chunkOpen = false;
    void u32(uint32_t v) { putU32(stream, v); }
    void u16(uint16_t v) { putU16(stream, v); }
    void byte(uint8_t v) { putByte(stream, v); }
    void bytes(const uint8_t* p, uint64_t n) {
        if (p == nullptr) {
            putZeros(stream, n);
        } else {
            putBytes(stream, p, n);
        }
    }
    void zeros(uint64_t n) { putZeros(stream, n); }
    // A chunk record: end the running chunk (when there is one) and begin
    // the next with the recorded size.
    void chunk(bool sized, uint32_t size) {
        if (!sized) {
            return;
        }
        if (chunkOpen) {
            streamFlush(stream, STREAM_END_OF_CHUNK);
        }
        streamBegin(stream, band, size);
        chunkOpen = true;
    }
};

template <class Sink>
void sendData(Sink& sink, const void* data, uint64_t n) {
    sink.bytes(static_cast<const uint8_t*>(data), n);
    sink.zeros(roundUp4(n) - n);
}

// Byte k of a packed row of `width` bits read from bit `phase` of `row` on,
// columns past `lastColumn` repeating that column; bits past the width 0.
uint8_t bitRowByte(const uint8_t* row, uint32_t phase, uint32_t lastColumn, uint32_t width,
                   uint64_t k) {
    uint32_t byte = 0;
    for (uint64_t j = 8 * k; j < 8 * k + 8; ++j) {
        const uint64_t bit = phase + (j < lastColumn ? j : lastColumn);
        const uint32_t value = j < width ? (row[bit >> 3] >> (7 - (bit & 7))) & 1u : 0u;
        byte = (byte << 1) | value;
    }
    return static_cast<uint8_t>(byte);
}

// The pixels of a record 130 or 131, as the device reads them: `width`
// pixels of each of `rows` rows, packed. Device row i is source row
// min(i, source rows - 1) and device column j source column
// min(j, source columns - 1), as the renderers paint them; source rows lie
// a source stride apart, and 1-bit rows start at the recorded bit phase.
template <class Sink>
void sendPieceData(Sink& sink, const uint8_t* r, int32_t pixelBytes) {
    const uint32_t width = loadU16(r + 4);
    const uint32_t rows = r[8];
    const uint64_t total =
        pixelBytes <= 0 ? bitmapBytes(width, rows) : uint64_t{width} * rows * uint32_t(pixelBytes);
    const auto* data = static_cast<const uint8_t*>(loadPointer(r + IMAGE_POINTER_OFFSET));
    const uint32_t columns = loadU16(r + 6);
    const uint32_t sourceRows = r[9];
    if constexpr (Sink::LIVE) {
        if (data != nullptr && columns > 0 && sourceRows > 0) {
            const uint32_t stride = loadU16(r + 12);
            for (uint32_t i = 0; i < rows; ++i) {
                const uint8_t* row =
                    data + uint64_t{stride} * (i < sourceRows ? i : sourceRows - 1);
                if (pixelBytes <= 0) {
                    for (uint64_t k = 0; k < (width + 7) / 8; ++k) {
                        sink.byte(
                            bitRowByte(row, r[IMAGE_BIT_PHASE_OFFSET] & 7u, columns - 1, width, k));
                    }
                    continue;
                }
                const uint32_t kept = width < columns ? width : columns;
                sink.bytes(row, uint64_t{kept} * uint32_t(pixelBytes));
                for (uint32_t j = kept; j < width; ++j) {
                    sink.bytes(row + uint64_t{columns - 1} * uint32_t(pixelBytes),
                               uint32_t(pixelBytes));
                }
            }
            sink.zeros(roundUp4(total) - total);
            return;
        }
    }
    sendData(sink, nullptr, total);
}

// The samples of a record 146: every source row, its own packed bytes cut
// or padded with zeros to the columns x sample bytes the record announces.
template <class Sink>
void sendScaledData(Sink& sink, const uint8_t* r, uint32_t sampleBytes) {
    const uint32_t columns = loadU32(r + 32);
    const uint32_t rows = loadU32(r + 36);
    const uint64_t rowBytes = uint64_t{columns} * sampleBytes;
    const uint64_t total = rowBytes * rows;
    const auto* data = static_cast<const uint8_t*>(loadPointer(r + SCALED_IMAGE_POINTER_OFFSET));
    if constexpr (Sink::LIVE) {
        const int32_t pixelBytes = pixelFormatBytes(r[20]);
        if (data != nullptr && pixelBytes >= 0) {
            const uint64_t own = pixelBytes == 0 ? bitmapBytes(columns, 1)
                                                 : uint64_t{columns} * uint32_t(pixelBytes);
            const uint64_t kept = own < rowBytes ? own : rowBytes;
            const uint64_t stride = loadU32(r + 40);
            for (uint32_t i = 0; i < rows; ++i) {
                sink.bytes(data + stride * i, kept);
                sink.zeros(rowBytes - kept);
            }
            sink.zeros(roundUp4(total) - total);
            return;
        }
    }
    sendData(sink, nullptr, total);
}

// Array of a record; the entries start after `skip` header bytes.
const uint8_t* arrayOf(const uint8_t* r, uint32_t skip) {
    const auto* a = static_cast<const uint8_t*>(loadPointer(r + ARRAY_POINTER_OFFSET));
    return a == nullptr ? nullptr : a + skip;
}

template <class Sink>
void sendArrayRecord(Sink& sink, uint8_t* r) {
    const uint8_t op = r[0];
    const uint32_t count = loadU16(r + 2);
    const bool headed =
        op == DL_OP_RUNS || op == DL_OP_RUNS_SHORT || op == DL_OP_COLUMN_RUNS || op == DL_OP_RECTS;
    const uint8_t* e = arrayOf(r, headed ? RUN_BUFFER_HEADER : 0);
    sink.u32(word(op == DL_OP_RUNS          ? 0x84
                  : op == DL_OP_RUNS_SHORT  ? 0x8D
                  : op == DL_OP_COLUMN_RUNS ? 0x8B
                  : op == DL_OP_RECTS       ? 0x8E
                  : op == DL_OP_ROW_SPANS   ? 0x94
                                            : 0x9D,
                  headed ? 0 : r[1], count));
    if (e == nullptr) {
        const uint32_t per = op == DL_OP_RUNS || op == DL_OP_RECTS ? 6
                             : op == DL_OP_ROW_SPANS_SHORT         ? 3
                                                                   : 4;
        sink.zeros(roundUp4(uint64_t{count} * per));
    } else {
        for (uint32_t i = 0; i < count; ++i) {
            switch (op) {
            case DL_OP_RUNS: { // u8 row, u8 spare, u16 x, u16 width
                const uint8_t* q = e + i * 6;
                sink.u32(word(0, 0, 0) | uint32_t{loadU16(q + 2)} << 16 | uint32_t{q[0]} << 8);
                sink.u16(loadU16(q + 4));
                break;
            }
            case DL_OP_RUNS_SHORT: {
                const uint8_t* q = e + i * 6;
                sink.u32(uint32_t{loadU16(q + 2)} << 16 | uint32_t{q[0]} << 8 |
                         (loadU16(q + 4) & 0xFFu));
                break;
            }
            case DL_OP_COLUMN_RUNS: { // u8 row, u8 height, u16 x
                const uint8_t* q = e + i * 4;
                sink.u32(uint32_t{loadU16(q + 2)} << 16 | uint32_t{q[0]} << 8 | q[1]);
                break;
            }
            case DL_OP_RECTS: { // u16 left, u16 right, u8 top, u8 bottom
                const uint8_t* q = e + i * 6;
                sink.u32(uint32_t{loadU16(q)} << 16 | loadU16(q + 2));
                sink.byte(q[4]);
                sink.byte(q[5]);
                break;
            }
            case DL_OP_ROW_SPANS: { // u16 left, u16 length
                const uint8_t* q = e + i * 4;
                sink.u32(uint32_t{loadU16(q)} << 16 | loadU16(q + 2));
                break;
            }
            default: { // 157: left and the low byte of the length
                const uint8_t* q = e + i * 4;
                sink.u16(loadU16(q));
                sink.byte(q[2]);
                break;
            }
            }
        }
        const uint64_t per = op == DL_OP_RUNS || op == DL_OP_RECTS ? 6
                             : op == DL_OP_ROW_SPANS_SHORT         ? 3
                                                                   : 4;
        sink.zeros(roundUp4(count * per) - count * per);
    }
    if constexpr (Sink::LIVE) {
        freeBytes(loadPointer(r + ARRAY_POINTER_OFFSET));
        storePointer(r + ARRAY_POINTER_OFFSET, nullptr);
    }
}

template <class Sink>
void sendScreen(Sink& sink, uint8_t* r, uint32_t colourSpace) {
    uint32_t id = loadU16(r + 4);
    const uint32_t phase = loadU16(r + 2);
    if ((id & SCREEN_CLASS_BITS) == SCREEN_CLASS_SHARED) {
        id = (id & ~SCREEN_CLASS_BITS) |
             (colourSpace == 0 ? SCREEN_CLASS_COLOUR : SCREEN_CLASS_GREY);
    }
    if (colourSpace == 1) {
        id &= ~uint32_t{BIT_15};
    }
    const bool longForm = phase > 255 || r[0] == DL_OP_SET_SCREEN_LONG;
    if constexpr (Sink::LIVE) {
        storeU16(r + 4, static_cast<uint16_t>(id));
        if (longForm) {
            r[0] = DL_OP_SET_SCREEN_LONG;
        }
    }
    if (longForm) {
        sink.u32(word(0xB3, 0, id));
        sink.u32(phase);
    } else {
        sink.u32(word(0xA3, phase, id));
    }
}

template <class Sink>
void sendColourA(Sink& sink, const uint8_t* r) {
    static constexpr uint32_t HEADS[4] = {0xB7000000, 0xB7000100, 0xB7010000, 0xB7010100};
    sink.u32(HEADS[r[0] - DL_OP_IMAGE_COLOUR_A]);
    sink.u32(word(r[1], r[2], r[3], r[4]));
}

// Sends one record; false for a record without a serialised form, which
// ends the walk of its block.
template <class Sink>
bool sendRecord(Sink& sink, uint8_t* r, uint32_t colourSpace, bool sizedChunks) {
    switch (r[0]) {
    case DL_OP_IMAGE: {
        sink.u32(word(0x82, r[1], loadU16(r + 2)));
        sink.u32(word(r[10], r[8], loadU16(r + 4)));
        sendPieceData(sink, r, pixelFormatBytes(r[10]));
        return true;
    }
    case DL_OP_MASK_IMAGE:
        sink.u32(word(0x83, r[1], loadU16(r + 2)));
        sink.u32(word(r[10], r[8], loadU16(r + 4)));
        sendPieceData(sink, r, 0);
        return true;
    case DL_OP_SCALED_IMAGE: {
        const uint32_t columns = loadU32(r + 32);
        const uint32_t rows = loadU32(r + 36);
        uint32_t sampleBytes = r[SCALED_IMAGE_SAMPLE_BYTES_OFFSET];
        if (sampleBytes == 0) {
            sampleBytes = colourSpace == 1 ? 1 : 4;
        }
        sink.u32(word(0x92, r[1], loadU16(r + 2)));
        sink.u32(loadU32(r + 8) << 16 | uint32_t{r[20]} << 8 | (loadU32(r + 16) & 0xFFu));
        sink.u32(loadU32(r + 24) << 16 | loadU32(r + 28));
        sink.u32(rows << 16 | (columns & 0xFFFFu));
        sendScaledData(sink, r, sampleBytes);
        return true;
    }
    case DL_OP_RUNS:
    case DL_OP_RUNS_SHORT:
    case DL_OP_COLUMN_RUNS:
    case DL_OP_RECTS:
    case DL_OP_ROW_SPANS:
    case DL_OP_ROW_SPANS_SHORT:
        sendArrayRecord(sink, r);
        return true;
    case DL_OP_RECT:
        sink.u32(word(0x85, r[1], loadU16(r + 2)));
        sink.u32(uint32_t{loadU16(r + 4)} << 16 | uint32_t{r[6]} << 8);
        return true;
    case DL_OP_END:
        sink.u32(word(0x87, 0, 0, 0));
        return true;
    case DL_OP_COLUMN:
        sink.u32(word(0x95, r[1], loadU16(r + 2)));
        return true;
    case DL_OP_SET_ROP:
        sink.u32(word(0xA0, r[1], 0, 0));
        return true;
    case DL_OP_RESERVED_161:
    case DL_OP_RESERVED_173:
        sink.u32(word(r[0] == DL_OP_RESERVED_161 ? 0xA1 : 0xAD, 0, loadU16(r + 2)));
        return true;
    case DL_OP_SET_SCREEN:
    case DL_OP_SET_SCREEN_LONG:
        sendScreen(sink, r, colourSpace);
        return true;
    case DL_OP_MARK:
    case DL_OP_RESERVED_172:
    case DL_OP_COLOUR_SPACE_1:
        sink.u32(word(r[0] == DL_OP_MARK           ? 0xA4
                      : r[0] == DL_OP_RESERVED_172 ? 0xAC
                                                   : 0xAE,
                      0, 0, 0));
        return true;
    case DL_OP_SET_OPAQUE:
        sink.u32(word(0xA5, r[1], loadU16(r + 2)));
        return true;
    case DL_OP_IMAGE_COLOUR:
    case DL_OP_IMAGE_BACK_COLOUR:
    case DL_OP_PAINT_COLOUR:
    case DL_OP_PAINT_BACK_COLOUR:
        sink.u32(word(r[0], r[1], r[2], r[3]));
        return true;
    case DL_OP_SELECT_PATTERN: {
        uint16_t index = loadU16(r + 2);
        if (colourSpace == 1) {
            index = static_cast<uint16_t>(index & ~BIT_15);
            if constexpr (Sink::LIVE) {
                storeU16(r + 2, index);
            }
        }
        sink.u32(word(0xAB, 0, index));
        return true;
    }
    case DL_OP_SET_ROP2:
        sink.u32(word(0xB0, r[1], 0, 0));
        return true;
    case DL_OP_RESERVED_177:
        sink.u32(word(0xB1, 0, loadU16(r + 2)));
        sink.u32(loadU32(r + 4));
        return true;
    case DL_OP_IMAGE_COLOUR_A:
    case DL_OP_IMAGE_BACK_COLOUR_A:
    case DL_OP_PAINT_COLOUR_A:
    case DL_OP_PAINT_BACK_COLOUR_A:
        sendColourA(sink, r);
        return true;
    case DL_OP_BLEND:
        sink.u32(word(0xBB, 0, loadU16(r + 2) != 0 ? 0xFFFFu : 0u));
        return true;
    case DL_OP_BLEND_SELECT:
        sink.u32(word(0xBC, 0, 0, r[2]));
        return true;
    case DL_OP_BLEND_DATA_A:
    case DL_OP_BLEND_DATA_B:
        sink.u32(1);
        sink.u32(loadU32(r + 4) != 0 ? 1 : 0);
        return true;
    case DL_OP_RESERVED_193:
        sink.u32(word(0xC1, r[1], loadU16(r + 2)));
        sink.u32(word(r[4], r[5], r[6], 0));
        sink.u32(uint32_t{loadU16(r + 8)} << 16 | loadU16(r + 10));
        return true;
    case DL_OP_RESERVED_194:
        sink.u32(0xC2000000u | uint32_t{loadU16(r + 2)} << 8);
        return true;
    case DL_OP_CHUNK:
        sink.chunk(sizedChunks, loadU32(r + 4));
        return true;
    default: // 180, 181 (host only), the terminator, zero, anything unknown
        return false;
    }
}

template <class Sink>
void walk(Sink& sink, const DisplayList* list, uint32_t colourSpace, bool sizedChunks) {
    for (DisplayListBlock* block = list->firstBlock; block != nullptr; block = block->next) {
        uint8_t* at = block->area;
        uint8_t* end = reinterpret_cast<uint8_t*>(block) + BLOCK_SIZE;
        while (at < end) {
            const size_t size = recordSize(*at);
            if (size == 0 || at + size > end || !sendRecord(sink, at, colourSpace, sizedChunks)) {
                break;
            }
            at += size;
        }
    }
}

} // namespace

uint64_t countSerialisedBytes(const DisplayList* list, uint32_t colourSpace) {
    CountingSink sink;
    walk(sink, list, colourSpace, false);
    return sink.total;
}

void serialiseRecords(OutputStream& stream, DisplayList* list, uint16_t band, uint32_t colourSpace,
                      bool sizedChunks) {
    StreamSink sink{stream, band};
    walk(sink, list, colourSpace, sizedChunks);
}

} // namespace kryn
