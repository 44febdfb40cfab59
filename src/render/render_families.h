// The renderer families of one raster format, as tables the interpreters
// dispatch through. An empty slot means that member does not paint yet: the
// interpreter skips the record (it still counts as painted for delivery).
// A blend slot left empty hands the record to the plain member.
#pragma once

#include "render/area_operand.h"
#include "render/image_operand.h"
#include "render/paint_state.h"

namespace kryn {

struct AreaFamilies {
    AreaPainter member[AREA_GEOMETRY_COUNT][SCREEN_MEMBER_COUNT];
};

struct RenderFamilies {
    AreaFamilies area;      // plain members, by geometry and screen
    AreaFamilies areaBlend; // members chosen while blending is on
    ImagePainter image[16]; // by the high nibble of the image kind
    ImagePainter imageBlend[16];
    ImagePainter mask; // 131
    ImagePainter maskBlend;
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
    AreaPainter painter = nullptr;
    if (state.blendOn != 0) {
        painter = families.areaBlend.member[geometry][state.screenMember];
    }
    if (painter == nullptr) {
        painter = families.area.member[geometry][state.screenMember];
    }
    if (painter != nullptr) {
        painter(state, operand);
    }
}

} // namespace kryn
