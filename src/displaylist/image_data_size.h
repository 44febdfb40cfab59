// Sizes of the pixel data that image records point at, as the serialiser
// sends it. Writers count the same sizes into serialBytes, so the chunk
// sizes announced to the device include the data.
#pragma once

#include <cstdint>

namespace kryn {

// Offset of a private byte of record 146 (unused in its layout): the bytes
// per source sample counted when the record was written (4, or 1 in colour
// space 1), so that the data sent always matches the size recorded.
inline constexpr uint32_t SCALED_IMAGE_SAMPLE_BYTES_OFFSET = 21;
// Offset of a private byte of records 130 and 131 (unused in their
// layout): the bit of the first data byte where a 1-bit row starts, so that
// the serialiser sends packed rows; the renderers take the phase from 180.
inline constexpr uint32_t IMAGE_BIT_PHASE_OFFSET = 11;

inline constexpr uint64_t roundUp4(uint64_t n) {
    return (n + 3u) & ~uint64_t{3};
}

// Bytes per pixel of a pixel format (high nibble of the kind byte): 0 for
// one bit per pixel, -1 for a format no record carries.
inline constexpr int32_t pixelFormatBytes(uint8_t kind) {
    switch (kind & 0xF0) {
    case 0x00:
        return 0;
    case 0x20:
    case 0x30:
    case 0x60:
    case 0x80:
    case 0x90:
    case 0xC0:
        return 1;
    case 0x40:
    case 0x50:
    case 0xA0:
    case 0xB0:
        return 4;
    case 0xD0:
        return 2;
    default:
        return -1;
    }
}

inline constexpr bool isKnownPixelFormat(uint8_t kind) {
    return pixelFormatBytes(kind) >= 0;
}

// Bytes of 1-bit data: whole bytes per row.
inline constexpr uint64_t bitmapBytes(uint32_t width, uint32_t rows) {
    return static_cast<uint64_t>((width + 7u) / 8u) * rows;
}

// Data bytes of record 130 (unpadded). Precondition: a known format.
inline constexpr uint64_t imageDataBytes(uint8_t kind, uint32_t width, uint32_t rows) {
    const int32_t bytes = pixelFormatBytes(kind);
    if (bytes <= 0) {
        return bitmapBytes(width, rows);
    }
    return static_cast<uint64_t>(width) * rows * static_cast<uint32_t>(bytes);
}

// Data bytes of record 146 (unpadded).
inline constexpr uint64_t scaledImageDataBytes(uint32_t columns, uint32_t rows,
                                               uint32_t sampleBytes) {
    return static_cast<uint64_t>(columns) * rows * sampleBytes;
}

} // namespace kryn
