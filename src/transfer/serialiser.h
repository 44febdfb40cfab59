// Serialising band lists into the device stream.
#pragma once

#include "engine/result_codes.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

struct DisplayList;
struct RenderResources;

// Sends the 8-byte band header chunk for a band of the given raster width.
void sendBandHeader(OutputCallback callback, uintptr_t context, uint16_t band, uint32_t rasterWidth,
                    RenderResources* resources);

// Terminates an ended list and sends it; the arrays its records own are
// released on the way, so the caller frees only its blocks afterwards.
ResultCode serialiseBand(OutputCallback callback, uintptr_t context, uint16_t band,
                         DisplayList* list, RenderResources* resources);

} // namespace kryn
