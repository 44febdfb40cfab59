// Download tables: per-engine chains of entries (glyph bitmaps, screens,
// patterns) sent to the device ahead of the bands that use them. A table is
// a chain of nodes, each holding `count` entries right after its header in
// the same allocation; its byte count (RenderResources::download?Bytes) is
// the serialised size of all its entries.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct OutputStream;
struct RenderResources;

struct DownloadNode {
    DownloadNode* next;
    int32_t count;
};

// Table A: glyph bitmaps. Compressed data starts with its total length as a
// host u32 and belongs to the table (freed once sent); plain data is the
// caller's.
struct DownloadEntryA {
    uint8_t width;
    uint8_t height;
    uint16_t code;
    uint32_t compressed;
    uint8_t* data;
};

// Table B: screens. The flags are the tile's screen identifier, whose bits
// 14-15 give the class. The data is the tile registry's; `spare` holds the
// tile's depth code, which says how many bytes the data really has (the
// device form of a class may ask for more; the rest is sent as zeros).
struct DownloadEntryB {
    uint16_t width;
    uint16_t height;
    uint16_t flags;
    uint16_t spare;
    const uint8_t* data;
};

// Table C: patterns; n + 1 words owned by the table (freed once sent).
struct DownloadEntryC {
    uint16_t n;
    uint16_t identifier;
    uint32_t* words;
};

template <class Entry>
Entry* entriesOf(DownloadNode* node) {
    return reinterpret_cast<Entry*>(node + 1);
}

// Serialised size of one entry.
uint32_t downloadEntryBytes(const DownloadEntryA& e);
uint32_t downloadEntryBytes(const DownloadEntryB& e, uint32_t colourSpace);
uint32_t downloadEntryBytes(const DownloadEntryC& e);

// Sends every table whose byte count is not 0 (A, B, then C) and empties it.
// The caller has begun the chunk and ends it.
void sendDownloadTables(OutputStream& stream, RenderResources* resources);

// Appends a registered screen tile to table B (one node) and counts its
// bytes. KRYN_ERR_NO_MEMORY leaves the table unchanged.
ResultCode addScreenDownload(RenderResources* resources, const DownloadEntryB& entry);

// Frees table B without sending it: its entries point into the tile
// registry, which is emptied at page end.
void dropScreenDownloads(RenderResources* resources);

// Counts table B's bytes again for the current colour space (the form of
// colour screens depends on it).
void recountScreenDownloads(RenderResources* resources);

// Frees every node of the three tables, with what their entries own, and
// clears their byte counts.
void freeDownloadTables(RenderResources* resources);

} // namespace kryn
