// Exported engine operations.
#include "engine/engine_lifecycle.h"
#include "kryn/kryn.h"

extern "C" {

KRYN_EXPORT Engine* KRYNInit(int32_t width, int32_t height, int16_t bandHeight, uint16_t resolution,
                             uint16_t deviceLevel) {
    return kryn::createEngine(width, height, bandHeight, resolution, deviceLevel);
}

KRYN_EXPORT ResultCode KRYNEnd(Engine* e) {
    if (e == nullptr) {
        return KRYN_ERR_INVALID;
    }
    kryn::destroyEngine(e);
    return KRYN_OK;
}

KRYN_EXPORT ResultCode KRYNGetPageResource(uint32_t* outWidth, uint32_t* outHeight, Engine* e) {
    if (e == nullptr || outWidth == nullptr || outHeight == nullptr) {
        return KRYN_ERR_INVALID;
    }
    *outWidth = static_cast<uint32_t>(e->pageWidth);
    *outHeight = static_cast<uint32_t>(e->pageHeight);
    return KRYN_OK;
}

} // extern "C"
