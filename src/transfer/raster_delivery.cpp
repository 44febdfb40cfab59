#include "transfer/raster_delivery.h"

#include "transfer/output_stream.h"

namespace kryn {

ResultCode deliverRaster(const OutputStream& stream, uint32_t code, uint32_t band,
                         const void* raster, uint32_t bytes, const RasterRect& rect) {
    if (stream.callback == nullptr) {
        return KRYN_OK;
    }
    const uint32_t answer = stream.callback(code, band, raster, bytes, stream.context, &rect);
    if (code >= CB_RASTER_STANDARD && answer == KRYN_CB_RESTART) {
        return KRYN_ERR_RESTART_PAGE;
    }
    return KRYN_OK;
}

} // namespace kryn
