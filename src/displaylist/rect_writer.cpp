// Rectangles (133) and full-band columns (149), merged with the rectangle
// written just before when the two form one rectangle.
#include "displaylist/record_commit.h"
#include "displaylist/record_writers.h"
#include "engine/device_level.h"
#include "engine/engine.h"
#include "paint/rop_codes.h"

namespace kryn {

namespace {

inline constexpr uint32_t MAX_COLUMN_WIDTH = 255;
inline constexpr uint32_t MAX_RECT_HEIGHT = 255; // a 133's height is 8-bit
inline constexpr uint32_t MAX_BAND_ROWS = 256;
inline constexpr uint32_t MAX_RECT_WIDTH = 0xFFFF;

// Rows [row, row + height) by columns [x, x + width).
struct Box {
    uint32_t row, x, width, height;
};

bool overlap(const Box& a, const Box& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.row < b.row + b.height &&
           b.row < a.row + a.height;
}

// Compared in full: a 149 stands for every row of the band, 256 included,
// which no 133 can hold.
bool fillsBandHeight(const DisplayList* list, uint32_t height) {
    return height == list->bandHeight;
}

ResultCode writeNewRect(DisplayList* list, const Box& b, RenderResources* resources) {
    const bool column = b.width <= MAX_COLUMN_WIDTH && fillsBandHeight(list, b.height) &&
                        resources->deviceLevel >= LEVEL_SHORT_SPANS;
    uint8_t* r = reserveRecord(list, column ? 4 : 8);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (column) {
        r[0] = DL_OP_COLUMN;
        r[1] = static_cast<uint8_t>(b.width);
        storeU16(r + 2, static_cast<uint16_t>(b.x));
    } else {
        r[0] = DL_OP_RECT;
        r[1] = static_cast<uint8_t>(b.row);
        storeU16(r + 2, static_cast<uint16_t>(b.x));
        storeU16(r + 4, static_cast<uint16_t>(b.width));
        r[6] = static_cast<uint8_t>(b.height);
    }
    const ResultCode result = finishRecord(list, column ? 4 : 8, true, resources);
    list->mergeCandidate = r; // the record stands whatever the chunk bookkeeping did
    return result;
}

// Extends a 149 column by a full-band rectangle; false when they do not form
// one column of at most 255 pixels.
bool mergeIntoColumn(uint8_t* c, const Box& b) {
    const uint32_t x0 = loadU16(c + 2);
    const uint32_t w0 = c[1];
    const uint32_t x = b.x;
    const uint32_t w = b.width;
    if (x >= x0 && x <= x0 + w0 && x + w > x0 + w0) {
        if (x + w - x0 > MAX_COLUMN_WIDTH) {
            return false;
        }
        c[1] = static_cast<uint8_t>(x + w - x0);
        return true;
    }
    if (x > x0 || x + w < x0) {
        return false;
    }
    if (x + w <= x0 + w0 && x0 + w0 - x <= MAX_COLUMN_WIDTH) {
        c[1] = static_cast<uint8_t>(x0 + w0 - x);
        storeU16(c + 2, static_cast<uint16_t>(x));
        return true;
    }
    return false;
}

// Joins two spans along one axis: [s0, s0 + l0) with [s, s + l). Returns the
// joined start and length when s continues, precedes or lies in the first.
bool joinSpans(uint32_t s0, uint32_t l0, uint32_t s, uint32_t l, uint32_t limit, uint32_t& start,
               uint32_t& length) {
    if (s >= s0 && s <= s0 + l0 && s + l > s0 + l0) {
        start = s0;
        length = s - s0 + l;
    } else if (s > s0) {
        return false;
    } else if (s + l >= s0 && s + l <= s0 + l0) {
        start = s;
        length = l0 + s0 - s;
    } else {
        return false;
    }
    return length <= limit;
}

// Merges into a 133 rectangle; false when a new record is needed.
bool mergeIntoRect(uint8_t* c, const Box& b) {
    const Box c0{c[1], loadU16(c + 2), loadU16(c + 4), c[6]};
    if (c0.row <= b.row && c0.x <= b.x && b.row + b.height <= c0.row + c0.height &&
        b.x + b.width <= c0.x + c0.width) {
        return true; // already covered
    }
    Box merged = b;
    if (!(b.x <= c0.x && b.row <= c0.row && c0.row + c0.height <= b.row + b.height &&
          c0.x + c0.width <= b.x + b.width)) {
        if (b.x == c0.x && b.width == c0.width) {
            if (!joinSpans(c0.row, c0.height, b.row, b.height, MAX_RECT_HEIGHT, merged.row,
                           merged.height)) {
                return false;
            }
        } else if (b.row == c0.row && b.height == c0.height) {
            if (!joinSpans(c0.x, c0.width, b.x, b.width, MAX_RECT_WIDTH, merged.x, merged.width)) {
                return false;
            }
        } else {
            return false;
        }
    }
    c[1] = static_cast<uint8_t>(merged.row);
    storeU16(c + 2, static_cast<uint16_t>(merged.x));
    storeU16(c + 4, static_cast<uint16_t>(merged.width));
    c[6] = static_cast<uint8_t>(merged.height);
    return true;
}

Box candidateBox(const DisplayList* list, const uint8_t* c) {
    if (c[0] == DL_OP_COLUMN) {
        return {0, loadU16(c + 2), c[1], list->bandHeight};
    }
    return {c[1], loadU16(c + 2), loadU16(c + 4), c[6]};
}

} // namespace

// Merging paints the union of two rectangles once. That is what the driver
// asked for only when painting a pixel twice equals painting it once. Under a
// logical function in NON_IDEMPOTENT_ROPS (XOR-like codes), a rectangle that
// overlaps the candidate, or lies inside it, is written as a record of its
// own so that the shared pixels are painted twice; a rectangle that only
// abuts the candidate shares no pixel and still extends it. The logical
// function in effect is the list's last 160: the candidate and the new
// rectangle are consecutive records, so both are painted with it.
ResultCode writeRect(DisplayList* list, RecordPosition at, uint32_t width, uint32_t height,
                     RenderResources* resources) {
    if (width > MAX_RECT_WIDTH || static_cast<uint32_t>(at.x) + width > 0xFFFF + 1u ||
        (height > MAX_RECT_HEIGHT && at.row + height > MAX_BAND_ROWS)) {
        return KRYN_ERR_INVALID;
    }
    const bool column = width <= MAX_COLUMN_WIDTH && fillsBandHeight(list, height) &&
                        resources->deviceLevel >= LEVEL_SHORT_SPANS;
    if (height > MAX_RECT_HEIGHT && !column) {
        // All 256 rows of a band: two records, of 255 rows and of the last
        // row (each merges as any rectangle would). When the second cannot
        // be written the first stays, like every record a failing fill made.
        const ResultCode r = writeRect(list, at, width, MAX_RECT_HEIGHT, resources);
        if (failed(r)) {
            return r;
        }
        const RecordPosition rest{static_cast<uint8_t>(at.row + MAX_RECT_HEIGHT), at.x};
        return writeRect(list, rest, width, height - MAX_RECT_HEIGHT, resources);
    }
    const Box b{at.row, at.x, width, height};
    uint8_t* c = list->mergeCandidate;
    if (c == nullptr) {
        return writeNewRect(list, b, resources);
    }
    if (NON_IDEMPOTENT_ROPS.contains(list->activeRop) && overlap(candidateBox(list, c), b)) {
        return writeNewRect(list, b, resources);
    }
    bool merged = false;
    if (c[0] == DL_OP_COLUMN) {
        merged =
            width <= MAX_COLUMN_WIDTH && fillsBandHeight(list, height) && mergeIntoColumn(c, b);
    } else if (c[0] == DL_OP_RECT) {
        merged = height <= MAX_RECT_HEIGHT && mergeIntoRect(c, b);
    } else {
        list->mergeCandidate = nullptr;
    }
    return merged ? KRYN_OK : writeNewRect(list, b, resources);
}

} // namespace kryn
