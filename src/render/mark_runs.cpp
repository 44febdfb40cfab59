#include "render/mark_runs.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

constexpr uint32_t WHITE = 0xFFFFFF;

inline bool isWhite(uint32_t pixel) {
    return (pixel & WHITE) == WHITE;
}

inline void setTag(uint32_t& pixel, uint32_t bits) {
    pixel |= bits << 24;
}

void closeRun(uint32_t* row, int32_t head, int32_t length) {
    if (length > 3) {
        setTag(row[head], RUN_TAG_LONG);
        row[head + 1] = static_cast<uint32_t>(length);
    } else {
        setTag(row[head], static_cast<uint32_t>(length) * 2u);
    }
}

// The first column from x on (up to end) whose pixel, masked, differs from
// v. Two pixels are tested at a time, since most of a band is paper or long
// runs.
int32_t skipMatching(const uint32_t* row, int32_t x, int32_t end, uint32_t v, uint32_t mask) {
    const uint64_t pairMask = (uint64_t{mask} << 32) | mask;
    const uint64_t pairValue = (uint64_t{v} << 32) | v;
    for (; x < end; x += 2) {
        uint64_t pair;
        std::memcpy(&pair, row + x, sizeof pair);
        if ((pair & pairMask) != pairValue) {
            break;
        }
    }
    while (x <= end && (row[x] & mask) == v) {
        ++x;
    }
    return x;
}

// One row of the box; answers whether it holds a non-white pixel.
bool markRow(uint32_t* row, int32_t width, int32_t minX, int32_t maxX) {
    int32_t x = skipMatching(row, minX, maxX, WHITE, WHITE);
    const bool inked = x <= maxX;
    int32_t head = 0;
    int32_t length = x; // the white columns before the ink join the run at 0
    if (inked) {
        uint32_t v = row[head];
        for (;;) {
            // Screened paint changes colour every pixel or two: a run that
            // ends at once is closed without the pairwise scan.
            if (x <= maxX && row[x] != v) {
                closeRun(row, head, length);
                head = x;
                v = row[x];
                length = 1;
                ++x;
                continue;
            }
            const int32_t next = skipMatching(row, x, maxX, v, 0xFFFFFFFFu);
            length += next - x;
            x = next;
            if (x > maxX) {
                break;
            }
            closeRun(row, head, length);
            head = x;
            v = row[x];
            length = 1;
            ++x;
        }
    }
    const int32_t rest = width - maxX - 1;
    if (rest >= 2) {
        if (!isWhite(row[head])) {
            closeRun(row, head, length);
            head = maxX + 1;
            length = rest;
        } else {
            length += rest;
        }
    }
    if (!inked) {
        setTag(row[head], RUN_TAG_BLANK);
    } else {
        closeRun(row, head, length);
    }
    return inked;
}

} // namespace

bool markRuns(uint32_t* raster, int32_t strideWords, int32_t height, const DirtyBox& box) {
    const int32_t minX = std::max(box.minX, 0);
    const int32_t maxX = std::min(box.maxX, strideWords - 1);
    const int32_t minY = std::max(box.minY, 0);
    const int32_t maxY = std::min(box.maxY, height - 1);
    if (minY > maxY || minX > maxX) {
        return false;
    }
    for (int32_t y = 0; y < height; ++y) {
        if (y < minY || y > maxY) {
            setTag(raster[int64_t{y} * strideWords], RUN_TAG_BLANK);
        }
    }
    bool inked = false;
    for (int32_t y = minY; y <= maxY; ++y) {
        inked = markRow(raster + int64_t{y} * strideWords, strideWords, minX, maxX) || inked;
    }
    return inked;
}

} // namespace kryn
