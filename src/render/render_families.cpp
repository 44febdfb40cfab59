#include "render/render_families.h"

#include "render/area_blend.h"
#include "render/area_screened.h"
#include "render/area_solid.h"
#include "render/flatten_blocks.h"
#include "render/image_members.h"
#include "render/mask_members.h"
#include "render/raster_pixels.h"

namespace kryn {

namespace {

// The blend members of one geometry, by screen: solid, 1-bit transparent
// zeros, 1-bit opaque zeros, tile samples.
#define KRYN_BLENDS(Pixels, G)                                                                     \
    {                                                                                              \
        blendArea<Pixels, SCREEN_SOLID, G>, blendArea<Pixels, SCREEN_BITS_TRANSPARENT, G>,         \
            blendArea<Pixels, SCREEN_BITS_OPAQUE, G>, blendArea<Pixels, SCREEN_SAMPLES, G>         \
    }

// The screened members of one geometry: 1-bit transparent zeros, 1-bit
// opaque zeros, tile samples.
#define KRYN_SCREENED(Pixels, G)                                                                   \
    paintScreened<Pixels, SCREEN_BITS_TRANSPARENT, G>,                                             \
        paintScreened<Pixels, SCREEN_BITS_OPAQUE, G>, paintScreened<Pixels, SCREEN_SAMPLES, G>

// Members by screen: solid, 1-bit transparent zeros, 1-bit opaque zeros,
// tile samples; the same for the blend members. Image families by kind
// nibble: 1-bit images, grey images (0x20, 0x30) on 8-bit rasters, colour
// images (0x40, 0x50) on 32-bit rasters, indexed images on both; the kinds
// that carry alpha paint only while blending. Block flattening follows
// 8-bit (kind 0x20) and 24-bit (kind 0x40) images.
const RenderFamilies GREY_FAMILIES = {
    {{
        {paintSolidRectGrey, KRYN_SCREENED(GreyPixels, AREA_RECT)},
        {paintSolidRectListGrey, KRYN_SCREENED(GreyPixels, AREA_RECT_LIST)},
        {paintSolidSpanListGrey, KRYN_SCREENED(GreyPixels, AREA_SPAN_LIST)},
        {paintSolidRowSpansGrey, KRYN_SCREENED(GreyPixels, AREA_ROW_SPANS)},
        {paintSolidColumnRunsGrey, KRYN_SCREENED(GreyPixels, AREA_COLUMN_RUNS)},
    }},
    {{
        KRYN_BLENDS(GreyPixels, AREA_RECT),
        KRYN_BLENDS(GreyPixels, AREA_RECT_LIST),
        KRYN_BLENDS(GreyPixels, AREA_SPAN_LIST),
        KRYN_BLENDS(GreyPixels, AREA_ROW_SPANS),
        KRYN_BLENDS(GreyPixels, AREA_COLUMN_RUNS),
    }},
    {paintBitImageGrey, nullptr, paintGreyImageGrey, paintGreyImageGrey, nullptr, nullptr, nullptr,
     nullptr, paintIndexedImageGrey},
    {blendBitImageGrey, nullptr, blendGreyImageGrey, blendGreyImageGrey, nullptr, nullptr, nullptr,
     nullptr, blendIndexedImageGrey, blendIndexedAlphaImageGrey, nullptr, nullptr, nullptr,
     blendGreyAlphaImageGrey},
    paintMaskGrey,
    blendMaskGrey,
    paintDirectScaledGrey,
    {nullptr, nullptr, flattenBlocksGrey},
};

const RenderFamilies COLOUR_FAMILIES = {
    {{
        {paintSolidRectColour, KRYN_SCREENED(ColourPixels, AREA_RECT)},
        {paintSolidRectListColour, KRYN_SCREENED(ColourPixels, AREA_RECT_LIST)},
        {paintSolidSpanListColour, KRYN_SCREENED(ColourPixels, AREA_SPAN_LIST)},
        {paintSolidRowSpansColour, KRYN_SCREENED(ColourPixels, AREA_ROW_SPANS)},
        {paintSolidColumnRunsColour, KRYN_SCREENED(ColourPixels, AREA_COLUMN_RUNS)},
    }},
    {{
        KRYN_BLENDS(ColourPixels, AREA_RECT),
        KRYN_BLENDS(ColourPixels, AREA_RECT_LIST),
        KRYN_BLENDS(ColourPixels, AREA_SPAN_LIST),
        KRYN_BLENDS(ColourPixels, AREA_ROW_SPANS),
        KRYN_BLENDS(ColourPixels, AREA_COLUMN_RUNS),
    }},
    {paintBitImageColour, nullptr, nullptr, nullptr, paintColourImageColour, paintColourImageColour,
     nullptr, nullptr, paintIndexedImageColour},
    {blendBitImageColour, nullptr, nullptr, nullptr, blendColourImageColour, blendColourImageColour,
     nullptr, nullptr, blendIndexedImageColour, blendIndexedAlphaImageColour, nullptr,
     blendColourAlphaImageColour},
    paintMaskColour,
    blendMaskColour,
    paintDirectScaledColour,
    {nullptr, nullptr, nullptr, nullptr, flattenBlocksColour},
};

#undef KRYN_SCREENED
#undef KRYN_BLENDS

} // namespace

const RenderFamilies& greyFamilies() {
    return GREY_FAMILIES;
}

const RenderFamilies& colourFamilies() {
    return COLOUR_FAMILIES;
}

} // namespace kryn
