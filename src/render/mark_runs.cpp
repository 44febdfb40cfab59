#include "render/mark_runs.h"

#include <algorithm>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kryn {

namespace {

constexpr uint32_t WHITE = 0xFFFFFF;

inline bool isWhite(uint32_t pixel) {
    return (pixel & WHITE) == WHITE;
}

inline void setTag(uint32_t& pixel, uint32_t bits) {
    pixel |= bits << 24;
}

void closeRun(uint32_t* row, int32_t head, int32_t length) {
    if (length > 3) {
        setTag(row[head], RUN_TAG_LONG);
        row[head + 1] = static_cast<uint32_t>(length);
    } else {
        setTag(row[head], static_cast<uint32_t>(length) * 2u);
    }
}

// The first column from x on (up to end) whose pixel, masked, differs from
// v. Two pixels are tested at a time, since most of a band is paper or long
// runs.
int32_t skipMatching(const uint32_t* row, int32_t x, int32_t end, uint32_t v, uint32_t mask) {
    const uint64_t pairMask = (uint64_t{mask} << 32) | mask;
    const uint64_t pairValue = (uint64_t{v} << 32) | v;
    for (; x < end; x += 2) {
        uint64_t pair;
        std::memcpy(&pair, row + x, sizeof pair);
        if ((pair & pairMask) != pairValue) {
            break;
        }
    }
    while (x <= end && (row[x] & mask) == v) {
        ++x;
    }
    return x;
}

// Bit i set where the word at x + i differs from the one before it, for
// the eight columns x..x + 7.
inline uint32_t changesOf8(const uint32_t* row, int32_t x) {
#if defined(__SSE2__)
    const auto* at = reinterpret_cast<const __m128i*>(row + x);
    const auto* before = reinterpret_cast<const __m128i*>(row + x - 1);
    const int low = _mm_movemask_ps(
        _mm_castsi128_ps(_mm_cmpeq_epi32(_mm_loadu_si128(at), _mm_loadu_si128(before))));
    const int high = _mm_movemask_ps(
        _mm_castsi128_ps(_mm_cmpeq_epi32(_mm_loadu_si128(at + 1), _mm_loadu_si128(before + 1))));
    return ~static_cast<uint32_t>(low | high << 4) & 0xFFu;
#else
    uint32_t bits = 0;
    for (int32_t i = 0; i < 8; ++i) {
        bits |= (row[x + i] != row[x + i - 1] ? 1u : 0u) << i;
    }
    return bits;
#endif
}

// Tags the seven words from `at` on as runs of one pixel each.
inline void markSingles7(uint32_t* at) {
    constexpr uint32_t ONE = 2u << 24;
#if defined(__SSE2__)
    auto* v = reinterpret_cast<__m128i*>(at);
    const __m128i all = _mm_set1_epi32(static_cast<int>(ONE));
    const __m128i firstThree =
        _mm_set_epi32(0, static_cast<int>(ONE), static_cast<int>(ONE), static_cast<int>(ONE));
    _mm_storeu_si128(v, _mm_or_si128(_mm_loadu_si128(v), all));
    _mm_storeu_si128(v + 1, _mm_or_si128(_mm_loadu_si128(v + 1), firstThree));
#else
    for (int32_t i = 0; i < 7; ++i) {
        at[i] |= ONE;
    }
#endif
}

// Closes a run at every column from x on (up to maxX) whose word differs
// from the one before it, from the run at `head` on; answers the head of
// the last run. Eight columns are compared at a time: a closed run writes
// only its own head and the word after it, never a word still to be
// compared.
int32_t closeChanges(uint32_t* row, int32_t head, int32_t x, int32_t maxX) {
    for (; x + 7 <= maxX; x += 8) {
        uint32_t bits = changesOf8(row, x);
        if (bits == 0xFFu) {
            // Every word differs from the one before it (fine screens):
            // seven runs of one pixel, tagged together.
            closeRun(row, head, x - head);
            markSingles7(row + x);
            head = x + 7;
            continue;
        }
        for (; bits != 0; bits &= bits - 1) {
            const int32_t at = x + std::countr_zero(bits);
            closeRun(row, head, at - head);
            head = at;
        }
    }
    for (; x <= maxX; ++x) {
        if (row[x] != row[x - 1]) {
            closeRun(row, head, x - head);
            head = x;
        }
    }
    return head;
}

// One row of the box; answers whether it holds a non-white pixel. A run
// ends where a word differs from the one before it; closing a run writes
// only into its own head and the word after it, behind the scan.
bool markRow(uint32_t* row, int32_t width, int32_t minX, int32_t maxX) {
    const int32_t x = skipMatching(row, minX, maxX, WHITE, WHITE);
    const bool inked = x <= maxX;
    int32_t head = 0;
    int32_t length = x; // the white columns before the ink join the run at 0
    if (inked) {
        if (x > 0) {
            closeRun(row, 0, x);
            head = x;
        }
        head = closeChanges(row, head, head + 1, maxX);
        length = maxX + 1 - head;
    }
    const int32_t rest = width - maxX - 1;
    if (rest >= 2) {
        if (!isWhite(row[head])) {
            closeRun(row, head, length);
            head = maxX + 1;
            length = rest;
        } else {
            length += rest;
        }
    }
    if (!inked) {
        setTag(row[head], RUN_TAG_BLANK);
    } else {
        closeRun(row, head, length);
    }
    return inked;
}

} // namespace

bool markRuns(uint32_t* raster, int32_t strideWords, int32_t height, const DirtyBox& box) {
    const int32_t minX = std::max(box.minX, 0);
    const int32_t maxX = std::min(box.maxX, strideWords - 1);
    const int32_t minY = std::max(box.minY, 0);
    const int32_t maxY = std::min(box.maxY, height - 1);
    if (minY > maxY || minX > maxX) {
        return false;
    }
    for (int32_t y = 0; y < height; ++y) {
        if (y < minY || y > maxY) {
            setTag(raster[int64_t{y} * strideWords], RUN_TAG_BLANK);
        }
    }
    bool inked = false;
    for (int32_t y = minY; y <= maxY; ++y) {
        inked = markRow(raster + int64_t{y} * strideWords, strideWords, minX, maxX) || inked;
    }
    return inked;
}

} // namespace kryn
