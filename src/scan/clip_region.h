// A clip region: the trapezoids of a swept clip path (within the page), the
// pool holding the edges they step along, and their box.
#pragma once

#include "scan/record_pool.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

struct RegionIndex;

struct ClipRegion {
    EdgePool* pool = nullptr;        // null for an inherited or empty region
    Trapezoid* ownedList = nullptr;  // set when this state owns the trapezoids
    Trapezoid* activeList = nullptr; // in force; null: empty region, nothing painted
    IntBox intBox;                   // 1/16 pixel, bounds every pixel sample inside
    ScanFloatBox clipBox;            // intBox in pixels
    int16_t isRect = 0;              // empty, or one trapezoid with vertical sides
    // A swept region: its pieces (the lists point at its first piece, and
    // an owned region owns the index with them).
    RegionIndex* index = nullptr;
};

// The box of a trapezoid's pixels (1/16 pixel): corner x values rounded
// outward, column limits taken in exactly, so that for vertical sides the
// box admits exactly the trapezoid's pixels.
IntBox trapezoidBox(const Trapezoid& t, int32_t quarterTurns);

// Fills the corner x values of a trapezoid from its edges (left rounded
// down, right rounded up).
void setTrapezoidCorners(Trapezoid* t);

// Sets intBox, clipBox and isRect from a list of trapezoids (or an index).
void setRegionShape(ClipRegion* region, const IntBox& box);

// Frees the region's trapezoids, clears its lists and resets its pool.
void releaseClip(ClipRegion* region);

} // namespace kryn
