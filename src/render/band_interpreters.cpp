#include "render/band_interpreters.h"

namespace kryn {

namespace {

// Placeholder until the band renderer lands: plays nothing.
ResultCode playNothing(BandRenderer*, RenderResources*, uint16_t, DisplayList*, int32_t) {
    return KRYN_OK;
}

constexpr BandInterpreters DEFAULT_INTERPRETERS = {playNothing, playNothing, playNothing};

} // namespace

const BandInterpreters* defaultBandInterpreters() {
    return &DEFAULT_INTERPRETERS;
}

} // namespace kryn
