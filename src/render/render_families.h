// The renderer families of one raster format, as tables the interpreters
// dispatch through. An empty slot means that member does not paint yet: the
// interpreter skips the record (it still counts as painted for delivery).
// While a band's blending is on, the blend slot is asked first; an empty
// blend slot, or one that answers false (no alpha source in play), hands
// the record to the plain member.
//
// Images: imageBlend (by kind nibble) and maskBlend hold the image and mask
// blend members. They take the same dispatch as the area members, with the
// sample alphas of imageSampleAlpha (render/blend_sources.h) and
// blendChannel; a kind without a blend member paints through its plain
// member on blended pages too.
#pragma once

#include "render/area_operand.h"
#include "render/image_operand.h"
#include "render/paint_state.h"

namespace kryn {

struct AreaFamilies {
    AreaPainter member[AREA_GEOMETRY_COUNT][SCREEN_MEMBER_COUNT];
};

struct AreaBlendFamilies {
    AreaBlendPainter member[AREA_GEOMETRY_COUNT][SCREEN_MEMBER_COUNT];
};

struct RenderFamilies {
    AreaFamilies area;           // plain members, by geometry and screen
    AreaBlendFamilies areaBlend; // asked first while blending is on
    ImagePainter image[16];      // by the high nibble of the image kind
    ImageBlendPainter imageBlend[16];
    ImagePainter mask; // 131
    ImageBlendPainter maskBlend;
    ImagePainter directScaled; // 146 through the expand buffer
    // Post-pass after an image of the given kind nibble was painted
    // (block flattening for quantised images).
    ImagePainter afterImage[16];
};

const RenderFamilies& greyFamilies();
const RenderFamilies& colourFamilies();

// Paints one area record through the member the state selects.
inline void paintArea(PaintState& state, const RenderFamilies& families, AreaGeometry geometry,
                      const AreaOperand& operand) {
    if (state.blendOn != 0) {
        const AreaBlendPainter blend = families.areaBlend.member[geometry][state.screenMember];
        if (blend != nullptr && blend(state, operand)) {
            return;
        }
    }
    const AreaPainter painter = families.area.member[geometry][state.screenMember];
    if (painter != nullptr) {
        painter(state, operand);
    }
}

} // namespace kryn
