// Cutting a device rectangle's rows into band pieces: the rows each band
// holds, at most a given number a piece (records carry 8-bit row counts).
#pragma once

#include "engine/result_codes.h"
#include "scan/span_recorder.h"

#include <algorithm>
#include <cstdint>

namespace kryn {

struct PageRecord;

struct BandPiece {
    int32_t band; // band index
    int32_t y;    // first device row
    int32_t row;  // that row within the band
    int32_t rows; // rows of the piece
};

// Calls fn(piece) for rows y0..y1 (y0 >= 0) band by band, top down, pieces
// of at most maxRows rows; stops at the first failure and answers it.
template <class Fn>
ResultCode forEachBandPiece(int32_t bandHeight, int32_t y0, int32_t y1, int32_t maxRows, Fn&& fn) {
    for (int32_t y = y0; y <= y1;) {
        const int32_t band = y / bandHeight;
        const int32_t row = y - band * bandHeight;
        const int32_t rows = std::min({bandHeight - row, y1 - y + 1, maxRows});
        const ResultCode r = fn(BandPiece{band, y, row, rows});
        if (failed(r)) {
            return r;
        }
        y += rows;
    }
    return KRYN_OK;
}

// The recorders of images and masks: every span and rectangle the fill
// hands over is cut into band pieces of at most maxRows rows and maxWidth
// columns, and each piece goes to `piece` (columns x0..x1, both inside the
// page). The first failure stops the fill.
struct BandPieceRecorder {
    PageRecord* page = nullptr;
    int32_t maxRows = 255;
    int32_t maxWidth = 65535;
    ResultCode (*piece)(void* ctx, const BandPiece& rows, int32_t x0, int32_t x1) = nullptr;
    void* ctx = nullptr;
};

// Fills *recorder with span and rectangle recorders over *pieces (which
// must outlive the fill), bounded by the page's raster like the page's own
// recorders.
void installBandPieceRecorders(BandPieceRecorder* pieces, SpanRecorder* recorder);

} // namespace kryn
