// Masks and cached bitmaps against a brute-force reference: random
// bitmaps placed at random positions under random quarter turns, mirrors
// and whole scales, inside random clips (none, rectangles, triangles), on
// pages of every orientation, played and delivered; every pixel of the
// page must be what the reference says. The reference knows nothing of
// device bitmaps, band pieces or bit phases: each set sample of the user
// bitmap is a unit square mapped to the device, and the pixels whose
// sample points it holds (by the page's pixel rule) are painted when the
// clip admits them.
#include "page_picture.h"

#include "support/engine_fixture.h"
#include "support/fill_oracle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace kryn::test {

namespace {

constexpr int32_t W = 80;
constexpr int32_t H = 72;
constexpr int16_t BAND = 16;

struct Matrix {
    int32_t a, b, c, d, tx, ty;
};

struct Bitmap {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> rows; // packed, (width + 7) / 8 bytes a row
    bool bit(int32_t u, int32_t v) const {
        return ((rows[size_t(v * ((width + 7) / 8) + u / 8)] >> (7 - u % 8)) & 1) != 0;
    }
};

Bitmap randomBitmap(std::mt19937& rng, int32_t maxSide) {
    Bitmap b;
    b.width = std::uniform_int_distribution<int32_t>(1, maxSide)(rng);
    b.height = std::uniform_int_distribution<int32_t>(1, maxSide)(rng);
    const int32_t stride = (b.width + 7) / 8;
    b.rows.assign(size_t(stride * b.height), 0);
    const int density = std::uniform_int_distribution<int>(0, 3)(rng);
    for (int32_t v = 0; v < b.height; ++v) {
        for (int32_t u = 0; u < b.width; ++u) {
            const int r = std::uniform_int_distribution<int>(0, 99)(rng);
            const bool set = density == 3 || r < (density == 0 ? 15 : density == 1 ? 50 : 90);
            if (set) {
                b.rows[size_t(v * stride + u / 8)] |= uint8_t(0x80u >> (u % 8));
            }
        }
    }
    return b;
}

// The eight axis-aligned orientations times a whole scale.
Matrix randomLinear(std::mt19937& rng, int32_t scale) {
    static const int32_t forms[8][4] = {{1, 0, 0, 1},  {0, 1, -1, 0}, {-1, 0, 0, -1},
                                        {0, -1, 1, 0}, {-1, 0, 0, 1}, {1, 0, 0, -1},
                                        {0, 1, 1, 0},  {0, -1, -1, 0}};
    const auto* f = forms[std::uniform_int_distribution<int>(0, 7)(rng)];
    return {f[0] * scale, f[1] * scale, f[2] * scale, f[3] * scale, 0, 0};
}

// The page: reference pixels (grey) and the clip's admitted pixels.
struct Reference {
    int32_t quarterTurns = 0;
    std::vector<uint8_t> pixels = std::vector<uint8_t>(size_t(W * H), 0xFF);
    std::vector<uint8_t> clip = std::vector<uint8_t>(size_t(W * H), 1);

    // Paints sample (u, v) of a bitmap whose linear part is m and whose
    // sample (0, 0) corner lies at device (ox, oy).
    void paintSample(const Matrix& m, int64_t ox, int64_t oy, int32_t u, int32_t v, uint8_t grey) {
        const int64_t xs[4] = {m.a * u + m.c * v, m.a * (u + 1) + m.c * v, m.a * u + m.c * (v + 1),
                               m.a * (u + 1) + m.c * (v + 1)};
        const int64_t ys[4] = {m.b * u + m.d * v, m.b * (u + 1) + m.d * v, m.b * u + m.d * (v + 1),
                               m.b * (u + 1) + m.d * (v + 1)};
        const int64_t x0 = ox + *std::min_element(xs, xs + 4);
        const int64_t x1 = ox + *std::max_element(xs, xs + 4);
        const int64_t y0 = oy + *std::min_element(ys, ys + 4);
        const int64_t y1 = oy + *std::max_element(ys, ys + 4);
        // Sample points (c, r) inside: c in [x0, x1) or (x0, x1] by the rule.
        const int64_t sx = quarterTurns == 1 || quarterTurns == 2 ? 1 : 0;
        const int64_t sy = quarterTurns >= 2 ? 1 : 0;
        for (int64_t y = y0 + sy; y < y1 + sy; ++y) {
            for (int64_t x = x0 + sx; x < x1 + sx; ++x) {
                if (x >= 0 && x < W && y >= 0 && y < H && clip[size_t(y * W + x)] != 0) {
                    pixels[size_t(y * W + x)] = grey;
                }
            }
        }
    }
    void paint(const Bitmap& b, const Matrix& m, int64_t ox, int64_t oy, uint8_t grey) {
        for (int32_t v = 0; v < b.height; ++v) {
            for (int32_t u = 0; u < b.width; ++u) {
                if (b.bit(u, v)) {
                    paintSample(m, ox, oy, u, v, grey);
                }
            }
        }
    }
};

// The page as delivered (32-bit rasters decoded as a device reads them) by
// its first channel; undelivered bands stay white.
std::vector<uint8_t> deliveredPage(const CallbackLog& log) {
    script::PagePicture picture(W, H, BAND);
    for (const Delivery& d : log.calls) {
        if (d.code >= CB_RASTER_BOX) {
            picture.placeBand({d.code, d.band, d.data.data(), d.bytes, &d.rect});
        }
    }
    std::vector<uint8_t> page(size_t(W * H));
    for (size_t i = 0; i < page.size(); ++i) {
        page[i] = picture.rgb()[3 * i];
    }
    return page;
}

void setMatrix(Engine* e, const Matrix& m) {
    const int32_t values[6] = {m.a, m.b, m.c, m.d, m.tx, m.ty};
    ASSERT_EQ(KRYNSetMatrix(values, e), KRYN_OK);
}

// A clip made in device pixels (identity matrix): none, a rectangle or a
// triangle; the reference admits what the oracle's winding rule admits.
void randomClip(std::mt19937& rng, Engine* e, Reference& ref) {
    const int kind = std::uniform_int_distribution<int>(0, 2)(rng);
    if (kind == 0) {
        return;
    }
    std::uniform_int_distribution<int32_t> px(-10, W + 10);
    std::uniform_int_distribution<int32_t> py(-10, H + 10);
    std::vector<OraclePoint> poly;
    setMatrix(e, {1, 0, 0, 1, 0, 0});
    if (kind == 1) {
        const int32_t x0 = px(rng), y0 = py(rng);
        const int32_t w = std::uniform_int_distribution<int32_t>(1, W)(rng);
        const int32_t h = std::uniform_int_distribution<int32_t>(1, H)(rng);
        ASSERT_EQ(KRYNRectPath(x0, y0, w, h, e), KRYN_OK);
        poly = {{16 * x0, 16 * y0},
                {16 * (x0 + w), 16 * y0},
                {16 * (x0 + w), 16 * (y0 + h)},
                {16 * x0, 16 * (y0 + h)}};
    } else {
        const int32_t pts[6] = {px(rng), py(rng), px(rng), py(rng), px(rng), py(rng)};
        ASSERT_EQ(KRYNMoveTo(pts[0], pts[1], e), KRYN_OK);
        ASSERT_EQ(KRYNLinesTo(pts + 2, 2, e), KRYN_OK);
        ASSERT_EQ(KRYNClosePath(e), KRYN_OK);
        for (int i = 0; i < 3; ++i) {
            poly.push_back({16 * pts[2 * i], 16 * pts[2 * i + 1]});
        }
    }
    ASSERT_EQ(KRYNClip(FILL_NONZERO, e), KRYN_OK);
    const std::vector<uint8_t> inside =
        oracleFill({poly}, FILL_NONZERO, ref.quarterTurns, {0, W - 1, 0, H - 1});
    for (size_t i = 0; i < inside.size(); ++i) {
        ref.clip[i] &= inside[i];
    }
}

void playRandomPage(uint32_t seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    Reference ref;
    ref.quarterTurns = std::uniform_int_distribution<int32_t>(0, 3)(rng);
    EnginePtr engine = makeEngine(W - 1, H - 1, BAND);
    Engine* e = engine.get();
    ASSERT_EQ(KRYNNewPage(9, e), KRYN_OK); // rasters hold the last column too
    const bool colour = seed % 2 == 0;
    if (!colour) {
        ASSERT_EQ(KRYNSelectSpace(1, e), KRYN_OK);
    }
    // The first quarter-turn matrix fixes the page's orientation.
    static const Matrix turns[4] = {
        {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, W, 0}, {-1, 0, 0, -1, W, H}, {0, -1, 1, 0, 0, H}};
    setMatrix(e, turns[ref.quarterTurns]);
    // The page rectangle clips too: under some orientations its first
    // column or row lies on the excluded side of the pixel rule.
    ref.clip = oracleFill({{{0, 0}, {16 * W, 0}, {16 * W, 16 * H}, {0, 16 * H}}}, FILL_NONZERO,
                          ref.quarterTurns, {0, W - 1, 0, H - 1});
    randomClip(rng, e, ref);

    // Cached bitmaps, stored under their own linear parts.
    struct Stored {
        Bitmap bitmap;
        Matrix linear;
    };
    std::vector<Stored> slots;
    for (uint16_t s = 0; s < 3; ++s) {
        Stored st{randomBitmap(rng, 20), randomLinear(rng, s == 2 ? 2 : 1)};
        setMatrix(e, st.linear);
        std::vector<uint8_t> given = st.bitmap.rows;
        ASSERT_EQ(KRYNSetImageCache(s, int16_t(st.bitmap.width), int16_t(st.bitmap.height), 0,
                                    given.data(), s, e),
                  KRYN_OK);
        std::fill(given.begin(), given.end(), uint8_t{0x5A}); // the engine kept a copy
        slots.push_back(st);
    }

    std::uniform_int_distribution<int32_t> place(-30, W + 10);
    for (int item = 0; item < 10; ++item) {
        const auto grey = static_cast<uint8_t>(10 + 20 * item);
        const ColourValue colour = grey * 0x010101u;
        ASSERT_EQ(KRYNSetColor(&colour, 0, e), KRYN_OK);
        const int32_t dx = place(rng);
        const int32_t dy = place(rng);
        if (std::uniform_int_distribution<int>(0, 1)(rng) == 0) {
            // A mask under a random orientation and scale; ownership 1 hands
            // a heap copy over, 0 lends a buffer that is spoilt at once.
            const Bitmap b = randomBitmap(rng, 40);
            Matrix m =
                randomLinear(rng, std::uniform_int_distribution<int32_t>(1, 4)(rng) == 4 ? 2 : 1);
            m.tx = dx;
            m.ty = dy;
            setMatrix(e, m);
            const int32_t packed = (b.width + 7) / 8;
            const int32_t stride = packed + std::uniform_int_distribution<int32_t>(0, 2)(rng);
            std::vector<uint8_t> samples(size_t(stride * b.height), 0xC3);
            for (int32_t v = 0; v < b.height; ++v) {
                std::memcpy(&samples[size_t(v * stride)], &b.rows[size_t(v * packed)],
                            size_t(packed));
            }
            const int32_t x = std::uniform_int_distribution<int32_t>(-3, 3)(rng);
            const int32_t y = std::uniform_int_distribution<int32_t>(-3, 3)(rng);
            const bool handOver = std::uniform_int_distribution<int>(0, 1)(rng) == 1;
            ImageDesc mask{nullptr, b.width, b.height, stride, 1};
            if (handOver) {
                mask.samples = GlobalAlloc(GMEM_FIXED, samples.size());
                std::memcpy(mask.samples, samples.data(), samples.size());
            } else {
                mask.samples = samples.data();
            }
            ASSERT_EQ(KRYNPutImageMask(&mask, x, y, handOver ? 1 : 0, e), KRYN_OK);
            std::fill(samples.begin(), samples.end(), uint8_t{0xFF});
            ref.paint(b, m, int64_t{m.a} * x + int64_t{m.c} * y + m.tx,
                      int64_t{m.b} * x + int64_t{m.d} * y + m.ty, grey);
        } else {
            // A cached bitmap: the placement point follows the current
            // matrix (any of the eight orientations, translated); the
            // bitmap keeps the orientation it was stored in.
            const auto slot = static_cast<uint16_t>(std::uniform_int_distribution<int>(0, 2)(rng));
            Matrix m = randomLinear(rng, 1);
            m.tx = dx;
            m.ty = dy;
            setMatrix(e, m);
            const int32_t x = std::uniform_int_distribution<int32_t>(-3, 3)(rng);
            const int32_t y = std::uniform_int_distribution<int32_t>(-3, 3)(rng);
            ASSERT_EQ(KRYNPutImageCache(x, y, slot, e), KRYN_OK);
            const Stored& st = slots[slot];
            ref.paint(st.bitmap, st.linear, int64_t{m.a} * x + int64_t{m.c} * y + m.tx,
                      int64_t{m.b} * x + int64_t{m.d} * y + m.ty, grey);
        }
    }
    CallbackLog log;
    ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e), KRYN_OK);
    const std::vector<uint8_t> got = deliveredPage(log);
    int wrong = 0;
    for (int32_t y = 0; y < H && wrong < 8; ++y) {
        for (int32_t x = 0; x < W && wrong < 8; ++x) {
            const uint8_t want = ref.pixels[size_t(y * W + x)];
            if (got[size_t(y * W + x)] != want) {
                ADD_FAILURE() << "pixel (" << x << ", " << y << ") is "
                              << int(got[size_t(y * W + x)]) << ", want " << int(want)
                              << " (page turned " << ref.quarterTurns << ")";
                ++wrong;
            }
        }
    }
}

} // namespace

TEST(MaskPlacementOracle, RandomMasksAndCachedBitmapsMatchTheReferencePixelForPixel) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    for (uint32_t seed = 1; seed <= 300; ++seed) {
        playRandomPage(seed);
        if (::testing::Test::HasFailure()) {
            break;
        }
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

} // namespace kryn::test
