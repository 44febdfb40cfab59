#include "displaylist/band_state_sync.h"

#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/device_level.h"
#include "engine/page_record.h"

#include <algorithm>

namespace kryn {

namespace {

inline constexpr uint32_t SCREEN_CLASS_BITS = 0xC000;
inline constexpr uint32_t COLOUR_BITS = 0xFFFFFF;
inline constexpr uint32_t FILL_TARGET = 255;

bool sameColour(uint32_t a, uint32_t b) {
    return ((a ^ b) & COLOUR_BITS) == 0;
}

bool blackOrWhite(uint32_t colour) {
    const uint32_t c = colour & COLOUR_BITS;
    return c == 0 || c == COLOUR_BITS;
}

// Screen phase of a band: its top row within the screen cell.
uint32_t screenPhase(const PageRecord* page, const BandEntry* band) {
    const PaintDescriptor& p = page->paint;
    if (p.screenId == 0 || p.screenCellHeight <= 0) {
        return 0;
    }
    const auto phase = static_cast<uint32_t>(band->bandTop % p.screenCellHeight);
    return page->deviceLevel < LEVEL_WIDE_FIELDS ? (phase & 0xFF) : phase;
}

// Writes a paint colour when `differs`, then updates the mirror.
ResultCode syncColour(DisplayList* list, bool differs, uint32_t colour, ColourWhich which,
                      uint32_t& mirror, RenderResources* resources) {
    if (!differs) {
        return KRYN_OK;
    }
    const ResultCode r = writePaintColour(list, colour, which, resources);
    if (r == KRYN_OK) {
        mirror = colour;
    }
    return r;
}

ResultCode syncColours(const PaintDescriptor& p, BandEntry* band, DisplayList* list,
                       RenderResources* resources) {
    if (band->lastFillOpaque == 0) {
        return syncColour(list, !sameColour(p.paintColour, band->lastPaintColour), p.paintColour,
                          COLOUR_FORE, band->lastPaintColour, resources);
    }
    if (p.blendOn != 0) {
        ResultCode r = syncColour(list, p.paintColour != band->lastBlendPaintColour, p.paintColour,
                                  COLOUR_FORE, band->lastBlendPaintColour, resources);
        if (r == KRYN_OK) {
            r = syncColour(list, p.paintBackColour != band->lastBlendPaintBackColour,
                           p.paintBackColour, COLOUR_BACK, band->lastBlendPaintBackColour,
                           resources);
        }
        return r;
    }
    ResultCode r = syncColour(list, !sameColour(p.paintColour, band->lastPaintColour),
                              p.paintColour, COLOUR_FORE, band->lastPaintColour, resources);
    if (r == KRYN_OK) {
        r = syncColour(list, !sameColour(p.paintBackColour, band->lastPaintBackColour),
                       p.paintBackColour, COLOUR_BACK, band->lastPaintBackColour, resources);
    }
    return r;
}

ResultCode syncBlendKeys(const PaintDescriptor& p, BandEntry* band, DisplayList* list,
                         RenderResources* resources) {
    if (band->lastBlendSelect != p.blendSelect) {
        const ResultCode r = writeBlendSelect(list, p.blendSelect, resources);
        if (r != KRYN_OK) {
            return r;
        }
        band->lastBlendSelect = p.blendSelect;
    }
    if (band->lastBlendSelectA != p.blendSelectA ||
        !std::equal(p.blendDataA, p.blendDataA + 3, band->lastBlendDataA)) {
        const ResultCode r =
            writeBlendData(list, p.blendDataA, p.blendSelectA, BLEND_DATA_A, resources);
        if (r != KRYN_OK) {
            return r;
        }
        band->lastBlendSelectA = p.blendSelectA;
        std::copy_n(p.blendDataA, 3, band->lastBlendDataA);
    }
    return KRYN_OK;
}

} // namespace

ResultCode syncBandState(PageRecord* page, BandEntry* band, DisplayList* list) {
    const PaintDescriptor& p = page->paint;
    RenderResources* resources = page->resources;
    ResultCode r = KRYN_OK;
    if (band->lastBlendOn != p.blendOn) {
        if ((r = writeBlend(list, p.blendOn, resources)) != KRYN_OK) {
            return r;
        }
        band->lastBlendOn = p.blendOn;
    }
    if (band->lastLogicalFunction != p.logicalFunction) {
        if ((r = writeRop(list, p.logicalFunction, resources)) != KRYN_OK) {
            return r;
        }
        band->lastLogicalFunction = p.logicalFunction;
    }
    if (band->lastScreenId != p.screenId) {
        if ((r = writeScreen(list, p.screenId, screenPhase(page, band), resources)) != KRYN_OK) {
            return r;
        }
        band->lastScreenId = p.screenId;
    }
    if ((p.screenId & SCREEN_CLASS_BITS) != 0) {
        // A classed screen paints opaquely and carries its own colours.
        if (band->lastFillOpaque == 0) {
            if ((r = writeOpaque(list, 1, FILL_TARGET, resources)) != KRYN_OK) {
                return r;
            }
            band->lastFillOpaque = 1;
        }
    } else {
        if (band->lastFillOpaque != p.fillOpaque) {
            if ((r = writeOpaque(list, p.fillOpaque, FILL_TARGET, resources)) != KRYN_OK) {
                return r;
            }
            band->lastFillOpaque = p.fillOpaque;
        }
        if ((r = syncColours(p, band, list, resources)) != KRYN_OK) {
            return r;
        }
    }
    return p.blendOn == 1 ? syncBlendKeys(p, band, list, resources) : KRYN_OK;
}

ResultCode syncBandForSpans(PageRecord* page, BandEntry* band, DisplayList* list) {
    const ResultCode r = syncBandState(page, band, list);
    if (r != KRYN_OK) {
        return r;
    }
    if ((page->paint.screenId & SCREEN_CLASS_BITS) != 0) {
        band->bandMonochrome = 0;
    } else if (band->bandMonochrome != 0 &&
               (!blackOrWhite(band->lastPaintColour) || !blackOrWhite(band->lastPaintBackColour))) {
        band->bandMonochrome = 0;
    }
    return KRYN_OK;
}

} // namespace kryn
