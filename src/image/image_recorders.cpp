#include "image/image_recorders.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/record_writers.h"
#include "engine/page_mode.h"
#include "engine/page_record.h"
#include "image/image_formats.h"

#include <algorithm>

namespace kryn {

namespace {

// Unscaled pieces: the first sample of the piece's first row.
ResultCode recordUnscaled(const ImageRecording& rec, DisplayList* list, BandEntry& band,
                          const BandPiece& rows, int32_t x0, int32_t x1) {
    const PlacedImage& image = rec.image;
    const int64_t dx = std::clamp<int64_t>(x0 - image.deviceX, 0, image.width - 1);
    const int64_t dy = std::clamp<int64_t>(rows.y - image.deviceY, 0, image.height - 1);
    const int32_t width = x1 - x0 + 1;
    const bool bits = image.bits == 1;
    ImageSource source{};
    source.data = image.samples + dy * image.stride + (bits ? dx >> 3 : dx * (image.bits / 8));
    source.columns = static_cast<uint32_t>(std::min<int64_t>(width, image.width - dx));
    source.rows = static_cast<uint32_t>(std::min<int64_t>(rows.rows, image.height - dy));
    source.stride = static_cast<uint32_t>(image.stride);
    source.bitPhase = static_cast<uint8_t>(bits ? dx & 7 : 0);
    const ImagePhase phase{source.bitPhase, 0, 0};
    const ResultCode r =
        syncBandForImage(rec.page, &band, list,
                         bits ? ImageRecordKind::BITMAP : ImageRecordKind::OTHER, false, phase);
    if (failed(r)) {
        return r;
    }
    return writeImage(
        list, image.kind, 0, {static_cast<uint8_t>(rows.row), static_cast<uint16_t>(x0)},
        static_cast<uint16_t>(width), static_cast<uint8_t>(rows.rows), source, rec.page->resources);
}

ResultCode recordScaled(const ImageRecording& rec, DisplayList* list, BandEntry& band,
                        const BandPiece& rows, int32_t x0, int32_t x1) {
    const PlacedImage& image = rec.image;
    const ScaledStart column = scaledStart(x0 - image.deviceX, image.scaleX, image.width);
    const ScaledStart row = scaledStart(rows.y - image.deviceY, image.scaleY, image.height);
    const bool bits = image.bits == 1;
    const ImagePhase phase{bits ? column.sample & 7u : 0u, row.phase, column.phase};
    const ResultCode r =
        syncBandForImage(rec.page, &band, list,
                         bits ? ImageRecordKind::BITMAP : ImageRecordKind::OTHER, true, phase);
    if (failed(r)) {
        return r;
    }
    const ScaledPlacement placement{column.sample,
                                    row.sample,
                                    static_cast<uint32_t>(x1 - x0 + 1),
                                    static_cast<uint32_t>(rows.rows),
                                    image.scaleX,
                                    image.scaleY};
    const ImageSource source{image.samples, static_cast<uint32_t>(image.width),
                             static_cast<uint32_t>(image.height),
                             static_cast<uint32_t>(image.stride)};
    return writeScaledImage(list, image.kind, 0,
                            {static_cast<uint8_t>(rows.row), static_cast<uint16_t>(x0)}, placement,
                            source, rec.page->resources);
}

ResultCode recordPiece(void* context, const BandPiece& rows, int32_t x0, int32_t x1) {
    const auto& rec = *static_cast<const ImageRecording*>(context);
    DisplayList* list = nullptr;
    const ResultCode r = getBandList(rec.page, rows.band, &list);
    if (failed(r)) {
        return r;
    }
    BandEntry& band = rec.page->bands[rows.band];
    return rec.image.scaled ? recordScaled(rec, list, band, rows, x0, x1)
                            : recordUnscaled(rec, list, band, rows, x0, x1);
}

} // namespace

ScaledStart scaledStart(int64_t offset, uint32_t scale, int32_t samples) {
    const int64_t u = std::max<int64_t>(offset, 0);
    const int64_t sample = (u << 16) / scale;
    if (sample >= samples - 1) {
        const int64_t last = samples - 1;
        const int64_t before = u - ((last * int64_t{scale}) >> 16);
        // Past the last sample's own pixels everything takes the last sample.
        return {static_cast<uint32_t>(last),
                before >= 0 && before <= int64_t{UINT32_MAX} ? static_cast<uint32_t>(before) : 0u};
    }
    return {static_cast<uint32_t>(sample), static_cast<uint32_t>(u - ((sample * scale) >> 16))};
}

void installImageRecorders(ImageRecording* recording, SpanRecorder* recorder) {
    recording->pieces.page = recording->page;
    recording->pieces.maxRows = 255; // 8-bit row counts
    recording->pieces.maxWidth = 65535;
    recording->pieces.piece = recordPiece;
    recording->pieces.ctx = recording;
    installBandPieceRecorders(&recording->pieces, recorder);
}

} // namespace kryn
