#include "transfer/serialiser.h"

#include "displaylist/display_list.h"
#include "engine/engine.h"
#include "engine/page_mode.h"
#include "transfer/download_tables.h"
#include "transfer/record_serialiser.h"
#include "transfer/stream_io.h"

#include <algorithm>

namespace kryn {

void sendBandHeader(OutputCallback callback, uintptr_t context, uint16_t band, uint32_t rasterWidth,
                    RenderResources* resources) {
    OutputStream& stream = resources->stream;
    stream.callback = callback;
    stream.context = context;
    streamBegin(stream, band, 4);
    putByte(stream, DL_OP_BAND_HEADER);
    putByte(stream, 0);
    putU16(stream, static_cast<uint16_t>(rasterWidth - 1));
    streamFlush(stream, STREAM_END_OF_CHUNK);
}

// Chunk sizes are always what is sent. In the serialised modes the list's
// chunk records carry them: every record counts its stream bytes (image data
// included) as it is written, and the open chunk's size word is filled here.
// Lists of host modes are never split, but may hold host-only records that
// the device never sees; they are announced as one chunk whose size is
// counted from the records themselves, and their chunk record (modes 8 and
// 9) gets its size word too.
ResultCode serialiseBand(OutputCallback callback, uintptr_t context, uint16_t band,
                         DisplayList* list, RenderResources* resources) {
    appendTerminator(list);
    if (list->pendingSizeSlot != nullptr) {
        storeU32(list->pendingSizeSlot, list->serialBytes - list->chunkStart);
        list->pendingSizeSlot = nullptr;
    }
    OutputStream& stream = resources->stream;
    stream.callback = callback;
    stream.context = context;

    // Screens were counted in the colour space of their page when they were
    // set; the space may have changed since.
    recountScreenDownloads(resources);
    const uint32_t tables =
        resources->downloadBBytes + resources->downloadCBytes + resources->downloadABytes;
    if (tables != 0) {
        streamBegin(stream, band, tables);
        sendDownloadTables(stream, resources);
        streamFlush(stream, STREAM_END_OF_CHUNK);
    }

    if (list->serialBytes != 0) {
        const bool sized = isSerialisedMode(resources->mode);
        if (!sized) {
            const uint64_t bytes = countSerialisedBytes(list, resources->colourSpace);
            streamBegin(stream, band, static_cast<uint32_t>(std::min<uint64_t>(bytes, UINT32_MAX)));
        }
        serialiseRecords(stream, list, band, resources->colourSpace, sized);
        streamFlush(stream, STREAM_END_OF_CHUNK);
    }
    // Arrays of records that were not reached (after a host-only record
    // ended the walk of a block) are released here; sent ones are cleared.
    releaseRecordArrays(list);
    return KRYN_OK;
}

} // namespace kryn
