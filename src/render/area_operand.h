// What the interpreter hands an area renderer: a rectangle, or a list of
// entries in the record's own array layout.
//
//   rectangle (133, 149): left, top, right, bottom, all inclusive
//   rectangle list (142): count entries of {u16 left, u16 right, u8 top, u8 bottom}
//   span list (132, 141): count entries of {u8 row, u8 pad, u16 left, u16 length}
//   row spans (148, 157): top = first row; count entries of {u16 left, u16 length}
//   vertical runs (139):  count entries of {u8 top, u8 length, u16 x}
//
// Renderers clip every entry to the raster, so a record that reaches past
// the band paints only what lies inside it.
#pragma once

#include <cstdint>

namespace kryn {

struct PaintState;

struct AreaOperand {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
    uint32_t count;
    const uint8_t* entries;
};

inline constexpr uint32_t RECT_LIST_ENTRY_BYTES = 6;
inline constexpr uint32_t SPAN_LIST_ENTRY_BYTES = 6;
inline constexpr uint32_t ROW_SPAN_ENTRY_BYTES = 4;
inline constexpr uint32_t COLUMN_RUN_ENTRY_BYTES = 4;

enum AreaGeometry : uint8_t {
    AREA_RECT,
    AREA_RECT_LIST,
    AREA_SPAN_LIST,
    AREA_ROW_SPANS,
    AREA_COLUMN_RUNS,
    AREA_GEOMETRY_COUNT
};

using AreaPainter = void (*)(PaintState& state, const AreaOperand& operand);

// A blend member: answers false when no alpha source is in play (the plain
// member then paints the record through the raster operation), true when
// it painted or, for an alpha of 0, left the band alone.
using AreaBlendPainter = bool (*)(PaintState& state, const AreaOperand& operand);

} // namespace kryn
