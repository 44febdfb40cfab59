#include "render/blend_rows.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kryn {

void blendRowBytesEach(uint8_t* at, int32_t n, const BlendInk& ink) {
    for (int32_t i = 0; i < n; ++i) {
        at[i] = static_cast<uint8_t>(ink.channel(0, at[i]));
    }
}

void blendRowWordsEach(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag) {
    for (int32_t i = 0; i < n; ++i) {
        const uint32_t d = at[i];
        at[i] = ink.channel(0, d & 0xFF) | ink.channel(1, (d >> 8) & 0xFF) << 8 |
                ink.channel(2, (d >> 16) & 0xFF) << 16 | tag;
    }
}

#if defined(__SSE2__)

namespace {

// Eight 16-bit channels at a time: u = inverse * d + product, then
// (u + (u >> 8) + 128) >> 8 (see BlendInk); no step leaves 16 bits.
struct LaneInk {
    __m128i inverse;
    __m128i product;

    __m128i apply(__m128i d) const {
        const __m128i u = _mm_add_epi16(_mm_mullo_epi16(d, inverse), product);
        const __m128i rounded =
            _mm_add_epi16(_mm_add_epi16(u, _mm_srli_epi16(u, 8)), _mm_set1_epi16(128));
        return _mm_srli_epi16(rounded, 8);
    }

    // Sixteen bytes: widened, blended, narrowed again.
    __m128i blend16(__m128i v) const {
        const __m128i zero = _mm_setzero_si128();
        return _mm_packus_epi16(apply(_mm_unpacklo_epi8(v, zero)),
                                apply(_mm_unpackhi_epi8(v, zero)));
    }
};

short lane(uint32_t v) {
    return static_cast<short>(static_cast<uint16_t>(v));
}

} // namespace

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink) {
    const LaneInk lanes{_mm_set1_epi16(lane(ink.inverse)), _mm_set1_epi16(lane(ink.product[0]))};
    int32_t i = 0;
    for (; i + 16 <= n; i += 16) {
        auto* v = reinterpret_cast<__m128i*>(at + i);
        _mm_storeu_si128(v, lanes.blend16(_mm_loadu_si128(v)));
    }
    blendRowBytesEach(at + i, n - i, ink);
}

void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag) {
    // Lanes R, G, B, tag of two pixels; the tag lane weighs D with 0 and
    // the tag byte t with 255 (which gives t).
    const short inverse = lane(ink.inverse);
    const short p0 = lane(ink.product[0]);
    const short p1 = lane(ink.product[1]);
    const short p2 = lane(ink.product[2]);
    const short t = lane((tag >> 24) * 255);
    const LaneInk lanes{_mm_setr_epi16(inverse, inverse, inverse, 0, inverse, inverse, inverse, 0),
                        _mm_setr_epi16(p0, p1, p2, t, p0, p1, p2, t)};
    int32_t i = 0;
    for (; i + 4 <= n; i += 4) {
        auto* v = reinterpret_cast<__m128i*>(at + i);
        _mm_storeu_si128(v, lanes.blend16(_mm_loadu_si128(v)));
    }
    blendRowWordsEach(at + i, n - i, ink, tag);
}

#else

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink) {
    blendRowBytesEach(at, n, ink);
}

void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag) {
    blendRowWordsEach(at, n, ink, tag);
}

#endif

} // namespace kryn
