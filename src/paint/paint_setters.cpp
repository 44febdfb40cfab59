#include "paint/paint_setters.h"

#include "engine/graphics_state.h"

namespace kryn {
namespace {

GraphicsState* topState(const Engine* e) {
    return e->pageSlot == nullptr ? nullptr : e->pageSlot->gstateTop;
}

ResultCode storeCode(Engine* e, uint16_t code, uint32_t GraphicsState::*field) {
    GraphicsState* state = topState(e);
    if (state == nullptr || code > 255) {
        return KRYN_ERR_INVALID;
    }
    state->*field = code;
    return KRYN_OK;
}

} // namespace

ResultCode setColour(Engine* e, ColourValue colour, uint16_t selector) {
    GraphicsState* state = topState(e);
    if (state == nullptr) {
        return KRYN_ERR_INVALID;
    }
    (selector == 0 ? state->colour : state->backColour) = colour;
    return KRYN_OK;
}

ResultCode setBackgroundMode(Engine* e, uint16_t mode) {
    GraphicsState* state = topState(e);
    if (state == nullptr) {
        return KRYN_ERR_INVALID;
    }
    state->backgroundMode = mode;
    return KRYN_OK;
}

ResultCode setLogicalFunction(Engine* e, uint16_t code) {
    return storeCode(e, code, &GraphicsState::logicalFunction);
}

ResultCode setLogicalFunction2(Engine* e, uint16_t code) {
    return storeCode(e, code, &GraphicsState::logicalFunction2);
}

} // namespace kryn
