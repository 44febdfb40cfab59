// The interpreter loop shared by the three band interpreters: band start,
// the walk over the list's records, and delivery at the end record.
#pragma once

#include "engine/result_codes.h"
#include "render/band_variant.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;
struct DisplayList;
struct RenderResources;

// Size of the scratch block a band borrows when the renderer has no expand
// buffer.
inline constexpr uint32_t BAND_SCRATCH_BYTES = 768;

ResultCode walkBand(BandRenderer& renderer, RenderResources& resources, uint16_t band,
                    DisplayList& list, BandVariant variant);

} // namespace kryn
