#include "transfer/download_tables.h"

#include "displaylist/image_data_size.h"
#include "engine/device_level.h"
#include "engine/engine.h"
#include "engine/memory.h"
#include "transfer/stream_io.h"

#include <cstring>

namespace kryn {

namespace {

inline constexpr uint16_t CLASS_BITS = 0xC000;
inline constexpr uint16_t CLASS_GREY = 0x4000;
inline constexpr uint16_t CLASS_SHARED = 0x8000;

uint32_t compressedLength(const DownloadEntryA& e) {
    uint32_t length = 4;
    if (e.data != nullptr) {
        std::memcpy(&length, e.data, 4);
    }
    return length < 4 ? 4 : length;
}

uint64_t dataBytesA(const DownloadEntryA& e) {
    return e.compressed != 0 ? compressedLength(e) - 4u : bitmapBytes(e.width, e.height);
}

// Data size of a screen entry and the class it is sent with.
uint64_t dataBytesB(const DownloadEntryB& e, uint32_t colourSpace, uint16_t& sentClass) {
    const uint64_t pixels = uint64_t{e.width} * e.height;
    sentClass = static_cast<uint16_t>(e.flags & CLASS_BITS);
    switch (sentClass) {
    case 0:
        return pixels / 8;
    case CLASS_GREY:
        return pixels;
    default:
        if (colourSpace == 1) {
            const uint64_t bytes = sentClass == CLASS_SHARED ? pixels * 2 : pixels;
            sentClass = CLASS_GREY;
            return roundUp4(bytes);
        }
        return pixels * 4;
    }
}

// Bytes the registry holds for a screen of this depth code.
uint64_t storedBytesB(const DownloadEntryB& e) {
    const uint64_t pixels = uint64_t{e.width} * e.height;
    switch (e.spare) {
    case 1:
        return pixels / 8;
    case 8:
        return pixels;
    case 254:
        return pixels * 2;
    default:
        return pixels * 4;
    }
}

void putData(OutputStream& s, const uint8_t* data, uint64_t n) {
    if (data == nullptr) {
        putZeros(s, n);
    } else {
        putBytes(s, data, n);
    }
    putZeros(s, roundUp4(n) - n);
}

void sendEntry(OutputStream& s, DownloadEntryA& e, RenderResources*) {
    putU32(s, uint32_t{0xC0} << 24 | uint32_t{e.width} << 16 | uint32_t{e.height} << 8 |
                  (e.compressed & 0xFFu));
    putU32(s, uint32_t{e.code} << 16);
    if (e.compressed != 0) {
        putU32(s, compressedLength(e));
        putData(s, e.data == nullptr ? nullptr : e.data + 4, dataBytesA(e));
        freeAndClear(e.data);
    } else {
        putData(s, e.data, dataBytesA(e));
    }
}

// f marks data that came from class 0x8000 (two bytes a pixel in colour
// space 1), which the flags no longer tell once the class is rewritten.
void sendEntry(OutputStream& s, DownloadEntryB& e, RenderResources* resources) {
    uint16_t sentClass = 0;
    const uint64_t bytes = dataBytesB(e, resources->colourSpace, sentClass);
    const uint32_t f = (e.flags & CLASS_BITS) == CLASS_SHARED ? 1 : 0;
    e.flags = static_cast<uint16_t>((e.flags & ~CLASS_BITS) | sentClass);
    if (resources->deviceLevel >= LEVEL_WIDE_FIELDS && e.width > 255) {
        putU32(s, (0xB200u + f) << 16 | e.height);
        putU32(s, uint32_t{e.flags} << 16 | e.width);
    } else {
        putU32(s, uint32_t{0xA2} << 24 | uint32_t{e.width & 0xFFu} << 16 | e.height);
        putU32(s, uint32_t{e.flags} << 16 | f);
    }
    const uint64_t stored = storedBytesB(e);
    if (sentClass == CLASS_GREY && (e.spare == 24 || e.spare == 124) && e.data != nullptr) {
        // A colour screen on a grey device: one byte a pixel, channel 0.
        for (uint64_t i = 0; i < bytes; ++i) {
            putByte(s, i * 4 < stored ? e.data[i * 4] : 0);
        }
        putZeros(s, roundUp4(bytes) - bytes);
        return;
    }
    const uint64_t present = bytes < stored ? bytes : stored;
    putData(s, e.data, present);
    putZeros(s, roundUp4(bytes) - roundUp4(present));
}

void sendEntry(OutputStream& s, DownloadEntryC& e, RenderResources*) {
    putU32(s, uint32_t{0xAA00u + (e.n & 0xFFu)} << 16 | e.identifier);
    for (uint32_t i = 0; i <= e.n; ++i) {
        putU32(s, e.words == nullptr ? 0 : e.words[i]);
    }
    freeAndClear(e.words);
}

void releaseEntry(DownloadEntryA& e) {
    if (e.compressed != 0) {
        freeAndClear(e.data);
    }
}
void releaseEntry(DownloadEntryB&) {}
void releaseEntry(DownloadEntryC& e) {
    freeAndClear(e.words);
}

template <class Entry>
void freeTable(DownloadNode*& head, uint32_t& bytes) {
    while (head != nullptr) {
        DownloadNode* next = head->next;
        Entry* entries = entriesOf<Entry>(head);
        for (int32_t i = 0; i < head->count; ++i) {
            releaseEntry(entries[i]);
        }
        freeBytes(head);
        head = next;
    }
    bytes = 0;
}

template <class Entry>
void sendTable(OutputStream& s, DownloadNode*& head, uint32_t& bytes, RenderResources* resources) {
    if (bytes == 0) {
        return;
    }
    for (DownloadNode* node = head; node != nullptr; node = node->next) {
        Entry* entries = entriesOf<Entry>(node);
        for (int32_t i = 0; i < node->count; ++i) {
            sendEntry(s, entries[i], resources);
        }
    }
    freeTable<Entry>(head, bytes);
}

} // namespace

uint32_t downloadEntryBytes(const DownloadEntryA& e) {
    return static_cast<uint32_t>(8 + (e.compressed != 0 ? 4 : 0) + roundUp4(dataBytesA(e)));
}

uint32_t downloadEntryBytes(const DownloadEntryB& e, uint32_t colourSpace) {
    uint16_t sentClass = 0;
    return static_cast<uint32_t>(8 + roundUp4(dataBytesB(e, colourSpace, sentClass)));
}

uint32_t downloadEntryBytes(const DownloadEntryC& e) {
    return 4u + (e.n + 1u) * 4u;
}

void sendDownloadTables(OutputStream& stream, RenderResources* resources) {
    sendTable<DownloadEntryA>(stream, resources->downloadA, resources->downloadABytes, resources);
    sendTable<DownloadEntryB>(stream, resources->downloadB, resources->downloadBBytes, resources);
    sendTable<DownloadEntryC>(stream, resources->downloadC, resources->downloadCBytes, resources);
}

ResultCode addScreenDownload(RenderResources* resources, const DownloadEntryB& entry) {
    auto* node =
        static_cast<DownloadNode*>(allocBytes(sizeof(DownloadNode) + sizeof(DownloadEntryB)));
    if (node == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    node->next = nullptr;
    node->count = 1;
    *entriesOf<DownloadEntryB>(node) = entry;
    DownloadNode** tail = &resources->downloadB;
    while (*tail != nullptr) {
        tail = &(*tail)->next;
    }
    *tail = node;
    resources->downloadBBytes += downloadEntryBytes(entry, resources->colourSpace);
    return KRYN_OK;
}

void dropScreenDownloads(RenderResources* resources) {
    freeTable<DownloadEntryB>(resources->downloadB, resources->downloadBBytes);
}

void recountScreenDownloads(RenderResources* resources) {
    uint32_t bytes = 0;
    for (DownloadNode* node = resources->downloadB; node != nullptr; node = node->next) {
        const DownloadEntryB* entries = entriesOf<DownloadEntryB>(node);
        for (int32_t i = 0; i < node->count; ++i) {
            bytes += downloadEntryBytes(entries[i], resources->colourSpace);
        }
    }
    resources->downloadBBytes = bytes;
}

void freeDownloadTables(RenderResources* resources) {
    freeTable<DownloadEntryA>(resources->downloadA, resources->downloadABytes);
    freeTable<DownloadEntryB>(resources->downloadB, resources->downloadBBytes);
    freeTable<DownloadEntryC>(resources->downloadC, resources->downloadCBytes);
}

} // namespace kryn
