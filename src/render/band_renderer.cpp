#include "render/band_renderer.h"

#include "engine/memory.h"

namespace kryn {

namespace {

void applyGeometry(BandRenderer* renderer, const RendererGeometry& geometry) {
    renderer->width = geometry.width;
    renderer->bandHeight = geometry.bandHeight;
    for (int i = 0; i < 3; ++i) {
        renderer->colourAttr[i] = geometry.colourAttr[i];
    }
    renderer->colourSpace = geometry.colourSpace;
}

} // namespace

BandRenderer* createBandRenderer(const RendererGeometry& geometry) {
    BandRenderer* renderer = createRecord<BandRenderer>(true);
    if (renderer != nullptr) {
        applyGeometry(renderer, geometry);
    }
    return renderer;
}

ResultCode resizeBandRenderer(BandRenderer* renderer, const RendererGeometry& geometry) {
    applyGeometry(renderer, geometry);
    return KRYN_OK;
}

void destroyBandRenderer(BandRenderer* renderer) {
    destroyRecord(renderer);
}

void releaseRendererPageLists(BandRenderer*) {}

} // namespace kryn
