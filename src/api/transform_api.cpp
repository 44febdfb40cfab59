// Exported transformation setters.
#include "geometry/transform_setters.h"
#include "kryn/kryn.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNSetMatrix(const int32_t m[6], Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setMatrix(e, m);
}

KRYN_EXPORT ResultCode KRYNSetScale(float s, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setScale(e, s);
}

KRYN_EXPORT ResultCode KRYNSetTranslation(int32_t dx, int32_t dy, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setTranslation(e, dx, dy);
}

} // extern "C"
