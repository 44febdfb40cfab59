#include "scan/mark_crossings.h"

#include "scan/wide_math.h"

namespace kryn {

namespace {

// Cross product (b - a) x (p - a), exact.
Int128 side(int64_t ax, int64_t ay, int64_t bx, int64_t by, int64_t px, int64_t py) {
    return mul128(bx - ax, py - ay) - mul128(by - ay, px - ax);
}

bool boxesOverlap(const Edge& a, const Edge& b) {
    const int32_t aMin = a.xTop < a.xBottom ? a.xTop : a.xBottom;
    const int32_t aMax = a.xTop < a.xBottom ? a.xBottom : a.xTop;
    const int32_t bMin = b.xTop < b.xBottom ? b.xTop : b.xBottom;
    const int32_t bMax = b.xTop < b.xBottom ? b.xBottom : b.xTop;
    return a.yTop < b.yBottom && b.yTop < a.yBottom && aMin <= bMax && bMin <= aMax;
}

} // namespace

bool edgesCross(const Edge& a, const Edge& b) {
    const Int128 d1 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xTop, a.yTop);
    const Int128 d2 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xBottom, a.yBottom);
    if (sign128(d1) * sign128(d2) >= 0) {
        return false;
    }
    const Int128 d3 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xTop, b.yTop);
    const Int128 d4 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xBottom, b.yBottom);
    return sign128(d3) * sign128(d4) < 0;
}

ResultCode markCrossings(ScanState* scan) {
    removeHorizontalEdges(&scan->table);
    const bool roundDown = scan->quarterTurns == 2 || scan->quarterTurns == 3;
    for (Edge* a = scan->table.edges; a != nullptr; a = a->tableNext) {
        for (Edge* b = a->tableNext; b != nullptr && b->yTop < a->yBottom; b = b->tableNext) {
            if (!boxesOverlap(*a, *b) || !edgesCross(*a, *b)) {
                continue;
            }
            // Parameter along b: s / d = d3 / (d3 - d4).
            const Int128 d3 = side(a->xTop, a->yTop, a->xBottom, a->yBottom, b->xTop, b->yTop);
            const Int128 d4 =
                side(a->xTop, a->yTop, a->xBottom, a->yBottom, b->xBottom, b->yBottom);
            Int128 num = d3;
            Int128 den = d3 - d4;
            if (den < 0) {
                num = -num;
                den = -den;
            }
            const int64_t dyB = static_cast<int64_t>(b->yBottom) - b->yTop;
            const int64_t dxB = static_cast<int64_t>(b->xBottom) - b->xTop;
            const Int128 yNum = static_cast<Int128>(b->yTop) * den + static_cast<Int128>(dyB) * num;
            Int128 y = floorDiv128(yNum, den);
            if (!roundDown && y * den != yNum) {
                ++y;
            }
            VertexEvent* v = scan->events.take();
            if (v == nullptr) {
                return KRYN_ERR_NO_MEMORY;
            }
            v->type = EVENT_CROSSING;
            v->y = static_cast<int32_t>(y);
            const double s = static_cast<double>(num) / static_cast<double>(den);
            v->x = static_cast<int64_t>(
                       (static_cast<double>(b->xTop) + static_cast<double>(dxB) * s) * 4096.0) *
                   (int64_t{1} << 16);
            v->edgeIn = a;
            v->edgeOut = b;
            const ResultCode r = insertEvent(&scan->table, v);
            if (failed(r)) {
                return r;
            }
        }
    }
    return KRYN_OK;
}

} // namespace kryn
