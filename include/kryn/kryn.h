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
 *
 * Hostile input (every operation is exercised this way by the tests, also
 * under the address and undefined-behaviour sanitizers):
 *  - Every operation answers KRYN_OK or one of the error codes below, for
 *    any value of every argument; none crashes, and none keeps memory that
 *    the engine does not own afterwards.
 *  - Coordinates, sizes and matrix entries may take any value of their type
 *    (INT32_MIN and INT32_MAX included); nothing is painted outside the page.
 *  - A count is trusted to match its array: the caller's array must hold
 *    what the count says.
 *  - An error answer leaves the engine usable: the next page paints and
 *    delivers normally.
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
 * ask for the whole page once more. Any other answer, and every answer to a
 * stream call or a 0x200 raster, means "go on". A second request during the
 * same page close ends its playback; the close still answers KRYN_OK. */
#define KRYN_CB_RESTART 0x80000000u

/* Callback codes. Stream calls (0x100..0x102) carry the device stream in
 * chunks: BEGIN (band index, chunk bytes + 4), DATA pieces, END (the rest,
 * then the chunk's 32-bit byte sum, big-endian); rect is NULL. Raster calls
 * (0x200..0x900) carry a whole band raster: bandHeight rows of
 * bytes / bandHeight bytes each; 8-bit grey for CB_RASTER_DIRECT and for
 * every band of a grey page, else 32-bit 0xTTBBGGRR with run marks
 * (kryn_raster.h expands them). docs/driver-guide.md says when each comes. */
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

/* ---- Names for the numbers the calls take ------------------------------ */

/* Version of this header and of the library built with it. */
#define KRYN_VERSION_MAJOR 0
#define KRYN_VERSION_MINOR 1
#define KRYN_VERSION_PATCH 0
#define KRYN_VERSION_STRING "0.1.0"

/* Page modes (KRYNNewPage). STREAM modes only serialise band lists, for a
 * device that plays them itself (KRYNNextBand sends them). The others play
 * every recorded band on the host at KRYNClosePage and deliver band rasters:
 * BOX modes (2 to 7) render rows of pageWidth - 1 pixels and deliver colour
 * bands as CB_RASTER_BOX with the painted box; TYPED modes (8, 9) render
 * pageWidth pixels and deliver colour bands whole, coded by what painted
 * them. GROUPS modes move a window of bands down the page with KRYNNextBand;
 * the others record the whole page and may be set to the reverse side.
 * Mode 3 keeps one more band entry and ends its page clip one column and one
 * row short. PLAIN modes play colour bands without the work buffer of
 * scaled images; the ALT pair behaves as the pair before it. */
#define KRYN_PAGE_STREAM 0
#define KRYN_PAGE_STREAM_GROUPS 1
#define KRYN_PAGE_BOX_GROUPS 2
#define KRYN_PAGE_BOX_SHORT 3
#define KRYN_PAGE_BOX_PLAIN_GROUPS 4
#define KRYN_PAGE_BOX_PLAIN 5
#define KRYN_PAGE_BOX_PLAIN_GROUPS_ALT 6
#define KRYN_PAGE_BOX_PLAIN_ALT 7
#define KRYN_PAGE_TYPED_GROUPS 8
#define KRYN_PAGE_TYPED 9

/* Device levels (KRYNInit's deviceLevel): each switches its feature on for
 * every level from it up; below 0x8003 none is on. */
#define KRYN_LEVEL_BAND_HEADER 0x8003   /* band header chunk; KRYNSelectSpace honoured */
#define KRYN_LEVEL_WIDE_FIELDS 0x8004   /* 16-bit screen phases, wide download tiles */
#define KRYN_LEVEL_RECT_SPANS 0x8005    /* fills recorded as rectangle lists */
#define KRYN_LEVEL_SHORT_SPANS 0x8006   /* band-high bars as column records */
#define KRYN_LEVEL_TYPED_RASTERS 0x8008 /* mono bands (0x900) and content raster codes */
#define KRYN_LEVEL_ALPHA_BLEND 0x8009   /* alpha blending; direct scaled images */

/* Colour spaces (KRYNSelectSpace). */
#define KRYN_SPACE_COLOUR 0 /* 32-bit 0xTTBBGGRR band rasters (the default) */
#define KRYN_SPACE_GREY 1   /* 8-bit grey band rasters, 0 black, 255 white */

/* Line caps and joins (KRYNSetLineCap, KRYNSetLineJoin). Join 0 is taken
 * as JOIN_ROUND. */
#define CAP_FLAT 0
#define CAP_ROUND 1
#define CAP_SQUARE 2
#define JOIN_BEVEL 1
#define JOIN_MITER 2
#define JOIN_ROUND 3

/* ---- Engine ------------------------------------------------------------ */

/* Opens an engine for a page of (width + 1) x (height + 1) device pixels cut
 * into bands of bandHeight rows. Returns NULL when width, height or
 * bandHeight is below 1, bandHeight is above 256 (rows within a band are
 * 8-bit in the records), width is above 65535, height is above 134217726
 * (2^27 - 2), the page would need more than 32766 bands, or memory runs out. */
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
 * reverse-side offsets (0 unless the page is set to the reverse side).
 * Each value is kept to 16 bits: the width of a 65536-pixel page reads 0,
 * and so does the row of a 32-bit raster 16384 pixels wide. The row bytes
 * are those of a pageWidth-pixel row: in modes 2 to 7 host rasters are one
 * pixel narrower, so take a delivery's stride from its bytes / bandHeight. */
KRYN_EXPORT ResultCode KRYNGetPageInfo(uint16_t out[6], Engine* e);

/* ---- Graphics state stack and page-wide settings -------------------- */

/* Saves the current graphics state (transformation, path, line and colour
 * parameters, screen); the saved copy carries the current point, so a path
 * may go on in the pushed state. KRYN_ERR_INVALID without an open page. */
KRYN_EXPORT ResultCode KRYNPushGState(Engine* e);
/* Brings back the state saved by the matching push.
 * KRYN_ERR_GSTATE_UNDERFLOW when nothing was pushed. */
KRYN_EXPORT ResultCode KRYNPopGState(Engine* e);
/* 0: 32-bit colour rasters, 1: 8-bit grey rasters (from device level
 * 0x8003 on); other values are accepted and ignored. Needs an open page.
 * The rasters keep the space last selected on later pages too: select it on
 * every page. */
KRYN_EXPORT ResultCode KRYNSelectSpace(int32_t space, Engine* e);
/* Stores three colour attribute bytes for the renderer; no page needed. */
KRYN_EXPORT ResultCode KRYNColorAttribute(uint32_t a, uint32_t b, uint32_t c, Engine* e);
/* Quantises rendering to the engine's resolution (300 or 600 dpi only). */
KRYN_EXPORT ResultCode KRYNSetQuantization(Engine* e);

/* ---- Transformation ---------------------------------------------------- */

/* Device x = a*x + c*y + tx, device y = b*x + d*y + ty for m = {a, b, c, d,
 * tx, ty}. KRYN_ERR_INVALID for a singular matrix (nothing changes). The
 * first right-angle matrix of a page ({1 0 0 1}, {0 1 -1 0}, {-1 0 0 -1},
 * {0 -1 1 0} and any tx, ty) fixes the page orientation; nothing is painted
 * or clipped on a page before it. */
KRYN_EXPORT ResultCode KRYNSetMatrix(const int32_t m[6], Engine* e);
/* Multiplies the linear part by s. KRYN_ERR_INVALID (nothing changes) when s
 * makes it singular or its determinant infinite, or s is NaN or infinite. */
KRYN_EXPORT ResultCode KRYNSetScale(float s, Engine* e);
/* Moves every later device point by (dx, dy) pixels. */
KRYN_EXPORT ResultCode KRYNSetTranslation(int32_t dx, int32_t dy, Engine* e);

/* ---- Paths ------------------------------------------------------------- */

/* Path calls take user coordinates through the current transformation. A
 * call that fails (KRYN_ERR_NO_MEMORY) leaves the path exactly as before. */
KRYN_EXPORT ResultCode KRYNNewPath(Engine* e);
KRYN_EXPORT ResultCode KRYNMoveTo(int32_t x, int32_t y, Engine* e);
KRYN_EXPORT ResultCode KRYNMoveTo16(int16_t x, int16_t y, Engine* e);
/* count (x, y) pairs. KRYN_ERR_INVALID for count < 1 or a null array,
 * KRYN_ERR_NO_CURRENT_POINT without a current point. */
KRYN_EXPORT ResultCode KRYNLinesTo(const int32_t* points, int16_t count, Engine* e);
KRYN_EXPORT ResultCode KRYNLinesTo16(const int16_t* points, int16_t count, Engine* e);
KRYN_EXPORT ResultCode KRYNClosePath(Engine* e);
/* Keeps the current path for exactly one more painting call. */
KRYN_EXPORT ResultCode KRYNSealedPath(Engine* e);

/* Control 1, control 2, end. KRYN_ERR_NO_CURRENT_POINT without a current
 * point or for a null array. */
KRYN_EXPORT ResultCode KRYNBezier3To(const int32_t points[6], Engine* e);
KRYN_EXPORT ResultCode KRYNBezier3To16(const int16_t points[6], Engine* e);
/* count points, taken in groups of three; KRYN_ERR_INVALID unless count is
 * a positive multiple of 3. */
KRYN_EXPORT ResultCode KRYNGroupBezier3To(const int32_t* points, uint16_t count, Engine* e);
KRYN_EXPORT ResultCode KRYNGroupBezier3To16(const int16_t* points, uint16_t count, Engine* e);
/* Arcs of the ellipse in the box (left, top, right, bottom) from the ray
 * through the start point to the ray through the end point. */
KRYN_EXPORT ResultCode KRYNArcTo(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                 int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                 Engine* e);
KRYN_EXPORT ResultCode KRYNFanPath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                   int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                   Engine* e); /* pie */
KRYN_EXPORT ResultCode KRYNBowPath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                   int32_t xStart, int32_t yStart, int32_t xEnd, int32_t yEnd,
                                   Engine* e); /* chord */
KRYN_EXPORT ResultCode KRYNEllipsePath(int32_t left, int32_t top, int32_t right, int32_t bottom,
                                       Engine* e);
/* KRYN_ERR_INVALID for a zero width or height. */
KRYN_EXPORT ResultCode KRYNRectPath(int32_t x, int32_t y, int32_t width, int32_t height, Engine* e);
/* KRYN_ERR_INVALID unless 1 <= ex <= |width|/2 and 1 <= ey <= |height|/2. */
KRYN_EXPORT ResultCode KRYNRoundRectPath(int32_t x, int32_t y, int32_t width, int32_t height,
                                         int32_t ex, int32_t ey, Engine* e);

/* ---- Fill and clip ------------------------------------------------------ */

/* Paints the interior of the current path with the current paint and logical
 * function, within the clip region: FILL_EVEN_ODD or FILL_NONZERO. A pixel is
 * painted when its sample point (its top-left corner on an unrotated page)
 * lies inside. The path is consumed (kept once when sealed). KRYN_OK with
 * nothing painted for an empty path, white paint on a page with nothing
 * recorded, before KRYNSetMatrix has set the page orientation, or outside
 * the clip; KRYN_ERR_INVALID for another rule. */
KRYN_EXPORT ResultCode KRYNFill(uint16_t rule, Engine* e);
/* The interior of the current path within the page replaces the clip region
 * (it is not intersected with the old one); the path is consumed.
 * KRYN_ERR_INVALID for a bad rule, or when the state's three clip pools are
 * all in use (the path is then kept). On failure the old clip stays. */
KRYN_EXPORT ResultCode KRYNClip(uint16_t rule, Engine* e);
/* The whole page (in band-group modes: the current band group) becomes the
 * clip region; the current path is discarded. */
KRYN_EXPORT ResultCode KRYNClearClip(Engine* e);
/* Saves the current clip region (one level). KRYNPopClip brings the saved
 * region back; KRYNVoidPushClip drops the saved one and keeps the current.
 * A pushed graphics state works inside its parent's region; popping the
 * state discards every region it built. */
KRYN_EXPORT ResultCode KRYNPushClip(Engine* e);
KRYN_EXPORT ResultCode KRYNPopClip(Engine* e);
KRYN_EXPORT ResultCode KRYNVoidPushClip(Engine* e);

/* ---- Scan lines, dots and strokes ------------------------------------- */

/* Adds count runs (x0, x1 pairs) on user row y to the current path, each an
 * open subpath of one line; the current point moves to the last run's start.
 * A fill gives such runs no pixels: stroke them. KRYN_ERR_INVALID for
 * count < 1 or a null array; after KRYN_ERR_NO_MEMORY the runs before the
 * failing one stay in the path. The 16-bit form sign-extends every value. */
KRYN_EXPORT ResultCode KRYNScanLines(const int32_t* runs, int32_t y, int16_t count, Engine* e);
KRYN_EXPORT ResultCode KRYNScanLines16(const int16_t* runs, int16_t y, int16_t count, Engine* e);
/* Paints the 2 x 2 pixels whose sample points follow the user point (x, y)
 * at once, through the clip region, with the current paint; the path is not
 * touched. A dot whose point lies inside a rectangular clip is not clipped
 * and may reach one pixel past the clip's right or bottom side, never past
 * the page. KRYN_OK with nothing painted before KRYNSetMatrix has set the
 * page orientation or outside the clip. */
KRYN_EXPORT ResultCode KRYNDotPaint(int32_t x, int32_t y, Engine* e);

/* Paints the current path as a line of the current width with its caps,
 * joins and dash pattern, within the clip region, and consumes the path
 * (kept once when sealed). Every piece (segment body, cap, join, dash) is
 * painted on its own; with a logical function that paints a pixel twice
 * differently from once (0x5A and the like) the pieces' pixels are merged
 * so that each is painted once. Lines at most one device pixel wide (widths
 * 0 and 1 at scale 1) are drawn one pixel thick with no caps or joins.
 * Round caps and joins need a transformation that keeps right angles
 * (rotations other than quarter turns draw none) and a device half-width
 * below 4096 pixels. A subpath of one point or of zero-length segments
 * draws nothing. KRYN_OK with nothing painted for an empty path, white
 * paint on a page with nothing recorded, or before the page orientation is
 * set. KRYN_ERR_NO_MEMORY discards the path; what was recorded before
 * stays. */
KRYN_EXPORT ResultCode KRYNStroke(Engine* e);
/* Line width in user units (default 1): KRYN_ERR_INVALID below 0. */
KRYN_EXPORT ResultCode KRYNSetLineWidth(int32_t width, Engine* e);
/* 0 flat (default), 1 round, 2 square (half a width past the end);
 * KRYN_ERR_INVALID for another value. */
KRYN_EXPORT ResultCode KRYNSetLineCap(uint16_t cap, Engine* e);
/* 1 bevel, 2 miter (default), 3 round; 0 is round too (and reads 3 once a
 * stroke has drawn a join). KRYN_ERR_INVALID above 3. */
KRYN_EXPORT ResultCode KRYNSetLineJoin(uint16_t join, Engine* e);
/* A miter longer than limit half-widths from its corner becomes a bevel
 * (default 10); KRYN_ERR_INVALID below 1. */
KRYN_EXPORT ResultCode KRYNSetMiterLimit(int32_t limit, Engine* e);
/* count entries in user units, dash, gap, dash, ..., started phase units
 * into the pattern; every subpath of every stroke starts there. count 0
 * makes the line solid. KRYN_ERR_INVALID (pattern unchanged) for a null
 * array with count > 0, no entry above 0, or entries summing to 0 or less
 * (negative and zero entries are otherwise allowed). One stroke's dashes
 * are limited to about 2^23 pixel rows in all (each pattern entry walked
 * counts one): past that the rest of that stroke is drawn solid, so that a
 * pattern far below the device's resolution cannot take unbounded time. */
KRYN_EXPORT ResultCode KRYNSetLineDash(const int32_t* entries, uint16_t count, uint32_t phase,
                                       Engine* e);

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

/* ---- Screens ------------------------------------------------------------ */

/* Makes `tile` the screen of the current graphics state: every later fill,
 * stroke and dot paints through it, the tile repeated over the page from
 * its top-left pixel. Depth 1: a halftone cell, rows of (width + 7) / 8
 * bytes, most significant bit first; one bits paint the colour, zero bits
 * the background colour when `opaque` is non-zero and nothing otherwise.
 * Depth 8 (one byte a pixel, grey pages only), 24 (four bytes a pixel,
 * channels 0, 1, 2 and an unused byte): the pixels themselves are the
 * pattern, `opaque` is ignored. Depths 124 and 254 need alpha blending on.
 * Rows are packed: bytesPerRow is only checked to be at least 1. The tile
 * turns with the current matrix (quarter turns, with any uniform scale, which
 * is not applied: a cell keeps its size in device pixels). The engine keeps
 * its own copy, once per distinct tile per page.
 * A null tile, or one of width 0, returns to solid painting (and stores
 * `opaque`). Answers, with nothing changed on any error:
 *  - KRYN_ERR_INVALID: no open page; height outside 1..4096; width outside
 *    0..4096; bytesPerRow below 1; depth 8 while colour space 0 is
 *    selected; depth 124 or 254 without alpha blending; any other depth;
 *    null data; a 1-bit tile whose rows, widened to a multiple of 32 bits
 *    that the width divides, would exceed 65535 pixels (odd widths above
 *    2047, after turning).
 *  - KRYN_ERR_NO_MEMORY: memory runs out; the matrix is not a quarter turn
 *    times a uniform scale; the page already holds 16383 distinct tiles. */
KRYN_EXPORT ResultCode KRYNSetScreen(const ScreenTile* tile, uint16_t opaque, Engine* e);

/* ---- Alpha blending ----------------------------------------------------- */

/* Blending lays paint over what a band holds with partial coverage instead
 * of through the logical function: pixel = (a * paint + (255 - a) * pixel)
 * / 255 per channel, rounded, with alpha a from 0 (nothing) to 255 (opaque).
 * The settings belong to the open page (KRYN_ERR_INVALID without one), not
 * to the graphics state: a page starts with blending off, no constant alpha
 * and both keys off, and pushes and pops leave them alone.
 *
 * Where a painted colour's alpha comes from, while blending is on: the
 * constant alpha (when below 255) and either key 0 (when on and the
 * colour's channels lie inside its three ranges) or, with key 0 off, the
 * colour's own alpha byte (when below 255). No source paints through the
 * logical function; one blends with it; two blend with their product. An
 * alpha of 0 paints nothing. So with blending on, colours want an alpha
 * byte: 0xFF0000FF is opaque red, 0x000000FF paints nothing. Grey pages
 * read channel 0 and the first range of each key only. */

/* Switches blending on (low byte of `value` non-zero) or off. Blending
 * takes effect only on devices of level KRYN_LEVEL_ALPHA_BLEND and above;
 * on any device a non-zero value makes colours travel with their alpha
 * byte, for the rest of the engine's life until a value of 0. Always
 * KRYN_OK with a page open. */
KRYN_EXPORT ResultCode KRYNAlphaBlend(uint16_t value, Engine* e);
/* Constant alpha 0..255 (255: none). KRYN_ERR_INVALID for other values,
 * which change nothing. */
KRYN_EXPORT ResultCode KRYNSetConstAlphaBlend(int32_t value, Engine* e);
/* Sets a colour key: selector 0 key 0 (paint and screen tiles), any other
 * selector key 1 (images). `ranges` holds one word per channel 0, 1, 2: low
 * byte the minimum, high byte the maximum, both inclusive (0xFF00 is the
 * whole range); colours inside all three take `alpha`. A null `ranges`
 * turns the key off and keeps its ranges; an alpha of 255 also leaves the
 * key off. Every value is accepted: KRYN_OK with a page open. */
KRYN_EXPORT ResultCode KRYNSetAlphaBlendTable(const uint16_t ranges[3], uint8_t alpha,
                                              uint16_t selector, Engine* e);
/* Accepted and ignored: no argument is read, the handle may be null, and
 * nothing is painted or recorded. Always KRYN_OK. KRYNFitImage is the same
 * operation. */
KRYN_EXPORT ResultCode KRYNGradientFill(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d,
                                        uintptr_t f, Engine* e);
KRYN_EXPORT ResultCode KRYNFitImage(uintptr_t a, uintptr_t b, uintptr_t c, uintptr_t d, uintptr_t f,
                                    Engine* e);

/* ---- Images ------------------------------------------------------------ */

/* Sample formats of ImageDesc.format: rows of rowStride bytes (at least one
 * packed row), top row first. Formats 104, 108, 124 and 254 are taken only
 * while alpha blending is on, 255 only on grey pages (KRYNSelectSpace(1)). */
#define KRYN_IMAGE_BITS 1            /* 1 bit, MSB first: image colour / image back colour */
#define KRYN_IMAGE_NIBBLES 4         /* 4-bit indices into the colour table, high nibble first */
#define KRYN_IMAGE_INDEXED 8         /* 8-bit indices into the colour table */
#define KRYN_IMAGE_COLOUR 24         /* 32-bit words 0x..BBGGRR */
#define KRYN_IMAGE_NIBBLES_ALPHA 104 /* as 4; table entries carry alpha */
#define KRYN_IMAGE_INDEXED_ALPHA 108 /* as 8; table entries carry alpha */
#define KRYN_IMAGE_COLOUR_ALPHA 124  /* 32-bit words 0xAABBGGRR */
#define KRYN_IMAGE_GREY_ALPHA 254    /* grey byte, then alpha byte */
#define KRYN_IMAGE_GREY 255          /* grey byte, 255 white */

/* count 2: table[1] becomes the image colour and table[0] the image back
 * colour of 1-bit images (current graphics state). count 16 or 256: the
 * colour table of indexed images from now on in this page (grey pages read
 * each entry's low byte); an equal table given earlier in the page is
 * shared. `reserved` is not read. KRYN_ERR_INVALID without an open page,
 * for a null table, any other count or past 32768 distinct tables;
 * KRYN_ERR_NO_MEMORY when the copy cannot be kept. */
KRYN_EXPORT ResultCode KRYNSetImageTable(uint32_t count, const ColourValue* table,
                                         uint32_t reserved, Engine* e);
/* Paints `image` into the user rectangle x, y, width, height: (x, y) is
 * where sample (0, 0) lands, a negative width or height mirrors it. The
 * image follows the current matrix: quarter turns and mirrors are exact;
 * other angles paint the samples upright, in the orientation nearest to the
 * matrix's. It paints through the current logical function with the image
 * as source S; one under a function that ignores S paints like a filled
 * rectangle, and a white image (format 24 or 255) under 0xCC paints the
 * rectangle white, or nothing on a page without drawing. Samples are read
 * when the page is played or sent, not copied: they must come from
 * GlobalAlloc and pass to the engine.
 * Ownership: KRYN_ERR_INVALID leaves the buffer with the caller; after any
 * other answer the engine has it (freed, or kept until the page ends).
 *  - KRYN_ERR_INVALID: no open page; a null description or samples; width,
 *    height or rowStride below 1; rowStride shorter than a packed row; a
 *    format not taken in the page's current state (see above).
 *  - KRYN_ERR_NO_MEMORY: memory runs out (the image is not painted, or only
 *    in the bands recorded before); an unknown format; a band list that can
 *    count no more bytes.
 *  - KRYN_OK: painted, or nothing to paint (width or height 0, outside the
 *    clip). Copies the engine makes never exceed twice the samples given:
 *    images are reduced to the rectangle's user units and to the matrix's
 *    scale factor but never enlarged in memory; one sample spans at most
 *    65535 device pixels a side. */
KRYN_EXPORT ResultCode KRYNPutImage(ImageDesc* image, int32_t x, int32_t y, int32_t width,
                                    int32_t height, Engine* e);
/* Paints nothing: frees the samples of both descriptions (once when they
 * share one buffer) and answers KRYN_OK. The four integers are not read.
 * KRYN_ERR_INVALID without an open page or for a null description, which
 * leaves both buffers with the caller. */
KRYN_EXPORT ResultCode KRYNPutImageWithMask(ImageDesc* image, ImageDesc* mask, int32_t x, int32_t y,
                                            int32_t width, int32_t height, Engine* e);

/* ---- Image masks and the image cache ------------------------------------ */

/* Paints the current paint colour through a 1-bit mask (format 1: rows of
 * rowStride bytes, most significant bit first): every 1 sample paints, every
 * 0 leaves the page as it is. The logical function is not applied; the
 * screen is. Sample (0, 0) lies at user (x, y), one sample a user unit:
 * quarter turns and mirrors of the matrix, at any scale on each axis, are
 * exact; other angles paint the mask upright, in the orientation nearest
 * to the matrix's.
 * Ownership 1: the samples (from GlobalAlloc) pass to the engine unless the
 * call answers KRYN_ERR_INVALID; the engine frees them when the page ends,
 * or at once when it needs a copy anyway. Any other value: the engine
 * paints from a copy of its own, so the caller may reuse its buffer as soon
 * as the call returns.
 *  - KRYN_ERR_INVALID: no open page; a null description or samples; width,
 *    height or rowStride below 1, or rowStride shorter than a packed row;
 *    a format other than 1.
 *  - KRYN_ERR_NO_MEMORY: memory runs out (bands recorded before keep their
 *    records); a scale that would make the mask's device bitmap larger than
 *    64 MiB, its rows wider than 524280 pixels, or one sample 65536 pixels
 *    or more; a band list that can count no more bytes.
 *  - KRYN_OK: painted, or nothing to paint (outside the clip). */
KRYN_EXPORT ResultCode KRYNPutImageMask(ImageDesc* mask, int32_t x, int32_t y, uint16_t ownership,
                                        Engine* e);

/* The image cache keeps small 1-bit bitmaps (glyphs) that are painted many
 * times: each is stored once, as the newest entry of one of a number of
 * slots, turned and scaled to the device as the current matrix says, and
 * placed again and again in the current paint colour like a mask. The
 * cache belongs to the engine, not to a page: entries live on from page to
 * page; at each page end every slot keeps only its newest entry, and
 * KRYNEnd frees everything. */

/* Sets the number of slots (32 after KRYNInit, 0 allowed) and enables the
 * cache again, as long as nothing has been stored yet; afterwards it
 * changes nothing. Always KRYN_OK; works without an open page. */
KRYN_EXPORT ResultCode KRYNSetImageCacheInfo(uint16_t slots, Engine* e);
/* Stores a width x height bitmap (rows of (width + 7) / 8 bytes, most
 * significant bit first, 1 = paint), given in user orientation, as the
 * newest entry of `slot`, which becomes valid. The bitmap is turned,
 * mirrored and scaled by the linear part of the current matrix now; the
 * engine keeps a copy. `key` is stored with the entry and not read;
 * `reserved` is not read. A width or height of 0 stores an entry that
 * paints nothing.
 *  - KRYN_ERR_INVALID (nothing stored): no open page; a null bitmap; width
 *    or height above 248 or negative; slot not below the slot count; a
 *    scale that would make the device bitmap wider or taller than 65535
 *    pixels or larger than 16 MiB.
 *  - KRYN_ERR_NO_MEMORY: the cache is disabled, or memory runs out, which
 *    disables it: every later store answers KRYN_ERR_NO_MEMORY (until
 *    KRYNSetImageCacheInfo, when nothing had been stored yet). Entries
 *    stored before stay and can still be placed. */
KRYN_EXPORT ResultCode KRYNSetImageCache(uint16_t key, int16_t width, int16_t height,
                                         uintptr_t reserved, const uint8_t* bitmap, uint16_t slot,
                                         Engine* e);
/* Paints the newest entry of `slot` with its reference point (the user
 * origin of the bitmap as stored) at user (x, y): only the point follows
 * the current matrix, the bitmap keeps the orientation and scale it was
 * stored with. A bitmap whose bits are all 0 records nothing.
 *  - KRYN_ERR_INVALID: no open page; slot not below the slot count;
 *    nothing stored in the slot, or the slot cleared since.
 *  - KRYN_ERR_NO_MEMORY: memory runs out (bands recorded before keep their
 *    records). */
KRYN_EXPORT ResultCode KRYNPutImageCache(int32_t x, int32_t y, uint16_t slot, Engine* e);
/* Marks a slot invalid: placing it answers KRYN_ERR_INVALID until the next
 * store. Its entries stay (records may point into them) and are freed by
 * the next page end (all but the newest) or KRYNEnd. KRYN_ERR_INVALID for a
 * slot not below the slot count; works without an open page. */
KRYN_EXPORT ResultCode KRYNClearImageCache(uint16_t slot, Engine* e);

#ifdef __cplusplus
}
#endif

#endif /* KRYN_KRYN_H */
