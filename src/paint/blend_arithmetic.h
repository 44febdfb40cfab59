// The blend arithmetic, shared by every blending renderer. Alphas and
// channels run from 0 (transparent, dark) to 255 (opaque, bright).
//
//   mulAlpha(x, y)         = (x * y * 257 + 32768) >> 16
//   blendChannel(a, s, d)  = min(255, (a * 257 * s + (255 - a) * 257 * d + 32768) >> 16)
//
// Renderers take the two weights a * 257 and (255 - a) * 257 once for a run
// of equal alpha (BlendWeights), and for a fixed source colour also the
// source's share of every channel (BlendInk), so that a blended channel
// costs one multiply, one addition and one shift. No division anywhere.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kryn {

inline constexpr uint32_t ALPHA_OPAQUE = 255;

inline constexpr uint32_t mulAlpha(uint32_t x, uint32_t y) {
    return (x * y * 257 + 32768) >> 16;
}

// The weights of source and destination for alpha a.
struct BlendWeights {
    uint32_t source; // a * 257
    uint32_t dest;   // (255 - a) * 257
};

inline constexpr BlendWeights blendWeights(uint32_t a) {
    return {a * 257, (ALPHA_OPAQUE - a) * 257};
}

// The weights of the alpha last asked for, taken again only when the alpha
// changes from one pixel to the next.
struct WeightsCache {
    BlendWeights of(uint32_t a) {
        if (a != alpha) {
            weights = blendWeights(a);
            alpha = a;
        }
        return weights;
    }
    uint32_t alpha = ALPHA_OPAQUE + 1; // none yet
    BlendWeights weights{};
};

// The largest sum is 255 * 65535 + 32768 = 16744193, whose top bits are
// 255: the clamp never bites, but it is the rule.
inline constexpr uint32_t blendWeighted(BlendWeights w, uint32_t s, uint32_t d) {
    return std::min<uint32_t>(255, (w.source * s + w.dest * d + 32768) >> 16);
}

inline constexpr uint32_t blendChannel(uint32_t a, uint32_t s, uint32_t d) {
    return blendWeighted(blendWeights(a), s, d);
}

// One colour at one alpha, ready to blend channel by channel: the source's
// share (a * 257 * s + 32768) of channels 0, 1 and 2, and the weight of D.
// The same in 16-bit terms, for renderers that blend eight channels at a
// time: with u = a * s + (255 - a) * d (at most 255 * 255), the rule is
// (u + (u >> 8) + 128) >> 8, since 257 u + 32768 = 256 (u + 128) + u.
struct BlendInk {
    uint32_t share[3];
    uint32_t dest;
    uint16_t product[3]; // a * s
    uint16_t inverse;    // 255 - a

    uint32_t channel(int c, uint32_t d) const {
        return std::min<uint32_t>(255, (share[c] + dest * d) >> 16);
    }
};

// `colour` holds channel 0 in bits 0-7, 1 in 8-15, 2 in 16-23.
inline constexpr BlendInk blendInk(uint32_t a, uint32_t colour) {
    const BlendWeights w = blendWeights(a);
    const uint32_t s[3] = {colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
    return {{w.source * s[0] + 32768, w.source * s[1] + 32768, w.source * s[2] + 32768},
            w.dest,
            {static_cast<uint16_t>(a * s[0]), static_cast<uint16_t>(a * s[1]),
             static_cast<uint16_t>(a * s[2])},
            static_cast<uint16_t>(ALPHA_OPAQUE - a)};
}

static_assert(mulAlpha(255, 255) == 255 && mulAlpha(128, 128) == 64);
static_assert(blendChannel(255, 77, 200) == 77 && blendChannel(0, 77, 200) == 200);
static_assert(blendChannel(128, 255, 0) == 128);

} // namespace kryn
