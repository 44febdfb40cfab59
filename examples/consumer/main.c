/* Opens an engine for an A4 page at 600 dpi, runs one empty page in each
 * serialised mode and reports what the engine says about the page. */
#include <kryn/kryn.h>
#include <kryn/platform.h>

#include <stdio.h>

static uint32_t countCalls(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                           uintptr_t context, const RasterRect* rect) {
    (void)code;
    (void)band;
    (void)data;
    (void)bytes;
    (void)rect;
    ++*(unsigned*)context;
    return 0;
}

int main(void) {
    Engine* e = KRYNInit(4959, 7015, 128, 600, 0x8009);
    uint32_t width = 0, height = 0;
    uint16_t info[6];
    unsigned calls = 0;
    if (e == NULL) {
        fprintf(stderr, "KRYNInit failed\n");
        return 1;
    }
    if (KRYNGetPageResource(&width, &height, e) != KRYN_OK || KRYNNewPage(1, e) != KRYN_OK ||
        KRYNGetPageInfo(info, e) != KRYN_OK ||
        KRYNNextBand(8, countCalls, (uintptr_t)&calls, e) != KRYN_OK ||
        KRYNNextBand(8, countCalls, (uintptr_t)&calls, e) != KRYN_OK ||
        KRYNClosePage(countCalls, (uintptr_t)&calls, e) != KRYN_OK) {
        fprintf(stderr, "page operations failed\n");
        return 1;
    }
    printf("page %ux%u pixels, %u bands, %u raster bytes per row, %u callback calls\n",
           (unsigned)width, (unsigned)height, (unsigned)info[1], (unsigned)info[0], calls);
    KRYNEnd(e);
    if (KRYNPlatformLiveBlocks() != 0) {
        fprintf(stderr, "blocks left allocated: %llu\n",
                (unsigned long long)KRYNPlatformLiveBlocks());
        return 1;
    }
    return 0;
}
