// Exported fill and clip operations.
#include "kryn/kryn.h"
#include "scan/clip_path.h"
#include "scan/fill_path.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNFill(uint16_t rule, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::fillPath(e, rule);
}

KRYN_EXPORT ResultCode KRYNClip(uint16_t rule, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::clipToPath(e, rule);
}

KRYN_EXPORT ResultCode KRYNClearClip(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::clearClip(e);
}

KRYN_EXPORT ResultCode KRYNPushClip(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::pushClipRegion(e);
}

KRYN_EXPORT ResultCode KRYNPopClip(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::popClipRegion(e);
}

KRYN_EXPORT ResultCode KRYNVoidPushClip(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::voidPushClipRegion(e);
}

} // extern "C"
