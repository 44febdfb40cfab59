/* page_to_png: a complete small driver for Kryn.
 *
 * Opens an engine for an A4 page at 600 dpi (4960 x 7016 pixels in bands of
 * 128 rows), sets the page orientation, paints a few fills and a clip, closes
 * the page in a host mode and writes the band rasters the engine delivers to
 * a PNG file, one row at a time: the page never exists whole in memory.
 * examples/page_to_png.kjob makes the same calls as a job script.
 *
 * Usage: page_to_png [OUT.png]   (default page.png)
 * docs/driver-guide.md walks through it. */
#include <kryn/kryn.h>
#include <kryn/kryn_raster.h>
#include <kryn/platform.h>

#define ZLIB_CONST
#include <zlib.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum { PAGE_WIDTH = 4960, PAGE_HEIGHT = 7016, BAND_HEIGHT = 128 };

/* ---- A PNG file written row by row (8-bit RGB, no filtering) ---------- */

typedef struct PngWriter {
    FILE* file;
    z_stream z;
    int ok;
    unsigned char out[1 << 16];
} PngWriter;

static void putU32(unsigned char* p, uint32_t v) {
    p[0] = (unsigned char)(v >> 24);
    p[1] = (unsigned char)(v >> 16);
    p[2] = (unsigned char)(v >> 8);
    p[3] = (unsigned char)v;
}

static void writeChunk(PngWriter* w, const char* type, const unsigned char* data, uint32_t n) {
    unsigned char head[8], tail[4];
    uLong crc = crc32(0L, (const Bytef*)type, 4);
    putU32(head, n);
    memcpy(head + 4, type, 4);
    putU32(tail, (uint32_t)(n > 0 ? crc32(crc, data, n) : crc)); /* crc32(c, NULL, 0) is 0 */
    if (fwrite(head, 1, 8, w->file) != 8 || fwrite(data, 1, n, w->file) != n ||
        fwrite(tail, 1, 4, w->file) != 4) {
        w->ok = 0;
    }
}

/* Compresses n bytes into IDAT chunks; Z_FINISH also ends the stream. */
static void pngDeflate(PngWriter* w, const unsigned char* data, size_t n, int flush) {
    int status;
    w->z.next_in = data;
    w->z.avail_in = (uInt)n;
    do {
        w->z.next_out = w->out;
        w->z.avail_out = sizeof w->out;
        status = deflate(&w->z, flush);
        if (w->z.avail_out < sizeof w->out) {
            writeChunk(w, "IDAT", w->out, (uint32_t)(sizeof w->out - w->z.avail_out));
        }
    } while (w->z.avail_out == 0 || (flush == Z_FINISH && status == Z_OK));
}

static int pngBegin(PngWriter* w, const char* path, uint32_t width, uint32_t height) {
    static const unsigned char signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    unsigned char header[13] = {0};
    memset(&w->z, 0, sizeof w->z);
    w->file = fopen(path, "wb");
    if (w->file == NULL) {
        return 0;
    }
    if (deflateInit(&w->z, Z_DEFAULT_COMPRESSION) != Z_OK) {
        fclose(w->file);
        return 0;
    }
    putU32(header, width);
    putU32(header + 4, height);
    header[8] = 8; /* bits per channel */
    header[9] = 2; /* RGB */
    w->ok = fwrite(signature, 1, 8, w->file) == 8;
    writeChunk(w, "IHDR", header, 13);
    return 1; /* write failures show at pngEnd */
}

/* row: the filter byte (0) followed by width RGB triples. */
static void pngRow(PngWriter* w, const unsigned char* row, uint32_t width) {
    pngDeflate(w, row, 1 + (size_t)width * 3, Z_NO_FLUSH);
}

static int pngEnd(PngWriter* w) {
    pngDeflate(w, NULL, 0, Z_FINISH);
    writeChunk(w, "IEND", NULL, 0);
    deflateEnd(&w->z);
    return fclose(w->file) == 0 && w->ok;
}

/* ---- The driver: what the OutputCallback does with each band --------- */

typedef struct Driver {
    PngWriter png;
    uint32_t width, height; /* page pixels */
    uint32_t nextRow;       /* first page row not yet written */
    unsigned char* row;     /* filter byte + one RGB row */
    uint32_t* pixels;       /* one expanded 32-bit row */
    unsigned deliveries[10];
    int failed;
} Driver;

/* Bands with nothing painted are not delivered: their rows are paper. */
static void writePaperUpTo(Driver* d, uint32_t pageRow) {
    memset(d->row + 1, 0xFF, (size_t)d->width * 3);
    for (; d->nextRow < pageRow && d->nextRow < d->height; ++d->nextRow) {
        pngRow(&d->png, d->row, d->width);
    }
}

/* A whole-page host mode, forward order, no restart asked: bands arrive in
 * page order and the band index is the page's band. The row stride is the
 * byte count divided by the band's rows; 32-bit rows carry run marks,
 * CB_RASTER_DIRECT rows one grey byte a pixel. */
static uint32_t onOutput(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                         uintptr_t context, const RasterRect* rect) {
    Driver* d = (Driver*)context;
    const uint32_t top = band * BAND_HEIGHT;
    const uint32_t stride = bytes / BAND_HEIGHT;
    const unsigned char* raster = (const unsigned char*)data;
    uint32_t r, x;
    (void)rect;
    if (code < CB_RASTER_BOX || code > CB_RASTER_DIRECT) {
        return 0; /* stream calls come only in the stream modes */
    }
    d->deliveries[code >> 8]++;
    if (top < d->nextRow || stride * BAND_HEIGHT != bytes) {
        d->failed = 1;
        return 0;
    }
    writePaperUpTo(d, top);
    for (r = 0; r < BAND_HEIGHT && top + r < d->height; ++r) {
        const unsigned char* src = raster + (size_t)r * stride;
        unsigned char* rgb = d->row + 1;
        if (code == CB_RASTER_DIRECT) {
            for (x = 0; x < d->width && x < stride; ++x) {
                rgb[3 * x] = rgb[3 * x + 1] = rgb[3 * x + 2] = src[x];
            }
        } else {
            uint32_t n = krynExpandRow((const uint32_t*)src, stride / 4, d->pixels, d->width);
            for (x = 0; x < n; ++x) {
                rgb[3 * x] = (unsigned char)d->pixels[x];
                rgb[3 * x + 1] = (unsigned char)(d->pixels[x] >> 8);
                rgb[3 * x + 2] = (unsigned char)(d->pixels[x] >> 16);
            }
        }
        pngRow(&d->png, d->row, d->width);
        d->nextRow++;
    }
    return 0;
}

/* ---- The page ---------------------------------------------------------- */

#define TRY(call)                                                                                  \
    do {                                                                                           \
        ResultCode r_ = (call);                                                                    \
        if (r_ != KRYN_OK) {                                                                       \
            fprintf(stderr, "%s answered 0x%04X\n", #call, (unsigned)r_);                          \
            return r_;                                                                             \
        }                                                                                          \
    } while (0)

static ResultCode paintPage(Engine* e) {
    /* Upright, user units are device pixels. Nothing is painted until a
     * page has its orientation: set the matrix first. */
    static const int32_t upright[6] = {1, 0, 0, 1, 0, 0};
    static const int32_t star[8] = {3100, 6600, 1500, 5500, 3460, 5500, 1860, 6600};
    ColourValue black = 0x000000, red = 0x2030D0, blue = 0xC06020, green = 0x40A040;
    ColourValue grey = 0x808080;
    TRY(KRYNSetMatrix(upright, e));
    TRY(KRYNSetLogicalFunc(0xF0, e)); /* paint copies its colour: opaque */

    /* A black bar: its two bands hold only black, so they come as
     * CB_RASTER_DIRECT, one byte a pixel. */
    TRY(KRYNSetColor(&black, 0, e));
    TRY(KRYNRectPath(300, 300, 4360, 200, e));
    TRY(KRYNFill(FILL_NONZERO, e));

    /* Colour fills: 32-bit bands, coded CB_RASTER_KIND2 (areas only). */
    TRY(KRYNSetColor(&red, 0, e));
    TRY(KRYNRoundRectPath(300, 800, 2000, 1200, 200, 200, e));
    TRY(KRYNFill(FILL_NONZERO, e));
    TRY(KRYNSetColor(&blue, 0, e));
    TRY(KRYNEllipsePath(2600, 800, 4660, 2000, e));
    TRY(KRYNFill(FILL_NONZERO, e));

    /* A clip: the circle's interior; the green bar shows only inside it. */
    TRY(KRYNEllipsePath(1480, 2400, 3480, 4400, e));
    TRY(KRYNClip(FILL_NONZERO, e));
    TRY(KRYNSetColor(&green, 0, e));
    TRY(KRYNRectPath(0, 3000, PAGE_WIDTH, 800, e));
    TRY(KRYNFill(FILL_NONZERO, e));
    TRY(KRYNClearClip(e));

    /* A star filled even-odd: its centre stays open. */
    TRY(KRYNSetColor(&grey, 0, e));
    TRY(KRYNMoveTo(2480, 4800, e));
    TRY(KRYNLinesTo(star, 4, e));
    TRY(KRYNFill(FILL_EVEN_ODD, e));
    return KRYN_OK;
}

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "page.png";
    Driver d;
    Engine* e;
    int ok = 0;
    memset(&d, 0, sizeof d);
    d.width = PAGE_WIDTH;
    d.height = PAGE_HEIGHT;
    d.row = malloc(1 + (size_t)PAGE_WIDTH * 3);
    d.pixels = malloc((size_t)PAGE_WIDTH * sizeof *d.pixels);
    e = KRYNInit(PAGE_WIDTH - 1, PAGE_HEIGHT - 1, BAND_HEIGHT, 600, KRYN_LEVEL_ALPHA_BLEND);
    if (e == NULL || d.row == NULL || d.pixels == NULL ||
        !pngBegin(&d.png, path, d.width, d.height)) {
        fprintf(stderr, "page_to_png: cannot start (engine, memory or %s)\n", path);
        KRYNEnd(e);
        free(d.row);
        free(d.pixels);
        return 1;
    }
    d.row[0] = 0; /* PNG filter: none */
    if (KRYNNewPage(KRYN_PAGE_TYPED, e) == KRYN_OK) {
        if (paintPage(e) == KRYN_OK) {
            ok = KRYNClosePage(onOutput, (uintptr_t)&d, e) == KRYN_OK && !d.failed;
        } else {
            KRYNDisposePage(e);
        }
    }
    writePaperUpTo(&d, d.height);
    ok = pngEnd(&d.png) && ok;
    KRYNEnd(e);
    printf("%s: %ux%u; bands delivered: %u mono (0x900), %u areas (0x700), %u other\n", path,
           (unsigned)d.width, (unsigned)d.height, d.deliveries[9], d.deliveries[7],
           d.deliveries[5] + d.deliveries[6] + d.deliveries[8]);
    free(d.row);
    free(d.pixels);
    return ok ? 0 : 1;
}
