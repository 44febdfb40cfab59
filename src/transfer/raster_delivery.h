// Handing a finished band raster to the driver.
#pragma once

#include "engine/result_codes.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

struct OutputStream;

// Calls the driver with a band raster. For the codes that expect an answer
// (CB_RASTER_STANDARD and above) a KRYN_CB_RESTART answer is reported as
// KRYN_ERR_RESTART_PAGE; the answer to CB_RASTER_BOX is never examined.
ResultCode deliverRaster(const OutputStream& stream, uint32_t code, uint32_t band,
                         const void* raster, uint32_t bytes, const RasterRect& rect);

} // namespace kryn
