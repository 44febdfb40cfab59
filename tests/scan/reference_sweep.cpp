#include "reference_sweep.h"

#include "scan/edge_rows.h"
#include "scan/wide_math.h"

#include <algorithm>
#include <vector>

namespace kryn::test {

namespace {

using Int = Int128;

Int mul(int64_t a, int64_t b) {
    return static_cast<Int>(a) * static_cast<Int>(b);
}

// Edges in table order: each inserted, oldest first, before the first entry
// with a greater yTop or the same yTop and an xTop at least its own.
std::vector<Edge*> tableOrder(const EdgeTable& table) {
    std::vector<Edge*> inserted;
    for (Edge* e = table.edges; e != nullptr; e = e->tableNext) {
        inserted.push_back(e); // the table holds the newest first
    }
    std::reverse(inserted.begin(), inserted.end());
    std::vector<Edge*> sorted;
    for (Edge* e : inserted) {
        size_t at = 0;
        while (at < sorted.size() &&
               !(sorted[at]->yTop > e->yTop ||
                 (sorted[at]->yTop == e->yTop && sorted[at]->xTop >= e->xTop))) {
            ++at;
        }
        sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(at), e);
    }
    return sorted;
}

bool leftOf(const Edge& a, const Edge& b, int64_t y) {
    const int64_t dyA = static_cast<int64_t>(a.yBottom) - a.yTop;
    const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
    const int64_t dxA = static_cast<int64_t>(a.xBottom) - a.xTop;
    const int64_t dxB = static_cast<int64_t>(b.xBottom) - b.xTop;
    const Int nA = mul(a.xTop, dyA) + mul(dxA, y - a.yTop);
    const Int nB = mul(b.xTop, dyB) + mul(dxB, y - b.yTop);
    const Int value = nA * dyB - nB * dyA;
    if (value != 0) {
        return value < 0;
    }
    return mul(dxA, dyB) - mul(dxB, dyA) < 0;
}

Int side(int64_t ax, int64_t ay, int64_t bx, int64_t by, int64_t px, int64_t py) {
    return mul(bx - ax, py - ay) - mul(by - ay, px - ax);
}

int sign(Int v) {
    return v > 0 ? 1 : (v < 0 ? -1 : 0);
}

bool cross(const Edge& a, const Edge& b) {
    const Int d1 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xTop, a.yTop);
    const Int d2 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xBottom, a.yBottom);
    if (sign(d1) * sign(d2) >= 0) {
        return false;
    }
    const Int d3 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xTop, b.yTop);
    const Int d4 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xBottom, b.yBottom);
    return sign(d3) * sign(d4) < 0;
}

bool boxesOverlap(const Edge& a, const Edge& b) {
    const int32_t aMin = std::min(a.xTop, a.xBottom), aMax = std::max(a.xTop, a.xBottom);
    const int32_t bMin = std::min(b.xTop, b.xBottom), bMax = std::max(b.xTop, b.xBottom);
    return a.yTop < b.yBottom && b.yTop < a.yBottom && aMin <= bMax && bMin <= aMax;
}

Int floorDiv(Int n, Int d) {
    Int q = n / d;
    if (n % d != 0 && n < 0) {
        --q;
    }
    return q;
}

// The line of every crossing of two edges, sorted: y rounded up (0 and 1
// quarter turns) or down (2 and 3).
std::vector<int64_t> crossingLines(const std::vector<Edge*>& edges, bool roundDown) {
    std::vector<int64_t> lines;
    for (size_t i = 0; i < edges.size(); ++i) {
        const Edge* a = edges[i];
        for (size_t k = i + 1; k < edges.size() && edges[k]->yTop < a->yBottom; ++k) {
            const Edge* b = edges[k];
            if (!boxesOverlap(*a, *b) || !cross(*a, *b)) {
                continue;
            }
            const Int d3 = side(a->xTop, a->yTop, a->xBottom, a->yBottom, b->xTop, b->yTop);
            const Int d4 = side(a->xTop, a->yTop, a->xBottom, a->yBottom, b->xBottom, b->yBottom);
            Int num = d3;
            Int den = d3 - d4;
            if (den < 0) {
                num = -num;
                den = -den;
            }
            const int64_t dyB = static_cast<int64_t>(b->yBottom) - b->yTop;
            const Int yNum = static_cast<Int>(b->yTop) * den + static_cast<Int>(dyB) * num;
            Int y = floorDiv(yNum, den);
            if (!roundDown && y * den != yNum) {
                ++y;
            }
            lines.push_back(static_cast<int64_t>(y));
        }
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

// Stable insertion sort: each edge goes before the first it lies left of.
std::vector<const Edge*> sortActive(const std::vector<const Edge*>& list, int64_t y) {
    std::vector<const Edge*> sorted;
    for (const Edge* e : list) {
        size_t at = 0;
        while (at < sorted.size() && !leftOf(*e, *sorted[at], y)) {
            ++at;
        }
        sorted.insert(sorted.begin() + static_cast<std::ptrdiff_t>(at), e);
    }
    return sorted;
}

ResultCode sweep(ScanState* scan, const std::vector<Edge*>& edges, int32_t rule,
                 const ScanTarget& target, bool withCrossings) {
    const int32_t q = scan->quarterTurns;
    const bool lineBelow = q == 2 || q == 3;
    const std::vector<int64_t> crossings =
        withCrossings ? crossingLines(edges, lineBelow) : std::vector<int64_t>();
    size_t pending = 0;
    size_t crossing = 0;
    std::vector<const Edge*> active;
    int64_t y = 0;
    while (pending < edges.size() || !active.empty()) {
        if (active.empty()) {
            y = edges[pending]->yTop;
        }
        while (pending < edges.size() && edges[pending]->yTop == y) {
            active.insert(active.begin(), edges[pending]); // new edges go first
            ++pending;
        }
        int64_t next = pending < edges.size() ? edges[pending]->yTop : INT64_MAX;
        for (const Edge* e : active) {
            next = std::min<int64_t>(next, e->yBottom);
        }
        while (crossing < crossings.size() && crossings[crossing] <= y) {
            ++crossing;
        }
        if (crossing < crossings.size()) {
            next = std::min(next, crossings[crossing]);
        }
        int64_t firstRow = 0;
        int64_t lastRow = 0;
        rowsOfRange(y, next, q, &firstRow, &lastRow);
        if (firstRow <= lastRow) {
            active = sortActive(active, lineBelow ? y + 1 : y);
            int32_t state = 0;
            const Edge* left = nullptr;
            for (const Edge* e : active) {
                const int32_t before = state;
                state = rule == FILL_EVEN_ODD ? (state == 0 ? 1 : 0) : state + e->direction;
                if (before == 0 && state != 0) {
                    left = e;
                } else if (before != 0 && state == 0) {
                    Trapezoid t;
                    t.yTop = static_cast<int32_t>(y);
                    t.yBottom = static_cast<int32_t>(next);
                    t.leftEdge = left;
                    t.rightEdge = e;
                    const ResultCode r = emitTrapezoid(scan, t, target);
                    if (r != KRYN_OK) {
                        return r;
                    }
                }
            }
        }
        y = next;
        std::erase_if(active, [&](const Edge* e) { return e->yBottom <= y; });
    }
    return KRYN_OK;
}

// Two edges that need no sweep form one trapezoid.
bool shortcut(ScanState* scan, const std::vector<Edge*>& edges, const ScanTarget& target,
              ResultCode* r) {
    std::vector<const Edge*> found;
    for (const Edge* e : edges) {
        if (e->direction != 0 && e->firstRow <= e->lastRow) {
            found.push_back(e);
        }
    }
    *r = KRYN_OK;
    if (found.empty()) {
        return true;
    }
    if (found.size() != 2 || cross(*found[0], *found[1]) ||
        found[0]->firstRow != found[1]->firstRow || found[0]->lastRow != found[1]->lastRow) {
        return false;
    }
    const Edge& a = *found[0];
    const Edge& b = *found[1];
    Trapezoid t;
    t.yTop = std::max(a.yTop, b.yTop);
    t.yBottom = std::min(a.yBottom, b.yBottom);
    const bool aLeft = leftOf(a, b, t.yTop);
    t.leftEdge = aLeft ? &a : &b;
    t.rightEdge = aLeft ? &b : &a;
    *r = emitTrapezoid(scan, t, target);
    return true;
}

std::vector<Edge*> withoutHorizontals(const std::vector<Edge*>& edges) {
    std::vector<Edge*> kept;
    for (Edge* e : edges) {
        if (e->direction != 0) {
            kept.push_back(e);
        }
    }
    return kept;
}

bool targetOf(const ScanState* scan, const ClipRegion& clip, int32_t mode,
              const SpanRecorder* recorder, ScanTarget* target) {
    if (scan->table.edges == nullptr) {
        return false;
    }
    bool skip = false;
    target->mode = mode;
    target->recorder = recorder;
    target->clip = clipNeededFor(scan->table.box, clip, &skip);
    return !skip;
}

} // namespace

ResultCode referenceScanConvert(ScanState* scan, int32_t rule, const ClipRegion& clip, int32_t mode,
                                const SpanRecorder* recorder) {
    ScanTarget target;
    ResultCode r = KRYN_OK;
    if (targetOf(scan, clip, mode, recorder, &target)) {
        const std::vector<Edge*> edges = tableOrder(scan->table);
        if (!shortcut(scan, edges, target, &r)) {
            r = sweep(scan, withoutHorizontals(edges), rule, target, true);
        }
    }
    releaseEdges(scan);
    return r;
}

ResultCode referenceScanConvertStroke(ScanState* scan, const ClipRegion& clip, int32_t mode,
                                      const SpanRecorder* recorder) {
    ScanTarget target;
    ResultCode r = KRYN_OK;
    if (targetOf(scan, clip, mode, recorder, &target)) {
        r = sweep(scan, withoutHorizontals(tableOrder(scan->table)), FILL_EVEN_ODD, target, false);
    }
    releaseEdges(scan);
    return r;
}

ResultCode referenceClip(ClipStack* stack, ScanState* scan, const BaseClip& base,
                         const Polyline* subpaths, int32_t count, int32_t pathRecords, int32_t rule,
                         const ClipPage& page) {
    int32_t picked = -1;
    for (int32_t i = 0; i < CLIP_POOL_COUNT && picked < 0; ++i) {
        if (stack->poolState[i] == CLIP_POOL_FREE) {
            picked = i;
        }
    }
    if (picked < 0) {
        return KRYN_ERR_INVALID;
    }
    EdgePool* pool = &stack->pools[picked];
    scan->clipPool = pool;
    ScanFloatBox pageBox;
    pageBox.maxX = static_cast<float>(page.pageWidth);
    pageBox.maxY = static_cast<float>(page.pageHeight);
    ResultCode r = buildEdges(scan, subpaths, count, pathRecords, pageBox);
    if (r != KRYN_OK) {
        releaseEdges(scan);
    } else {
        r = referenceScanConvert(scan, rule, base.region, SCAN_MODE_CLIP, nullptr);
    }
    scan->clipPool = nullptr;
    Trapezoid* list = scan->collected;
    const IntBox box = scan->collectedBox;
    scan->collected = scan->collectedTail = nullptr;
    scan->collectedBox = IntBox();
    if (r != KRYN_OK) {
        freeTrapezoidList(list);
        pool->reset();
        return r;
    }
    for (int32_t i = 0; i < CLIP_POOL_COUNT; ++i) {
        if (stack->poolState[i] == CLIP_POOL_CURRENT) {
            stack->poolState[i] = CLIP_POOL_FREE;
        }
    }
    if (stack->current.ownedList != nullptr) {
        releaseClip(&stack->current);
    }
    ClipRegion region;
    if (list == nullptr) {
        pool->reset();
    } else {
        region.pool = pool;
        stack->poolState[picked] = CLIP_POOL_CURRENT;
    }
    region.ownedList = region.activeList = list;
    setRegionShape(&region, box);
    stack->current = region;
    return KRYN_OK;
}

} // namespace kryn::test
