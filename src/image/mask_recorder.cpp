#include "image/mask_recorder.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/record_writers.h"
#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/saturate.h"
#include "paint/paint_setup.h"
#include "paint/rop_codes.h"
#include "scan/page_recorders.h"

#include <algorithm>

namespace kryn {

namespace {

constexpr int32_t MAX_PIECE_WIDTH = 65535; // record 131 carries 16-bit widths

// One band piece of the mask: rows of one band, columns cut to the mask.
ResultCode recordPiece(const MaskPlacement& mask, const BandPiece& rows, int32_t x0, int32_t x1) {
    const int64_t left = std::max<int64_t>(x0, mask.deviceX);
    const int64_t right = std::min<int64_t>(x1, mask.deviceX + mask.width - 1);
    const int64_t top = std::max<int64_t>(rows.y, mask.deviceY);
    const int64_t bottom =
        std::min<int64_t>(rows.y + rows.rows - 1, mask.deviceY + mask.height - 1);
    if (left > right || top > bottom) {
        return KRYN_OK;
    }
    PageRecord* page = mask.page;
    DisplayList* list = nullptr;
    ResultCode r = getBandList(page, rows.band, &list);
    if (failed(r)) {
        return r;
    }
    const int64_t column = left - mask.deviceX;
    const auto phase = static_cast<uint32_t>(column & 7);
    r = syncBandForImage(page, &page->bands[rows.band], list, ImageRecordKind::MASK, false,
                         ImagePhase{phase, 0, 0});
    if (failed(r)) {
        return r;
    }
    ImageSource source{mask.bits + int64_t{mask.stride} * (top - mask.deviceY) + column / 8,
                       static_cast<uint32_t>(right - left + 1),
                       static_cast<uint32_t>(bottom - top + 1), static_cast<uint32_t>(mask.stride),
                       static_cast<uint8_t>(phase)};
    const RecordPosition at{static_cast<uint8_t>(rows.row + (top - rows.y)),
                            static_cast<uint16_t>(left)};
    r = writeMaskImage(list, 0, at, static_cast<uint16_t>(source.columns),
                       static_cast<uint8_t>(source.rows), source, page->resources);
    // A list that can count no more serialised bytes is as full as memory.
    return r == KRYN_ERR_INVALID ? KRYN_ERR_NO_MEMORY : r;
}

ResultCode recordPieceOf(void* context, const BandPiece& rows, int32_t x0, int32_t x1) {
    return recordPiece(*static_cast<const MaskPlacement*>(context), rows, x0, x1);
}

// The first pixel whose sample lies at or after `sixteenths` (strict:
// beyond it), and the last one before `end` (strict: at or before it).
int64_t firstCovered(int64_t sixteenths, bool strict) {
    return (sixteenths + (strict ? 16 : 15)) >> 4;
}
int64_t lastCovered(int64_t end, bool strict) {
    return strict ? end >> 4 : ((end + 15) >> 4) - 1;
}

// The page's paint for mask records.
void setupMaskPaint(const GraphicsState& gs, PageRecord& page) {
    setupPaint(gs, page.paint);
    page.paint.imageColour = gs.colour;
    page.paint.imageBackColour = gs.backColour;
    setEffectiveRop(ROP_SOURCE, page.paint, true);
}

// The mask's pixels in columns x0..x1 of rows y0..y1 (inside the page
// raster), band by band.
ResultCode recordMaskRect(const MaskPlacement& mask, int32_t x0, int32_t x1, int32_t y0,
                          int32_t y1) {
    return forEachBandPiece(
        mask.page->bandHeight, y0, y1, 255, [&](const BandPiece& rows) -> ResultCode {
            for (int32_t x = x0; x <= x1; x += MAX_PIECE_WIDTH) {
                const ResultCode r =
                    recordPiece(mask, rows, x, std::min(x1, x + MAX_PIECE_WIDTH - 1));
                if (failed(r)) {
                    return r;
                }
            }
            return KRYN_OK;
        });
}

// The pixels of the device box that the rectangular clip admits by the
// page's pixel rule.
ResultCode recordMaskInsideRect(const MaskPlacement& mask, const ClipRegion& clip,
                                int32_t quarterTurns, const DeviceBox& box) {
    // The box in sixteenths as the fill would cut it, then cut to the clip
    // rectangle, whose box admits exactly its pixels by the same rule.
    const IntBox& c = clip.intBox;
    const int64_t left = std::max<int64_t>(saturateToInt32(16.0 * box.minX), c.minX);
    const int64_t right = std::min<int64_t>(saturateToInt32(16.0 * box.maxX), c.maxX);
    const int64_t top = std::max<int64_t>(saturateToInt32(16.0 * box.minY), c.minY);
    const int64_t bottom = std::min<int64_t>(saturateToInt32(16.0 * box.maxY), c.maxY);
    const bool strictX = quarterTurns == 1 || quarterTurns == 2;
    const bool strictY = quarterTurns >= 2;
    SpanRecorder page;
    installPageRecorders(mask.page, &page);
    const int64_t x0 = std::max<int64_t>(firstCovered(left, strictX), page.bounds.minX);
    const int64_t x1 = std::min<int64_t>(lastCovered(right, strictX), page.bounds.maxX);
    const int64_t y0 = std::max<int64_t>(firstCovered(top, strictY), page.bounds.minY);
    const int64_t y1 = std::min<int64_t>(lastCovered(bottom, strictY), page.bounds.maxY);
    if (x0 > x1 || y0 > y1) {
        return KRYN_OK;
    }
    return recordMaskRect(mask, static_cast<int32_t>(x0), static_cast<int32_t>(x1),
                          static_cast<int32_t>(y0), static_cast<int32_t>(y1));
}

// The recorders through which a fill records the mask; *mask must outlive
// the fill.
void installMaskRecorders(const MaskPlacement* mask, BandPieceRecorder* pieces,
                          SpanRecorder* recorder) {
    pieces->page = mask->page;
    pieces->maxRows = 255;
    pieces->maxWidth = MAX_PIECE_WIDTH;
    pieces->piece = recordPieceOf;
    pieces->ctx = const_cast<MaskPlacement*>(mask);
    installBandPieceRecorders(pieces, recorder);
}

// The quad is a rectangle with sides along the device axes: its fill
// inside a rectangular clip is its box cut by the clip.
bool isUpright(const DeviceQuad& q) {
    return (q.x[0] == q.x[3] && q.x[1] == q.x[2] && q.y[0] == q.y[1] && q.y[2] == q.y[3]) ||
           (q.x[0] == q.x[1] && q.x[2] == q.x[3] && q.y[0] == q.y[3] && q.y[1] == q.y[2]);
}

} // namespace

ResultCode paintMaskQuad(const GraphicsState& gs, const MaskPlacement& mask,
                         const DeviceQuad& quad) {
    PageRecord& page = *mask.page;
    setupMaskPaint(gs, page);
    const ClipRegion& clip = gs.clip.current;
    ResultCode r = KRYN_OK;
    if (clip.isRect != 0 && isUpright(quad)) {
        r = recordMaskInsideRect(mask, clip, page.pageQuarterTurns, quadBox(quad));
    } else {
        BandPieceRecorder pieces;
        SpanRecorder recorder;
        installMaskRecorders(&mask, &pieces, &recorder);
        r = fillDeviceQuad(&page.scan, quad, clip, &recorder);
    }
    // A list that can count no more serialised bytes is as full as memory.
    return r == KRYN_ERR_INVALID ? KRYN_ERR_NO_MEMORY : r;
}

} // namespace kryn
