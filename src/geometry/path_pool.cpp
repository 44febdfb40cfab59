#include "geometry/path_pool.h"

#include "engine/memory.h"

namespace kryn {
namespace {

uint8_t* payloadOf(PathPoolBlock* block) {
    return reinterpret_cast<uint8_t*>(block) + PATH_POOL_HEAD_BYTES;
}

bool contains(PathPoolBlock* block, const void* r) {
    const uint8_t* p = static_cast<const uint8_t*>(r);
    const uint8_t* begin = payloadOf(block);
    return p >= begin && p < begin + PATH_POOL_PAYLOAD_BYTES;
}

PathPoolBlock* takeBlock(PathPoolBlock* prev) {
    auto* block = static_cast<PathPoolBlock*>(allocBytes(PATH_POOL_BLOCK_BYTES));
    if (block != nullptr) {
        block->prev = prev;
        block->used = 0;
    }
    return block;
}

} // namespace

void* poolAlloc(PathPool& pool, size_t n) {
    n = (n + 7u) & ~size_t{7};
    if (n > PATH_POOL_PAYLOAD_BYTES) {
        return nullptr;
    }
    if (pool.current == nullptr) {
        PathPoolBlock* block = takeBlock(nullptr);
        if (block == nullptr) {
            return nullptr;
        }
        pool.first = block;
        pool.current = block;
    }
    if (PATH_POOL_PAYLOAD_BYTES - pool.current->used < n) {
        PathPoolBlock* block = takeBlock(pool.current);
        if (block == nullptr) {
            return nullptr;
        }
        pool.current = block;
    }
    void* record = payloadOf(pool.current) + pool.current->used;
    pool.current->used += static_cast<uint32_t>(n);
    ++pool.recordCount;
    return record;
}

void poolRelease(PathPool& pool, const void* r) {
    PathPoolBlock* block = pool.current;
    while (block != nullptr && !contains(block, r)) {
        PathPoolBlock* prev = block->prev;
        if (prev == nullptr) {
            break; // r is not in the pool: keep the first block, as when reached
        }
        freeBytes(block);
        block = prev;
    }
    pool.recordCount = 0;
    pool.current = block;
    if (block == nullptr) {
        return;
    }
    if (!contains(block, r)) {
        block->used = 0;
        return;
    }
    const auto offset = static_cast<uint32_t>(static_cast<const uint8_t*>(r) - payloadOf(block));
    if (offset == 0 && block != pool.first) {
        pool.current = block->prev;
        freeBytes(block);
        return;
    }
    block->used = offset;
}

PathPoolMark poolMark(const PathPool& pool) {
    return PathPoolMark{pool.current, pool.current == nullptr ? 0u : pool.current->used,
                        pool.recordCount};
}

void poolReleaseToMark(PathPool& pool, const PathPoolMark& mark) {
    while (pool.current != mark.block) {
        PathPoolBlock* prev = pool.current->prev;
        freeBytes(pool.current);
        pool.current = prev;
    }
    if (pool.current == nullptr) {
        pool.first = nullptr;
    } else {
        pool.current->used = mark.used;
    }
    pool.recordCount = mark.recordCount;
}

void releasePathPool(PathPool& pool) {
    PathPoolBlock* block = pool.current;
    while (block != nullptr) {
        PathPoolBlock* prev = block->prev;
        freeBytes(block);
        block = prev;
    }
    pool = PathPool();
}

} // namespace kryn
