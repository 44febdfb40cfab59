#include "image/put_image_mask.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "image/bitmap_orientation.h"
#include "image/device_quad.h"
#include "image/image_sources.h"
#include "image/mask_recorder.h"
#include "image/sample_image.h"

#include <cstring>

namespace kryn {

namespace {

constexpr uint16_t OWNERSHIP_PASSES = 1;
constexpr uint32_t MASK_FORMAT = 1;

bool acceptable(const ImageDesc& d) {
    return d.samples != nullptr && d.format == MASK_FORMAT && d.width >= 1 && d.height >= 1 &&
           d.rowStride >= 1 && d.rowStride >= packedRowBytes(d.width, 1);
}

// The mask in device orientation, in a buffer the page will own: the
// caller's own buffer when it was handed over and needs no change, else a
// packed copy (turned, mirrored or resampled as the orientation says).
ResultCode deviceBitmap(const ImageDesc& d, SampleBuffer& owned, const BitmapOrientation& o,
                        SampleBuffer& device, SampleImage& bits) {
    const SampleImage given{static_cast<const uint8_t*>(d.samples), d.width, d.height, d.rowStride,
                            1};
    if (!owned.empty() && isIdentityPick(o) && d.rowStride <= MAX_DEVICE_BITMAP_ROW_BYTES) {
        device = std::move(owned);
        bits = given;
        return KRYN_OK;
    }
    ResultCode r = KRYN_OK;
    if (isIdentityPick(o)) {
        // A plain copy, row by row (most masks of a page are text).
        const int64_t rowBytes = packedRowBytes(d.width, 1);
        auto* copy = static_cast<uint8_t*>(allocBytes(size_t(rowBytes * d.height)));
        if (copy == nullptr) {
            r = KRYN_ERR_NO_MEMORY;
        } else {
            if (given.stride == rowBytes) {
                std::memcpy(copy, given.data, size_t(rowBytes * d.height));
            }
            for (int64_t y = 0; y < d.height && given.stride != rowBytes; ++y) {
                std::memcpy(copy + y * rowBytes, given.data + y * given.stride, size_t(rowBytes));
            }
            device = SampleBuffer(copy);
            bits = {copy, d.width, d.height, rowBytes, 1};
        }
    } else {
        r = pickSamples(given, o.pick, device, bits);
    }
    owned.release(); // a handed-over buffer goes once copied, or when the copy fails
    return failed(r) ? KRYN_ERR_NO_MEMORY : KRYN_OK;
}

} // namespace

ResultCode putImageMask(Engine* e, const ImageDesc* mask, int32_t x, int32_t y,
                        uint16_t ownership) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    if (gs == nullptr || page == nullptr || mask == nullptr || !acceptable(*mask)) {
        return KRYN_ERR_INVALID;
    }
    // From here on a handed-over buffer is the engine's: kept for the
    // page's records or released on every return.
    SampleBuffer owned(ownership == OWNERSHIP_PASSES ? mask->samples : nullptr);
    const Transform& t = gs->transform;
    const DeviceQuad quad = userRectQuad(t, x, y, mask->width, mask->height);
    if (quadMissesClip(quad, gs->clip.current) || page->pageQuarterTurns == -1) {
        return KRYN_OK;
    }
    BitmapOrientation o;
    switch (orientBitmap(t.a, t.b, t.c, t.d, mask->width, mask->height, o)) {
    case BitmapFit::EMPTY:
        return KRYN_OK;
    case BitmapFit::TOO_LARGE:
        return KRYN_ERR_NO_MEMORY;
    case BitmapFit::FITS:
        break;
    }
    SampleBuffer device;
    SampleImage bits;
    ResultCode r = deviceBitmap(*mask, owned, o, device, bits);
    if (failed(r)) {
        return r;
    }
    const DevicePixel at = devicePosition(quad, page->pageQuarterTurns);
    ImageSourceEntry fields;
    fields.width = bits.width;
    fields.height = bits.height;
    fields.stride = bits.stride;
    fields.deviceX = at.x;
    fields.deviceY = at.y;
    const ImageSourceEntry* entry = nullptr;
    if (failed(r = keepImageSource(page, device, fields, &entry))) {
        return r;
    }
    MaskPlacement placement;
    placement.page = page;
    placement.bits = static_cast<const uint8_t*>(entry->samples);
    placement.width = bits.width;
    placement.height = bits.height;
    placement.stride = static_cast<int32_t>(bits.stride);
    placement.deviceX = at.x;
    placement.deviceY = at.y;
    // Never KRYN_ERR_INVALID, which would tell the caller the buffer is still theirs.
    return paintMaskQuad(*gs, placement, quad);
}

} // namespace kryn
