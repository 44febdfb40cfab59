// Exported colour and raster-operation setters.
#include "kryn/kryn.h"
#include "paint/paint_setters.h"
#include "paint/set_screen.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNSetColor(const ColourValue* colour, uint16_t selector, Engine* e) {
    return (e == nullptr || colour == nullptr) ? KRYN_ERR_INVALID
                                               : kryn::setColour(e, *colour, selector);
}

KRYN_EXPORT ResultCode KRYNSetBackground(uint16_t mode, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setBackgroundMode(e, mode);
}

KRYN_EXPORT ResultCode KRYNSetLogicalFunc(uint16_t code, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setLogicalFunction(e, code);
}

KRYN_EXPORT ResultCode KRYNSetLogicalFunc2(uint16_t code, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setLogicalFunction2(e, code);
}

KRYN_EXPORT ResultCode KRYNSetScreen(const ScreenTile* tile, uint16_t opaque, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setScreen(e, tile, opaque);
}

} // extern "C"
