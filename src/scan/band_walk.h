// One band of the sweep between two event lines: the active edges, left to
// right, are paired by the fill rule, and the piece of the band between each
// pair is emitted. Pieces that need no clipping go straight to the recorder
// with row steppers kept on the edges from band to band, so that a band of
// one row costs no division; the others take the general route.
#pragma once

#include "engine/result_codes.h"
#include "scan/active_order.h"
#include "scan/emit_trapezoid.h"

#include <cstdint>

namespace kryn {

struct RegionBuilder;

struct BandWalk {
    ScanState* scan = nullptr;
    const ScanTarget* target = nullptr;
    RegionBuilder* region = nullptr; // collects the pieces of a clip region being built
    int32_t rule = FILL_NONZERO;
    int32_t quarterTurns = 0;
    // Bands outside these lines emit nothing (they miss the clip box).
    int64_t minLine = INT64_MIN, maxLine = INT64_MAX;
    // Rows outside these emit nothing (they miss the raster).
    int64_t minRow = INT64_MIN, maxRow = INT64_MAX;
    // The nodes by table index, with their walk fields.
    SweepNode* nodes = nullptr;
    WalkNode* walkNodes = nullptr;
};

// Sets the limits and routes of a walk for its target.
void prepareBandWalk(BandWalk* walk);

// True when the band [yTop, yBottom) with rows firstRow..lastRow can emit
// anything.
inline bool bandMatters(const BandWalk& w, int64_t yTop, int64_t yBottom, int64_t firstRow,
                        int64_t lastRow) {
    return firstRow <= lastRow && yTop <= w.maxLine && yBottom >= w.minLine &&
           lastRow >= w.minRow && firstRow <= w.maxRow;
}

// Emits the band's pieces in order, from the leftmost active node.
ResultCode walkBand(const BandWalk& w, SweepNode* first, int64_t yTop, int64_t yBottom,
                    int64_t firstRow, int64_t lastRow);

} // namespace kryn
