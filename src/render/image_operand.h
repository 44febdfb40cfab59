// What the interpreter hands an image renderer, read from records 130
// (image rows 1:1), 146 (scaled image rows) and 131 (1-bit mask).
#pragma once

#include <cstdint>

namespace kryn {

struct PaintState;

struct ImageOperand {
    int32_t top;           // band row of the first device row
    int32_t left;          // device column of the first pixel
    uint32_t width;        // device pixels per row
    uint32_t rows;         // device rows
    uint32_t sourceColumn; // 146: source column of the first device pixel
    uint32_t sourceRow;    // 146: source row of the first device row
    uint32_t sourceColumns;
    uint32_t sourceRows;
    uint32_t sourceStride; // bytes per source row
    uint32_t scaleX;       // 16.16; 0x10000 for 130 and 131
    uint32_t scaleY;
    uint8_t kind;   // pixel format in the high nibble (130, 146); flags byte for 131
    uint8_t scaled; // read from a 146
    const uint8_t* data;
};

using ImagePainter = void (*)(PaintState& state, const ImageOperand& operand);

// A blend member: answers false when no blend setting applies to the image
// (the plain member then paints it), true when it painted (or, for an alpha
// of 0, decided to paint nothing).
using ImageBlendPainter = bool (*)(PaintState& state, const ImageOperand& operand);

} // namespace kryn
