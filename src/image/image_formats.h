// The sample formats KRYNPutImage takes: how many bits a sample has, when
// the format is accepted, the format it is recorded in and the image kind
// its records carry (the high nibble of their kind byte).
#pragma once

#include <cstdint>

namespace kryn {

enum ImageFormat : uint32_t {
    IMAGE_FORMAT_BITS = 1,            // 1 bit a sample: image colour / image back colour
    IMAGE_FORMAT_NIBBLES = 4,         // 4-bit indices into the colour table
    IMAGE_FORMAT_INDEXED = 8,         // 8-bit indices into the colour table
    IMAGE_FORMAT_COLOUR = 24,         // 32-bit words, channels 0..2
    IMAGE_FORMAT_NIBBLES_ALPHA = 104, // as 4, the table entries' top byte is alpha
    IMAGE_FORMAT_INDEXED_ALPHA = 108, // as 8, likewise
    IMAGE_FORMAT_COLOUR_ALPHA = 124,  // as 24, alpha in the top byte
    IMAGE_FORMAT_GREY_ALPHA = 254,    // grey byte, then alpha byte
    IMAGE_FORMAT_GREY = 255,          // grey byte, 255 white
};

// Image kinds of the records (high nibble of the kind byte).
inline constexpr uint8_t IMAGE_KIND_BITS = 0x00;
inline constexpr uint8_t IMAGE_KIND_GREY = 0x20;
inline constexpr uint8_t IMAGE_KIND_COLOUR = 0x40;
inline constexpr uint8_t IMAGE_KIND_INDEXED = 0x80;
inline constexpr uint8_t IMAGE_KIND_INDEXED_ALPHA = 0x90;
inline constexpr uint8_t IMAGE_KIND_COLOUR_ALPHA = 0xB0;
inline constexpr uint8_t IMAGE_KIND_GREY_ALPHA = 0xD0;

struct ImageFormatInfo {
    uint32_t format;
    int32_t bits;         // bits a sample as given
    uint32_t recordedAs;  // format after unpacking (4 -> 8, 104 -> 108)
    int32_t recordedBits; // bits a sample as recorded
    uint8_t kind;         // image kind of the records
    bool needsBlending;   // accepted only while blending is on
    bool needsGreyPage;   // accepted only in colour space 1
};

inline constexpr ImageFormatInfo IMAGE_FORMATS[] = {
    {IMAGE_FORMAT_BITS, 1, IMAGE_FORMAT_BITS, 1, IMAGE_KIND_BITS, false, false},
    {IMAGE_FORMAT_NIBBLES, 4, IMAGE_FORMAT_INDEXED, 8, IMAGE_KIND_INDEXED, false, false},
    {IMAGE_FORMAT_INDEXED, 8, IMAGE_FORMAT_INDEXED, 8, IMAGE_KIND_INDEXED, false, false},
    {IMAGE_FORMAT_COLOUR, 32, IMAGE_FORMAT_COLOUR, 32, IMAGE_KIND_COLOUR, false, false},
    {IMAGE_FORMAT_NIBBLES_ALPHA, 4, IMAGE_FORMAT_INDEXED_ALPHA, 8, IMAGE_KIND_INDEXED_ALPHA, true,
     false},
    {IMAGE_FORMAT_INDEXED_ALPHA, 8, IMAGE_FORMAT_INDEXED_ALPHA, 8, IMAGE_KIND_INDEXED_ALPHA, true,
     false},
    {IMAGE_FORMAT_COLOUR_ALPHA, 32, IMAGE_FORMAT_COLOUR_ALPHA, 32, IMAGE_KIND_COLOUR_ALPHA, true,
     false},
    {IMAGE_FORMAT_GREY_ALPHA, 16, IMAGE_FORMAT_GREY_ALPHA, 16, IMAGE_KIND_GREY_ALPHA, true, false},
    {IMAGE_FORMAT_GREY, 8, IMAGE_FORMAT_GREY, 8, IMAGE_KIND_GREY, false, true},
};

// The format's entry, or null for a format no image has.
inline constexpr const ImageFormatInfo* imageFormatInfo(uint32_t format) {
    for (const ImageFormatInfo& info : IMAGE_FORMATS) {
        if (info.format == format) {
            return &info;
        }
    }
    return nullptr;
}

} // namespace kryn
