// Exported alpha-blending setters, and the two accepted operations that do
// nothing (gradient fills and fitted images).
#include "kryn/kryn.h"
#include "paint/alpha_blend.h"

namespace {

// One operation behind both names: no argument is read, the handle may be
// null, nothing is recorded.
ResultCode acceptAndIgnore(uintptr_t, uintptr_t, uintptr_t, uintptr_t, uintptr_t, Engine*) {
    return KRYN_OK;
}

} // namespace

extern "C" {

KRYN_EXPORT ResultCode KRYNAlphaBlend(uint16_t value, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setAlphaBlend(e, value);
}

KRYN_EXPORT ResultCode KRYNSetConstAlphaBlend(int32_t value, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setConstantAlpha(e, value);
}

KRYN_EXPORT ResultCode KRYNSetAlphaBlendTable(const uint16_t ranges[3], uint8_t alpha,
                                              uint16_t selector, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setAlphaKey(e, ranges, alpha, selector);
}

KRYN_EXPORT ResultCode KRYNGradientFill(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d,
                                        uintptr_t f, Engine* e) {
    return acceptAndIgnore(a, b, c, d, f, e);
}

KRYN_EXPORT ResultCode KRYNFitImage(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t f,
                                    Engine* e) {
    return acceptAndIgnore(a, b, c, d, f, e);
}

} // extern "C"
