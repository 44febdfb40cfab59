#include "transfer/serialiser.h"

#include "displaylist/display_list.h"
#include "engine/engine.h"
#include "transfer/stream_io.h"

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

// The records themselves are not sent yet: the list is consumed the way
// serialisation consumes it, so band flushing is already exact about
// ownership.

ResultCode serialiseBand(OutputCallback callback, uintptr_t context, uint16_t, DisplayList* list,
                         RenderResources* resources) {
    appendTerminator(list);
    resources->stream.callback = callback;
    resources->stream.context = context;
    releaseRecordArrays(list);
    return KRYN_OK;
}

} // namespace kryn
