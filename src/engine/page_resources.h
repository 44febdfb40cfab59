// Preparing the engine's renderer for a page's mode and colour space.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

namespace kryn {

// Stores the mode and creates or resizes the host renderer for it. On
// failure a renderer that could not be resized is destroyed.
ResultCode preparePageResources(RenderResources* resources, int32_t pageWidth, int32_t bandHeight,
                                int32_t mode);

// Renderer row width of a mode: pageWidth in modes 0, 1, 8, 9, else pageWidth - 1.
int32_t rendererWidth(int32_t pageWidth, int32_t mode);

} // namespace kryn
