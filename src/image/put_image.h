// KRYNPutImage and KRYNPutImageWithMask.
#pragma once

#include "engine/engine.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Places a sampled image into the user rectangle x, y, width, height (the
// corner (x, y) takes sample (0, 0)). Validation first: KRYN_ERR_INVALID
// without an open page, for a null description or null samples, sizes or a
// stride below 1, a stride shorter than a row, or a format the page does not
// take now; the buffer then stays with the caller. From there on the engine
// owns the buffer: every other answer leaves it released or kept by the page
// until the page ends. KRYN_OK when nothing shows (an empty rectangle, the
// image outside the clip); KRYN_ERR_NO_MEMORY when memory runs out, for a
// format no image has, and when a band list can count no more bytes.
ResultCode putImage(Engine* e, ImageDesc* image, int32_t x, int32_t y, int32_t width,
                    int32_t height);

} // namespace kryn
