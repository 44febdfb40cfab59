// The clip of one graphics state: the current region, the one-level saved
// region and three edge pools with their states. The operations behind
// the clip calls take it explicitly.
#pragma once

#include "engine/result_codes.h"
#include "scan/clip_region.h"
#include "scan/polyline_edges.h"

#include <cstdint>

namespace kryn {

inline constexpr int16_t CLIP_POOL_FREE = 0;
inline constexpr int16_t CLIP_POOL_BUILDING = 1;
inline constexpr int16_t CLIP_POOL_CURRENT = 2;
inline constexpr int16_t CLIP_POOL_SAVED = 3;
inline constexpr int32_t CLIP_POOL_COUNT = 3;

struct ClipStack {
    ClipRegion current;
    ClipRegion saved; // pool, ownedList, activeList null when nothing is saved
    EdgePool pools[CLIP_POOL_COUNT];
    int16_t poolState[CLIP_POOL_COUNT] = {CLIP_POOL_FREE, CLIP_POOL_FREE, CLIP_POOL_FREE};
};

// The page rectangle region with its trapezoid and two edges in one block.
struct BaseClip {
    ClipRegion region;
    Trapezoid trapezoid;
    Edge left, right;
};

// Page geometry the base clip and the clip reset need.
struct ClipPage {
    int32_t pageWidth = 0, pageHeight = 0, bandHeight = 0;
    int32_t mode = 0;
    int32_t groupFirst = 0, groupLast = 0, bandCount = 0;
};

// Replaces *base by the rectangle of the page (whole-page modes 0, 3, 5, 7,
// 9) or of its current band group.
ResultCode buildBaseClip(ScanState* scan, const ClipPage& page, BaseClip** base);

// Builds a figure's edges into the scan state; box is the area that
// matters (subpaths that miss it may be skipped).
struct EdgeSource {
    ResultCode (*build)(void* context, ScanState* scan, const ScanFloatBox& box) = nullptr;
    void* context = nullptr;
};

// The region of the source's figure within the page rectangle replaces the
// current one (KRYNClip without the path bookkeeping). KRYN_ERR_INVALID for
// a bad rule or no free pool; on failure the old region stays in force.
ResultCode clipWithEdges(ClipStack* stack, ScanState* scan, const BaseClip& base,
                         const EdgeSource& source, int32_t rule, const ClipPage& page);

// clipWithEdges for subpaths given as polylines. KRYN_ERR_INVALID for a bad
// rule or no free pool; on failure the old region stays in force.
ResultCode clipWithPolylines(ClipStack* stack, ScanState* scan, const BaseClip& base,
                             const Polyline* subpaths, int32_t count, int32_t pathRecords,
                             int32_t rule, const ClipPage& page);

// The whole page (or band group) becomes the region.
ResultCode resetClip(ClipStack* stack, ScanState* scan, const BaseClip& base, const ClipPage& page);

ResultCode pushClip(ClipStack* stack);
ResultCode popClip(ClipStack* stack);
ResultCode voidPushClip(ClipStack* stack);

// A pushed graphics state's clip: the enclosing region without ownership.
void inheritClip(const ClipStack& outer, ClipStack* inner);
// Frees every region and pool of a graphics state being discarded.
void releaseClipStack(ClipStack* stack);

} // namespace kryn
