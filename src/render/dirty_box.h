// The rectangle of a band raster that painting has touched, inclusive on
// all sides. A band starts with the inverted box (width - 1, 0, height - 1,
// 0), so the first widening sets it to what was painted.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kryn {

struct DirtyBox {
    int32_t minX = 0;
    int32_t maxX = 0;
    int32_t minY = 0;
    int32_t maxY = 0;
};

inline void resetDirtyBox(DirtyBox& box, int32_t width, int32_t height) {
    box = DirtyBox{width - 1, 0, height - 1, 0};
}

inline bool dirtyBoxEmpty(const DirtyBox& box) {
    return box.minX > box.maxX || box.minY > box.maxY;
}

inline void widenDirtyBox(DirtyBox& box, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    box.minX = std::min(box.minX, left);
    box.maxX = std::max(box.maxX, right);
    box.minY = std::min(box.minY, top);
    box.maxY = std::max(box.maxY, bottom);
}

inline bool dirtyBoxIntersects(const DirtyBox& box, int32_t left, int32_t top, int32_t right,
                               int32_t bottom) {
    return !dirtyBoxEmpty(box) && left <= box.maxX && right >= box.minX && top <= box.maxY &&
           bottom >= box.minY;
}

} // namespace kryn
