#include "render/band_interpreters.h"

#include "displaylist/display_list.h"
#include "engine/engine.h"
#include "engine/memory.h"
#include "render/band_renderer.h"
#include "render/band_walk.h"

namespace kryn {

namespace {

// Brings a renderer whose raster layout does not match the interpreter to
// the right layout (a colour-space switch that bypassed page setup).
ResultCode matchLayout(BandRenderer* renderer, RenderResources* resources, bool grey) {
    if ((renderer->greyRaster != 0) == grey && renderer->raster != nullptr &&
        renderer->paintState != nullptr) {
        return KRYN_OK;
    }
    const RendererGeometry geometry{renderer->width, renderer->height, resources->colourAttr,
                                    grey ? 1u : 0u};
    return resizeBandRenderer(renderer, geometry);
}

// The expand buffer is optional: without it bands borrow a scratch block.
void tryExpandBuffer(BandRenderer* renderer, uint32_t bytes) {
    if (renderer->expandBuffer == nullptr) {
        renderer->expandBuffer = static_cast<uint8_t*>(allocBytes(bytes));
    }
}

bool listIsEmpty(const DisplayList* list) {
    return list->serialBytes == 0;
}

ResultCode playGrey(BandRenderer* renderer, RenderResources* resources, uint16_t band,
                    DisplayList* list, int32_t) {
    const ResultCode r = matchLayout(renderer, resources, true);
    if (failed(r)) {
        return r;
    }
    if (renderer->rendererKind == RENDERER_UNSET) {
        renderer->rendererKind = RENDERER_GREY;
        tryExpandBuffer(renderer, expandBufferBytes(*renderer));
    }
    if (listIsEmpty(list)) {
        return KRYN_OK;
    }
    return walkBand(*renderer, *resources, band, *list, BAND_GREY);
}

ResultCode playColour(BandRenderer* renderer, RenderResources* resources, uint16_t band,
                      DisplayList* list, int32_t) {
    const ResultCode r = matchLayout(renderer, resources, false);
    if (failed(r)) {
        return r;
    }
    if (renderer->rendererKind == RENDERER_UNSET) {
        const int32_t mode = resources->mode;
        if (mode == 2 || mode == 3) {
            renderer->rendererKind = RENDERER_BOX;
        } else if (mode == 8 || mode == 9) {
            renderer->rendererKind = RENDERER_TYPED;
        }
        if (renderer->rendererKind != RENDERER_UNSET) {
            tryExpandBuffer(renderer, expandBufferBytes(*renderer));
        }
    }
    if (listIsEmpty(list)) {
        return KRYN_OK;
    }
    return walkBand(*renderer, *resources, band, *list, BAND_COLOUR);
}

// A black-and-white band of a colour page, played one byte per pixel over
// the colour raster's memory. The shared renderer itself takes the grey
// layout for the band (stride, kind, an empty box) and gets its colour
// layout back afterwards, so whatever the walk leaves pointing at the
// renderer (the paint state's box) points at the renderer, never at a copy
// that is gone. Its box is left empty, so the next colour band clears its
// whole raster. The expand buffer, sized for the colour layout, stays.
ResultCode playMono(BandRenderer* renderer, RenderResources* resources, uint16_t band,
                    DisplayList* list, int32_t) {
    const ResultCode r = matchLayout(renderer, resources, false);
    if (failed(r)) {
        return r;
    }
    tryExpandBuffer(renderer, expandBufferBytes(*renderer));
    const int32_t colourStrideWords = renderer->strideWords;
    const int32_t colourKind = renderer->rendererKind;
    renderer->strideWords = rasterStrideBytes(renderer->width, true) / 4;
    renderer->rendererKind = RENDERER_GREY;
    renderer->box = DirtyBox{};
    ResultCode result = KRYN_OK;
    if (!listIsEmpty(list)) {
        result = walkBand(*renderer, *resources, band, *list, BAND_MONO);
    }
    renderer->strideWords = colourStrideWords;
    renderer->rendererKind = colourKind;
    renderer->box = DirtyBox{};
    return result;
}

constexpr BandInterpreters DEFAULT_INTERPRETERS = {playGrey, playMono, playColour};

} // namespace

const BandInterpreters* defaultBandInterpreters() {
    return &DEFAULT_INTERPRETERS;
}

} // namespace kryn
