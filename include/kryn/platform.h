/* Kryn platform layer: the global heap the engine allocates from.
 *
 * On hosts that provide GlobalAlloc/GlobalFree the engine uses the host's;
 * elsewhere the library ships this stand-in with the same contract, plus
 * process-wide accounting and fault injection for tests and leak hunting. */
#ifndef KRYN_PLATFORM_H
#define KRYN_PLATFORM_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define KRYN_EXPORT __attribute__((visibility("default")))
#else
#define KRYN_EXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define GMEM_FIXED 0x0000
#define GMEM_ZEROINIT 0x0040

/* Returns NULL on failure. GMEM_ZEROINIT fills the block with zero bytes;
 * without it the contents are undefined. Other flag bits are ignored. */
KRYN_EXPORT void* GlobalAlloc(uint32_t flags, size_t bytes);
/* Returns NULL on success; NULL is accepted and ignored. */
KRYN_EXPORT void* GlobalFree(void* block);

/* Accounting and fault injection. Process-wide (they describe the heap, not
 * an engine) and atomic, so engines on several threads may allocate at once. */
KRYN_EXPORT uint64_t KRYNPlatformLiveBlocks(void); /* allocated and not yet freed */
KRYN_EXPORT uint64_t KRYNPlatformAllocCount(void); /* allocations made since load */
/* n >= 0: the next n allocations succeed and every later one fails until the
 * next call; n < 0: no failures (the default). */
KRYN_EXPORT void KRYNPlatformFailAfter(int64_t n);

#ifdef __cplusplus
}
#endif

#endif /* KRYN_PLATFORM_H */
