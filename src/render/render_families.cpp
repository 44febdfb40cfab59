#include "render/render_families.h"

#include "render/area_solid.h"
#include "render/flatten_blocks.h"

namespace kryn {

namespace {

// Members by screen: solid, 1-bit transparent zeros, 1-bit opaque zeros,
// tile samples. Screened members and every image family are still empty;
// block flattening follows 8-bit (kind 0x20) and 24-bit (kind 0x40) images.
const RenderFamilies GREY_FAMILIES = {
    {{
        {paintSolidRectGrey, nullptr, nullptr, nullptr},
        {paintSolidRectListGrey, nullptr, nullptr, nullptr},
        {paintSolidSpanListGrey, nullptr, nullptr, nullptr},
        {paintSolidRowSpansGrey, nullptr, nullptr, nullptr},
        {paintSolidColumnRunsGrey, nullptr, nullptr, nullptr},
    }},
    {},
    {},
    {},
    nullptr,
    nullptr,
    nullptr,
    {nullptr, nullptr, flattenBlocksGrey},
};

const RenderFamilies COLOUR_FAMILIES = {
    {{
        {paintSolidRectColour, nullptr, nullptr, nullptr},
        {paintSolidRectListColour, nullptr, nullptr, nullptr},
        {paintSolidSpanListColour, nullptr, nullptr, nullptr},
        {paintSolidRowSpansColour, nullptr, nullptr, nullptr},
        {paintSolidColumnRunsColour, nullptr, nullptr, nullptr},
    }},
    {},
    {},
    {},
    nullptr,
    nullptr,
    nullptr,
    {nullptr, nullptr, nullptr, nullptr, flattenBlocksColour},
};

} // namespace

const RenderFamilies& greyFamilies() {
    return GREY_FAMILIES;
}

const RenderFamilies& colourFamilies() {
    return COLOUR_FAMILIES;
}

} // namespace kryn
