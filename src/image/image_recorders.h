// The recorders of a placed image: the fill of its device quadrilateral
// hands over spans and rectangles, each is cut into band pieces, and every
// piece becomes record 130 (samples at device size) or 146 (scaled
// samples) after the band's state records. The records point into the
// image's samples, which the page keeps (image/image_sources.h).
#pragma once

#include "engine/result_codes.h"
#include "image/band_pieces.h"
#include "scan/span_recorder.h"

#include <cstdint>

namespace kryn {

struct PageRecord;

// An image in device orientation, where its first sample lands.
struct PlacedImage {
    const uint8_t* samples = nullptr;
    int32_t width = 0;   // samples a row
    int32_t height = 0;  // rows
    int64_t stride = 0;  // bytes from one row to the next
    int32_t bits = 8;    // 1, 8, 16 or 32 bits a sample
    uint8_t kind = 0;    // image kind (high nibble of the records' kind byte)
    int64_t deviceX = 0; // device pixel of sample (0, 0)
    int64_t deviceY = 0;
    bool scaled = false;       // 146 records; else 130
    uint32_t scaleX = 0x10000; // 16.16 device pixels a sample (146), at least 1
    uint32_t scaleY = 0x10000;
};

struct ImageRecording {
    PageRecord* page = nullptr;
    PlacedImage image;
    BandPieceRecorder pieces; // filled by installImageRecorders
};

// Fills *recorder with the image's recorders; *recording must outlive the
// fill. A piece that cannot be recorded stops the fill with its error.
void installImageRecorders(ImageRecording* recording, SpanRecorder* recorder);

// Where a device offset (columns or rows from the image's first pixel)
// falls in a scaled image: the sample it lies in and the device pixels of
// that sample before it, as 146 and 181 carry them. Offsets beyond the last
// sample take the last sample with phase 0.
struct ScaledStart {
    uint32_t sample;
    uint32_t phase;
};
ScaledStart scaledStart(int64_t offset, uint32_t scale, int32_t samples);

} // namespace kryn
