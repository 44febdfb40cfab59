// Handing a finished band to the driver (the end record of a band list).
#pragma once

#include "engine/result_codes.h"
#include "render/band_variant.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;
struct PaintState;
struct RenderResources;

// Content kinds a band's drawing records report; their mixture picks the
// raster code on typed-raster devices.
enum : uint32_t { CONTENT_IMAGE = 1, CONTENT_AREA = 2, CONTENT_BITMAP = 4 };

// Raster code of a band on a page played for a typed-raster renderer
// (page modes 8 and 9): by the content kinds on capable devices, else the
// standard code.
uint32_t typedRasterCode(uint32_t contentFlags, uint32_t deviceLevel);

// Merges the paint state's second box into the renderer's box, leaves blank
// bands undelivered, and calls the driver with the code, rectangle and byte
// count of the variant. KRYN_ERR_RESTART_PAGE when the driver asks for the
// page again on a code whose answer counts.
ResultCode deliverBand(BandRenderer& renderer, const PaintState& state,
                       const RenderResources& resources, uint16_t band, BandVariant variant,
                       uint32_t contentFlags);

} // namespace kryn
