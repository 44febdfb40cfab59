// Exported graphics-state stack and page-wide settings.
#include "engine/graphics_state.h"
#include "engine/page_settings.h"
#include "kryn/kryn.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNPushGState(Engine* e) {
    if (e == nullptr || e->pageSlot == nullptr) {
        return KRYN_ERR_INVALID;
    }
    return kryn::pushGraphicsState(e->pageSlot);
}

KRYN_EXPORT ResultCode KRYNPopGState(Engine* e) {
    if (e == nullptr || e->pageSlot == nullptr) {
        return KRYN_ERR_INVALID;
    }
    return kryn::popGraphicsState(e);
}

KRYN_EXPORT ResultCode KRYNSelectSpace(int32_t space, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::selectColourSpace(e, space);
}

KRYN_EXPORT ResultCode KRYNColorAttribute(uint32_t a, uint32_t b, uint32_t c, Engine* e) {
    if (e == nullptr) {
        return KRYN_ERR_INVALID;
    }
    kryn::setColourAttributes(e, a, b, c);
    return KRYN_OK;
}

KRYN_EXPORT ResultCode KRYNSetQuantization(Engine* e) {
    if (e == nullptr) {
        return KRYN_ERR_INVALID;
    }
    kryn::setQuantization(e);
    return KRYN_OK;
}

} // extern "C"
