// The paint fields of a page: every painting call condenses the graphics
// state into them before it records anything, and the band state records
// carry them into each band's list.
#pragma once

#include <cstdint>

namespace kryn {

inline constexpr uint32_t WHITE = 0xFFFFFF;
inline constexpr uint32_t DEFAULT_ROP = 0xA8; // D AND (P OR S)
inline constexpr uint32_t NO_PAINT_INDEX = 0xFFFFFFFF;
// Blend data start as three (0, 255) byte pairs, that is 0xFF00 per value.
inline constexpr uint16_t BLEND_DATA_DEFAULT = 0xFF00;

// What the pattern operand P of the logical function can be for a paint.
inline constexpr uint32_t TONE_ZERO = 0;  // only all zero bits (black)
inline constexpr uint32_t TONE_ONE = 1;   // only all one bits (white)
inline constexpr uint32_t TONE_MIXED = 2; // anything else

struct PaintDescriptor {
    uint32_t imageColour = 0;                // image foreground (166/183)
    uint32_t imageBackColour = WHITE;        // image background (167/184)
    uint32_t paintColour = 0;                // paint foreground (168/185)
    uint32_t paintBackColour = WHITE;        // paint background (169/186)
    uint16_t fillOpaque = 1;                 // fills: 165 with target 255
    uint32_t screenId = 0;                   // current screen (163)
    int32_t screenCellHeight = 0;            // rows of the current tile; read only with a screen
    uint32_t paintTone = 0;                  // TONE_ZERO, TONE_ONE or TONE_MIXED
    uint32_t logicalFunction = DEFAULT_ROP;  // reduced code the bands carry (160)
    uint32_t logicalFunction2 = DEFAULT_ROP; // code the painting call asked for
    uint16_t imageOpaque = 1;                // images: 165 with target 0
    uint8_t paintKind = 0;
    uint32_t paintIndex = NO_PAINT_INDEX; // sent with 171 for pattern paints
    uint8_t blendOn = 0;                  // 187
    uint8_t blendSelect = 255;            // 188
    uint8_t blendSelectA = 255;           // selector of 189
    uint8_t blendSelectB = 255;           // selector of 190
    uint16_t blendDataA[3] = {BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT};
    uint16_t blendDataB[3] = {BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT, BLEND_DATA_DEFAULT};
};

} // namespace kryn
