// The host renderer that plays band lists into band rasters. It lives with
// the engine's resources: created by the first page that needs it and
// resized by later pages.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct BandRenderer {
    int32_t width = 0;      // pixels per raster row
    int32_t bandHeight = 0; // rows per band
    uint8_t colourAttr[3] = {0, 0, 0};
    uint32_t colourSpace = 0;
    // Channel defaults from KRYNColorAttribute, each value in the top byte.
    uint32_t channelDefault[3] = {0, 0, 0};
    uint32_t secondChannelWord = 0; // the second value on top, low 24 bits set
};

struct RendererGeometry {
    int32_t width;
    int32_t bandHeight;
    const uint8_t* colourAttr; // three bytes
    uint32_t colourSpace;
};

// Null when memory runs out.
BandRenderer* createBandRenderer(const RendererGeometry& geometry);

// Adapts a renderer to a new page. On failure the renderer is left
// destroyable but unusable.
ResultCode resizeBandRenderer(BandRenderer* renderer, const RendererGeometry& geometry);

void destroyBandRenderer(BandRenderer* renderer);

// Releases what the renderer keeps per page; called after a page is played.
void releaseRendererPageLists(BandRenderer* renderer);

} // namespace kryn
