// The round pen: a disc outline per device radius, built once per page by
// the midpoint circle algorithm and reused by every round cap and round join
// of that radius.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct PageRecord;

// One row of the disc: half its extent and its offset from the centre, both
// in sixteenths of a pixel. 32-bit, so that radii up to the pen limit (4096
// pixels, 65536 sixteenths) fit.
struct PenRow {
    int32_t extent;
    int32_t offset;
};

// Rows from the top of the disc to its bottom, 2 sixteenths apart; the
// table's vertices, (-extent, offset) down the left and (+extent, offset) up
// the right, form the disc's polygon.
struct PenCircle {
    PenCircle* next;
    int32_t radius;    // device radius in 16.16: the key
    int32_t rowCount;  // rows of the table
    int32_t maxExtent; // widest extent
    PenRow* rows;      // rowCount rows, in the same allocation

    int32_t top() const { return rows[0].offset; }
    int32_t bottom() const { return rows[rowCount - 1].offset; }
};

// Device radii from this (16.16) on have no pen: round pieces draw nothing.
inline constexpr int64_t PEN_RADIUS_LIMIT = 0x10000000;
// Pens a page keeps; building one more frees the oldest.
inline constexpr int32_t PEN_CACHE_SIZE = 16;

// The page's pen of device radius `radius` (16.16, below PEN_RADIUS_LIMIT),
// built and cached on first use. Null when memory runs out.
const PenCircle* findOrBuildPen(PageRecord* page, int32_t radius);

// Frees a page's pens.
void releasePens(PenCircle*& list);

} // namespace kryn
