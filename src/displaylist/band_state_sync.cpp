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

// Writes one paint colour when the band's colour slots would differ from
// it, then mirrors what the record set: the three channels always, the
// whole word (alpha included) when it was the four-byte form. While
// blending, the alpha byte counts too. Comparing both mirrors (rather than
// only the one of the current mode) keeps a band right when blending comes
// and goes: a colour recorded before blending was switched on does not
// hide a change of colour after it.
ResultCode syncPaintColour(const PaintDescriptor& p, BandEntry* band, DisplayList* list,
                           ColourWhich which, RenderResources* resources) {
    const bool fore = which == COLOUR_FORE;
    const uint32_t colour = fore ? p.paintColour : p.paintBackColour;
    uint32_t& plain = fore ? band->lastPaintColour : band->lastPaintBackColour;
    uint32_t& withAlpha = fore ? band->lastBlendPaintColour : band->lastBlendPaintBackColour;
    if (sameColour(colour, plain) && (p.blendOn == 0 || colour == withAlpha)) {
        return KRYN_OK;
    }
    const ResultCode r = writePaintColour(list, colour, which, resources);
    if (r != KRYN_OK) {
        return r;
    }
    plain = colour;
    if (resources->alphaMode != 0) {
        withAlpha = colour;
        band->bandMonochrome = 0; // the black-and-white renderer has no four-byte colours
    }
    return KRYN_OK;
}

// Transparent fills carry the paint colour only.
ResultCode syncColours(const PaintDescriptor& p, BandEntry* band, DisplayList* list,
                       RenderResources* resources) {
    ResultCode r = syncPaintColour(p, band, list, COLOUR_FORE, resources);
    if (r == KRYN_OK && band->lastFillOpaque != 0) {
        r = syncPaintColour(p, band, list, COLOUR_BACK, resources);
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
        band->bandMonochrome = 0;
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
        band->bandMonochrome = 0;
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
        band->bandMonochrome = 0;
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
