#include "scan/polyline_edges.h"

#include <cmath>

namespace kryn {

namespace {

constexpr int32_t CLAMP_LOW = -2147483647;
constexpr int32_t CLAMP_HIGH = 2147483647;

// -1 below the limit, 0 inside, +1 above.
int32_t region(double v) {
    return v < -COORD_LIMIT_PIXELS ? -1 : (v > COORD_LIMIT_PIXELS ? 1 : 0);
}

int32_t toSixteenths(double v) {
    const double s = v * 16.0;
    return s <= CLAMP_LOW ? CLAMP_LOW : (s >= CLAMP_HIGH ? CLAMP_HIGH : static_cast<int32_t>(s));
}

// The limit itself (2^27 pixels) is inside the box but 2^31 sixteenths is
// beyond int32, so the inside branch saturates too.
int32_t clampSixteenths(double v) {
    const int32_t r = region(v);
    return r < 0 ? CLAMP_LOW : (r > 0 ? CLAMP_HIGH : toSixteenths(v));
}

struct Cut {
    int32_t x = 0, y = 0;
};

// Where the line through (x0, y0)-(x1, y1) meets the limit box leaving the
// end (ex, ey), which lies outside it.
Cut cutAtBox(double x0, double y0, double x1, double y1, double ex, double ey) {
    const double dx = x1 - x0;
    const double dy = y1 - y0;
    const int32_t rx = region(ex);
    const int32_t ry = region(ey);
    Cut c;
    auto onVerticalSide = [&](double side) {
        c.x = side < 0 ? CLAMP_LOW : CLAMP_HIGH;
        c.y = toSixteenths((side - x0) * dy / dx + y0);
    };
    auto onHorizontalSide = [&](double side) {
        c.y = side < 0 ? CLAMP_LOW : CLAMP_HIGH;
        c.x = toSixteenths((side - y0) * dx / dy + x0);
    };
    const double sideX = rx * COORD_LIMIT_PIXELS;
    const double sideY = ry * COORD_LIMIT_PIXELS;
    if (rx != 0 && ry == 0) {
        onVerticalSide(sideX);
    } else if (rx == 0 && ry != 0) {
        onHorizontalSide(sideY);
    } else {
        // Corner region: the side the line meets nearer the box.
        const double yAtX = (sideX - x0) * dy / dx + y0;
        if (region(yAtX) == 0) {
            onVerticalSide(sideX);
        } else {
            onHorizontalSide(sideY);
        }
    }
    return c;
}

} // namespace

ResultCode addLineDirect(ScanState* scan, float x0, float y0, float x1, float y1) {
    return addEdgeFixed(scan, static_cast<int32_t>(x0 * 65536.0f),
                        static_cast<int32_t>(y0 * 65536.0f), static_cast<int32_t>(x1 * 65536.0f),
                        static_cast<int32_t>(y1 * 65536.0f));
}

ResultCode addLineClamped(ScanState* scan, double x0, double y0, double x1, double y1) {
    const int32_t cx0 = clampSixteenths(x0), cy0 = clampSixteenths(y0);
    const int32_t cx1 = clampSixteenths(x1), cy1 = clampSixteenths(y1);
    const bool inside0 = region(x0) == 0 && region(y0) == 0;
    const bool inside1 = region(x1) == 0 && region(y1) == 0;
    const double dx = x1 - x0;
    const double dy = y1 - y0;
    const bool vertical =
        dx == 0 || (dy != 0 && (dy / dx > COORD_LIMIT_PIXELS || dy / dx < -COORD_LIMIT_PIXELS));
    const bool horizontal =
        dy == 0 ||
        (dx != 0 && (dy / dx < 1.0 / COORD_LIMIT_PIXELS && dy / dx > -1.0 / COORD_LIMIT_PIXELS));
    if ((inside0 && inside1) || vertical || horizontal || cx0 == cx1 || cy0 == cy1) {
        return addEdge(scan, cx0, cy0, cx1, cy1);
    }
    Cut points[4];
    int32_t n = 0;
    points[n++] = {cx0, cy0};
    if (!inside0) {
        points[n++] = cutAtBox(x0, y0, x1, y1, x0, y0);
    }
    if (!inside1) {
        points[n++] = cutAtBox(x0, y0, x1, y1, x1, y1);
    }
    points[n++] = {cx1, cy1};
    for (int32_t i = 0; i + 1 < n; ++i) {
        const ResultCode r =
            addEdge(scan, points[i].x, points[i].y, points[i + 1].x, points[i + 1].y);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

namespace {

struct PolyBox {
    float minX, maxX, minY, maxY;
};

PolyBox boxOf(const Polyline& p) {
    PolyBox b{INFINITY, -INFINITY, INFINITY, -INFINITY};
    for (int32_t i = 0; i < p.count; ++i) {
        const float x = p.floatPoints != nullptr
                            ? p.floatPoints[i].x
                            : static_cast<float>(p.fixedPoints[i].x) / 65536.0f;
        const float y = p.floatPoints != nullptr
                            ? p.floatPoints[i].y
                            : static_cast<float>(p.fixedPoints[i].y) / 65536.0f;
        b.minX = x < b.minX ? x : b.minX;
        b.maxX = x > b.maxX ? x : b.maxX;
        b.minY = y < b.minY ? y : b.minY;
        b.maxY = y > b.maxY ? y : b.maxY;
    }
    return b;
}

bool meets(const PolyBox& b, const ScanFloatBox& c) {
    return b.minX <= c.maxX && c.minX <= b.maxX && b.minY <= c.maxY && c.minY <= b.maxY;
}

bool inFastBox(const PolyBox& b) {
    return b.minX >= 0 && b.minY >= 0 && b.maxX <= FAST_BOX_PIXELS && b.maxY <= FAST_BOX_PIXELS;
}

ResultCode addSubpath(ScanState* scan, const Polyline& p, bool direct) {
    for (int32_t i = 0; i < p.count; ++i) {
        const int32_t j = i + 1 == p.count ? 0 : i + 1;
        ResultCode r = KRYN_OK;
        if (p.fixedPoints != nullptr) {
            r = addEdgeFixed(scan, p.fixedPoints[i].x, p.fixedPoints[i].y, p.fixedPoints[j].x,
                             p.fixedPoints[j].y);
        } else if (direct) {
            r = addLineDirect(scan, p.floatPoints[i].x, p.floatPoints[i].y, p.floatPoints[j].x,
                              p.floatPoints[j].y);
        } else {
            r = addLineClamped(scan, p.floatPoints[i].x, p.floatPoints[i].y, p.floatPoints[j].x,
                               p.floatPoints[j].y);
        }
        if (failed(r)) {
            return r;
        }
    }
    closeEdgeChain(scan);
    return KRYN_OK;
}

} // namespace

ResultCode buildEdges(ScanState* scan, const Polyline* subpaths, int32_t subpathCount,
                      int32_t pathRecords, const ScanFloatBox& clip) {
    setTableMode(&scan->table, pathRecords);
    for (int32_t i = 0; i < subpathCount; ++i) {
        if (subpaths[i].count < 2) {
            continue;
        }
        const PolyBox b = boxOf(subpaths[i]);
        if (!meets(b, clip)) {
            continue;
        }
        const ResultCode r = addSubpath(scan, subpaths[i], inFastBox(b));
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace kryn
