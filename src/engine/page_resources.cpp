#include "engine/page_resources.h"

#include "engine/memory.h"
#include "engine/page_mode.h"
#include "render/band_renderer.h"

namespace kryn {

int32_t rendererWidth(int32_t pageWidth, int32_t mode) {
    return pageMode(mode).fullWidthRenderer ? pageWidth : pageWidth - 1;
}

ResultCode preparePageResources(RenderResources* resources, int32_t pageWidth, int32_t bandHeight,
                                int32_t mode) {
    resources->mode = mode;
    const RendererGeometry geometry{rendererWidth(pageWidth, mode), bandHeight,
                                    resources->colourAttr, resources->colourSpace};
    if (resources->renderer == nullptr) {
        if (!pageMode(mode).hostRasters) {
            return KRYN_OK;
        }
        resources->renderer = createBandRenderer(geometry);
        return resources->renderer == nullptr ? KRYN_ERR_NO_MEMORY : KRYN_OK;
    }
    if (failed(resizeBandRenderer(resources->renderer, geometry))) {
        destroyBandRenderer(resources->renderer);
        resources->renderer = nullptr;
        return KRYN_ERR_NO_MEMORY;
    }
    freeAndClear(resources->rendererAux);
    return KRYN_OK;
}

} // namespace kryn
