// The direct scaled renderer: the replicated form of each source row is
// made once, in the expand buffer, and then stored into every device row
// that row covers (copied under 0xCC, XORed under 0x66, through the raster
// operation otherwise, with the paint colour as P).
#include "render/image_members.h"
#include "render/image_pixels.h"
#include "render/image_walk.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

// Builds the device row of one source row: each run of the record's column
// walk filled with its sample, converted for the copy when `copy`.
template <class Pixels, class Samples>
void buildRow(const PaintState& s, const ImageOperand& op, const Samples& samples,
              const uint8_t* sourceRow, typename Pixels::Pixel* out, int32_t width, bool copy) {
    SampleRuns columns = columnRuns(s, op);
    fillColumnRuns(columns, out, 0, width, [&](uint32_t c) {
        const uint32_t v = samples(sourceRow, c);
        return copy ? Pixels::copy(s, v) : static_cast<typename Pixels::Pixel>(v);
    });
}

template <class Pixels, class Samples>
void paintDirect(PaintState& s, const ImageOperand& op) {
    using Pixel = typename Pixels::Pixel;
    ImageArea area{};
    if (!clipImageArea(s, op, area)) {
        return;
    }
    const Samples samples(s, op, Pixels{});
    const ImageRop rop = imageRopOf(s);
    auto* built = reinterpret_cast<Pixel*>(s.expandBuffer);
    const uint32_t p = Pixels::slot(s, SLOT_PAINT);
    forEachSourceRow(s, op, area, [&](int32_t y, int32_t n, const uint8_t* sourceRow) {
        buildRow<Pixels>(s, op, samples, sourceRow, built, area.width, rop == IMAGE_ROP_COPY);
        for (int32_t k = 0; k < n; ++k) {
            Pixel* d = Pixels::row(s, y + k) + area.left;
            switch (rop) {
            case IMAGE_ROP_COPY:
                std::memcpy(d, built, static_cast<size_t>(area.width) * sizeof(Pixel));
                break;
            case IMAGE_ROP_XOR:
                for (int32_t x = 0; x < area.width; ++x) {
                    d[x] = Pixels::xorInto(d[x], built[x]);
                }
                break;
            default:
                for (int32_t x = 0; x < area.width; ++x) {
                    d[x] = Pixels::rop(s, built[x], p, d[x]);
                }
                break;
            }
        }
    });
}

} // namespace

void paintDirectScaledGrey(PaintState& state, const ImageOperand& op) {
    paintDirect<GreyImagePixels, GreySamples>(state, op);
}

void paintDirectScaledColour(PaintState& state, const ImageOperand& op) {
    paintDirect<ColourImagePixels, ColourSamples>(state, op);
}

} // namespace kryn
