// State synchronisation around the image records (130, 131, 146).
#include "displaylist/band_state_sync.h"
#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"

#include <algorithm>

namespace kryn {

namespace {

inline constexpr uint32_t COLOUR_BITS = 0xFFFFFF;
inline constexpr uint32_t IMAGE_TARGET = 0;
inline constexpr uint8_t PATTERN_PAINT = 8;
inline constexpr uint8_t PATTERN_PAINT_ALT = 108;

ResultCode syncPhase(PageRecord* page, BandEntry* band, DisplayList* list, bool scaled, bool bitmap,
                     const ImagePhase& phase) {
    RenderResources* resources = page->resources;
    if (scaled &&
        (band->lastOrigin[0] != phase.rowOffset || band->lastOrigin[1] != phase.columnOffset)) {
        const ResultCode r = writeImageOrigin(list, phase.rowOffset, phase.columnOffset, resources);
        if (r != KRYN_OK) {
            return r;
        }
        band->lastOrigin[0] = phase.rowOffset;
        band->lastOrigin[1] = phase.columnOffset;
    }
    if (bitmap && band->lastImageMode != phase.bitOffset) {
        const ResultCode r = writeImageMode(list, phase.bitOffset, resources);
        if (r != KRYN_OK) {
            return r;
        }
        band->lastImageMode = phase.bitOffset;
    }
    return KRYN_OK;
}

// The black-and-white renderer reads no four-byte colour record: a band
// that receives one goes to the general renderer.
void clearMonochromeForAlpha(const PageRecord* page, BandEntry* band) {
    if (page->resources->alphaMode != 0) {
        band->bandMonochrome = 0;
    }
}

// Image colours: only when they changed (masks), or every time (1-bit images).
ResultCode syncImageColours(PageRecord* page, BandEntry* band, DisplayList* list, bool always) {
    const PaintDescriptor& p = page->paint;
    const bool blending = p.blendOn != 0;
    uint32_t& fore = blending ? band->lastBlendImageColour : band->lastImageColour;
    uint32_t& back = blending ? band->lastBlendImageBackColour : band->lastImageBackColour;
    const uint32_t mask = blending ? 0xFFFFFFFF : COLOUR_BITS;
    if (always || ((p.imageColour ^ fore) & mask) != 0) {
        const ResultCode r = writeImageColour(list, p.imageColour, COLOUR_FORE, page->resources);
        if (r != KRYN_OK) {
            return r;
        }
        fore = p.imageColour;
        clearMonochromeForAlpha(page, band);
    }
    if (always || ((p.imageBackColour ^ back) & mask) != 0) {
        const ResultCode r =
            writeImageColour(list, p.imageBackColour, COLOUR_BACK, page->resources);
        if (r != KRYN_OK) {
            return r;
        }
        back = p.imageBackColour;
        clearMonochromeForAlpha(page, band);
    }
    return KRYN_OK;
}

ResultCode syncKeyOneData(PageRecord* page, BandEntry* band, DisplayList* list) {
    const PaintDescriptor& p = page->paint;
    if (p.blendOn != 1 || (band->lastBlendSelectB == p.blendSelectB &&
                           std::equal(p.blendDataB, p.blendDataB + 3, band->lastBlendDataB))) {
        return KRYN_OK;
    }
    const ResultCode r =
        writeBlendData(list, p.blendDataB, p.blendSelectB, BLEND_DATA_B, page->resources);
    if (r == KRYN_OK) {
        band->lastBlendSelectB = p.blendSelectB;
        std::copy_n(p.blendDataB, 3, band->lastBlendDataB);
        band->bandMonochrome = 0;
    }
    return r;
}

ResultCode syncAfter(PageRecord* page, BandEntry* band, DisplayList* list, ImageRecordKind kind) {
    const PaintDescriptor& p = page->paint;
    ResultCode r = KRYN_OK;
    switch (kind) {
    case ImageRecordKind::MASK:
        if ((r = syncImageColours(page, band, list, false)) != KRYN_OK) {
            return r;
        }
        if ((band->lastImageColour & COLOUR_BITS) != 0 &&
            (band->lastImageColour & COLOUR_BITS) != COLOUR_BITS) {
            band->bandMonochrome = 0;
        }
        break;
    case ImageRecordKind::BITMAP:
        if (band->lastImageOpaque != p.imageOpaque) {
            if ((r = writeOpaque(list, p.imageOpaque, IMAGE_TARGET, page->resources)) != KRYN_OK) {
                return r;
            }
            band->lastImageOpaque = p.imageOpaque;
        }
        if ((r = syncImageColours(page, band, list, true)) != KRYN_OK) {
            return r;
        }
        break;
    case ImageRecordKind::OTHER:
        if ((p.paintKind == PATTERN_PAINT || p.paintKind == PATTERN_PAINT_ALT) &&
            band->lastPaintIndex != p.paintIndex) {
            if ((r = writePattern(list, p.paintIndex, page->resources)) != KRYN_OK) {
                return r;
            }
            band->lastPaintIndex = p.paintIndex;
        }
        break;
    }
    return syncKeyOneData(page, band, list);
}

} // namespace

ResultCode syncBandForImage(PageRecord* page, BandEntry* band, DisplayList* list,
                            ImageRecordKind kind, bool scaled, const ImagePhase& phase) {
    if (kind != ImageRecordKind::MASK) {
        band->bandMonochrome = 0;
    }
    // The phase records are read only by host playback; the serialiser
    // would end the block at them, so serialised pages never get them.
    const bool host = pageMode(static_cast<int32_t>(page->mode)).hostRasters;
    const bool bitmap = host && kind != ImageRecordKind::OTHER;
    ResultCode r =
        syncPhase(page, band, list, host && scaled && kind != ImageRecordKind::MASK, bitmap, phase);
    if (r == KRYN_OK) {
        r = syncBandState(page, band, list);
    }
    if (r == KRYN_OK) {
        r = syncAfter(page, band, list, kind);
    }
    return r;
}

} // namespace kryn
