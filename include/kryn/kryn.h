/* Kryn: a banded raster engine for page printers.
 *
 * A driver opens one engine per job (KRYNInit), starts pages (KRYNNewPage),
 * turns what an application prints into calls, and closes each page
 * (KRYNClosePage), which delivers band rasters or the serialised device
 * stream through the driver's OutputCallback. Every operation but KRYNInit
 * takes the engine last and returns a ResultCode; nothing throws, nothing is
 * global, and a failed call leaves everything recorded before it valid.
 *
 * Conventions shared by every operation:
 *  - A null engine handle answers KRYN_ERR_INVALID.
 *  - An operation that needs an open page answers KRYN_ERR_INVALID when no
 *    page is open.
 *  - KRYN_ERR_NO_MEMORY leaves the engine and the open page usable.
 *  - A null pointer where a call needs one answers KRYN_ERR_INVALID and
 *    changes nothing.
 */
#ifndef KRYN_KRYN_H
#define KRYN_KRYN_H

#include <stddef.h>
#include <stdint.h>

#if !defined(KRYN_EXPORT)
#if defined(__GNUC__)
#define KRYN_EXPORT __attribute__((visibility("default")))
#else
#define KRYN_EXPORT
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef uint16_t ResultCode;
typedef uint32_t ColourValue; /* 0xAABBGGRR; alpha used only while blending */
typedef struct Engine Engine; /* opaque handle */

typedef struct RasterRect {
    uint32_t left, top, right, bottom;
} RasterRect;

/* code, band index, data, byte count, context, rectangle (NULL for stream calls) */
typedef uint32_t (*OutputCallback)(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                                   uintptr_t context, const RasterRect* rect);

typedef struct ImageDesc { /* an image or mask in memory */
    void* samples;         /* from GlobalAlloc when ownership passes */
    int32_t width, height, rowStride;
    uint32_t format;
} ImageDesc;

typedef struct ScreenTile { /* a halftone or pattern tile */
    const void* data;
    int32_t width, height, bytesPerRow;
    uint8_t depth;
} ScreenTile;

#define KRYN_OK 0
#define KRYN_ERR_NO_MEMORY 0xFF01
#define KRYN_ERR_INVALID 0xFF02
#define KRYN_ERR_NO_CURRENT_POINT 0xFF03
#define KRYN_ERR_GSTATE_UNDERFLOW 0xFF05

/* An OutputCallback answers a band raster (codes 0x500..0x900) with this to
 * ask for the whole page once more. */
#define KRYN_CB_RESTART 0x80000000u

#define CB_STREAM_DATA 0x100u
#define CB_STREAM_BEGIN 0x101u
#define CB_STREAM_END 0x102u
#define CB_RASTER_BOX 0x200u
#define CB_RASTER_STANDARD 0x500u
#define CB_RASTER_KIND4 0x600u
#define CB_RASTER_KIND2 0x700u
#define CB_RASTER_KIND1 0x800u
#define CB_RASTER_DIRECT 0x900u

#define FILL_EVEN_ODD 0
#define FILL_NONZERO 1

/* ---- Engine ------------------------------------------------------------ */

/* Opens an engine for a page of (width + 1) x (height + 1) device pixels cut
 * into bands of bandHeight rows. Returns NULL when width, height or
 * bandHeight is below 1, or when memory runs out. */
KRYN_EXPORT Engine* KRYNInit(int32_t width, int32_t height, int16_t bandHeight, uint16_t resolution,
                             uint16_t deviceLevel);
/* Releases the engine and everything it owns, after sending any stream
 * bytes still buffered. A page still open is disposed of without output.
 * KRYN_OK (KRYN_ERR_INVALID for a null handle). */
KRYN_EXPORT ResultCode KRYNEnd(Engine* e);
/* Stores the page's pixel width and height (width + 1, height + 1). */
KRYN_EXPORT ResultCode KRYNGetPageResource(uint32_t* outWidth, uint32_t* outHeight, Engine* e);

/* ---- Pages and bands --------------------------------------------------- */

/* Starts a page in mode 0..9 (0, 1: serialised output only; 2..9: band
 * rasters at page close; 1, 2, 4, 6, 8 move a band group with KRYNNextBand).
 * KRYN_ERR_INVALID for another mode or while a page is open. */
KRYN_EXPORT ResultCode KRYNNewPage(int16_t mode, Engine* e);
/* Ends every band list, plays the bands on the host in modes 2..9 and
 * delivers them through cb, then frees the page. Playback errors and a
 * second restart request end the playback but not the call: KRYN_OK. */
KRYN_EXPORT ResultCode KRYNClosePage(OutputCallback cb, uintptr_t context, Engine* e);
/* Frees the open page without any output. */
KRYN_EXPORT ResultCode KRYNDisposePage(Engine* e);
/* Serialises and frees the finished bands (the recorded range in whole-page
 * modes, the open group in band-group modes) through cb, and moves the band
 * group on by bandsPerGroup bands. */
KRYN_EXPORT ResultCode KRYNNextBand(uint32_t bandsPerGroup, OutputCallback cb, uintptr_t context,
                                    Engine* e);
/* Plays the page's bands last to first. Whole-page modes (0, 3, 5, 7, 9)
 * only; KRYN_ERR_INVALID in the others. */
KRYN_EXPORT ResultCode KRYNSetReverseSide(Engine* e);
/* out: raster row bytes, band count, page width, page height, and the two
 * reverse-side offsets (0 unless the page is set to the reverse side). */
KRYN_EXPORT ResultCode KRYNGetPageInfo(uint16_t out[6], Engine* e);

/* ---- Colour and raster operations ------------------------------------ */

/* These setters change the current graphics state of the open page
 * (KRYN_ERR_INVALID without one); painting calls use the values from their
 * next call on, and KRYNPopGState brings back the values saved by the
 * matching push. */

/* Selector 0 sets the paint colour (default 0x000000, black); any other
 * selector sets the background colour (default 0xFFFFFF, white), which a
 * 1-bit opaque screen paints on its zero bits. Every value is accepted; the
 * alpha byte counts only while alpha blending is on. KRYN_ERR_INVALID for a
 * null colour. */
KRYN_EXPORT ResultCode KRYNSetColor(const ColourValue* colour, uint16_t selector, Engine* e);
/* Sets the background mode that image painting reads (default 1: the zero
 * bits of 1-bit images are painted in the image background colour). The
 * value is stored unchecked. */
KRYN_EXPORT ResultCode KRYNSetBackground(uint16_t mode, Engine* e);
/* Sets the logical function that combines every painted pixel with the
 * page: a ternary raster-operation code whose bit (4p + 2s + d) is the result
 * for pattern (paint colour or screen) bit p, source (image) bit s and
 * destination bit d. Default 0xA8, D AND (P OR S): paint only darkens.
 * KRYN_ERR_INVALID for a code above 255, which leaves the current one. */
KRYN_EXPORT ResultCode KRYNSetLogicalFunc(uint16_t code, Engine* e);
/* Stores a second code (0..255, default 0xA8) with the graphics state; no
 * painting call reads it. KRYN_ERR_INVALID for a code above 255. */
KRYN_EXPORT ResultCode KRYNSetLogicalFunc2(uint16_t code, Engine* e);

#ifdef __cplusplus
}
#endif

#endif /* KRYN_KRYN_H */
