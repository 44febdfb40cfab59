#include "scan/sweep.h"

#include "engine/memory.h"
#include "scan/band_walk.h"
#include "scan/clip_index.h"
#include "scan/clip_region.h"
#include "scan/edge_crossing.h"
#include "scan/edge_rows.h"
#include "scan/sweep_queue.h"
#include "scan/wide_math.h"

namespace kryn {

bool edgeLeftOf(const Edge& a, const Edge& b, int64_t y) {
    return compareEdgesAt(a, b, y) < 0;
}

namespace {

constexpr size_t CACHE_LINE = 64;

// Everything a sweep of n edges needs, in one block: O(n) whatever the
// number of crossings.
struct SweepMemory {
    void* block = nullptr;
    SweepNode* nodes = nullptr;
    OrderSlot* slots = nullptr;
    QueueEntry* crossings = nullptr;
    QueueEntry* ends = nullptr;
    WalkNode* walk = nullptr;

    bool open(int32_t n) {
        const auto count = static_cast<size_t>(n);
        const size_t bytes = count * (sizeof(SweepNode) + sizeof(WalkNode) + sizeof(OrderSlot) +
                                      2 * sizeof(QueueEntry));
        block = allocBytes(bytes + CACHE_LINE);
        if (block == nullptr) {
            return false;
        }
        // Walk nodes first, on a cache line boundary: two to a line.
        auto* at = static_cast<uint8_t*>(block);
        at += (CACHE_LINE - reinterpret_cast<uintptr_t>(at) % CACHE_LINE) % CACHE_LINE;
        walk = reinterpret_cast<WalkNode*>(at);
        at += count * sizeof(WalkNode);
        nodes = reinterpret_cast<SweepNode*>(at);
        at += count * sizeof(SweepNode);
        slots = reinterpret_cast<OrderSlot*>(at);
        at += count * sizeof(OrderSlot);
        crossings = reinterpret_cast<QueueEntry*>(at);
        at += count * sizeof(QueueEntry);
        ends = reinterpret_cast<QueueEntry*>(at);
        return true;
    }
    ~SweepMemory() { freeBytes(block); }
};

// Sign of xA(y) - xB(y), exact.
int32_t xOrderAt(const Edge& a, const Edge& b, int64_t y) {
    const int64_t dyA = static_cast<int64_t>(a.yBottom) - a.yTop;
    const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
    const Int128 nA =
        mul128(a.xTop, dyA) + mul128(static_cast<int64_t>(a.xBottom) - a.xTop, y - a.yTop);
    const Int128 nB =
        mul128(b.xTop, dyB) + mul128(static_cast<int64_t>(b.xBottom) - b.xTop, y - b.yTop);
    return sign128(nA * dyB - nB * dyA);
}

struct Sweep {
    ActiveOrder order;
    NodeQueue crossings; // crossing of each node with its right neighbour
    NodeQueue ends;      // yBottom of each active node
    bool roundDown = false;

    // Schedules the meeting of l with its right neighbour: the first line
    // from which their lines run in the other order (a crossing, or the end
    // of one of them on the other).
    void schedule(SweepNode* l) {
        if (l == nullptr) {
            return;
        }
        const SweepNode* r = l->next;
        if (r == nullptr) {
            crossings.erase(l);
            return;
        }
        const Edge& a = *l->edge;
        const Edge& b = *r->edge;
        const int64_t dyA = static_cast<int64_t>(a.yBottom) - a.yTop;
        const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
        // Only an edge moving right faster than its right neighbour meets it.
        if (mul128(static_cast<int64_t>(a.xBottom) - a.xTop, dyB) <=
            mul128(static_cast<int64_t>(b.xBottom) - b.xTop, dyA)) {
            crossings.erase(l);
            return;
        }
        const int64_t end = a.yBottom < b.yBottom ? a.yBottom : b.yBottom;
        const int32_t at = xOrderAt(a, b, end);
        if (at < 0) {
            crossings.erase(l);
            return;
        }
        crossings.set(l, at == 0 ? 2 * end : crossingKey(a, b));
    }

    void removeNode(SweepNode* n) {
        crossings.erase(n);
        SweepNode* p = n->prev;
        order.remove(n);
        schedule(p);
    }
};

} // namespace

namespace {

ResultCode sweepWith(ScanState* scan, BandWalk& walk, bool crossingLines) {
    const int32_t n = scan->table.edgeCount;
    SweepMemory memory;
    if (!memory.open(n)) {
        return KRYN_ERR_NO_MEMORY;
    }
    const int32_t q = scan->quarterTurns;
    walk.nodes = memory.nodes;
    walk.walkNodes = memory.walk;

    Sweep s;
    s.roundDown = q == 2 || q == 3;
    const int64_t keyOffset = s.roundDown ? 1 : 0;
    s.crossings.entries = memory.crossings;
    s.crossings.tracked = true;
    s.ends.entries = memory.ends;
    s.order.walk = memory.walk;
    const Edge* pending = scan->table.edges;
    int32_t nextIndex = 0;
    int64_t y = 0;
    int64_t pendingCut = INT64_MAX;
    while (pending != nullptr || s.order.count > 0) {
        if (s.order.count == 0) {
            y = pending->yTop;
            pendingCut = INT64_MAX;
        }
        if (pendingCut <= y) {
            pendingCut = INT64_MAX;
        }
        const int64_t key = y + keyOffset; // the order holds on the rows after this line
        while (s.crossings.size > 0 && crossingFlipLine(s.crossings.minKey()) <= key) {
            SweepNode* l = s.crossings.minNode();
            const int64_t line = crossingLine(s.crossings.minKey(), s.roundDown);
            if (line > y && line < pendingCut) {
                pendingCut = line; // a crossing on the next line, already in order
            }
            s.crossings.erase(l);
            SweepNode* r = l->next;
            s.order.swapWithNext(l);
            s.schedule(r->prev);
            s.schedule(r);
            s.schedule(l);
        }
        while (pending != nullptr && pending->yTop == y) {
            if (nextIndex >= n) {
                return KRYN_ERR_INVALID; // the table's count is off: never
            }
            SweepNode* node = &memory.nodes[nextIndex];
            *node = SweepNode();
            node->edge = pending;
            node->direction = pending->direction;
            node->vertical = pending->xTop == pending->xBottom ? 1 : 0;
            node->tableIndex = nextIndex;
            WalkNode& hot = memory.walk[nextIndex];
            hot = WalkNode();
            hot.direction = static_cast<int8_t>(node->direction);
            hot.vertical = static_cast<int8_t>(node->vertical);
            if (node->vertical != 0) {
                // The column never changes: kept as a quotient with no rest.
                const ColumnStepper st = stepperAt(*pending, 0, q);
                node->setStepper(st, 0);
                hot.quotient = static_cast<int32_t>(st.column() - (st.strict ? 1 : 0));
            }
            s.order.insert(node, &memory.slots[nextIndex], key);
            s.ends.push(node, pending->yBottom);
            s.schedule(node->prev);
            s.schedule(node);
            ++nextIndex;
            pending = pending->tableNext;
        }
        int64_t next = pending != nullptr ? pending->yTop : INT64_MAX;
        next = s.ends.size > 0 && s.ends.minKey() < next ? s.ends.minKey() : next;
        if (crossingLines) {
            if (s.crossings.size > 0) {
                const int64_t line = crossingLine(s.crossings.minKey(), s.roundDown);
                next = line < next ? line : next;
            }
            next = pendingCut < next ? pendingCut : next;
        }
        int64_t firstRow = 0;
        int64_t lastRow = 0;
        rowsOfRange(y, next, q, &firstRow, &lastRow);
        if (bandMatters(walk, y, next, firstRow, lastRow)) {
            const ResultCode r = walkBand(walk, s.order.first, y, next, firstRow, lastRow);
            if (failed(r)) {
                return r;
            }
        }
        y = next;
        while (s.ends.size > 0 && s.ends.minKey() <= y) {
            SweepNode* e = s.ends.minNode();
            s.ends.popMin();
            s.removeNode(e);
        }
    }
    return KRYN_OK;
}

} // namespace

ResultCode sweepEdges(ScanState* scan, int32_t rule, const ScanTarget& target, bool crossingLines) {
    if (scan->table.edges == nullptr || scan->table.edgeCount <= 0) {
        return KRYN_OK;
    }
    BandWalk walk;
    walk.scan = scan;
    walk.target = &target;
    walk.rule = rule;
    walk.quarterTurns = scan->quarterTurns;
    prepareBandWalk(&walk);
    // A clip region cut against the page rectangle (or not cut at all) is
    // collected compactly; any other target takes the pieces one by one.
    const ClipRegion* base = target.clip;
    if (target.mode == SCAN_MODE_CLIP &&
        (base == nullptr || (base->isRect != 0 && base->index == nullptr))) {
        RegionBuilder region;
        ResultCode r = region.open(scan, base);
        if (failed(r)) {
            return r;
        }
        walk.region = &region;
        r = sweepWith(scan, walk, crossingLines);
        if (failed(r)) {
            region.abandon();
            return r;
        }
        return region.finish(scan);
    }
    return sweepWith(scan, walk, crossingLines);
}

} // namespace kryn
