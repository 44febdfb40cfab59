// The blend arithmetic against a reference model over every input: the
// rule's value is the nearest integer (halves up) to 257 u / 65536 with
// u = a s + (255 - a) d, which is u / 255 scaled by 65535 / 65536; the model
// computes it in floating point (exact at these sizes), and every form the
// renderers use (the weights of one alpha, the ink of one colour, the pixel
// policies of both raster formats) must give it for all 256^3 inputs.
#include "paint/blend_arithmetic.h"
#include "render/blend_rows.h"
#include "render/raster_pixels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace kryn {
namespace {

uint32_t nearest(double v) {
    return static_cast<uint32_t>(std::floor(v + 0.5));
}

// 257 u / 65536 is exact in a double (u * 257 < 2^24).
uint32_t referenceBlend(uint32_t a, uint32_t s, uint32_t d) {
    const double u = double(a) * s + double(255 - a) * d;
    return std::min(255u, nearest(u * 257.0 / 65536.0));
}

uint32_t referenceMul(uint32_t x, uint32_t y) {
    return nearest(double(x) * y * 257.0 / 65536.0);
}

TEST(BlendArithmetic, MulAlphaIsTheScaledProductRoundedForEveryPair) {
    for (uint32_t x = 0; x < 256; ++x) {
        for (uint32_t y = 0; y < 256; ++y) {
            const uint32_t m = mulAlpha(x, y);
            ASSERT_EQ(m, referenceMul(x, y)) << x << " x " << y;
            ASSERT_LE(std::fabs(double(m) - double(x) * y / 255.0), 0.5 + 1.0 / 255)
                << x << " " << y;
        }
    }
}

TEST(BlendArithmetic, EveryFormOfTheBlendGivesTheRuleForEveryAlphaAndChannel) {
    for (uint32_t a = 0; a < 256; ++a) {
        const BlendWeights w = blendWeights(a);
        for (uint32_t s = 0; s < 256; ++s) {
            const BlendInk ink = blendInk(a, s | (255 - s) << 8 | (s ^ 0x5A) << 16);
            for (uint32_t d = 0; d < 256; ++d) {
                const uint32_t want = referenceBlend(a, s, d);
                const uint32_t got = blendChannel(a, s, d);
                if (got != want || ink.channel(0, d) != want ||
                    GreyPixels::blend(uint8_t(d), ink, 0) != want ||
                    GreyPixels::blendSample(uint8_t(d), uint8_t(s), w, 0) != want) {
                    FAIL() << "a " << a << " s " << s << " d " << d << ": " << got << " for "
                           << want;
                }
                // 32-bit pixels: each channel on its own, the tag replaced.
                const uint32_t dc = d | (d ^ 0xFF) << 8 | (255 - d) << 16 | 0x7F000000;
                const uint32_t sc = s | (255 - s) << 8 | (s ^ 0x5A) << 16;
                const uint32_t wantColour = want | referenceBlend(a, 255 - s, d ^ 0xFF) << 8 |
                                            referenceBlend(a, s ^ 0x5A, 255 - d) << 16 | 0x03000000;
                if (ColourPixels::blend(dc, ink, 0x03000000) != wantColour ||
                    ColourPixels::blendSample(dc, sc | 0xEE000000, w, 0x03000000) != wantColour) {
                    FAIL() << "32-bit: a " << a << " s " << s << " d " << d;
                }
            }
        }
    }
}

TEST(BlendArithmetic, WholeRowsGiveTheRuleForEveryAlphaAndChannel) {
    // Rows of every destination value (the fast forms take sixteen bytes at
    // a time, the pixel-by-pixel forms the rest of a row).
    std::vector<uint8_t> grey(256);
    std::vector<uint32_t> colour(256);
    for (uint32_t a = 0; a < 256; ++a) {
        for (uint32_t s = 0; s < 256; ++s) {
            const BlendInk ink = blendInk(a, s | (255 - s) << 8 | (s ^ 0x5A) << 16);
            for (uint32_t d = 0; d < 256; ++d) {
                grey[d] = uint8_t(d);
                colour[d] = d | (d ^ 0xFF) << 8 | (255 - d) << 16 | 0x7F000000;
            }
            const int32_t n = int32_t(253 + a % 4); // rows that end inside a 16-byte step
            blendRowBytes(grey.data(), n, ink);
            blendRowWords(colour.data(), n, ink, 0x03000000);
            for (int32_t d = 0; d < n; ++d) {
                const uint32_t want = referenceBlend(a, s, uint32_t(d));
                const uint32_t wantColour =
                    want | referenceBlend(a, 255 - s, uint32_t(d) ^ 0xFF) << 8 |
                    referenceBlend(a, s ^ 0x5A, 255 - uint32_t(d)) << 16 | 0x03000000;
                if (grey[size_t(d)] != want || colour[size_t(d)] != wantColour) {
                    FAIL() << "rows: a " << a << " s " << s << " d " << d;
                }
            }
        }
    }
}

TEST(BlendArithmetic, BlocksGiveEveryRowAsTheRowFormsDo) {
    // Blocks whose rows repeat the row above, the row two above, or differ
    // from the row above in one channel of one pixel (the first, the last,
    // one in between), at every width through several columns of the block
    // forms: each row as blended on its own, and the pixels beside the
    // block left as they were.
    std::mt19937 random(5);
    const BlendInk ink = blendInk(77, 0x20A0F0);
    constexpr int32_t ROWS = 20;
    for (int32_t n = 1; n <= 150; ++n) {
        const int32_t stride = n + 3;
        std::vector<uint32_t> words(size_t(stride) * ROWS);
        for (auto& w : words) {
            w = random() & 0x0F0F0F0F;
        }
        for (int32_t r = 1; r < ROWS; ++r) {
            uint32_t* row = &words[size_t(r * stride)];
            const uint32_t kind = random() % 6;
            if (kind == 5) {
                continue; // a row of its own
            }
            std::copy_n(row - (kind == 4 && r > 1 ? 2 : 1) * stride, n, row);
            if (kind < 3) {
                const int32_t x = kind == 0 ? 0 : kind == 1 ? n - 1 : n / 2;
                row[x] ^= 1u << (8 * (random() % 3));
            }
        }
        std::vector<uint8_t> bytes(words.size());
        std::transform(words.begin(), words.end(), bytes.begin(),
                       [](uint32_t w) { return uint8_t(w); });
        auto wantWords = words;
        auto wantBytes = bytes;
        for (int32_t r = 0; r < ROWS; ++r) {
            blendRowWordsEach(&wantWords[size_t(r * stride)], n, ink, 0x03000000);
            blendRowBytesEach(&wantBytes[size_t(r * stride)], n, ink);
        }
        if (blendBlockWords(words.data(), n, ROWS, stride * 4, ink, 0x03000000)) {
            ASSERT_EQ(words, wantWords) << "32-bit, " << n << " wide";
        }
        if (blendBlockBytes(bytes.data(), n, ROWS, stride, ink)) {
            ASSERT_EQ(bytes, wantBytes) << "8-bit, " << n << " wide";
        }
    }
}

} // namespace
} // namespace kryn
