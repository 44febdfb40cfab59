#include "image/put_image.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/transform.h"
#include "image/device_quad.h"
#include "image/image_formats.h"
#include "image/image_recorders.h"
#include "image/image_sources.h"
#include "image/sample_image.h"
#include "image/sample_orientation.h"
#include "paint/paint_setup.h"
#include "paint/rop_codes.h"
#include "scan/page_recorders.h"
#include "scan/path_painting.h"

#include <cmath>
#include <cstring>

namespace kryn {

namespace {

constexpr uint32_t ROP_WHITE = 0xFF;
constexpr uint32_t MAX_UNSCALED_STRIDE = 65535; // record 130 carries 16-bit strides
constexpr double MAX_SCALE = double(UINT32_MAX) / 65536.0;

bool acceptable(const ImageDesc& d, const ImageFormatInfo* info, const PageRecord& page) {
    if (d.samples == nullptr || d.width < 1 || d.height < 1 || d.rowStride < 1) {
        return false;
    }
    if (info == nullptr) {
        return true; // taken over, then refused as out of memory
    }
    if ((info->needsBlending && page.paint.blendOn == 0) ||
        (info->needsGreyPage && page.colourSpace != 1)) {
        return false;
    }
    return d.rowStride >= packedRowBytes(d.width, info->bits);
}

// Format 24 samples whose colour is white, or format 255 samples of 255.
bool allWhite(const SampleImage& s, uint32_t format) {
    for (int64_t y = 0; y < s.height; ++y) {
        const uint8_t* row = s.data + y * s.stride;
        if (format == IMAGE_FORMAT_GREY) {
            for (int64_t x = 0; x < s.width; ++x) {
                if (row[x] != 0xFF) {
                    return false;
                }
            }
            continue;
        }
        for (int64_t x = 0; x < s.width; ++x) {
            uint32_t v = 0;
            std::memcpy(&v, row + 4 * x, 4);
            if ((v & 0xFFFFFF) != 0xFFFFFF) {
                return false;
            }
        }
    }
    return true;
}

// Fills the quad with the page's own recorders under the state's paint and
// raster operation `code`, which does not read the source: a white image,
// or an image under a raster operation that ignores it.
ResultCode fillAsArea(const GraphicsState& gs, PageRecord& page, const DeviceQuad& quad,
                      uint32_t code) {
    setupPaint(gs, page.paint);
    const uint32_t rop = setEffectiveRop(code, page.paint, false);
    if (rop == ROP_DESTINATION || page.pageQuarterTurns == -1 ||
        gs.clip.current.activeList == nullptr) {
        return KRYN_OK;
    }
    SpanRecorder recorder;
    installPageRecorders(&page, &recorder);
    const ResultCode r = fillDeviceQuad(&page.scan, quad, gs.clip.current, &recorder);
    const ResultCode flushed = flushPendingRuns(&page);
    return failed(r) ? r : flushed;
}

// White paint on white paper records nothing; otherwise bands without a
// list are skipped (as for fills).
bool skipWhite(const Engine* e, PageRecord& page) {
    if (bandsWithLists(page, e->bandCount - 1).empty()) {
        return true;
    }
    page.paintNotWhite = 0;
    return false;
}

// A white image under a copy paints the rectangle white with no screen.
ResultCode paintWhite(const Engine* e, const GraphicsState& gs, PageRecord& page,
                      const DeviceQuad& quad) {
    if (skipWhite(e, page)) {
        return KRYN_OK;
    }
    GraphicsState white = gs; // read only: shares the state's clip and path
    white.screen = ScreenTile{};
    const uint32_t screenId = page.paint.screenId;
    page.paint.screenId = 0;
    const ResultCode r = fillAsArea(white, page, quad, ROP_WHITE);
    page.paint.screenId = screenId;
    return r;
}

// Replaces the image by a copy made through `pick`; the old samples go.
ResultCode repick(SampleBuffer& owned, SampleImage& image, const TilePick& pick) {
    SampleBuffer next;
    SampleImage picked;
    const ResultCode r = pickSamples(image, pick, next, picked);
    if (failed(r)) {
        return r;
    }
    owned = std::move(next);
    image = picked;
    return KRYN_OK;
}

uint32_t fixedScale(double s) {
    if (!(s * 65536.0 >= 1.0)) {
        return 1;
    }
    return s >= MAX_SCALE ? UINT32_MAX : static_cast<uint32_t>(s * 65536.0);
}

// Resampling to the transformation's scale factor (kinds other than the
// four right-angle ones), only when it shrinks the image: enlarging by
// picking adds no information, and the scaled records enlarge without
// memory. The axes then step over the resampled samples.
ResultCode resampleToScale(const Transform& t, SampleBuffer& owned, SampleImage& image,
                           SampleAxes& axes) {
    const double m = std::fabs(double(t.scale));
    if (isRightAngleKind(t.kind) || !(m > 0.0 && m < 1.0)) {
        return KRYN_OK;
    }
    TilePick pick;
    pick.width = static_cast<int64_t>(std::ceil(image.width * m));
    pick.height = static_cast<int64_t>(std::ceil(image.height * m));
    // Steps past 2^32 (a factor below 1/65536) all pick the first sample.
    pick.stepX = pick.stepY =
        static_cast<uint64_t>(std::min(std::trunc(65536.0 / m), 4294967296.0));
    const ResultCode r = repick(owned, image, pick);
    const double ratio = double(pick.stepX) / 65536.0;
    axes = {axes.ux * ratio, axes.uy * ratio, axes.vx * ratio, axes.vy * ratio};
    return r;
}

// The samples, reduced, resampled and turned into device orientation, and
// how they lie there.
ResultCode deviceSamples(const GraphicsState& gs, const ImageFormatInfo& info, int32_t width,
                         int32_t height, SampleBuffer& owned, SampleImage& image,
                         SampleOrientation& orientation) {
    ResultCode r = KRYN_OK;
    if (info.bits == 4) {
        SampleBuffer unpacked;
        if (failed(r = unpackNibbles(image, unpacked, image))) {
            return r;
        }
        owned = std::move(unpacked);
    }
    // More samples than the destination's user units: pick as many as it has.
    const int64_t w = std::abs(int64_t{width});
    const int64_t h = std::abs(int64_t{height});
    if ((image.width > w || image.height > h) && w * h < int64_t{image.width} * image.height &&
        failed(r = repick(owned, image, resamplePick(image, w, h)))) {
        return r;
    }
    const Transform& t = gs.transform;
    const double fu = double(width) / image.width;
    const double fv = double(height) / image.height;
    SampleAxes axes{double(t.a) * fu, double(t.b) * fu, double(t.c) * fv, double(t.d) * fv};
    if (failed(r = resampleToScale(t, owned, image, axes))) {
        return r;
    }
    orientation = orientSamples(axes);
    if (orientation.turned()) {
        r = repick(owned, image, orientation.pick(image.width, image.height));
    }
    return r;
}

// Sets the page's paint for the image's records.
void setupImagePaint(const GraphicsState& gs, const ImageFormatInfo& info, PageRecord& page) {
    page.paint.imageColour = gs.imageColour;
    page.paint.imageBackColour = gs.imageBackColour;
    page.paint.imageOpaque = gs.backgroundMode;
    page.paint.paintKind = static_cast<uint8_t>(info.recordedAs);
    setupPaint(gs, page.paint);
}

ResultCode recordImage(PageRecord& page, const GraphicsState& gs, const ImageFormatInfo& info,
                       const DeviceQuad& quad, SampleBuffer& owned, const SampleImage& image,
                       const SampleOrientation& orientation) {
    PlacedImage placed;
    placed.width = image.width;
    placed.height = image.height;
    placed.stride = image.stride;
    placed.bits = image.bits;
    placed.kind = info.kind;
    const DevicePixel at = devicePosition(quad, page.pageQuarterTurns);
    placed.deviceX = at.x;
    placed.deviceY = at.y;
    placed.scaled = !(orientation.scaleX == 1.0 && orientation.scaleY == 1.0) ||
                    image.stride > MAX_UNSCALED_STRIDE;
    placed.scaleX = placed.scaled ? fixedScale(orientation.scaleX) : 0x10000;
    placed.scaleY = placed.scaled ? fixedScale(orientation.scaleY) : 0x10000;
    ImageSourceEntry fields;
    fields.width = placed.width;
    fields.height = placed.height;
    fields.stride = placed.stride;
    fields.scaleX = placed.scaleX;
    fields.scaleY = placed.scaleY;
    fields.deviceX = placed.deviceX;
    fields.deviceY = placed.deviceY;
    const ImageSourceEntry* entry = nullptr;
    ResultCode r = keepImageSource(&page, owned, fields, &entry);
    if (failed(r)) {
        return r;
    }
    placed.samples = static_cast<const uint8_t*>(entry->samples);
    page.paintNotWhite = 1;
    ImageRecording recording;
    recording.page = &page;
    recording.image = placed;
    SpanRecorder recorder;
    installImageRecorders(&recording, &recorder);
    r = fillDeviceQuad(&page.scan, quad, gs.clip.current, &recorder);
    // A list that can count no more serialised bytes is as full as memory.
    return r == KRYN_ERR_INVALID ? KRYN_ERR_NO_MEMORY : r;
}

} // namespace

ResultCode putImage(Engine* e, ImageDesc* desc, int32_t x, int32_t y, int32_t width,
                    int32_t height) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    if (gs == nullptr || page == nullptr || desc == nullptr) {
        return KRYN_ERR_INVALID;
    }
    const ImageFormatInfo* info = imageFormatInfo(desc->format);
    if (!acceptable(*desc, info, *page)) {
        return KRYN_ERR_INVALID;
    }
    SampleBuffer owned(desc->samples); // the engine's from here on
    if (info == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (width == 0 || height == 0) {
        return KRYN_OK; // an empty rectangle shows nothing
    }
    SampleImage image{owned.bytes(), desc->width, desc->height, desc->rowStride, info->bits};
    const DeviceQuad quad = userRectQuad(gs->transform, x, y, width, height);
    if (gs->logicalFunction == ROP_SOURCE &&
        (info->format == IMAGE_FORMAT_COLOUR || info->format == IMAGE_FORMAT_GREY) &&
        allWhite(image, info->format)) {
        owned.release();
        return paintWhite(e, *gs, *page, quad);
    }
    if (quadMissesClip(quad, gs->clip.current)) {
        return KRYN_OK;
    }
    SampleOrientation orientation;
    ResultCode r = deviceSamples(*gs, *info, width, height, owned, image, orientation);
    if (failed(r)) {
        return r;
    }
    setupImagePaint(*gs, *info, *page);
    const uint32_t rop = setEffectiveRop(gs->logicalFunction, page->paint, true);
    if (S_INDEPENDENT_ROPS.contains(rop)) {
        owned.release(); // painted like a path: no record reads the samples
        if (isWhitePaint(*gs) && skipWhite(e, *page)) {
            return KRYN_OK;
        }
        page->paintNotWhite = isWhitePaint(*gs) ? 0 : 1;
        return fillAsArea(*gs, *page, quad, gs->logicalFunction);
    }
    if (rop == ROP_DESTINATION || page->pageQuarterTurns == -1 ||
        gs->clip.current.activeList == nullptr) {
        return KRYN_OK;
    }
    return recordImage(*page, *gs, *info, quad, owned, image, orientation);
}

} // namespace kryn
