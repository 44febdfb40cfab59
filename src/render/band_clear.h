// Clearing the band raster to paper before a band is painted.
#pragma once

namespace kryn {

struct BandRenderer;

// Resets what the previous band painted (the renderer's box) to paper, or
// the whole raster when the box does not say. A 32-bit partial clear also
// resets the first two pixels of every row and three columns right of the
// box, where the previous band's run marks were written.
void clearBandRaster(BandRenderer& renderer, bool grey);

} // namespace kryn
