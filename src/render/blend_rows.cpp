#include "render/blend_rows.h"

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Where the compiler can build functions for AVX2 beside the baseline
// (only they use it), they are called on processors that have it.
#if defined(__SSE2__) && defined(__x86_64__) && defined(__GNUC__)
#define KRYN_BLEND_AVX2 1
#include <immintrin.h>
#define KRYN_TARGET_AVX2 __attribute__((target("avx2")))
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

#if defined(KRYN_BLEND_AVX2)

// The same steps on both sixteen-byte halves of thirty-two bytes (the
// widening, the arithmetic and the narrowing all stay within each half).
struct WideInk {
    __m256i inverse;
    __m256i product;
};

KRYN_TARGET_AVX2 WideInk widen(const LaneInk& lanes) {
    return {_mm256_broadcastsi128_si256(lanes.inverse), _mm256_broadcastsi128_si256(lanes.product)};
}

KRYN_TARGET_AVX2 __m256i apply32(__m256i d, const WideInk& ink) {
    const __m256i u = _mm256_add_epi16(_mm256_mullo_epi16(d, ink.inverse), ink.product);
    const __m256i rounded =
        _mm256_add_epi16(_mm256_add_epi16(u, _mm256_srli_epi16(u, 8)), _mm256_set1_epi16(128));
    return _mm256_srli_epi16(rounded, 8);
}

KRYN_TARGET_AVX2 __m256i blend32(__m256i v, const WideInk& ink) {
    const __m256i zero = _mm256_setzero_si256();
    return _mm256_packus_epi16(apply32(_mm256_unpacklo_epi8(v, zero), ink),
                               apply32(_mm256_unpackhi_epi8(v, zero), ink));
}

KRYN_TARGET_AVX2 __m256i load32(const uint8_t* at) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

KRYN_TARGET_AVX2 void store32(uint8_t* at, __m256i v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), v);
}

KRYN_TARGET_AVX2 size_t blendSteps32(uint8_t* at, size_t bytes, const LaneInk& lanes) {
    const WideInk ink = widen(lanes);
    size_t i = 0;
    for (; i + 32 <= bytes; i += 32) {
        store32(at + i, blend32(load32(at + i), ink));
    }
    return i;
}

// How many rows ahead a column asks for its cache lines: the pieces of a
// column lie a raster row apart, further than the processor's own fetching
// ahead looks.
constexpr int32_t FETCH_AHEAD = 8;

// Down a column of K thirty-two-byte steps, `rows` rows `stride` bytes
// apart: a row's piece that equals the piece above as it was takes what
// that became; any other is blended and becomes the one to compare with.
template <size_t K>
KRYN_TARGET_AVX2 void blendColumn32(uint8_t* at, int32_t rows, std::ptrdiff_t stride,
                                    const WideInk& ink) {
    __m256i was[K];
    __m256i became[K];
#pragma GCC unroll 4
    for (size_t k = 0; k < K; ++k) {
        was[k] = load32(at + 32 * k);
        became[k] = blend32(was[k], ink);
        store32(at + 32 * k, became[k]);
    }
    for (int32_t r = 1; r < rows; ++r) {
        at += stride;
        if (r + FETCH_AHEAD < rows) {
            const auto* ahead = reinterpret_cast<const char*>(at + FETCH_AHEAD * stride);
            for (size_t line = 0; line < 32 * K; line += 64) {
                _mm_prefetch(ahead + line, _MM_HINT_T0);
            }
            _mm_prefetch(ahead + 32 * K - 1, _MM_HINT_T0);
        }
        __m256i now[K];
        __m256i equal = _mm256_set1_epi8(-1);
#pragma GCC unroll 4
        for (size_t k = 0; k < K; ++k) {
            now[k] = load32(at + 32 * k);
            equal = _mm256_and_si256(equal, _mm256_cmpeq_epi8(now[k], was[k]));
        }
        if (_mm256_movemask_epi8(equal) != -1) {
#pragma GCC unroll 4
            for (size_t k = 0; k < K; ++k) {
                was[k] = now[k];
                became[k] = blend32(now[k], ink);
            }
        }
#pragma GCC unroll 4
        for (size_t k = 0; k < K; ++k) {
            store32(at + 32 * k, became[k]);
        }
    }
}

// The same for the last `own` (1 to 31) bytes of the thirty-two at `at`:
// the bytes before them, which other columns paint, are stored back as
// they are and left out of the comparing.
KRYN_TARGET_AVX2 void blendLastColumn32(uint8_t* at, int32_t rows, std::ptrdiff_t stride,
                                        const WideInk& ink, int own) {
    const __m256i index =
        _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
                         21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    const __m256i mine = _mm256_cmpgt_epi8(index, _mm256_set1_epi8(static_cast<char>(31 - own)));
    const int others = ~_mm256_movemask_epi8(mine);
    __m256i was = load32(at);
    __m256i became = blend32(was, ink);
    store32(at, _mm256_blendv_epi8(was, became, mine));
    for (int32_t r = 1; r < rows; ++r) {
        at += stride;
        const __m256i now = load32(at);
        if ((_mm256_movemask_epi8(_mm256_cmpeq_epi8(now, was)) | others) != -1) {
            was = now;
            became = blend32(now, ink);
        }
        store32(at, _mm256_blendv_epi8(now, became, mine));
    }
}

// A block as columns of 128 bytes, then of 32, then the last bytes.
KRYN_TARGET_AVX2 void blendColumns32(uint8_t* at, size_t bytes, int32_t rows, std::ptrdiff_t stride,
                                     const LaneInk& lanes) {
    const WideInk ink = widen(lanes);
    size_t i = 0;
    for (; i + 128 <= bytes; i += 128) {
        blendColumn32<4>(at + i, rows, stride, ink);
    }
    for (; i + 32 <= bytes; i += 32) {
        blendColumn32<1>(at + i, rows, stride, ink);
    }
    if (i < bytes) {
        blendLastColumn32(at + bytes - 32, rows, stride, ink, static_cast<int>(bytes - i));
    }
}

bool hasAvx2() {
    return __builtin_cpu_supports("avx2");
}

#endif

// The sixteen-byte steps of a row `bytes` long; returns where they end.
size_t blendSteps(uint8_t* at, size_t bytes, const LaneInk& lanes) {
    size_t i = 0;
#if defined(KRYN_BLEND_AVX2)
    if (hasAvx2()) {
        i = blendSteps32(at, bytes, lanes);
    }
#endif
    for (; i + 16 <= bytes; i += 16) {
        auto* v = reinterpret_cast<__m128i*>(at + i);
        _mm_storeu_si128(v, lanes.blend16(_mm_loadu_si128(v)));
    }
    return i;
}

LaneInk byteLanes(const BlendInk& ink) {
    return {_mm_set1_epi16(lane(ink.inverse)), _mm_set1_epi16(lane(ink.product[0]))};
}

// Lanes R, G, B, tag of two pixels; the tag lane weighs D with 0 and the
// tag byte t with 255 (which gives t).
LaneInk wordLanes(const BlendInk& ink, uint32_t tag) {
    const short inverse = lane(ink.inverse);
    const short p0 = lane(ink.product[0]);
    const short p1 = lane(ink.product[1]);
    const short p2 = lane(ink.product[2]);
    const short t = lane((tag >> 24) * 255);
    return {_mm_setr_epi16(inverse, inverse, inverse, 0, inverse, inverse, inverse, 0),
            _mm_setr_epi16(p0, p1, p2, t, p0, p1, p2, t)};
}

} // namespace

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink) {
    const auto i = static_cast<int32_t>(blendSteps(at, static_cast<size_t>(n), byteLanes(ink)));
    blendRowBytesEach(at + i, n - i, ink);
}

void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag) {
    const auto i =
        static_cast<int32_t>(blendSteps(reinterpret_cast<uint8_t*>(at), static_cast<size_t>(n) * 4,
                                        wordLanes(ink, tag)) /
                             4);
    blendRowWordsEach(at + i, n - i, ink, tag);
}

bool blendBlockBytes(uint8_t* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink) {
#if defined(KRYN_BLEND_AVX2)
    if (n >= 32 && hasAvx2()) {
        blendColumns32(at, static_cast<size_t>(n), rows, stride, byteLanes(ink));
        return true;
    }
#endif
    return false;
}

bool blendBlockWords(uint32_t* at, int32_t n, int32_t rows, int32_t stride, const BlendInk& ink,
                     uint32_t tag) {
#if defined(KRYN_BLEND_AVX2)
    if (n >= 8 && hasAvx2()) {
        blendColumns32(reinterpret_cast<uint8_t*>(at), static_cast<size_t>(n) * 4, rows, stride,
                       wordLanes(ink, tag));
        return true;
    }
#endif
    return false;
}

#else

void blendRowBytes(uint8_t* at, int32_t n, const BlendInk& ink) {
    blendRowBytesEach(at, n, ink);
}

void blendRowWords(uint32_t* at, int32_t n, const BlendInk& ink, uint32_t tag) {
    blendRowWordsEach(at, n, ink, tag);
}

bool blendBlockBytes(uint8_t*, int32_t, int32_t, int32_t, const BlendInk&) {
    return false;
}

bool blendBlockWords(uint32_t*, int32_t, int32_t, int32_t, const BlendInk&, uint32_t) {
    return false;
}

#endif

} // namespace kryn
