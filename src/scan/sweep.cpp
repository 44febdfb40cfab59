#include "scan/sweep.h"

#include "scan/edge_rows.h"
#include "scan/wide_math.h"

namespace kryn {

bool edgeLeftOf(const Edge& a, const Edge& b, int64_t y) {
    const int64_t dyA = static_cast<int64_t>(a.yBottom) - a.yTop;
    const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
    const int64_t dxA = static_cast<int64_t>(a.xBottom) - a.xTop;
    const int64_t dxB = static_cast<int64_t>(b.xBottom) - b.xTop;
    // xA(y) * dyA = xTopA * dyA + dxA * (y - yTopA).
    const Int128 nA = mul128(a.xTop, dyA) + mul128(dxA, y - a.yTop);
    const Int128 nB = mul128(b.xTop, dyB) + mul128(dxB, y - b.yTop);
    // |n| < 2^65 and dy < 2^33: the cross products stay below 2^98.
    const Int128 value = nA * dyB - nB * dyA;
    if (value != 0) {
        return value < 0;
    }
    const Int128 slopeDiff = mul128(dxA, dyB) - mul128(dxB, dyA);
    return slopeDiff < 0;
}

namespace {

// Inserts every edge of the list into sorted order (insertion sort; the
// list is nearly sorted from the previous line).
Edge* sortActive(Edge* list, int64_t y) {
    Edge* sorted = nullptr;
    while (list != nullptr) {
        Edge* e = list;
        list = list->activeNext;
        Edge** link = &sorted;
        while (*link != nullptr && !edgeLeftOf(*e, **link, y)) {
            link = &(*link)->activeNext;
        }
        e->activeNext = *link;
        *link = e;
    }
    return sorted;
}

const VertexEvent* nextCrossing(const VertexEvent* v, int64_t y) {
    while (v != nullptr && (v->type != EVENT_CROSSING || v->y <= y)) {
        v = v->next;
    }
    return v;
}

} // namespace

ResultCode sweepEdges(ScanState* scan, int32_t rule, const ScanTarget& target) {
    const int32_t q = scan->quarterTurns;
    const bool lineBelow = q == 2 || q == 3;
    Edge* pending = scan->table.edges;
    Edge* active = nullptr;
    const VertexEvent* crossing = scan->table.events;
    int64_t y = 0;
    while (pending != nullptr || active != nullptr) {
        if (active == nullptr) {
            y = pending->yTop;
        }
        while (pending != nullptr && pending->yTop == y) {
            if (pending->yBottom > pending->yTop) {
                pending->activeNext = active;
                active = pending;
            }
            pending = pending->tableNext;
        }
        if (active == nullptr) {
            continue;
        }
        int64_t next = INT64_MAX;
        if (pending != nullptr) {
            next = pending->yTop;
        }
        for (const Edge* e = active; e != nullptr; e = e->activeNext) {
            next = e->yBottom < next ? e->yBottom : next;
        }
        crossing = nextCrossing(crossing, y);
        if (crossing != nullptr && crossing->y < next) {
            next = crossing->y;
        }
        int64_t firstRow = 0;
        int64_t lastRow = 0;
        rowsOfRange(y, next, q, &firstRow, &lastRow);
        if (firstRow <= lastRow) {
            active = sortActive(active, lineBelow ? y + 1 : y);
            int32_t state = 0;
            const Edge* left = nullptr;
            for (const Edge* e = active; e != nullptr; e = e->activeNext) {
                const int32_t before = state;
                state = foldFillRule(rule, state, *e);
                if (before == 0 && state != 0) {
                    left = e;
                } else if (before != 0 && state == 0) {
                    Trapezoid t;
                    t.yTop = static_cast<int32_t>(y);
                    t.yBottom = static_cast<int32_t>(next);
                    t.leftEdge = left;
                    t.rightEdge = e;
                    const ResultCode r = emitTrapezoid(scan, t, target);
                    if (failed(r)) {
                        return r;
                    }
                }
            }
        }
        y = next;
        Edge** link = &active;
        while (*link != nullptr) {
            if ((*link)->yBottom <= y) {
                *link = (*link)->activeNext;
            } else {
                link = &(*link)->activeNext;
            }
        }
    }
    return KRYN_OK;
}

} // namespace kryn
