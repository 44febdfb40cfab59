// Exported mask and image cache operations.
#include "image/image_cache.h"
#include "image/put_image_mask.h"
#include "kryn/kryn.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNPutImageMask(ImageDesc* mask, int32_t x, int32_t y, uint16_t ownership,
                                        Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::putImageMask(e, mask, x, y, ownership);
}

KRYN_EXPORT ResultCode KRYNSetImageCacheInfo(uint16_t slots, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setImageCacheInfo(e, slots);
}

KRYN_EXPORT ResultCode KRYNSetImageCache(uint16_t key, int16_t width, int16_t height,
                                         uintptr_t /*reserved*/, const uint8_t* bitmap,
                                         uint16_t slot, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID
                        : kryn::setImageCache(e, key, width, height, bitmap, slot);
}

KRYN_EXPORT ResultCode KRYNPutImageCache(int32_t x, int32_t y, uint16_t slot, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::putImageCache(e, x, y, slot);
}

KRYN_EXPORT ResultCode KRYNClearImageCache(uint16_t slot, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::clearImageCache(e, slot);
}

} // extern "C"
