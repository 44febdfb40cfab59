// The three band interpreters that host playback chooses between. The engine
// reaches them through a table in its resources so that tests can put
// instrumented interpreters in their place.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct BandRenderer;
struct DisplayList;
struct RenderResources;

// Plays one terminated list into the renderer's raster and delivers it.
// `band` is the index relative to the band group.
using BandInterpreter = ResultCode (*)(BandRenderer* renderer, RenderResources* resources,
                                       uint16_t band, DisplayList* list, int32_t flags);

struct BandInterpreters {
    BandInterpreter playBand8;    // colour space 1: one grey byte per pixel
    BandInterpreter playBandMono; // black-and-white bands of a colour page
    BandInterpreter playBand32;   // 32-bit tagged colour
};

// The engine's own interpreters.
const BandInterpreters* defaultBandInterpreters();

} // namespace kryn
