#include "render/image_members.h"

#include "render/image_pixels.h"
#include "render/image_rows.h"
#include "render/image_walk.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

// Paints n converted samples into the row at d under the raster operation.
template <class Pixels, ScreenMember SM, bool Transparent>
void applySamples(const PaintState& s, typename Pixels::Pixel* d, const uint32_t* v, int32_t n,
                  ImagePattern<Pixels, SM>& p, ImageRop rop) {
    constexpr bool skips = Transparent || SM == SCREEN_BITS_TRANSPARENT;
    switch (rop) {
    case IMAGE_ROP_COPY:
        for (int32_t k = 0; k < n; ++k, p.step()) {
            if (skips && (v[k] == SKIP_SAMPLE || p.skip)) {
                continue;
            }
            d[k] = Pixels::copy(s, v[k]);
        }
        break;
    case IMAGE_ROP_XOR:
        for (int32_t k = 0; k < n; ++k, p.step()) {
            if (skips && (v[k] == SKIP_SAMPLE || p.skip)) {
                continue;
            }
            d[k] = Pixels::xorInto(d[k], v[k]);
        }
        break;
    default:
        for (int32_t k = 0; k < n; ++k, p.step()) {
            if (skips && (v[k] == SKIP_SAMPLE || p.skip)) {
                continue;
            }
            d[k] = Pixels::rop(s, v[k], p.value, d[k]);
        }
        break;
    }
}

// Copies without a screen or transparent samples store each sample's pixel
// straight into the row: a run of equal samples at once when scaled.
template <class Pixels, class Samples, bool Scaled>
void copyRow(const PaintState& s, const ImageOperand& op, const Samples& samples,
             const ImageArea& area, int32_t y, const uint8_t* sourceRow) {
    typename Pixels::Pixel* d = Pixels::row(s, y) + area.left;
    if constexpr (Scaled) {
        SampleRuns columns = columnRuns(s, op);
        int32_t done = 0;
        uint32_t c = 0;
        int64_t length = 0;
        if (op.scaleX % UNIT_SCALE == 0 && op.scaleX <= 4 * UNIT_SCALE) {
            // Whole factors up to 4: after the first run every sample covers
            // the same pixels, until the last sample.
            const int32_t k = static_cast<int32_t>(op.scaleX / UNIT_SCALE);
            columns.next(c, length);
            const int32_t first = static_cast<int32_t>(std::min<int64_t>(length, area.width));
            std::fill_n(d, first, Pixels::copy(s, samples(sourceRow, c)));
            done = first;
            const int64_t whole =
                std::min<int64_t>((area.width - done) / k, int64_t{op.sourceColumns} - 1 - (c + 1));
            for (int64_t i = 0; i < whole; ++i) {
                const auto v = Pixels::copy(s, samples(sourceRow, ++c));
                for (int32_t j = 0; j < k; ++j) {
                    d[done + j] = v;
                }
                done += k;
            }
            columns = SampleRuns(c + 1, 0, op.scaleX, op.sourceColumns);
        }
        fillColumnRuns(columns, d, done, area.width, [&](uint32_t column) {
            return Pixels::copy(s, samples(sourceRow, column));
        });
    } else {
        const uint32_t first = op.scaled != 0 ? op.sourceColumn : 0;
        const uint32_t last = op.sourceColumns - 1;
        const int32_t direct =
            static_cast<int32_t>(std::clamp<int64_t>(int64_t{last} - first + 1, 0, area.width));
        for (int32_t k = 0; k < direct; ++k) {
            d[k] = Pixels::copy(s, samples(sourceRow, first + static_cast<uint32_t>(k)));
        }
        if (direct < area.width) {
            std::fill_n(d + direct, area.width - direct, Pixels::copy(s, samples(sourceRow, last)));
        }
    }
}

template <class Pixels, class Samples, ScreenMember SM, bool Scaled>
void paintRow(const PaintState& s, const ImageOperand& op, const Samples& samples,
              const ImageArea& area, int32_t y, const uint8_t* sourceRow, ImageRop rop) {
    if constexpr (SM == SCREEN_SOLID && !Samples::TRANSPARENT) {
        if (rop == IMAGE_ROP_COPY) {
            copyRow<Pixels, Samples, Scaled>(s, op, samples, area, y, sourceRow);
            return;
        }
    }
    ColumnWalk<Scaled> columns(s, op);
    ImagePattern<Pixels, SM> pattern(s, area.left, y);
    typename Pixels::Pixel* d = Pixels::row(s, y) + area.left;
    uint32_t values[CHUNK];
    for (int32_t done = 0; done < area.width;) {
        const int32_t n = std::min(CHUNK, area.width - done);
        columns.fill([&](uint32_t c) { return samples(sourceRow, c); }, values, n);
        applySamples<Pixels, SM, Samples::TRANSPARENT>(s, d + done, values, n, pattern, rop);
        done += n;
    }
}

// One member: the rows of the record, each source row painted once and
// copied to the further device rows it covers when the result does not
// depend on the band (copy, no screen, every pixel painted).
template <class Pixels, class Samples, ScreenMember SM, bool Scaled>
void paintImageMember(PaintState& s, const ImageOperand& op) {
    ImageArea area{};
    if (!clipImageArea(s, op, area)) {
        return;
    }
    const Samples samples(s, op, Pixels{});
    if (!samples.usable()) {
        return;
    }
    const ImageRop rop = imageRopOf(s);
    const bool rowsRepeat = rop == IMAGE_ROP_COPY && SM == SCREEN_SOLID && !Samples::TRANSPARENT;
    const size_t rowBytes = static_cast<size_t>(area.width) * sizeof(typename Pixels::Pixel);
    forEachSourceRow(s, op, area, [&](int32_t y, int32_t n, const uint8_t* sourceRow) {
        paintRow<Pixels, Samples, SM, Scaled>(s, op, samples, area, y, sourceRow, rop);
        for (int32_t k = 1; k < n; ++k) {
            if (rowsRepeat) {
                std::memcpy(Pixels::row(s, y + k) + area.left, Pixels::row(s, y) + area.left,
                            rowBytes);
            } else {
                paintRow<Pixels, Samples, SM, Scaled>(s, op, samples, area, y + k, sourceRow, rop);
            }
        }
    });
}

// A family's dispatcher: members by scale and screen.
template <class Pixels, class Samples>
void paintImageFamily(PaintState& s, const ImageOperand& op) {
    static constexpr ImagePainter MEMBERS[2][SCREEN_MEMBER_COUNT] = {
        {paintImageMember<Pixels, Samples, SCREEN_SOLID, false>,
         paintImageMember<Pixels, Samples, SCREEN_BITS_TRANSPARENT, false>,
         paintImageMember<Pixels, Samples, SCREEN_BITS_OPAQUE, false>,
         paintImageMember<Pixels, Samples, SCREEN_SAMPLES, false>},
        {paintImageMember<Pixels, Samples, SCREEN_SOLID, true>,
         paintImageMember<Pixels, Samples, SCREEN_BITS_TRANSPARENT, true>,
         paintImageMember<Pixels, Samples, SCREEN_BITS_OPAQUE, true>,
         paintImageMember<Pixels, Samples, SCREEN_SAMPLES, true>},
    };
    MEMBERS[imageAtDeviceSize(op) ? 0 : 1][s.screenMember](s, op);
}

// 1-bit images: the two sets of eight by the image background flag.
template <class Pixels>
void paintBitImageFamily(PaintState& s, const ImageOperand& op) {
    if (s.imageOpaque != 0) {
        paintImageFamily<Pixels, BitSamples<true>>(s, op);
    } else {
        paintImageFamily<Pixels, BitSamples<false>>(s, op);
    }
}

} // namespace

void paintBitImageGrey(PaintState& state, const ImageOperand& op) {
    paintBitImageFamily<GreyImagePixels>(state, op);
}
void paintGreyImageGrey(PaintState& state, const ImageOperand& op) {
    paintImageFamily<GreyImagePixels, GreySamples>(state, op);
}
void paintIndexedImageGrey(PaintState& state, const ImageOperand& op) {
    paintImageFamily<GreyImagePixels, IndexedSamples>(state, op);
}
void paintBitImageColour(PaintState& state, const ImageOperand& op) {
    paintBitImageFamily<ColourImagePixels>(state, op);
}
void paintColourImageColour(PaintState& state, const ImageOperand& op) {
    paintImageFamily<ColourImagePixels, ColourSamples>(state, op);
}
void paintIndexedImageColour(PaintState& state, const ImageOperand& op) {
    paintImageFamily<ColourImagePixels, IndexedSamples>(state, op);
}

} // namespace kryn
