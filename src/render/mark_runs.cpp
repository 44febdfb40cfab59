#include "render/mark_runs.h"

#include <algorithm>

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

// One row of the box; answers whether it holds a non-white pixel.
bool markRow(uint32_t* row, int32_t width, int32_t minX, int32_t maxX) {
    int32_t head = 0;
    int32_t length = minX;
    bool inked = false;
    for (int32_t x = minX; x <= maxX; ++x) {
        const uint32_t pixel = row[x];
        if (!inked) {
            if (isWhite(pixel)) {
                ++length;
                continue;
            }
            inked = true;
        }
        if (pixel == row[head]) {
            ++length;
        } else {
            closeRun(row, head, length);
            head = x;
            length = 1;
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
