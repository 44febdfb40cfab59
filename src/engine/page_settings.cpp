#include "engine/page_settings.h"

#include "engine/device_level.h"
#include "engine/page_record.h"
#include "engine/page_resources.h"
#include "paint/screen_list.h"
#include "render/band_renderer.h"

namespace kryn {

ResultCode selectColourSpace(Engine* e, int32_t space) {
    PageRecord* page = openPage(e);
    if (page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    const auto selector = static_cast<uint16_t>(space);
    if ((selector != 0 && selector != 1) || e->deviceLevel < LEVEL_BAND_HEADER) {
        return KRYN_OK;
    }
    page->colourSpace = selector;
    if (selector == 1) {
        for (int32_t i = 0; i < page->bandCount; ++i) {
            page->bands[i].bandMonochrome = 0;
        }
    }
    RenderResources* resources = e->resources;
    resources->colourSpace = selector;
    const ResultCode r = preparePageResources(resources, e->pageWidth, e->bandHeight,
                                              static_cast<int32_t>(page->mode));
    // The renderer starts its page lists again: the page's screens are
    // defined to it anew, in the new raster format.
    return failed(r) ? r : defineTilesToRenderer(e);
}

void setColourAttributes(Engine* e, uint32_t a, uint32_t b, uint32_t c) {
    RenderResources* resources = e->resources;
    resources->colourAttr[0] = static_cast<uint8_t>(a);
    resources->colourAttr[1] = static_cast<uint8_t>(b);
    resources->colourAttr[2] = static_cast<uint8_t>(c);
    // A live colour renderer takes the new tags at once; a grey one takes
    // them when it is next resized for a page.
    BandRenderer* renderer = resources->renderer;
    if (renderer != nullptr && renderer->greyRaster == 0) {
        setRendererTags(renderer, resources->colourAttr);
    }
}

void setQuantization(Engine* e) {
    const uint16_t resolution = e->resolution;
    e->resources->quantization = (resolution == 300 || resolution == 600) ? resolution : 0u;
}

} // namespace kryn
