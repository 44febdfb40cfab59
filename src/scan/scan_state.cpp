#include "scan/scan_state.h"

#include "engine/memory.h"
#include "scan/edge_rows.h"

namespace kryn {

ResultCode openScanState(ScanState* scan, int32_t quarterTurns, int32_t bandHeight) {
    scan->quarterTurns = quarterTurns;
    if (bandHeight != scan->bandHeight || scan->rowSpanPairs == nullptr) {
        freeAndClear(scan->rowSpanPairs);
        scan->bandHeight = 0;
        if (bandHeight > 0) {
            void* pairs = allocBytes(sizeof(uint16_t) * 2 * static_cast<size_t>(bandHeight));
            if (pairs == nullptr) {
                return KRYN_ERR_NO_MEMORY;
            }
            scan->rowSpanPairs = static_cast<uint16_t*>(pairs);
            scan->bandHeight = bandHeight;
        }
    }
    return KRYN_OK;
}

void closeScanState(ScanState* scan) {
    scan->clipPool = nullptr;
    releaseEdges(scan);
    scan->ownEdges.release();
    scan->events.release();
    freeTrapezoidList(scan->collected);
    scan->collected = scan->collectedTail = nullptr;
    freeRegionIndex(scan->collectedIndex);
    scan->collectedIndex = nullptr;
    scan->cursor.release();
    freeAndClear(scan->rowSpanPairs);
    scan->bandHeight = 0;
}

Edge* makeEdge(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    Edge* e = scan->edgePool().take();
    if (e == nullptr) {
        return nullptr;
    }
    const bool down = y0 <= y1;
    e->xTop = down ? x0 : x1;
    e->yTop = down ? y0 : y1;
    e->xBottom = down ? x1 : x0;
    e->yBottom = down ? y1 : y0;
    e->direction = static_cast<int16_t>(y0 < y1 ? 1 : (y0 > y1 ? -1 : 0));
    const int64_t dy = static_cast<int64_t>(e->yBottom) - e->yTop;
    const int64_t dx = static_cast<int64_t>(e->xBottom) - e->xTop;
    if (dy == 0) {
        e->slope = -1;
    } else {
        const Int128 s = mul128(dx, 65536) / dy;
        e->slope =
            s > INT32_MAX ? INT32_MAX : (s < INT32_MIN ? INT32_MIN : static_cast<int32_t>(s));
    }
    e->xAtTop = static_cast<int64_t>(e->xTop) * (int64_t{1} << 28);
    e->curTop = e->yTop;
    setupEdgeRows(e, scan->quarterTurns);
    return e;
}

ResultCode addEdge(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    if (x0 == x1 && y0 == y1) {
        return KRYN_OK;
    }
    Edge* e = makeEdge(scan, x0, y0, x1, y1);
    VertexEvent* v = e == nullptr ? nullptr : scan->events.take();
    if (v == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    ResultCode r = insertEdge(&scan->table, e);
    if (failed(r)) {
        return r;
    }
    v->x = static_cast<int64_t>(x1) * (int64_t{1} << 28);
    v->y = y1;
    v->edgeIn = e;
    v->type = EVENT_VERTEX;
    if (scan->lastEvent != nullptr) {
        scan->lastEvent->edgeOut = e;
        scan->lastEvent->chainNext = v;
    } else {
        scan->chainFirstEdge = e;
    }
    scan->lastEvent = v;
    return insertEvent(&scan->table, v);
}

ResultCode addEdgeFixed(ScanState* scan, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
    const int32_t mask = ~0xFFF;
    x0 &= mask;
    y0 &= mask;
    x1 &= mask;
    y1 &= mask;
    if (x0 == x1 && y0 == y1) {
        return KRYN_OK;
    }
    return addEdge(scan, x0 >> 12, y0 >> 12, x1 >> 12, y1 >> 12);
}

void closeEdgeChain(ScanState* scan) {
    if (scan->lastEvent != nullptr) {
        scan->lastEvent->edgeOut = scan->chainFirstEdge;
    }
    scan->lastEvent = nullptr;
    scan->chainFirstEdge = nullptr;
}

void releaseEdges(ScanState* scan) {
    clearTable(&scan->table);
    scan->lastEvent = nullptr;
    scan->chainFirstEdge = nullptr;
    scan->events.reset();
    if (scan->clipPool == nullptr) {
        scan->ownEdges.reset();
    }
}

void freeTrapezoidList(Trapezoid* list) {
    while (list != nullptr) {
        Trapezoid* next = list->next;
        destroyRecord(list);
        list = next;
    }
}

} // namespace kryn
