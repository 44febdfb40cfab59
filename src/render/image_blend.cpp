// The image blend members. While a band's blending is on, each sample's
// alpha comes from the blend settings and the sample itself: with key 1 on,
// samples whose channels lie inside its ranges take their own alpha times
// the key's, the others their own; with key 1 off, the constant alpha (when
// below 255) times their own; and an alpha of its own counts by itself.
// Own alphas are the top byte of 32-bit samples and of table entries, the
// second byte of grey-and-alpha samples, and the alpha bytes of a 1-bit
// image's two colours; other samples have 255. A sample with no alpha
// source at all (own alpha 255, no constant, outside or without key 1) is
// painted through the raster operation as the plain member paints it; a
// sample at alpha 0 paints nothing; any other sample is blended over the
// band with blendChannel and the image tag. A record in which no sample can
// have a source is handed to the plain member.
#include "render/image_members.h"

#include "paint/blend_arithmetic.h"
#include "render/blend_sources.h"
#include "render/image_pixels.h"
#include "render/image_rows.h"
#include "render/raster_pixels.h"

#include <algorithm>

namespace kryn {

namespace {

// The raster format's blend of an image sample, with the image tag.
template <class Pixels>
struct BlendPixels;
template <>
struct BlendPixels<GreyImagePixels> {
    using Raster = GreyPixels;
};
template <>
struct BlendPixels<ColourImagePixels> {
    using Raster = ColourPixels;
};

template <class Pixels, class Samples, ScreenMember SM, bool Scaled>
void blendRow(const PaintState& s, const ImageOperand& op, const Samples& samples,
              const ImageArea& area, int32_t y, const uint8_t* sourceRow, ImageRop rop) {
    using Raster = typename BlendPixels<Pixels>::Raster;
    ColumnWalk<Scaled> columns(s, op);
    ImagePattern<Pixels, SM> pattern(s, area.left, y);
    typename Pixels::Pixel* d = Pixels::row(s, y) + area.left;
    // Each pixel's sample in the low 32 bits, its alpha (or NO_ALPHA_SOURCE) above.
    uint64_t values[CHUNK];
    const auto sample = [&](uint32_t c) {
        const uint32_t v = samples(sourceRow, c);
        const uint32_t a =
            v == SKIP_SAMPLE
                ? 0u
                : imageSampleAlpha<Samples::OWN_ALPHA>(s, v, samples.alpha(sourceRow, c));
        return uint64_t{a} << 32 | v;
    };
    WeightsCache weights;
    for (int32_t done = 0; done < area.width;) {
        const int32_t n = std::min(CHUNK, area.width - done);
        columns.fill(sample, values, n);
        for (int32_t k = 0; k < n; ++k, pattern.step()) {
            const auto v = static_cast<uint32_t>(values[k]);
            const auto a = static_cast<uint32_t>(values[k] >> 32);
            auto& pixel = d[done + k];
            if (a == NO_ALPHA_SOURCE) {
                if (!pattern.skip) {
                    pixel = rop == IMAGE_ROP_COPY  ? Pixels::copy(s, v)
                            : rop == IMAGE_ROP_XOR ? Pixels::xorInto(pixel, v)
                                                   : Pixels::rop(s, v, pattern.value, pixel);
                }
                continue;
            }
            if (a == 0) {
                continue;
            }
            pixel = Raster::blendSample(pixel, static_cast<typename Pixels::Pixel>(v),
                                        weights.of(a), s.tagImageWord);
        }
        done += n;
    }
}

template <class Pixels, class Samples, ScreenMember SM, bool Scaled>
void blendImageMember(PaintState& s, const ImageOperand& op) {
    ImageArea area{};
    const Samples samples(s, op, Pixels{});
    if (!samples.usable() || !clipImageArea(s, op, area)) {
        return;
    }
    const ImageRop rop = imageRopOf(s);
    forEachSourceRow(s, op, area, [&](int32_t y, int32_t n, const uint8_t* sourceRow) {
        for (int32_t k = 0; k < n; ++k) {
            blendRow<Pixels, Samples, SM, Scaled>(s, op, samples, area, y + k, sourceRow, rop);
        }
    });
}

// Whether any sample of the record can have an alpha source.
template <class Samples>
bool anySource(const PaintState& s, const ImageOperand& op) {
    if (Samples::OWN_ALPHA || keyOneOn(s) || constantAlphaOn(s)) {
        return true;
    }
    if constexpr (requires(const Samples& x) { x.colourAlpha(); }) {
        return Samples(s, op, GreyImagePixels{}).colourAlpha();
    }
    return false;
}

// A blend family's dispatcher: false hands the record to the plain member.
template <class Pixels, class Samples>
bool blendImageFamily(PaintState& s, const ImageOperand& op) {
    static constexpr ImagePainter MEMBERS[2][SCREEN_MEMBER_COUNT] = {
        {blendImageMember<Pixels, Samples, SCREEN_SOLID, false>,
         blendImageMember<Pixels, Samples, SCREEN_BITS_TRANSPARENT, false>,
         blendImageMember<Pixels, Samples, SCREEN_BITS_OPAQUE, false>,
         blendImageMember<Pixels, Samples, SCREEN_SAMPLES, false>},
        {blendImageMember<Pixels, Samples, SCREEN_SOLID, true>,
         blendImageMember<Pixels, Samples, SCREEN_BITS_TRANSPARENT, true>,
         blendImageMember<Pixels, Samples, SCREEN_BITS_OPAQUE, true>,
         blendImageMember<Pixels, Samples, SCREEN_SAMPLES, true>},
    };
    if (!anySource<Samples>(s, op)) {
        return false;
    }
    MEMBERS[imageAtDeviceSize(op) ? 0 : 1][s.screenMember](s, op);
    return true;
}

template <class Pixels>
bool blendBitImageFamily(PaintState& s, const ImageOperand& op) {
    return s.imageOpaque != 0 ? blendImageFamily<Pixels, BitSamples<true>>(s, op)
                              : blendImageFamily<Pixels, BitSamples<false>>(s, op);
}

} // namespace

bool blendBitImageGrey(PaintState& state, const ImageOperand& op) {
    return blendBitImageFamily<GreyImagePixels>(state, op);
}
bool blendGreyImageGrey(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<GreyImagePixels, GreySamples>(state, op);
}
bool blendIndexedImageGrey(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<GreyImagePixels, IndexedSamples>(state, op);
}
bool blendIndexedAlphaImageGrey(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<GreyImagePixels, IndexedAlphaSamples>(state, op);
}
bool blendGreyAlphaImageGrey(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<GreyImagePixels, GreyAlphaSamples>(state, op);
}
bool blendBitImageColour(PaintState& state, const ImageOperand& op) {
    return blendBitImageFamily<ColourImagePixels>(state, op);
}
bool blendColourImageColour(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<ColourImagePixels, ColourSamples>(state, op);
}
bool blendIndexedImageColour(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<ColourImagePixels, IndexedSamples>(state, op);
}
bool blendIndexedAlphaImageColour(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<ColourImagePixels, IndexedAlphaSamples>(state, op);
}
bool blendColourAlphaImageColour(PaintState& state, const ImageOperand& op) {
    return blendImageFamily<ColourImagePixels, ColourAlphaSamples>(state, op);
}

} // namespace kryn
