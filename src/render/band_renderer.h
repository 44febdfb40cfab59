// The host renderer that plays band lists into band rasters. It lives with
// the engine's resources: created by the first page that needs it (or by the
// first band played) and resized by later pages.
//
// Raster layouts: 8-bit grey, one byte per pixel (0 black, 255 white), rows
// of width bytes rounded up to a multiple of 8; 32-bit colour, one
// little-endian word 0xTTBBGGRR per pixel whose top byte tags the kind of
// object that painted it, rows of 4 x width bytes rounded up to a multiple
// of 8. Rows top to bottom, pixels left to right.
#pragma once

#include "engine/result_codes.h"
#include "render/dirty_box.h"

#include <cstdint>

namespace kryn {

struct PaintState;
struct RendererColourTable;
struct RendererTile;

// What playBand chose the renderer to be by the first band it played.
enum RendererKind : int32_t {
    RENDERER_UNSET = 0, // also colour pages in page modes 4 to 7
    RENDERER_BOX = 3,   // colour pages in page modes 2 and 3
    RENDERER_TYPED = 4, // colour pages in page modes 8 and 9
    RENDERER_GREY = 5,  // grey pages and monochrome bands
};

struct BandRenderer {
    int32_t width = 0;       // pixels per row
    int32_t height = 0;      // rows per band
    int32_t strideWords = 0; // row stride in 32-bit words
    DirtyBox box;            // what the band last painted; the next band start clears it
    uint8_t* raster = nullptr;
    RendererTile* tileList = nullptr;
    const RendererColourTable* colourTableList = nullptr; // the page's, while it plays
    uint32_t tagImageWord = 0;                            // tag values in the top byte
    uint32_t tagGraphicsWord = 0;
    uint32_t tagBitmapWord = 0;
    uint32_t paperWord = 0; // tagGraphicsWord | 0xFFFFFF
    PaintState* paintState = nullptr;
    int32_t rendererKind = RENDERER_UNSET;
    uint32_t greyRaster = 0;         // colour space at creation: 1 grey, 0 colour
    uint8_t* expandBuffer = nullptr; // (height + 2) x strideWords x 4 bytes, or null
};

struct RendererGeometry {
    int32_t width;
    int32_t bandHeight;
    const uint8_t* colourAttr; // three bytes: image, graphics, bitmap tags
    uint32_t colourSpace;      // 1 grey, else colour
};

// Row stride in bytes of a raster.
inline int32_t rasterStrideBytes(int32_t width, bool grey) {
    const int64_t bytes = grey ? int64_t{width} : 4 * int64_t{width};
    return static_cast<int32_t>((bytes + 7) & ~int64_t{7});
}

inline uint32_t expandBufferBytes(const BandRenderer& renderer) {
    return static_cast<uint32_t>(renderer.height + 2) *
           static_cast<uint32_t>(renderer.strideWords) * 4u;
}

// Null when memory runs out (nothing stays allocated then).
BandRenderer* createBandRenderer(const RendererGeometry& geometry);

// Adapts a renderer to a new page: reallocates the raster, the paint state
// and an existing expand buffer when the size or colour space changed, and
// empties the page lists. On KRYN_ERR_NO_MEMORY the renderer is left
// destroyable but unusable.
ResultCode resizeBandRenderer(BandRenderer* renderer, const RendererGeometry& geometry);

void destroyBandRenderer(BandRenderer* renderer);

// The three tag values (image, graphics, bitmap) and the paper word.
void setRendererTags(BandRenderer* renderer, const uint8_t colourAttr[3]);

// Releases what the renderer keeps per page; called after a page is played.
void releaseRendererPageLists(BandRenderer* renderer);

} // namespace kryn
