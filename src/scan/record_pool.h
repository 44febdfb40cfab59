// A pool of fixed-size records in chained blocks of twenty, each block
// followed by its next free slot, the previous block and its count.
// Resetting returns every block but the first to the heap and empties it.
#pragma once

#include "engine/memory.h"
#include "scan/scan_types.h"

#include <cstdint>
#include <new>

namespace kryn {

inline constexpr int32_t POOL_BLOCK_RECORDS = 20;

template <class T>
struct PoolBlock {
    T records[POOL_BLOCK_RECORDS];
    T* nextFree = nullptr;
    PoolBlock* previous = nullptr;
    int32_t count = 0;
};

template <class T>
struct RecordPool {
    PoolBlock<T>* last = nullptr; // newest block; its chain runs back to the first

    // A fresh record, or null when the heap is exhausted.
    T* take() {
        if (last == nullptr || last->count == POOL_BLOCK_RECORDS) {
            auto* block = createRecord<PoolBlock<T>>();
            if (block == nullptr) {
                return nullptr;
            }
            block->previous = last;
            block->nextFree = block->records;
            last = block;
        }
        T* record = ::new (last->nextFree) T();
        ++last->nextFree;
        ++last->count;
        return record;
    }

    void reset() {
        while (last != nullptr && last->previous != nullptr) {
            PoolBlock<T>* previous = last->previous;
            destroyRecord(last);
            last = previous;
        }
        if (last != nullptr) {
            last->count = 0;
            last->nextFree = last->records;
        }
    }

    void release() {
        reset();
        freeAndClear(last);
    }
};

using EdgePool = RecordPool<Edge>;
using EventPool = RecordPool<VertexEvent>;

} // namespace kryn
