// The page's scan-conversion state: edge and event pools, the edge table of
// the fill being built, the open chain of vertex events, the trapezoids
// collected for a clip region being built, and the row-span buffer of tall
// trapezoids. It hangs off the page and lives as long as the page.
#pragma once

#include "engine/result_codes.h"
#include "scan/clip_index.h"
#include "scan/edge_table.h"
#include "scan/record_pool.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

struct ScanState {
    int32_t quarterTurns = -1; // page orientation; -1 until established
    EdgePool ownEdges;
    EdgePool* clipPool = nullptr; // set while a clip region is built
    EventPool events;
    EdgeTable table;
    VertexEvent* lastEvent = nullptr; // newest event of the open chain
    Edge* chainFirstEdge = nullptr;   // first edge of the open chain
    Trapezoid* collected = nullptr;   // clip region being built, by yTop, yBottom
    Trapezoid* collectedTail = nullptr;
    IntBox collectedBox;
    RegionIndex* collectedIndex = nullptr; // a swept clip region, instead of the list
    uint64_t regionSerial = 0;             // numbers the swept regions of the page
    ClipCursor cursor;                     // replays the bands of swept regions
    uint16_t* rowSpanPairs = nullptr;      // bandHeight (left, count) pairs
    int32_t bandHeight = 0;

    EdgePool& edgePool() { return clipPool != nullptr ? *clipPool : ownEdges; }
};

// Allocates the row-span buffer for bands of bandHeight rows.
ResultCode openScanState(ScanState* scan, int32_t quarterTurns, int32_t bandHeight);
// Frees everything the state holds, collected trapezoids included.
void closeScanState(ScanState* scan);

// One edge from the current pool with its row stepping, outside the table.
// Null when the pool is exhausted.
Edge* makeEdge(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1);

// Adds one edge in 1/16 pixel and its vertex event at (x1, y1). Equal end
// points add nothing. KRYN_ERR_NO_MEMORY when a pool is exhausted.
ResultCode addEdge(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1);
// The same in 16.16 pixels: cut to whole sixteenths first.
ResultCode addEdgeFixed(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1);
// Closes the chain of vertex events of the current subpath.
void closeEdgeChain(ScanState* scan);

// Releases the fill's edges and events and empties the table. While a clip
// region is built its pool keeps the edges the region needs.
void releaseEdges(ScanState* scan);

// Frees the trapezoids collected for a clip region.
void freeTrapezoidList(Trapezoid* list);

} // namespace kryn
