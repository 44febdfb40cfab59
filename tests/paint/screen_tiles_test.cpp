// Screen tiles before registration: widening 1-bit rows, turning tiles of
// every pixel size against a model that maps pixel centres through the
// turn's matrix, resampling, the recognised matrices and the tone classes.
#include "paint/bit_tile.h"
#include "paint/paint_descriptor.h"
#include "paint/set_screen.h"
#include "paint/tile_turning.h"

#include "engine/memory.h"
#include "geometry/transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace kryn::test {
namespace {

bool bitOf(const uint8_t* row, int64_t x) {
    return (row[x >> 3] & (0x80u >> (x & 7))) != 0;
}

// Frees a tile's pixels when the test is done with it.
struct Owned {
    PixelTile tile;
    ~Owned() { freeBytes(tile.data); }
};

TEST(ScreenTiles, WidenedRowsHoldWholeWordsThatTheWidthDivides) {
    const struct {
        int64_t width, bits;
    } cases[] = {{8, 32}, {12, 96}, {7, 224}, {64, 64}, {1, 32}, {96, 96}, {2047, 65504}, {0, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(widenedRowBits(c.width), c.bits) << c.width;
    }
}

// Every widened row is the cell row repeated bit for bit, whether the width
// takes the byte copy (multiples of 8) or the bit concatenation.
TEST(ScreenTiles, ReplicatedRowsRepeatTheCellBitForBit) {
    std::mt19937 rng(16);
    for (int n = 0; n < 300; ++n) {
        const int32_t width = 1 + int32_t(rng() % 70);
        const int64_t bits = widenedRowBits(width);
        std::vector<uint8_t> row(size_t(bitRowBytes(width)));
        for (uint8_t& b : row) {
            b = uint8_t(rng());
        }
        std::vector<uint8_t> out(size_t(bits / 8), 0xA5);
        replicateTileRow(row.data(), width, out.data(), bits / 8);
        for (int64_t k = 0; k < bits; ++k) {
            ASSERT_EQ(bitOf(out.data(), k), bitOf(row.data(), k % width))
                << "width " << width << " bit " << k;
        }
    }
}

// Model of a turn: source pixel (sx, sy) has its centre mapped through the
// turn's matrix (x' = a x + c y, y' = b x + d y); the turned tile is shifted
// to start at (0, 0).
struct TurnModel {
    int32_t a, b, c, d;
    void map(int32_t w, int32_t h, int32_t sx, int32_t sy, int32_t& ox, int32_t& oy) const {
        const auto corner = [&](double x, double y, double& mx, double& my) {
            mx = a * x + c * y;
            my = b * x + d * y;
        };
        double minX = 1e9, minY = 1e9;
        for (const double x : {0.0, double(w)}) {
            for (const double y : {0.0, double(h)}) {
                double mx, my;
                corner(x, y, mx, my);
                minX = std::min(minX, mx);
                minY = std::min(minY, my);
            }
        }
        double mx, my;
        corner(sx + 0.5, sy + 0.5, mx, my);
        ox = int32_t(std::floor(mx - minX));
        oy = int32_t(std::floor(my - minY));
    }
};
const TurnModel TURNS[4] = {{1, 0, 0, 1}, {0, 1, -1, 0}, {-1, 0, 0, -1}, {0, -1, 1, 0}};

TEST(ScreenTiles, TurnedTilesOfEveryPixelSizePutEachPixelWhereTheMatrixCarriesIt) {
    std::mt19937 rng(72);
    for (int n = 0; n < 240; ++n) {
        const int32_t w = 1 + int32_t(rng() % 11);
        const int32_t h = 1 + int32_t(rng() % 11);
        const int32_t q = n % 4;
        const int32_t size = (n / 4) % 4; // 0: bits, else 1, 2, 4 bytes
        const int32_t pixelBytes = size == 0 ? 0 : size == 3 ? 4 : size;
        const int32_t stride = size == 0 ? (w + 7) / 8 : w * pixelBytes;
        std::vector<uint8_t> source(size_t(stride * h));
        for (uint8_t& b : source) {
            b = uint8_t(rng());
        }
        const TileSource src{source.data(), w, h, stride, 9};
        Owned turned;
        const TileTurn turn{q, false, 1.0f};
        const ResultCode r = size == 0   ? transformTile(src, q, turned.tile)
                             : size == 1 ? turnTile8(src, turn, turned.tile)
                             : size == 2 ? turnTile16(src, turn, turned.tile)
                                         : turnTile32(src, turn, turned.tile);
        ASSERT_EQ(r, KRYN_OK);
        EXPECT_EQ(turned.tile.width, q % 2 == 0 ? w : h);
        EXPECT_EQ(turned.tile.height, q % 2 == 0 ? h : w);
        EXPECT_EQ(turned.tile.depth, 9);
        for (int32_t sy = 0; sy < h; ++sy) {
            for (int32_t sx = 0; sx < w; ++sx) {
                int32_t ox = 0, oy = 0;
                TURNS[q].map(w, h, sx, sy, ox, oy);
                const uint8_t* outRow = turned.tile.data + oy * turned.tile.bytesPerRow;
                if (size == 0) {
                    ASSERT_EQ(bitOf(outRow, ox), bitOf(source.data() + sy * stride, sx))
                        << "bits q " << q << " (" << sx << ", " << sy << ")";
                } else {
                    ASSERT_EQ(std::memcmp(outRow + ox * pixelBytes,
                                          source.data() + sy * stride + sx * pixelBytes,
                                          size_t(pixelBytes)),
                              0)
                        << pixelBytes << " bytes q " << q << " (" << sx << ", " << sy << ")";
                }
            }
        }
    }
}

TEST(ScreenTiles, ResamplingPicksTheNearestPixelAtTheScaledSize) {
    // A 3 x 2 tile of distinct bytes, turned a quarter (2 x 3) and scaled.
    const uint8_t source[6] = {1, 2, 3, 4, 5, 6};
    const TileSource src{source, 3, 2, 3, 8};
    for (const float s : {2.0f, 1.5f, 0.5f, 3.0f}) {
        Owned out;
        ASSERT_EQ(turnTile8(src, TileTurn{1, true, s}, out.tile), KRYN_OK) << s;
        ASSERT_EQ(out.tile.width, int32_t(std::ceil(2 * s))) << s;
        ASSERT_EQ(out.tile.height, int32_t(std::ceil(3 * s))) << s;
        // Turned (unscaled) rows: (4 1) (5 2) (6 3).
        const uint8_t turned[3][2] = {{4, 1}, {5, 2}, {6, 3}};
        const auto step = uint64_t(65536.0 / double(s));
        for (int32_t y = 0; y < out.tile.height; ++y) {
            for (int32_t x = 0; x < out.tile.width; ++x) {
                const auto tx = std::min<uint64_t>(x * step >> 16, 1);
                const auto ty = std::min<uint64_t>(y * step >> 16, 2);
                EXPECT_EQ(out.tile.data[y * out.tile.bytesPerRow + x], turned[ty][tx])
                    << s << " (" << x << ", " << y << ")";
            }
        }
    }
    Owned none;
    EXPECT_EQ(turnTile8(src, TileTurn{0, true, 0.0f}, none.tile), KRYN_ERR_INVALID);
    EXPECT_EQ(turnTile8(src, TileTurn{0, true, 1e6f}, none.tile), KRYN_ERR_NO_MEMORY);
    EXPECT_EQ(turnTile8(src, TileTurn{4, false, 1.0f}, none.tile), KRYN_ERR_INVALID);
}

TEST(ScreenTiles, OnlyQuarterTurnsWithAUniformScaleAreRecognised) {
    const struct {
        float a, b, c, d;
        int32_t turns;
    } cases[] = {
        {1, 0, 0, 1, 0},     {0, 1, -1, 0, 1},       {-1, 0, 0, -1, 2},
        {0, -1, 1, 0, 3},    {2.5f, 0, 0, 2.5f, 0},  {0, 3, -3, 0, 1},
        {-2, 0, 0, -2, 2},   {0, -0.5f, 0.5f, 0, 3}, {1, 0, 0, -1, -1},
        {2, 0, 0, 3, -1},    {0, 1, 1, 0, -1},       {0.866f, 0.5f, -0.5f, 0.866f, -1},
        {1, 0.5f, 0, 1, -1},
    };
    for (const auto& c : cases) {
        Transform t;
        t.a = c.a;
        t.b = c.b;
        t.c = c.c;
        t.d = c.d;
        EXPECT_EQ(tileQuarterTurns(t), c.turns) << c.a << ' ' << c.b << ' ' << c.c << ' ' << c.d;
    }
}

TEST(ScreenTiles, UniformityGivesTheToneOfAllBlackOrAllWhiteTiles) {
    const struct {
        std::vector<uint8_t> pixels;
        uint8_t depth;
        int32_t width;
        uint32_t tone;
    } cases[] = {
        {{0xFF, 0xFF, 0xFF, 0x00, 0xFF, 0xFF, 0xFF, 0x12}, 24, 2, TONE_ONE}, // fourth bytes ignored
        {{0, 0, 0, 9, 0, 0, 0, 0}, 24, 2, TONE_ZERO},
        {{0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0}, 24, 2, TONE_MIXED},
        {{0xFF, 0x00, 0xFF, 0}, 24, 1, TONE_MIXED}, // not grey
        {{0x80, 0x80, 0x80, 0}, 24, 1, TONE_MIXED},
        {{0xFF, 0xFF, 0xFF}, 8, 3, TONE_ONE},
        {{0x00, 0x00}, 8, 2, TONE_ZERO},
        {{0x00, 0x01}, 8, 2, TONE_MIXED},
        {{0xFF, 0xFF, 0xFF, 0xFF}, 254, 2, TONE_MIXED},
    };
    for (const auto& c : cases) {
        std::vector<uint8_t> pixels = c.pixels;
        const PixelTile tile{pixels.data(), c.width, 1, 0, c.depth};
        EXPECT_EQ(tileUniformity(tile), c.tone) << int(c.depth) << " width " << c.width;
    }
}

} // namespace
} // namespace kryn::test
