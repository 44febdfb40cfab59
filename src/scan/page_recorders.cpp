#include "scan/page_recorders.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/device_level.h"
#include "engine/memory.h"
#include "engine/page_record.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

// Entries a band buffer collects before it is written as a record.
constexpr uint32_t BUFFER_ENTRIES = 340;
constexpr uint32_t RUN_ENTRY_BYTES = 6;    // u8 row, u8 spare, u16 x, u16 width
constexpr uint32_t COLUMN_ENTRY_BYTES = 4; // u8 row, u8 height, u16 x
constexpr uint32_t RECT_ENTRY_BYTES = 6;   // u16 left, u16 right, u8 top, u8 bottom
// Rows one record can hold (heights are 8-bit).
constexpr int32_t MAX_RECORD_ROWS = 255;

using BufferWriter = ResultCode (*)(DisplayList*, uint8_t*, uint16_t, RenderResources*);

uint16_t entryCount(const uint8_t* buffer) {
    return loadU16(buffer + 2);
}

// The band's list for painting, created on first use. *list stays null when
// white paint skips a band that holds nothing yet.
ResultCode paintableList(PageRecord* page, int32_t index, DisplayList** list) {
    *list = nullptr;
    if (page->bands[index].list == nullptr && page->paintNotWhite == 0) {
        return KRYN_OK;
    }
    return getBandList(page, index, list);
}

// Writes the band buffer's entries as one record. The record takes an
// exact-size copy, so that a page of many small fills does not keep a full
// buffer per record; the band keeps its buffer, emptied, for the next fill.
ResultCode writeBuffer(PageRecord* page, BandEntry& band, uint8_t* buffer, uint32_t entryBytes,
                       BufferWriter write) {
    const uint16_t count = buffer == nullptr ? 0 : entryCount(buffer);
    if (count == 0) {
        return KRYN_OK;
    }
    const size_t bytes = RUN_BUFFER_HEADER + size_t{count} * entryBytes;
    auto* owned = static_cast<uint8_t*>(allocBytes(bytes));
    ResultCode r = KRYN_ERR_NO_MEMORY;
    if (owned != nullptr) {
        std::memcpy(owned, buffer, bytes);
        r = syncBandForSpans(page, &band, band.list);
    }
    if (!failed(r)) {
        r = write(band.list, owned, count, page->resources);
    }
    if (failed(r)) {
        freeBytes(owned); // the entries are dropped with it
    }
    buffer[1] = SHORT_RUN_FORM;
    storeU16(buffer + 2, 0);
    return r;
}

// The next free entry of a band buffer, allocating the buffer on first use;
// null when memory runs out.
uint8_t* nextEntry(PageRecord* page, int32_t index, uint8_t*& buffer, uint32_t entryBytes) {
    if (buffer == nullptr) {
        buffer = static_cast<uint8_t*>(allocBytes(RUN_BUFFER_HEADER + BUFFER_ENTRIES * entryBytes));
        if (buffer == nullptr) {
            return nullptr;
        }
        buffer[0] = 0;
        buffer[1] = SHORT_RUN_FORM;
        storeU16(buffer + 2, 0);
    }
    if (entryCount(buffer) == 0) {
        page->pendingRuns.include(index);
    }
    return buffer + RUN_BUFFER_HEADER + entryCount(buffer) * entryBytes;
}

// Counts the entry just filled; a full buffer is written at once.
ResultCode commitEntry(PageRecord* page, BandEntry& band, uint8_t* buffer, uint32_t entryBytes,
                       BufferWriter write) {
    const auto count = static_cast<uint16_t>(entryCount(buffer) + 1);
    storeU16(buffer + 2, count);
    return count == BUFFER_ENTRIES ? writeBuffer(page, band, buffer, entryBytes, write) : KRYN_OK;
}

struct BandRow {
    int32_t index;
    int32_t row;
};

BandRow bandRowOf(const PageRecord* page, int32_t y) {
    const int32_t index = y / page->bandHeight;
    return {index, y - index * page->bandHeight};
}

ResultCode recordRun(void* context, int32_t x0, int32_t x1, int32_t y) {
    auto* page = static_cast<PageRecord*>(context);
    const BandRow at = bandRowOf(page, y);
    DisplayList* list = nullptr;
    ResultCode r = paintableList(page, at.index, &list);
    if (failed(r) || list == nullptr) {
        return r;
    }
    BandEntry& band = page->bands[at.index];
    uint8_t* entry = nextEntry(page, at.index, band.runBuffer, RUN_ENTRY_BYTES);
    if (entry == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    const auto width = static_cast<uint32_t>(x1 - x0 + 1);
    entry[0] = static_cast<uint8_t>(at.row);
    entry[1] = 0;
    storeU16(entry + 2, static_cast<uint16_t>(x0));
    storeU16(entry + 4, static_cast<uint16_t>(width));
    if (width > 255) {
        band.runBuffer[1] = 0;
    }
    return commitEntry(page, band, band.runBuffer, RUN_ENTRY_BYTES, writeRuns);
}

// Adds rows top..bottom of columns left..right to the band's rectangle
// entries, extending the last entry when it has the same columns and the
// new rows touch or overlap it.
ResultCode addRectEntry(PageRecord* page, int32_t index, int32_t left, int32_t right, int32_t top,
                        int32_t bottom) {
    BandEntry& band = page->bands[index];
    if (band.rectBuffer != nullptr && entryCount(band.rectBuffer) > 0) {
        uint8_t* last = band.rectBuffer + RUN_BUFFER_HEADER +
                        (entryCount(band.rectBuffer) - 1) * RECT_ENTRY_BYTES;
        if (loadU16(last) == left && loadU16(last + 2) == right && top >= last[4] &&
            top <= last[5] + 1) {
            last[5] = static_cast<uint8_t>(std::max<int32_t>(last[5], bottom));
            return KRYN_OK;
        }
    }
    uint8_t* entry = nextEntry(page, index, band.rectBuffer, RECT_ENTRY_BYTES);
    if (entry == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU16(entry, static_cast<uint16_t>(left));
    storeU16(entry + 2, static_cast<uint16_t>(right));
    entry[4] = static_cast<uint8_t>(top);
    entry[5] = static_cast<uint8_t>(bottom);
    return commitEntry(page, band, band.rectBuffer, RECT_ENTRY_BYTES, writeRects);
}

ResultCode recordRectSpan(void* context, int32_t x0, int32_t x1, int32_t y) {
    auto* page = static_cast<PageRecord*>(context);
    const BandRow at = bandRowOf(page, y);
    DisplayList* list = nullptr;
    const ResultCode r = paintableList(page, at.index, &list);
    if (failed(r) || list == nullptr) {
        return r;
    }
    return addRectEntry(page, at.index, x0, x1, at.row, at.row);
}

ResultCode addColumnRun(PageRecord* page, int32_t index, int32_t x, int32_t row, int32_t rows) {
    BandEntry& band = page->bands[index];
    uint8_t* entry = nextEntry(page, index, band.columnRunBuffer, COLUMN_ENTRY_BYTES);
    if (entry == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    entry[0] = static_cast<uint8_t>(row);
    entry[1] = static_cast<uint8_t>(rows);
    storeU16(entry + 2, static_cast<uint16_t>(x));
    return commitEntry(page, band, band.columnRunBuffer, COLUMN_ENTRY_BYTES, writeColumnRuns);
}

// Rows first..last of one band: one rectangle, or column runs of at most
// MAX_RECORD_ROWS rows each (their heights are 8-bit).
ResultCode recordBandRect(PageRecord* page, int32_t index, int32_t x0, int32_t x1, int32_t first,
                          int32_t last) {
    DisplayList* list = nullptr;
    ResultCode r = paintableList(page, index, &list);
    if (failed(r) || list == nullptr) {
        return r;
    }
    const bool columnRuns = x0 == x1 && page->deviceLevel >= LEVEL_BAND_HEADER;
    BandEntry& band = page->bands[index];
    if (!columnRuns) {
        r = syncBandForSpans(page, &band, list);
    }
    if (!columnRuns) {
        // The writer takes every row of a band, 256 included.
        return failed(r) ? r
                         : writeRect(list, {static_cast<uint8_t>(first), static_cast<uint16_t>(x0)},
                                     static_cast<uint32_t>(x1 - x0 + 1),
                                     static_cast<uint32_t>(last - first + 1), page->resources);
    }
    for (int32_t row = first; row <= last && !failed(r); row += MAX_RECORD_ROWS) {
        r = addColumnRun(page, index, x0, row, std::min(MAX_RECORD_ROWS, last - row + 1));
    }
    return r;
}

ResultCode recordRect(void* context, int32_t x0, int32_t x1, int32_t y0, int32_t y1) {
    auto* page = static_cast<PageRecord*>(context);
    const BandRow top = bandRowOf(page, y0);
    const BandRow bottom = bandRowOf(page, y1);
    for (int32_t index = top.index; index <= bottom.index; ++index) {
        const int32_t first = index == top.index ? top.row : 0;
        const int32_t last = index == bottom.index ? bottom.row : page->bandHeight - 1;
        const ResultCode r = recordBandRect(page, index, x0, x1, first, last);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

ResultCode recordBandRowSpans(void* context, int32_t firstRow, int32_t rowCount,
                              const uint16_t* pairs, int32_t allEqual) {
    auto* page = static_cast<PageRecord*>(context);
    const int32_t index = firstRow / page->bandHeight;
    DisplayList* list = nullptr;
    ResultCode r = paintableList(page, index, &list);
    if (failed(r) || list == nullptr) {
        return r;
    }
    if (allEqual != 0 && page->deviceLevel >= LEVEL_RECT_SPANS) {
        return pairs[1] == 0
                   ? KRYN_OK
                   : addRectEntry(page, index, pairs[0], pairs[0] + pairs[1] - 1, 0, rowCount - 1);
    }
    const auto bytes = static_cast<size_t>(rowCount) * 4;
    auto* entries = static_cast<uint8_t*>(allocBytes(bytes));
    if (entries == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    bool narrow = true;
    for (int32_t i = 0; i < rowCount; ++i) {
        storeU16(entries + 4 * i, pairs[2 * i]);
        storeU16(entries + 4 * i + 2, pairs[2 * i + 1]);
        narrow = narrow && pairs[2 * i + 1] < 256;
    }
    r = syncBandForSpans(page, &page->bands[index], list);
    if (!failed(r)) {
        r = writeRowSpans(list, 0, entries, narrow ? -rowCount : rowCount, page->resources);
    }
    if (failed(r)) {
        freeBytes(entries);
    }
    return r;
}

} // namespace

void installPageRecorders(PageRecord* page, SpanRecorder* recorder) {
    const bool rectSpans = page->deviceLevel >= LEVEL_RECT_SPANS;
    recorder->span = rectSpans ? recordRectSpan : recordRun;
    recorder->rect = recordRect;
    recorder->bandRowSpans = recordBandRowSpans;
    recorder->ctx = page;
    recorder->bandHeight = page->bandHeight;
    const int64_t bandRows = int64_t{page->bandCount} * page->bandHeight;
    recorder->bounds.minX = 0;
    recorder->bounds.maxX = page->pageWidth - 1;
    recorder->bounds.minY = 0;
    recorder->bounds.maxY = static_cast<int32_t>(std::min<int64_t>(bandRows, page->pageHeight)) - 1;
}

ResultCode flushPendingRuns(PageRecord* page) {
    ResultCode result = KRYN_OK;
    for (int32_t i = page->pendingRuns.first; i <= page->pendingRuns.last; ++i) {
        BandEntry& band = page->bands[i];
        for (ResultCode r :
             {writeBuffer(page, band, band.runBuffer, RUN_ENTRY_BYTES, writeRuns),
              writeBuffer(page, band, band.columnRunBuffer, COLUMN_ENTRY_BYTES, writeColumnRuns),
              writeBuffer(page, band, band.rectBuffer, RECT_ENTRY_BYTES, writeRects)}) {
            result = failed(result) ? result : r;
        }
    }
    page->pendingRuns.clear();
    return result;
}

} // namespace kryn
