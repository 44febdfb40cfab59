// The edges of one fill sorted by yTop (ties by xTop) and its vertex events
// sorted by y. Small paths keep plain sorted lists; larger ones bucket both
// lists by y so that an insertion finds its place without a long walk.
#pragma once

#include "engine/result_codes.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

inline constexpr int32_t TABLE_PLAIN = 1;
inline constexpr int32_t TABLE_BUCKETED = 2;

// One distinct y of a bucketed list: its first and last record.
struct TableBucket {
    TableBucket* next = nullptr;
    int32_t y = 0;
    void* first = nullptr;
    void* last = nullptr;
};

struct EdgeTable {
    int32_t mode = TABLE_PLAIN;
    Edge* edges = nullptr;
    VertexEvent* events = nullptr;
    TableBucket* edgeBuckets = nullptr;
    TableBucket* eventBuckets = nullptr;
    IntBox box;
    int32_t edgeCount = 0;
};

// Mode from the path's record count; the table must be empty.
void setTableMode(EdgeTable* table, int32_t pathRecords);

ResultCode insertEdge(EdgeTable* table, Edge* edge);
ResultCode insertEvent(EdgeTable* table, VertexEvent* event);

// Drops horizontal edges from the list (they take no part in the sweep).
void removeHorizontalEdges(EdgeTable* table);

// Frees the buckets and empties the lists (the records belong to pools).
void clearTable(EdgeTable* table);

} // namespace kryn
