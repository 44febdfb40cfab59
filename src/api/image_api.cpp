// Exported image calls.
#include "engine/engine.h"
#include "image/image_table.h"
#include "image/put_image.h"
#include "kryn/kryn.h"
#include "kryn/platform.h"

extern "C" {

KRYN_EXPORT ResultCode KRYNSetImageTable(uint32_t count, const ColourValue* table,
                                         uint32_t /*reserved*/, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::setImageTable(e, count, table);
}

KRYN_EXPORT ResultCode KRYNPutImage(ImageDesc* image, int32_t x, int32_t y, int32_t width,
                                    int32_t height, Engine* e) {
    return e == nullptr ? KRYN_ERR_INVALID : kryn::putImage(e, image, x, y, width, height);
}

KRYN_EXPORT ResultCode KRYNPutImageWithMask(ImageDesc* image, ImageDesc* mask, int32_t, int32_t,
                                            int32_t, int32_t, Engine* e) {
    if (e == nullptr || e->pageSlot == nullptr || image == nullptr || mask == nullptr) {
        return KRYN_ERR_INVALID;
    }
    GlobalFree(image->samples);
    if (mask->samples != image->samples) {
        GlobalFree(mask->samples);
    }
    return KRYN_OK;
}

} // extern "C"
