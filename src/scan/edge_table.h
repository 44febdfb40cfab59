// The edges of one fill and their vertex events. Edges are collected as
// they come (newest first) and sorted once, when the sweep starts, by yTop
// and then xTop; equal pairs keep the newest edge first. The vertex events
// form the chains of the subpaths and are not sorted.
#pragma once

#include "engine/result_codes.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

inline constexpr int32_t TABLE_PLAIN = 1;
inline constexpr int32_t TABLE_BUCKETED = 2;

struct EdgeTable {
    int32_t mode = TABLE_PLAIN; // from the path's record count; the order is the same
    Edge* edges = nullptr;
    VertexEvent* events = nullptr; // newest first
    IntBox box;
    int32_t edgeCount = 0;
    bool sorted = true; // edges are in sweep order
};

// Mode from the path's record count; the table must be empty.
void setTableMode(EdgeTable* table, int32_t pathRecords);

ResultCode insertEdge(EdgeTable* table, Edge* edge);
ResultCode insertEvent(EdgeTable* table, VertexEvent* event);

// Puts the edges in sweep order: yTop, then xTop, equal pairs newest first
// (a stable merge sort, O(n log n)).
void sortEdgeTable(EdgeTable* table);

// Drops horizontal edges from the list (they take no part in the sweep).
void removeHorizontalEdges(EdgeTable* table);

// Empties the lists (the records belong to pools).
void clearTable(EdgeTable* table);

} // namespace kryn
