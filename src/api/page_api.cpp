// Exported page and band operations.
#include "engine/page_lifecycle.h"
#include "kryn/kryn.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNNewPage(int16_t mode, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::newPage(e, mode);
}

KRYN_EXPORT ResultCode KRYNClosePage(OutputCallback cb, uintptr_t context, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::closePage(e, cb, context);
}

KRYN_EXPORT ResultCode KRYNDisposePage(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::disposePage(e);
}

KRYN_EXPORT ResultCode KRYNNextBand(uint32_t bandsPerGroup, OutputCallback cb, uintptr_t context,
                                    Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::nextBand(e, bandsPerGroup, cb, context);
}

KRYN_EXPORT ResultCode KRYNSetReverseSide(Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setReverseSide(e);
}

KRYN_EXPORT ResultCode KRYNGetPageInfo(uint16_t out[6], Engine* e) {
    return (e == nullptr || out == nullptr) ? KRYN_ERR_INVALID : kryn::getPageInfo(e, out);
}

} // extern "C"
