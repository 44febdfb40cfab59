// Display-list opcodes and the in-memory size of every record.
//
// Records are packed byte strings: opcode first, fields little-endian, no
// alignment. Records that point at memory (arrays owned by the list, image
// data owned elsewhere) hold a full host pointer at the same offset a 32-bit
// engine would hold a 32-bit one, so on 64-bit hosts those records are four
// bytes longer. The serialised stream never carries pointers and is the same
// on every host.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kryn {

enum : uint8_t {
    DL_OP_IMAGE = 130,
    DL_OP_MASK_IMAGE = 131,
    DL_OP_RUNS = 132,
    DL_OP_RECT = 133,
    DL_OP_END = 135,
    DL_OP_COLUMN_RUNS = 139,
    DL_OP_BAND_HEADER = 140, // stream only: opens the band header chunk
    DL_OP_RUNS_SHORT = 141,
    DL_OP_RECTS = 142,
    DL_OP_SCALED_IMAGE = 146,
    DL_OP_ROW_SPANS = 148,
    DL_OP_COLUMN = 149,
    DL_OP_ROW_SPANS_SHORT = 157,
    DL_OP_SET_ROP = 160,
    DL_OP_RESERVED_161 = 161,
    DL_OP_SET_SCREEN = 163,
    DL_OP_MARK = 164,
    DL_OP_SET_OPAQUE = 165,
    DL_OP_IMAGE_COLOUR = 166,
    DL_OP_IMAGE_BACK_COLOUR = 167,
    DL_OP_PAINT_COLOUR = 168,
    DL_OP_PAINT_BACK_COLOUR = 169,
    DL_OP_SELECT_PATTERN = 171,
    DL_OP_RESERVED_172 = 172,
    DL_OP_RESERVED_173 = 173,
    DL_OP_COLOUR_SPACE_1 = 174,
    DL_OP_SET_ROP2 = 176,
    DL_OP_RESERVED_177 = 177,
    DL_OP_SET_SCREEN_LONG = 179,
    DL_OP_IMAGE_MODE = 180,
    DL_OP_IMAGE_ORIGIN = 181,
    DL_OP_IMAGE_COLOUR_A = 183,
    DL_OP_IMAGE_BACK_COLOUR_A = 184,
    DL_OP_PAINT_COLOUR_A = 185,
    DL_OP_PAINT_BACK_COLOUR_A = 186,
    DL_OP_BLEND = 187,
    DL_OP_BLEND_SELECT = 188,
    DL_OP_BLEND_DATA_A = 189,
    DL_OP_BLEND_DATA_B = 190,
    DL_OP_RESERVED_193 = 193,
    DL_OP_RESERVED_194 = 194,
    DL_OP_CHUNK = 208,
    DL_OP_TERMINATOR = 255,
};

inline constexpr size_t POINTER_BYTES = sizeof(void*);

// Offsets of the pointer fields, and the sizes of the records that hold one.
inline constexpr size_t ARRAY_POINTER_OFFSET = 4;         // 132 139 141 142 148 157
inline constexpr size_t IMAGE_POINTER_OFFSET = 16;        // 130 131
inline constexpr size_t SCALED_IMAGE_POINTER_OFFSET = 44; // 146
inline constexpr size_t ARRAY_RECORD_SIZE = ARRAY_POINTER_OFFSET + POINTER_BYTES;
inline constexpr size_t IMAGE_RECORD_SIZE = IMAGE_POINTER_OFFSET + POINTER_BYTES;
inline constexpr size_t SCALED_IMAGE_RECORD_SIZE = SCALED_IMAGE_POINTER_OFFSET + POINTER_BYTES;

// The terminator ends a list with four bytes (255, 0, 0, 0); where a block is
// continued in the next block only the single byte 255 marks the link.
inline constexpr size_t TERMINATOR_SIZE = 4;

// Largest record; the fill limit of a block leaves room for it.
inline constexpr size_t MAX_RECORD_SIZE = SCALED_IMAGE_RECORD_SIZE;

// True for the records that own a separately allocated array, freed with the
// list (or by the serialiser once sent).
inline constexpr bool ownsArray(uint8_t op) {
    return op == DL_OP_RUNS || op == DL_OP_COLUMN_RUNS || op == DL_OP_RUNS_SHORT ||
           op == DL_OP_RECTS || op == DL_OP_ROW_SPANS || op == DL_OP_ROW_SPANS_SHORT;
}

// In-memory size of a record, or 0 for a byte that is not a record opcode
// (the terminator, a zero byte, anything unknown): readers stop the walk of a
// block there.
inline constexpr size_t recordSize(uint8_t op) {
    switch (op) {
    case DL_OP_IMAGE:
    case DL_OP_MASK_IMAGE:
        return IMAGE_RECORD_SIZE;
    case DL_OP_RUNS:
    case DL_OP_COLUMN_RUNS:
    case DL_OP_RUNS_SHORT:
    case DL_OP_RECTS:
    case DL_OP_ROW_SPANS:
    case DL_OP_ROW_SPANS_SHORT:
        return ARRAY_RECORD_SIZE;
    case DL_OP_SCALED_IMAGE:
        return SCALED_IMAGE_RECORD_SIZE;
    case DL_OP_RECT:
    case DL_OP_RESERVED_177:
    case DL_OP_BLEND_DATA_A:
    case DL_OP_BLEND_DATA_B:
    case DL_OP_CHUNK:
        return 8;
    case DL_OP_END:
    case DL_OP_MARK:
    case DL_OP_RESERVED_172:
        return 1;
    case DL_OP_COLUMN:
    case DL_OP_RESERVED_161:
    case DL_OP_SET_OPAQUE:
    case DL_OP_IMAGE_COLOUR:
    case DL_OP_IMAGE_BACK_COLOUR:
    case DL_OP_PAINT_COLOUR:
    case DL_OP_PAINT_BACK_COLOUR:
    case DL_OP_SELECT_PATTERN:
    case DL_OP_RESERVED_173:
    case DL_OP_COLOUR_SPACE_1:
    case DL_OP_IMAGE_MODE:
    case DL_OP_BLEND:
    case DL_OP_RESERVED_194:
        return 4;
    case DL_OP_SET_ROP:
    case DL_OP_SET_ROP2:
        return 2;
    case DL_OP_SET_SCREEN:
    case DL_OP_SET_SCREEN_LONG:
        return 6;
    case DL_OP_IMAGE_ORIGIN:
    case DL_OP_RESERVED_193:
        return 12;
    case DL_OP_IMAGE_COLOUR_A:
    case DL_OP_IMAGE_BACK_COLOUR_A:
    case DL_OP_PAINT_COLOUR_A:
    case DL_OP_PAINT_BACK_COLOUR_A:
        return 5;
    case DL_OP_BLEND_SELECT:
        return 3;
    default:
        return 0;
    }
}

} // namespace kryn
