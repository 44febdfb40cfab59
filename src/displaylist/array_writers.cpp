// Writers of the records that take over an array: runs (132/141), column
// runs (139), corner rectangles (142) and row spans (148/157). Buffers of
// single entries become a rectangle instead, so that they can merge.
#include "displaylist/image_data_size.h"
#include "displaylist/record_commit.h"
#include "displaylist/record_writers.h"
#include "engine/memory.h"

namespace kryn {

namespace {

ResultCode writeArrayRecord(DisplayList* list, uint8_t op, uint8_t parameter, uint16_t count,
                            void* array, uint32_t serial, RenderResources* resources) {
    uint8_t* r = reserveRecord(list, ARRAY_RECORD_SIZE);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[0] = op;
    r[1] = parameter;
    storeU16(r + 2, count);
    storePointer(r + ARRAY_POINTER_OFFSET, array);
    return finishRecord(list, serial, true, resources);
}

// Writes a single entry as a rectangle; the buffer is freed once written.
ResultCode writeSingle(DisplayList* list, uint8_t* buffer, RecordPosition at, uint32_t width,
                       uint32_t height, RenderResources* resources) {
    const ResultCode r = writeRect(list, at, width, height, resources);
    if (r == KRYN_OK) {
        freeBytes(buffer);
    }
    return r;
}

} // namespace

ResultCode writeRuns(DisplayList* list, uint8_t* buffer, uint16_t count,
                     RenderResources* resources) {
    if (count == 0) {
        freeBytes(buffer);
        return KRYN_OK;
    }
    const uint8_t* entry = buffer + RUN_BUFFER_HEADER;
    if (count == 1) {
        return writeSingle(list, buffer, {entry[0], loadU16(entry + 2)}, loadU16(entry + 4), 1,
                           resources);
    }
    const bool shortForm = buffer[1] == SHORT_RUN_FORM;
    const uint32_t serial =
        shortForm ? 4u + count * 4u : 4u + static_cast<uint32_t>(roundUp4(count * 6u));
    return writeArrayRecord(list, shortForm ? DL_OP_RUNS_SHORT : DL_OP_RUNS, 0, count, buffer,
                            serial, resources);
}

ResultCode writeColumnRuns(DisplayList* list, uint8_t* buffer, uint16_t count,
                           RenderResources* resources) {
    if (count == 0) {
        freeBytes(buffer);
        return KRYN_OK;
    }
    const uint8_t* entry = buffer + RUN_BUFFER_HEADER;
    if (count == 1) {
        return writeSingle(list, buffer, {entry[0], loadU16(entry + 2)}, 1, entry[1], resources);
    }
    return writeArrayRecord(list, DL_OP_COLUMN_RUNS, 0, count, buffer, 4u + count * 4u, resources);
}

ResultCode writeRects(DisplayList* list, uint8_t* buffer, uint16_t count,
                      RenderResources* resources) {
    if (count == 0) {
        freeBytes(buffer);
        return KRYN_OK;
    }
    const uint8_t* entry = buffer + RUN_BUFFER_HEADER;
    if (count == 1) {
        const uint16_t left = loadU16(entry);
        const uint16_t right = loadU16(entry + 2);
        const uint8_t top = entry[4];
        const uint8_t bottom = entry[5];
        if (right < left || bottom < top) {
            return KRYN_ERR_INVALID;
        }
        return writeSingle(list, buffer, {top, left}, right - left + 1u, bottom - top + 1u,
                           resources);
    }
    return writeArrayRecord(list, DL_OP_RECTS, 0, count, buffer,
                            4u + static_cast<uint32_t>(roundUp4(count * 6u)), resources);
}

ResultCode writeRowSpans(DisplayList* list, uint8_t firstRow, uint8_t* entries, int32_t count,
                         RenderResources* resources) {
    if (count > 0xFFFF || count < -0xFFFF) {
        return KRYN_ERR_INVALID;
    }
    if (count >= 1) {
        const auto n = static_cast<uint32_t>(count);
        return writeArrayRecord(list, DL_OP_ROW_SPANS, firstRow, static_cast<uint16_t>(n), entries,
                                4u + n * 4u, resources);
    }
    const auto n = static_cast<uint32_t>(-count);
    return writeArrayRecord(list, DL_OP_ROW_SPANS_SHORT, firstRow, static_cast<uint16_t>(n),
                            entries, 4u + static_cast<uint32_t>(roundUp4(n * 3u)), resources);
}

} // namespace kryn
