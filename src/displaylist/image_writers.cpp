// Writers of the image records 130, 146 and 131. The pixel data belongs to
// the image recorders; the records only point at it. Each record counts its
// data in serialBytes (padded to whole words) as the serialiser sends it, so
// the chunk sizes announced to the device stay exact.
#include "displaylist/image_data_size.h"
#include "displaylist/record_commit.h"
#include "displaylist/record_writers.h"
#include "engine/engine.h"

namespace kryn {

namespace {

// Reserves an image record of `size` bytes whose data counts `serial`
// serialised bytes; null with *result set when the count cannot be carried
// or the list has no room.
uint8_t* reserveImageRecord(DisplayList* list, uint64_t serial, uint32_t size, ResultCode* result) {
    if (!fitsSerialCount(list, serial)) {
        *result = KRYN_ERR_INVALID;
        return nullptr;
    }
    uint8_t* r = reserveRecord(list, size);
    *result = r == nullptr ? KRYN_ERR_NO_MEMORY : KRYN_OK;
    return r;
}

// The fields that image and mask records share.
void storeImageFields(uint8_t* r, uint8_t op, RecordPosition at, uint16_t width, uint8_t rows,
                      const ImageSource& source) {
    r[0] = op;
    r[1] = at.row;
    storeU16(r + 2, at.x);
    storeU16(r + 4, width);
    storeU16(r + 6, static_cast<uint16_t>(source.columns));
    r[8] = rows;
    r[9] = static_cast<uint8_t>(source.rows);
    r[IMAGE_BIT_PHASE_OFFSET] = static_cast<uint8_t>(source.bitPhase & 7u);
    storeU16(r + 12, static_cast<uint16_t>(source.stride));
    storePointer(r + IMAGE_POINTER_OFFSET, source.data);
}

} // namespace

ResultCode writeImage(DisplayList* list, uint8_t kind, uint8_t flags, RecordPosition at,
                      uint16_t width, uint8_t rows, const ImageSource& source,
                      RenderResources* resources) {
    if (!isKnownPixelFormat(kind)) {
        return KRYN_ERR_INVALID;
    }
    const uint64_t serial = 8 + roundUp4(imageDataBytes(kind, width, rows));
    ResultCode result = KRYN_OK;
    uint8_t* r = reserveImageRecord(list, serial, IMAGE_RECORD_SIZE, &result);
    if (r == nullptr) {
        return result;
    }
    storeImageFields(r, DL_OP_IMAGE, at, width, rows, source);
    r[10] = static_cast<uint8_t>((kind & 0xF0) | (flags & 0x0F));
    return finishRecord(list, static_cast<uint32_t>(serial), true, resources);
}

ResultCode writeScaledImage(DisplayList* list, uint8_t kind, uint8_t flags, RecordPosition at,
                            const ScaledPlacement& placement, const ImageSource& source,
                            RenderResources* resources) {
    if (!isKnownPixelFormat(kind)) {
        return KRYN_ERR_INVALID;
    }
    const uint32_t sampleBytes = resources->colourSpace == 1 ? 1u : 4u;
    const uint64_t serial =
        16 + roundUp4(scaledImageDataBytes(source.columns, source.rows, sampleBytes));
    ResultCode result = KRYN_OK;
    uint8_t* r = reserveImageRecord(list, serial, SCALED_IMAGE_RECORD_SIZE, &result);
    if (r == nullptr) {
        return result;
    }
    r[0] = DL_OP_SCALED_IMAGE;
    r[1] = at.row;
    storeU16(r + 2, at.x);
    storeU32(r + 4, placement.sourceColumn);
    storeU32(r + 8, placement.width);
    storeU32(r + 12, placement.sourceRow);
    storeU32(r + 16, placement.rows);
    r[20] = static_cast<uint8_t>((kind & 0xF0) | (flags & 0x0F));
    r[SCALED_IMAGE_SAMPLE_BYTES_OFFSET] = static_cast<uint8_t>(sampleBytes);
    storeU32(r + 24, placement.scaleX);
    storeU32(r + 28, placement.scaleY);
    storeU32(r + 32, source.columns);
    storeU32(r + 36, source.rows);
    storeU32(r + 40, source.stride);
    storePointer(r + SCALED_IMAGE_POINTER_OFFSET, source.data);
    return finishRecord(list, static_cast<uint32_t>(serial), true, resources);
}

ResultCode writeMaskImage(DisplayList* list, uint8_t compressed, RecordPosition at, uint16_t width,
                          uint8_t rows, const ImageSource& source, RenderResources* resources) {
    if (compressed != 0) {
        return KRYN_ERR_INVALID; // masks are always stored uncompressed
    }
    const uint64_t serial = 8 + roundUp4(bitmapBytes(width, rows));
    ResultCode result = KRYN_OK;
    uint8_t* r = reserveImageRecord(list, serial, IMAGE_RECORD_SIZE, &result);
    if (r == nullptr) {
        return result;
    }
    storeImageFields(r, DL_OP_MASK_IMAGE, at, width, rows, source);
    return finishRecord(list, static_cast<uint32_t>(serial), true, resources);
}

} // namespace kryn
