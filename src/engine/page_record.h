// The open page: its header, the paint descriptor, and one BandEntry per band.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"
#include "geometry/path_pool.h"
#include "paint/paint_descriptor.h"
#include "scan/scan_state.h"

#include <cstdint>

namespace kryn {

struct DisplayList;
struct ImageSourceEntry;
struct PenCircle;
struct RendererColourTable;

// Marks an empty band range (first > last).
inline constexpr int16_t RANGE_EMPTY_FIRST = 32767;
inline constexpr int16_t RANGE_EMPTY_LAST = -1;

struct BandRange {
    int16_t first = RANGE_EMPTY_FIRST;
    int16_t last = RANGE_EMPTY_LAST;

    bool empty() const { return first == RANGE_EMPTY_FIRST; }
    void include(int32_t index) {
        if (index < first) {
            first = static_cast<int16_t>(index);
        }
        if (index > last) {
            last = static_cast<int16_t>(index);
        }
    }
    void clear() { *this = BandRange(); }
};

// Per-band mirror of the state last recorded into the band's list, so that
// state records are written into a band only when they change.
struct BandEntry {
    DisplayList* list = nullptr; // created on first use by getBandList
    uint32_t lastLogicalFunction = DEFAULT_ROP;
    void* bandRegion = nullptr;         // per-band clip region, released with the band
    uint8_t* runBuffer = nullptr;       // fill recorder buffers handed to 132/141,
    uint8_t* columnRunBuffer = nullptr; // 139
    uint8_t* rectBuffer = nullptr;      // and 142
    uint32_t lastImageColour = 0;
    uint32_t lastImageBackColour = WHITE;
    uint32_t lastPaintColour = 0;
    uint32_t lastPaintBackColour = WHITE;
    uint32_t lastScreenId = 0;
    uint32_t lastPaintIndex = NO_PAINT_INDEX;
    uint16_t lastFillOpaque = 1;
    uint16_t lastImageOpaque = 1;
    uint32_t lastOrigin[2] = {0, 0};
    uint32_t lastImageMode = 0;
    // Fields below survive a band flush.
    int32_t bandTop = 0;         // first device row of the band
    uint16_t bandMonochrome = 1; // only black and white recorded so far
    uint32_t lastBlendOn = 0;
    uint8_t lastBlendSelect = 255;
    uint8_t lastBlendSelectA = 255;
    uint8_t lastBlendSelectB = 255;
    uint16_t lastBlendDataA[3] = {BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT};
    uint16_t lastBlendDataB[3] = {BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT};
    uint32_t lastBlendImageColour = 0;
    uint32_t lastBlendImageBackColour = WHITE;
    uint32_t lastBlendPaintColour = 0;
    uint32_t lastBlendPaintBackColour = WHITE;
};

struct PageRecord {
    RenderResources* resources = nullptr;
    Engine* engine = nullptr;
    uint32_t mode = 0;
    void* clipRegionHold = nullptr; // region released at page end
    PaintDescriptor paint;
    int32_t pageWidth = 0;
    int32_t pageHeight = 0;
    int32_t bandHeight = 0;
    int32_t bandCount = 0; // band entries (one more than the engine's in mode 3)
    uint16_t resolution = 0;
    void* regionHold = nullptr; // a further region released at page end
    BandRange dirty;            // bands that hold a DisplayList
    BandRange group;            // current band group (band-group modes)
    uint32_t deviceLevel = 0;
    int32_t pageQuarterTurns = -1; // orientation; -1 until established
    uint32_t colourSpace = 0;
    uint16_t reverseOrder = 0;
    PathPool pathPool;          // every subpath and segment of the page's paths
    ScanState scan;             // edges, events and buffers of scan conversion
    uint16_t paintNotWhite = 1; // 0: white paint, bands without a list are skipped
    BandRange pendingRuns;      // bands whose run buffers await writing
    BandEntry* bands = nullptr; // bandCount entries, in the same allocation
    // Round pens of the page's strokes, newest first.
    PenCircle* penCircles = nullptr;
    // Images whose samples the page's records point into, newest first;
    // released with the page (image/image_sources.h).
    ImageSourceEntry* imageSources = nullptr;
    // Colour tables of indexed images, newest first (image/image_table.h).
    RendererColourTable* colourTables = nullptr;
};

// Allocates and initialises a page for an engine, bands included, and
// prepares the renderer for the mode. KRYN_ERR_NO_MEMORY leaves nothing
// allocated.
ResultCode createPageRecord(Engine* e, int32_t mode, PageRecord** out);

// Frees every band's storage and the record.
void destroyPageRecord(PageRecord* page);

// Stores the band's list in *out, creating it on first use (a new list
// widens the recorded range).
ResultCode getBandList(PageRecord* page, int32_t bandIndex, DisplayList** out);

// The bands that may hold a list: the recorded range, widened by the page's
// last band (`lastBand`, the engine's band count - 1) while that holds one.
// KRYNNextBand never sends the last band yet empties the recorded range, so
// from then on the last band's list lives outside the range; page close
// still plays it, and page release frees every band.
BandRange bandsWithLists(const PageRecord& page, int32_t lastBand);

// Frees the band's region and run buffers (its list must already be freed)
// and resets the mirror fields that a flushed band starts again from.
void resetBand(BandEntry* band);

// Frees the band's list with everything its records own, then resetBand.
void releaseBand(BandEntry* band);

} // namespace kryn
