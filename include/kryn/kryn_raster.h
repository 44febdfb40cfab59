/* Kryn: reading the 32-bit band rasters the engine delivers.
 *
 * A 32-bit band raster (every raster code but CB_RASTER_DIRECT, and
 * CB_RASTER_STANDARD on grey pages) holds rows of rowWords pixels, each one
 * host-order 32-bit word 0xTTBBGGRR: red, green, blue, and a tag byte saying
 * which kind of object painted the pixel (the KRYNColorAttribute values).
 * Before delivery the engine marks each row's runs of equal pixels in the
 * tag byte of the pixel that heads the run, so that a device can skip them:
 *
 *   KRYN_RUN_BLANK (0x20)  the row is white from this pixel to its end;
 *   KRYN_RUN_LONG  (0x10)  a run of n > 3 pixels of this colour; n is stored
 *                          in the next word, which is therefore no pixel;
 *   otherwise              the pixel stands for itself (shorter runs OR their
 *                          length times 2 into the tag and are read one
 *                          pixel at a time).
 *
 * Every row starts with a run head at column 0, and a run ends where the
 * next head begins. Marks only set tag bits 0x02, 0x04, 0x10 and 0x20 of run
 * heads: object kinds are read safely from bits 0x01, 0x08, 0x40 and 0x80,
 * and KRYNColorAttribute values must keep 0x10 and 0x20 clear (a reader
 * takes those bits for marks on any pixel it meets as a head).
 * krynExpandRow turns one marked row into plain pixels.
 *
 * C99 and C++, header only; include it after or without kryn.h. */
#ifndef KRYN_KRYN_RASTER_H
#define KRYN_KRYN_RASTER_H

#include <stdint.h>

#define KRYN_RUN_LONG 0x10u
#define KRYN_RUN_BLANK 0x20u
#define KRYN_PAPER_WHITE 0xFFFFFFu

/* Expands the marked row at `row` (rowWords words: the band's byte count
 * divided by its rows, divided by 4) into `count` pixels 0x00BBGGRR, the tag
 * byte cleared. Writes min(count, rowWords) pixels and answers how many.
 * Never reads outside the row, whatever its marks hold. */
static inline uint32_t krynExpandRow(const uint32_t* row, uint32_t rowWords, uint32_t* pixels,
                                     uint32_t count) {
    const uint32_t n = count < rowWords ? count : rowWords;
    uint32_t x = 0;
    while (x < n) {
        const uint32_t word = row[x];
        const uint32_t tag = word >> 24;
        uint32_t colour = word & KRYN_PAPER_WHITE;
        uint32_t length = 1;
        if ((tag & KRYN_RUN_BLANK) != 0) {
            colour = KRYN_PAPER_WHITE;
            length = n - x;
        } else if ((tag & KRYN_RUN_LONG) != 0 && x + 1 < rowWords && row[x + 1] > 1) {
            length = row[x + 1];
        }
        if (length > n - x) {
            length = n - x;
        }
        while (length-- > 0) {
            pixels[x++] = colour;
        }
    }
    return n;
}

#endif /* KRYN_KRYN_RASTER_H */
