// The sweep's active edges in left-to-right order: a doubly linked list for
// neighbours and the band walk, and a treap over it for inserting an edge by
// binary search. Two neighbours that cross exchange places in O(1); the
// tree's slots then simply hold each other's edge.
#pragma once

#include "scan/edge_rows.h"
#include "scan/scan_types.h"

#include <cstdint>

namespace kryn {

struct OrderSlot;
struct ClipRun;

inline constexpr int64_t NO_ROW = INT64_MIN;

// What the walk of a band of one row reads of a node, in 32 bytes: the
// order link and the edge's row stepper in 32-bit fields (x * 16dy on row
// stepRow as quotient and rest of 16dy, see ColumnStepper). Edges whose
// stepper does not fit (`wide`) step in their SweepNode instead.
struct WalkNode {
    int32_t next = -1; // index of the right neighbour, -1 for none
    int32_t stepRow = INT32_MIN;
    int32_t quotient = 0;
    uint32_t rest = 0;
    uint32_t divisor = 1;
    int32_t stepQuotient = 0;
    uint32_t stepRest = 0;
    int8_t direction = 0;
    int8_t vertical = 0;
    int8_t wide = 0;
    int8_t spare = 0;

    int32_t column(bool strict) const { return quotient + (strict ? 1 : (rest > 0 ? 1 : 0)); }
    // Without a branch: the carry of an edge's rest follows no pattern.
    void advance() {
        rest += stepRest;
        const uint32_t carry = rest >= divisor ? 1u : 0u;
        rest -= divisor & (0u - carry);
        quotient += stepQuotient + static_cast<int32_t>(carry);
    }
    // Takes a stepper on `row` when its fields fit; false when not.
    bool setStepper(const ColumnStepper& s, int64_t row) {
        if (s.divisor >= (int64_t{1} << 31) || s.stepQuotient >= (int64_t{1} << 30) ||
            s.stepQuotient <= -(int64_t{1} << 30) || s.quotient >= (int64_t{1} << 30) ||
            s.quotient <= -(int64_t{1} << 30) || row >= INT32_MAX || row <= INT32_MIN) {
            return false;
        }
        quotient = static_cast<int32_t>(s.quotient);
        rest = static_cast<uint32_t>(s.rest);
        divisor = static_cast<uint32_t>(s.divisor);
        stepQuotient = static_cast<int32_t>(s.stepQuotient);
        stepRest = static_cast<uint32_t>(s.stepRest);
        stepRow = static_cast<int32_t>(row);
        return true;
    }
};
static_assert(sizeof(WalkNode) == 32);

struct SweepNode {
    // The order link, and the row stepper of an edge whose stepper does not
    // fit its WalkNode: x * 16dy on row stepRow as quotient and rest of 16dy
    // (see ColumnStepper).
    SweepNode* next = nullptr;
    int64_t quotient = 0;
    int64_t rest = 0;
    int64_t divisor = 1;
    int64_t stepQuotient = 0;
    int64_t stepRest = 0;
    int64_t stepRow = NO_ROW;
    int32_t direction = 0;
    int32_t vertical = 0;
    // Used by the order and the event queues.
    SweepNode* prev = nullptr;
    const Edge* edge = nullptr;
    OrderSlot* slot = nullptr;
    int64_t crossKey = 0;   // crossing with `next`, while crossSlot >= 0
    int32_t crossSlot = -1; // position in the crossing queue
    int32_t tableIndex = 0; // position in the sorted edge table, and of its WalkNode
    // Used while a clip region is collected.
    ClipRun* run = nullptr;

    // The column on stepRow (strict: the first column right of x).
    int64_t column(bool strict) const { return quotient + (strict ? 1 : (rest > 0 ? 1 : 0)); }
    void advance() {
        quotient += stepQuotient;
        rest += stepRest;
        if (rest >= divisor) {
            rest -= divisor;
            ++quotient;
        }
    }
    void setStepper(const ColumnStepper& s, int64_t row) {
        quotient = s.quotient;
        rest = s.rest;
        divisor = s.divisor;
        stepQuotient = s.stepQuotient;
        stepRest = s.stepRest;
        stepRow = row;
    }
    ColumnStepper stepper(bool strict) const {
        ColumnStepper s;
        s.quotient = quotient;
        s.rest = rest;
        s.divisor = divisor;
        s.stepQuotient = stepQuotient;
        s.stepRest = stepRest;
        s.strict = strict;
        return s;
    }
    // Moves the stepper to `row`: one step from the row before, otherwise
    // started afresh (one division). Vertical edges keep their column.
    void stepTo(int64_t row, int32_t quarterTurns) {
        if (stepRow == row || vertical != 0) {
            return;
        }
        if (stepRow == row - 1) {
            advance();
            stepRow = row;
        } else {
            setStepper(stepperAt(*edge, row, quarterTurns), row);
        }
    }
};

struct OrderSlot {
    OrderSlot* left = nullptr;
    OrderSlot* right = nullptr;
    OrderSlot* parent = nullptr;
    SweepNode* node = nullptr;
    uint32_t priority = 0;
};

// Three-way exact order of two edges on the rows that follow line y: x on
// the line, then slope; 0 for edges on one line.
int32_t compareEdgesAt(const Edge& a, const Edge& b, int64_t y);

// Order of two active nodes at key line y: as compareEdgesAt, and edges on
// one line in reverse table order (the newest first, as a stable sort of a
// list that takes each new edge in at its head leaves them).
inline bool nodeBefore(const SweepNode& a, const SweepNode& b, int64_t y) {
    const int32_t c = compareEdgesAt(*a.edge, *b.edge, y);
    return c != 0 ? c < 0 : a.tableIndex > b.tableIndex;
}

struct ActiveOrder {
    OrderSlot* root = nullptr;
    SweepNode* first = nullptr;
    WalkNode* walk = nullptr; // the nodes' walk fields, kept linked in the same order
    int32_t firstIndex = -1;
    uint32_t seed = 0x9E3779B9u;
    int32_t count = 0;

    // Inserts node (with its own free slot) in order at key line y.
    void insert(SweepNode* node, OrderSlot* slot, int64_t y);
    // Removes node; its slot is free again.
    void remove(SweepNode* node);
    // Exchanges node and its successor.
    void swapWithNext(SweepNode* node);

  private:
    void connect(SweepNode* a, SweepNode* b); // b follows a (either may be null)
};

} // namespace kryn
