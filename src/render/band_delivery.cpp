#include "render/band_delivery.h"

#include "engine/device_level.h"
#include "engine/engine.h"
#include "render/band_renderer.h"
#include "render/mark_runs.h"
#include "render/paint_state.h"
#include "transfer/raster_delivery.h"

#include <cstring>

namespace kryn {

namespace {

bool greyRasterBlank(const BandRenderer& r) {
    const size_t words = size_t(r.strideWords) * size_t(r.height);
    const uint8_t* at = r.raster;
    for (size_t i = 0; i < words; ++i, at += 4) {
        uint32_t w;
        std::memcpy(&w, at, 4);
        if (w != 0xFFFFFFFFu) {
            return false;
        }
    }
    return true;
}

uint32_t lastIndex(int32_t n) {
    return static_cast<uint32_t>(n - 1);
}

} // namespace

uint32_t typedRasterCode(uint32_t contentFlags, uint32_t deviceLevel) {
    if (deviceLevel < LEVEL_TYPED_RASTERS) {
        return CB_RASTER_STANDARD;
    }
    switch (contentFlags) {
    case CONTENT_IMAGE:
        return CB_RASTER_KIND1;
    case CONTENT_AREA:
        return CB_RASTER_KIND2;
    case CONTENT_BITMAP:
        return CB_RASTER_KIND4;
    default:
        return CB_RASTER_STANDARD;
    }
}

ResultCode deliverBand(BandRenderer& r, const PaintState& state, const RenderResources& resources,
                       uint16_t band, BandVariant variant, uint32_t contentFlags) {
    if (!dirtyBoxEmpty(state.secondBox)) {
        const DirtyBox& second = state.secondBox;
        widenDirtyBox(r.box, second.minX, second.minY, second.maxX, second.maxY);
    }
    const uint32_t bytes =
        static_cast<uint32_t>(r.strideWords) * static_cast<uint32_t>(r.height) * 4u;
    const uint32_t bottom = lastIndex(r.height);
    switch (variant) {
    case BAND_GREY: {
        if (greyRasterBlank(r)) {
            return KRYN_OK;
        }
        const RasterRect rect{0, 0, lastIndex(r.strideWords * 4), bottom};
        return deliverRaster(resources.stream, CB_RASTER_STANDARD, band, r.raster, bytes, rect);
    }
    case BAND_MONO: {
        const RasterRect rect{0, 0, lastIndex(r.strideWords), bottom};
        return deliverRaster(resources.stream, CB_RASTER_DIRECT, band, r.raster, bytes, rect);
    }
    case BAND_COLOUR:
        break;
    }
    if (!markRuns(reinterpret_cast<uint32_t*>(r.raster), r.strideWords, r.height, r.box)) {
        return KRYN_OK;
    }
    if (r.rendererKind == RENDERER_TYPED) {
        const RasterRect rect{0, 0, lastIndex(r.strideWords), bottom};
        return deliverRaster(resources.stream, typedRasterCode(contentFlags, resources.deviceLevel),
                             band, r.raster, bytes, rect);
    }
    const RasterRect rect{static_cast<uint32_t>(r.box.minX), static_cast<uint32_t>(r.box.minY),
                          static_cast<uint32_t>(r.box.maxX), static_cast<uint32_t>(r.box.maxY)};
    return deliverRaster(resources.stream, CB_RASTER_BOX, band, r.raster, bytes, rect);
}

} // namespace kryn
