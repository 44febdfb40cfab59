// Records of fill scan conversion: edges in sixteenths of a pixel, the
// vertex events that stop the sweep, and the trapezoids it produces.
#pragma once

#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

// Fill rules FILL_EVEN_ODD (0) and FILL_NONZERO (1) come from kryn.h.

inline constexpr int32_t SCAN_MODE_PAINT = 0;
inline constexpr int32_t SCAN_MODE_CLIP = 2;

// Float points beyond +-2^27 pixels are clamped (2^27 * 16 = 2^31).
inline constexpr double COORD_LIMIT_PIXELS = 134217728.0;
// Paths inside 0..16384 pixels convert without clamping.
inline constexpr float FAST_BOX_PIXELS = 16384.0f;
// Below this many path records the edge table keeps plain sorted lists.
inline constexpr int32_t SMALL_PATH_RECORDS = 40;
// A sloped trapezoid of more rows than this reaches whole bands directly.
inline constexpr int32_t LONG_TRAPEZOID_ROWS = 128;

struct Edge {
    Edge* tableNext = nullptr;
    Edge* activeNext = nullptr;
    Edge* pendingNext = nullptr;
    int32_t xTop = 0, yTop = 0;       // upper end, 1/16 pixel
    int32_t xBottom = 0, yBottom = 0; // lower end
    int32_t slope = 0;                // dx/dy * 65536 truncated; -1 when horizontal
    int64_t xAtEvent = 0;             // 1/16 pixel * 2^28
    int64_t xAtTop = 0;
    int32_t curTop = 0;
    int16_t pinned = 0;
    int16_t mark = 0;
    int64_t error = 0; // row-stepping error term on firstRow (non-positive)
    int64_t remainder = 0;
    int64_t dy = 0;
    int64_t step = 0;        // floor(dx / dy)
    int64_t firstColumn = 0; // column of the edge on firstRow
    int32_t firstRow = 0, lastRow = -1;
    int16_t direction = 0; // +1 given downward, -1 upward, 0 horizontal
};

inline constexpr int32_t EVENT_VERTEX = 0;
inline constexpr int32_t EVENT_CROSSING = 1;

struct VertexEvent {
    VertexEvent* next = nullptr;
    VertexEvent* chainNext = nullptr;
    int64_t x = 0; // 1/16 pixel * 2^28
    int32_t y = 0; // 1/16 pixel
    Edge* edgeIn = nullptr;
    Edge* edgeOut = nullptr;
    int32_t type = EVENT_VERTEX;
};

// Column limits of a trapezoid that carries none.
inline constexpr int64_t NO_COLUMN_MIN = INT64_MIN / 4;
inline constexpr int64_t NO_COLUMN_MAX = INT64_MAX / 4;

inline constexpr int16_t TRAPEZOID_CLIP_RECT = 1;

// The part of the band [yTop, yBottom) (its rows by the orientation's rule)
// between two edges. Pixels come from the edges' exact row stepping; the
// corner x values describe the shape for box tests. Column limits narrow a
// region's trapezoid to the page rectangle it was cut against.
struct Trapezoid {
    Trapezoid* next = nullptr;
    int32_t yTop = 0, yBottom = 0;
    int32_t xTopLeft = 0, xBottomLeft = 0, xTopRight = 0, xBottomRight = 0;
    const Edge* leftEdge = nullptr;
    const Edge* rightEdge = nullptr;
    int64_t minColumn = NO_COLUMN_MIN;
    int64_t maxColumn = NO_COLUMN_MAX;
    int16_t flag = 0;
};

// Integer box in 1/16 pixel: minX, maxX, minY, maxY.
struct IntBox {
    int32_t minX = INT32_MAX, maxX = INT32_MIN, minY = INT32_MAX, maxY = INT32_MIN;

    bool empty() const { return minX > maxX; }
    void include(int32_t x, int32_t y) {
        minX = x < minX ? x : minX;
        maxX = x > maxX ? x : maxX;
        minY = y < minY ? y : minY;
        maxY = y > maxY ? y : maxY;
    }
    bool meets(const IntBox& o) const {
        return !empty() && !o.empty() && minX <= o.maxX && o.minX <= maxX && minY <= o.maxY &&
               o.minY <= maxY;
    }
    bool inside(const IntBox& o) const {
        return minX >= o.minX && maxX <= o.maxX && minY >= o.minY && maxY <= o.maxY;
    }
};

// Float box in pixels: minX, maxX, minY, maxY.
struct ScanFloatBox {
    float minX = 0, maxX = 0, minY = 0, maxY = 0;
};

} // namespace kryn
