// The page's arena of path records: a chain of fixed-size blocks from the
// global heap. Records are never freed one by one; the pool is released from
// a given record onward (mark and release).
#pragma once

#include <cstddef>
#include <cstdint>

namespace kryn {

inline constexpr size_t PATH_POOL_BLOCK_BYTES = 556;

struct PathPoolBlock {
    PathPoolBlock* prev;
    uint32_t used; // payload bytes taken
};

inline constexpr size_t PATH_POOL_HEAD_BYTES = (sizeof(PathPoolBlock) + 7u) & ~size_t{7};
inline constexpr size_t PATH_POOL_PAYLOAD_BYTES = PATH_POOL_BLOCK_BYTES - PATH_POOL_HEAD_BYTES;

struct PathPool {
    PathPoolBlock* first = nullptr;
    PathPoolBlock* current = nullptr;
    uint32_t recordCount = 0; // records taken since the last release
};

// A position in the pool, for undoing a failed call exactly.
struct PathPoolMark {
    PathPoolBlock* block;
    uint32_t used;
    uint32_t recordCount;
};

// Takes n bytes (rounded up to 8); null when a block cannot be taken.
void* poolAlloc(PathPool& pool, size_t n);

// Releases the record r and every record taken after it.
void poolRelease(PathPool& pool, const void* r);

PathPoolMark poolMark(const PathPool& pool);

// Returns the pool to a mark: later blocks freed, counts restored.
void poolReleaseToMark(PathPool& pool, const PathPoolMark& mark);

// Frees every block (page end).
void releasePathPool(PathPool& pool);

} // namespace kryn
