// Stand-in for the host's global heap, with process-wide accounting and
// fault injection. This is the only place that touches the C heap: every
// engine allocation goes through GlobalAlloc.
#include "kryn/platform.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace {

std::atomic<uint64_t> liveBlocks{0};
std::atomic<uint64_t> allocCount{0};
// Allocations still allowed before failures start; negative: never fail.
std::atomic<int64_t> allowance{-1};

// Takes one allocation from the allowance; false when this one must fail.
bool takeAllowance() {
    int64_t left = allowance.load(std::memory_order_relaxed);
    while (left >= 0) {
        if (left == 0) {
            return false;
        }
        if (allowance.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
            return true;
        }
    }
    return true;
}

} // namespace

extern "C" void* GlobalAlloc(uint32_t flags, size_t bytes) {
    if (!takeAllowance()) {
        return nullptr;
    }
    const size_t size = bytes == 0 ? 1 : bytes;
    void* block = (flags & GMEM_ZEROINIT) ? std::calloc(1, size) : std::malloc(size);
    if (block == nullptr) {
        return nullptr;
    }
    allocCount.fetch_add(1, std::memory_order_relaxed);
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

extern "C" void* GlobalFree(void* block) {
    if (block != nullptr) {
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
        std::free(block);
    }
    return nullptr;
}

extern "C" uint64_t KRYNPlatformLiveBlocks(void) {
    return liveBlocks.load(std::memory_order_relaxed);
}

extern "C" uint64_t KRYNPlatformAllocCount(void) {
    return allocCount.load(std::memory_order_relaxed);
}

extern "C" void KRYNPlatformFailAfter(int64_t n) {
    allowance.store(n < 0 ? -1 : n, std::memory_order_relaxed);
}
