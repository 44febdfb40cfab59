#include "render/band_renderer.h"

#include "engine/memory.h"
#include "render/paint_state.h"
#include "render/renderer_lists.h"

namespace kryn {

namespace {

void applySize(BandRenderer* renderer, const RendererGeometry& geometry) {
    const bool grey = geometry.colourSpace == 1;
    renderer->width = geometry.width;
    renderer->height = geometry.bandHeight;
    renderer->strideWords = rasterStrideBytes(geometry.width, grey) / 4;
    renderer->greyRaster = grey ? 1u : 0u;
}

size_t rasterBytes(const BandRenderer& renderer) {
    return size_t(renderer.strideWords) * 4u * size_t(renderer.height);
}

// Raster and paint state for the renderer's current size; false (with
// whatever was allocated released) when memory runs out.
bool allocateBuffers(BandRenderer* renderer) {
    renderer->raster = static_cast<uint8_t*>(allocBytes(rasterBytes(*renderer)));
    renderer->paintState = createRecord<PaintState>(true);
    if (renderer->raster == nullptr || renderer->paintState == nullptr) {
        freeAndClear(renderer->raster);
        freeAndClear(renderer->paintState);
        return false;
    }
    return true;
}

} // namespace

void setRendererTags(BandRenderer* renderer, const uint8_t colourAttr[3]) {
    renderer->tagImageWord = uint32_t{colourAttr[0]} << 24;
    renderer->tagGraphicsWord = uint32_t{colourAttr[1]} << 24;
    renderer->tagBitmapWord = uint32_t{colourAttr[2]} << 24;
    renderer->paperWord = renderer->tagGraphicsWord | 0xFFFFFFu;
}

BandRenderer* createBandRenderer(const RendererGeometry& geometry) {
    if (geometry.width <= 0 || geometry.bandHeight <= 0) {
        return nullptr;
    }
    BandRenderer* renderer = createRecord<BandRenderer>();
    if (renderer == nullptr) {
        return nullptr;
    }
    applySize(renderer, geometry);
    setRendererTags(renderer, geometry.colourAttr);
    if (!allocateBuffers(renderer)) {
        destroyRecord(renderer);
        return nullptr;
    }
    return renderer;
}

ResultCode resizeBandRenderer(BandRenderer* renderer, const RendererGeometry& geometry) {
    releaseRendererPageLists(renderer);
    setRendererTags(renderer, geometry.colourAttr);
    const uint32_t grey = geometry.colourSpace == 1 ? 1u : 0u;
    const bool sameSize = renderer->width == geometry.width &&
                          renderer->height == geometry.bandHeight && renderer->greyRaster == grey;
    if (sameSize && renderer->raster != nullptr && renderer->paintState != nullptr) {
        return KRYN_OK;
    }
    if (renderer->greyRaster != grey) {
        renderer->rendererKind = RENDERER_UNSET;
    }
    const bool hadExpandBuffer = renderer->expandBuffer != nullptr;
    freeAndClear(renderer->raster);
    freeAndClear(renderer->paintState);
    freeAndClear(renderer->expandBuffer);
    applySize(renderer, geometry);
    // The next band clears the whole new raster.
    renderer->box = DirtyBox{};
    if (!allocateBuffers(renderer)) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (hadExpandBuffer) {
        renderer->expandBuffer = static_cast<uint8_t*>(allocBytes(expandBufferBytes(*renderer)));
        if (renderer->expandBuffer == nullptr) {
            freeAndClear(renderer->raster);
            freeAndClear(renderer->paintState);
            return KRYN_ERR_NO_MEMORY;
        }
    }
    return KRYN_OK;
}

void destroyBandRenderer(BandRenderer* renderer) {
    if (renderer == nullptr) {
        return;
    }
    releaseRendererPageLists(renderer);
    freeAndClear(renderer->raster);
    freeAndClear(renderer->paintState);
    freeAndClear(renderer->expandBuffer);
    destroyRecord(renderer);
}

void releaseRendererPageLists(BandRenderer* renderer) {
    releaseTileList(renderer->tileList);
    renderer->colourTableList = nullptr; // borrowed from the page
}

} // namespace kryn
