#include "scan/edge_table.h"

#include "engine/memory.h"

namespace kryn {

namespace {

bool edgeGoesBefore(const Edge* e, const Edge* other) {
    return other->yTop > e->yTop || (other->yTop == e->yTop && other->xTop >= e->xTop);
}

// Inserts into a plain list starting at *head, returning the record it
// follows (null when it became the head).
template <class T, class Before, class Next>
void insertSorted(T** head, T* record, Before before, Next next) {
    T** link = head;
    while (*link != nullptr && !before(record, *link)) {
        link = &next(*link);
    }
    next(record) = *link;
    *link = record;
}

// Finds or creates the bucket for y; null when out of memory. *prevLast
// receives the last record of the bucket before it (the splice point for a
// new bucket).
TableBucket* findBucket(TableBucket** head, int32_t y, void** prevLast) {
    TableBucket** link = head;
    *prevLast = nullptr;
    while (*link != nullptr && (*link)->y < y) {
        *prevLast = (*link)->last;
        link = &(*link)->next;
    }
    if (*link != nullptr && (*link)->y == y) {
        return *link;
    }
    TableBucket* bucket = createRecord<TableBucket>();
    if (bucket == nullptr) {
        return nullptr;
    }
    bucket->y = y;
    bucket->next = *link;
    *link = bucket;
    return bucket;
}

void freeBuckets(TableBucket*& head) {
    while (head != nullptr) {
        TableBucket* next = head->next;
        destroyRecord(head);
        head = next;
    }
}

Edge*& edgeNext(Edge* e) {
    return e->tableNext;
}
VertexEvent*& eventNext(VertexEvent* v) {
    return v->next;
}

} // namespace

void setTableMode(EdgeTable* table, int32_t pathRecords) {
    table->mode = pathRecords < SMALL_PATH_RECORDS ? TABLE_PLAIN : TABLE_BUCKETED;
}

ResultCode insertEdge(EdgeTable* table, Edge* edge) {
    if (table->mode == TABLE_PLAIN) {
        insertSorted(&table->edges, edge, edgeGoesBefore, edgeNext);
    } else {
        void* prevLast = nullptr;
        TableBucket* bucket = findBucket(&table->edgeBuckets, edge->yTop, &prevLast);
        if (bucket == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        if (bucket->first == nullptr) {
            Edge** link =
                prevLast == nullptr ? &table->edges : &static_cast<Edge*>(prevLast)->tableNext;
            edge->tableNext = *link;
            *link = edge;
            bucket->first = bucket->last = edge;
        } else {
            // Sorted insertion within the bucket, keeping first and last.
            Edge** link =
                prevLast == nullptr ? &table->edges : &static_cast<Edge*>(prevLast)->tableNext;
            Edge* stop = static_cast<Edge*>(bucket->last)->tableNext;
            while (*link != stop && !edgeGoesBefore(edge, *link)) {
                link = &(*link)->tableNext;
            }
            edge->tableNext = *link;
            *link = edge;
            if (edge->tableNext == bucket->first) {
                bucket->first = edge;
            }
            if (edge->tableNext == stop) {
                bucket->last = edge;
            }
        }
    }
    table->box.include(edge->xTop, edge->yTop);
    table->box.include(edge->xBottom, edge->yBottom);
    ++table->edgeCount;
    return KRYN_OK;
}

ResultCode insertEvent(EdgeTable* table, VertexEvent* event) {
    auto before = [](const VertexEvent* v, const VertexEvent* other) { return other->y > v->y; };
    if (table->mode == TABLE_PLAIN) {
        insertSorted(&table->events, event, before, eventNext);
        return KRYN_OK;
    }
    void* prevLast = nullptr;
    TableBucket* bucket = findBucket(&table->eventBuckets, event->y, &prevLast);
    if (bucket == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (bucket->first == nullptr) {
        VertexEvent** link =
            prevLast == nullptr ? &table->events : &static_cast<VertexEvent*>(prevLast)->next;
        event->next = *link;
        *link = event;
        bucket->first = event;
    } else {
        VertexEvent* last = static_cast<VertexEvent*>(bucket->last);
        event->next = last->next;
        last->next = event;
    }
    bucket->last = event;
    return KRYN_OK;
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
    // Buckets only speed up insertion, which is over once horizontals go.
    freeBuckets(table->edgeBuckets);
}

void clearTable(EdgeTable* table) {
    freeBuckets(table->edgeBuckets);
    freeBuckets(table->eventBuckets);
    const int32_t mode = table->mode;
    *table = EdgeTable();
    table->mode = mode;
}

} // namespace kryn
