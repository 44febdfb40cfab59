// Binary min-queues of sweep nodes: the lines where active edges end, and
// the crossings of neighbouring edges (at most one per node: the crossing
// with its right neighbour, whose key changes when the neighbour does).
#pragma once

#include "scan/active_order.h"

#include <cstdint>

namespace kryn {

struct QueueEntry {
    int64_t key = 0;
    SweepNode* node = nullptr;
};

struct NodeQueue {
    QueueEntry* entries = nullptr; // capacity: one per edge of the sweep
    int32_t size = 0;
    bool tracked = false; // nodes keep their position in crossSlot

    int64_t minKey() const { return entries[0].key; }
    SweepNode* minNode() const { return entries[0].node; }

    void push(SweepNode* node, int64_t key) {
        place(size++, {key, node});
        siftUp(size - 1);
    }
    void popMin() { removeAt(0); }
    // Tracked queues: sets the node's key, entering it when absent.
    void set(SweepNode* node, int64_t key) {
        if (node->crossSlot < 0) {
            push(node, key);
            return;
        }
        const int32_t i = node->crossSlot;
        const int64_t old = entries[i].key;
        entries[i].key = key;
        if (key < old) {
            siftUp(i);
        } else {
            siftDown(i);
        }
    }
    void erase(SweepNode* node) {
        if (node->crossSlot >= 0) {
            removeAt(node->crossSlot);
        }
    }

  private:
    void place(int32_t i, const QueueEntry& e) {
        entries[i] = e;
        if (tracked) {
            e.node->crossSlot = i;
        }
    }
    void removeAt(int32_t i) {
        if (tracked) {
            entries[i].node->crossSlot = -1;
        }
        --size;
        if (i == size) {
            return;
        }
        const int64_t old = entries[i].key;
        place(i, entries[size]);
        if (entries[i].key < old) {
            siftUp(i);
        } else {
            siftDown(i);
        }
    }
    void siftUp(int32_t i) {
        const QueueEntry e = entries[i];
        while (i > 0) {
            const int32_t parent = (i - 1) / 2;
            if (entries[parent].key <= e.key) {
                break;
            }
            place(i, entries[parent]);
            i = parent;
        }
        place(i, e);
    }
    void siftDown(int32_t i) {
        const QueueEntry e = entries[i];
        for (;;) {
            int32_t child = 2 * i + 1;
            if (child >= size) {
                break;
            }
            if (child + 1 < size && entries[child + 1].key < entries[child].key) {
                ++child;
            }
            if (entries[child].key >= e.key) {
                break;
            }
            place(i, entries[child]);
            i = child;
        }
        place(i, e);
    }
};

} // namespace kryn
