// Writers of the display-list records, one per record family. Each reserves
// its record, fills it, adds the bytes the record will occupy in the
// serialised stream to serialBytes, marks painting records in hasDrawing and
// commits. All answer KRYN_OK or KRYN_ERR_NO_MEMORY (the list is unchanged
// then); writers whose arguments cannot be recorded answer KRYN_ERR_INVALID.
//
// Array writers (runs, column runs, rectangles, row spans) take over the
// buffer they are given when they answer KRYN_OK: the record owns it from
// then on, and a buffer holding a single entry is freed at once because its
// entry is written as a rectangle. On failure the buffer stays the caller's.
#pragma once

#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

struct DisplayList;
struct RenderResources;

// Run buffers (132/141, 139, 142) start with a 4-byte header: u8 spare,
// u8 form (SHORT_RUN_FORM: every width below 256), u16 count.
inline constexpr uint32_t RUN_BUFFER_HEADER = 4;
inline constexpr uint8_t SHORT_RUN_FORM = 255;

// Position of a record inside its band: row relative to the band top, column.
struct RecordPosition {
    uint8_t row;
    uint16_t x;
};

// Sizes of a source image as the image records carry them.
struct ImageSource {
    const void* data;
    uint32_t columns;
    uint32_t rows;
    uint32_t stride;      // bytes per source row
    uint8_t bitPhase = 0; // 130, 131 with 1-bit data: the bit where a row starts
};

// 130: image rows drawn 1:1. kind holds the pixel format in its high nibble;
// flags go to the low nibble (0 for the uncompressed data the recorders
// store). Unknown pixel formats answer KRYN_ERR_INVALID.
ResultCode writeImage(DisplayList* list, uint8_t kind, uint8_t flags, RecordPosition at,
                      uint16_t width, uint8_t rows, const ImageSource& source,
                      RenderResources* resources);

// 146: an image scaled to the device.
struct ScaledPlacement {
    uint32_t sourceColumn; // source column of the first device pixel
    uint32_t sourceRow;    // source row of the first device row
    uint32_t width;        // device pixels
    uint32_t rows;         // device rows
    uint32_t scaleX;       // 16.16 device pixels per source pixel
    uint32_t scaleY;
};
ResultCode writeScaledImage(DisplayList* list, uint8_t kind, uint8_t flags, RecordPosition at,
                            const ScaledPlacement& placement, const ImageSource& source,
                            RenderResources* resources);

// 131: a 1-bit mask image; `compressed` must be 0 (masks are stored plain).
ResultCode writeMaskImage(DisplayList* list, uint8_t compressed, RecordPosition at, uint16_t width,
                          uint8_t rows, const ImageSource& source, RenderResources* resources);

// 132 / 141 from a run buffer (u8 spare, u8 form, u16 count, entries of u8
// row, u8 spare, u16 x, u16 width); form 255 selects 141.
ResultCode writeRuns(DisplayList* list, uint8_t* buffer, uint16_t count,
                     RenderResources* resources);
// 139 from a buffer of one-pixel-wide vertical runs (u8 row, u8 height, u16 x).
ResultCode writeColumnRuns(DisplayList* list, uint8_t* buffer, uint16_t count,
                           RenderResources* resources);
// 142 from a buffer of corner rectangles (u16 left, u16 right, u8 top, u8 bottom).
ResultCode writeRects(DisplayList* list, uint8_t* buffer, uint16_t count,
                      RenderResources* resources);
// 148 (count > 0) or 157 (count <= 0, -count entries) from an array of
// (u16 left, u16 length) entries, one per row from firstRow.
ResultCode writeRowSpans(DisplayList* list, uint8_t firstRow, uint8_t* entries, int32_t count,
                         RenderResources* resources);

// 133 / 149, merged with the previous rectangle where possible. Heights of
// up to 255 rows, or all 256 rows of a 256-row band (a 149 where one may be
// written, else two 133s); KRYN_ERR_INVALID beyond, or for widths above
// 65535 or past column 65535.
ResultCode writeRect(DisplayList* list, RecordPosition at, uint32_t width, uint32_t height,
                     RenderResources* resources);

// State records.
ResultCode writeRop(DisplayList* list, uint32_t code, RenderResources* resources);
ResultCode writeScreen(DisplayList* list, uint32_t screenId, uint32_t phase,
                       RenderResources* resources);
ResultCode writeOpaque(DisplayList* list, uint32_t value, uint32_t target,
                       RenderResources* resources);
enum ColourWhich : uint32_t { COLOUR_FORE = 0, COLOUR_BACK = 1 };
ResultCode writeImageColour(DisplayList* list, uint32_t colour, ColourWhich which,
                            RenderResources* resources);
ResultCode writePaintColour(DisplayList* list, uint32_t colour, ColourWhich which,
                            RenderResources* resources);
ResultCode writePattern(DisplayList* list, uint32_t index, RenderResources* resources);
ResultCode writeImageMode(DisplayList* list, uint32_t bitOffset, RenderResources* resources);
ResultCode writeImageOrigin(DisplayList* list, uint32_t rowOffset, uint32_t columnOffset,
                            RenderResources* resources);
ResultCode writeBlend(DisplayList* list, uint32_t on, RenderResources* resources);
ResultCode writeBlendSelect(DisplayList* list, uint8_t value, RenderResources* resources);
enum BlendDataWhich : uint32_t { BLEND_DATA_A = 0, BLEND_DATA_B = 1 };
ResultCode writeBlendData(DisplayList* list, const uint16_t values[3], uint8_t selector,
                          BlendDataWhich which, RenderResources* resources);

// 164: a mark with no fields, not committed.
ResultCode writeMark(DisplayList* list);

} // namespace kryn
