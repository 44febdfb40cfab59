#include "paint/alpha_blend.h"

#include "engine/device_level.h"
#include "engine/page_record.h"
#include "paint/blend_arithmetic.h"

#include <algorithm>

namespace kryn {

ResultCode setAlphaBlend(Engine* e, uint16_t value) {
    PageRecord* page = openPage(e);
    if (page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    page->paint.blendOn =
        e->deviceLevel >= LEVEL_ALPHA_BLEND ? static_cast<uint8_t>(value & 0xFF) : uint8_t{0};
    e->resources->alphaMode = value;
    if (value == 1 && e->alphaUsed == 0) {
        e->alphaUsed = 1;
        if (page->colourSpace == 0) {
            // Blended bands need the general renderer.
            for (int32_t i = 0; i < page->bandCount; ++i) {
                page->bands[i].bandMonochrome = 0;
            }
        }
    }
    return KRYN_OK;
}

ResultCode setConstantAlpha(Engine* e, int32_t value) {
    PageRecord* page = openPage(e);
    if (page == nullptr || value < 0 || value > static_cast<int32_t>(ALPHA_OPAQUE)) {
        return KRYN_ERR_INVALID;
    }
    page->paint.blendSelect = static_cast<uint8_t>(value);
    return KRYN_OK;
}

ResultCode setAlphaKey(Engine* e, const uint16_t* ranges, uint8_t alpha, uint16_t selector) {
    PageRecord* page = openPage(e);
    if (page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    PaintDescriptor& p = page->paint;
    uint8_t& keyAlpha = selector == 0 ? p.blendSelectA : p.blendSelectB;
    uint16_t* keyRanges = selector == 0 ? p.blendDataA : p.blendDataB;
    if (ranges == nullptr) {
        keyAlpha = static_cast<uint8_t>(ALPHA_OPAQUE);
        return KRYN_OK;
    }
    keyAlpha = alpha;
    std::copy_n(ranges, 3, keyRanges);
    return KRYN_OK;
}

} // namespace kryn
