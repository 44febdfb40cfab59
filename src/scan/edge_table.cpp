#include "scan/edge_table.h"

namespace kryn {

namespace {

bool sweepsBefore(const Edge* a, const Edge* b) {
    return a->yTop < b->yTop || (a->yTop == b->yTop && a->xTop < b->xTop);
}

// Merges two sorted lists; on equal keys the first list's edge goes first.
Edge* merge(Edge* first, Edge* second) {
    Edge* head = nullptr;
    Edge** tail = &head;
    while (first != nullptr && second != nullptr) {
        Edge** from = sweepsBefore(second, first) ? &second : &first;
        *tail = *from;
        tail = &(*from)->tableNext;
        *from = (*from)->tableNext;
    }
    *tail = first != nullptr ? first : second;
    return head;
}

} // namespace

void setTableMode(EdgeTable* table, int32_t pathRecords) {
    table->mode = pathRecords < SMALL_PATH_RECORDS ? TABLE_PLAIN : TABLE_BUCKETED;
}

ResultCode insertEdge(EdgeTable* table, Edge* edge) {
    edge->tableNext = table->edges;
    table->sorted = table->edges == nullptr || (table->sorted && !sweepsBefore(table->edges, edge));
    table->edges = edge;
    table->box.include(edge->xTop, edge->yTop);
    table->box.include(edge->xBottom, edge->yBottom);
    ++table->edgeCount;
    return KRYN_OK;
}

ResultCode insertEvent(EdgeTable* table, VertexEvent* event) {
    event->next = table->events;
    table->events = event;
    return KRYN_OK;
}

void sortEdgeTable(EdgeTable* table) {
    if (table->sorted) {
        return;
    }
    if (table->edgeCount <= 16) {
        // Few edges: each goes after those not later than it (stable).
        Edge* sorted = nullptr;
        Edge* list = table->edges;
        while (list != nullptr) {
            Edge* e = list;
            list = list->tableNext;
            Edge** link = &sorted;
            while (*link != nullptr && !sweepsBefore(e, *link)) {
                link = &(*link)->tableNext;
            }
            e->tableNext = *link;
            *link = e;
        }
        table->edges = sorted;
        table->sorted = true;
        return;
    }
    // Bins of 2^i runs: a higher bin holds older edges, so merging a bin
    // first keeps equal keys in list order (newest first).
    Edge* bins[64] = {};
    int32_t used = 0;
    Edge* list = table->edges;
    while (list != nullptr) {
        Edge* carry = list;
        list = list->tableNext;
        carry->tableNext = nullptr;
        int32_t i = 0;
        for (; bins[i] != nullptr; ++i) {
            carry = merge(bins[i], carry);
            bins[i] = nullptr;
        }
        bins[i] = carry;
        used = i >= used ? i + 1 : used;
    }
    Edge* sorted = nullptr;
    for (int32_t i = 0; i < used; ++i) {
        if (bins[i] != nullptr) {
            sorted = merge(bins[i], sorted);
        }
    }
    table->edges = sorted;
    table->sorted = true;
}

void removeHorizontalEdges(EdgeTable* table) {
    Edge** link = &table->edges;
    while (*link != nullptr) {
        if ((*link)->direction == 0) {
            *link = (*link)->tableNext;
            --table->edgeCount;
        } else {
            link = &(*link)->tableNext;
        }
    }
}

void clearTable(EdgeTable* table) {
    const int32_t mode = table->mode;
    *table = EdgeTable();
    table->mode = mode;
}

} // namespace kryn
