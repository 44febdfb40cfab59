// Fills played end to end: job scripts through the player, the engine's
// recording and band playback, and the page picture, compared with the
// reference rasteriser on 8-bit and 32-bit pages, also under random 1-bit
// screens (the reference's coverage combined with the cell bit at each page
// position).
#include "job_player.h"
#include "page_picture.h"

#include "support/fill_oracle.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <sstream>

using namespace kryn::script;
using namespace kryn::test;

namespace {

constexpr int32_t W = 120;
constexpr int32_t H = 90;

struct Played {
    PagePicture picture;
    PlayResult result;
};

// Plays a one-page script whose header (Init, NewPage, ...) is given, with
// bands of bandHeight rows.
Played play(const std::string& script, uint32_t bandHeight = 32) {
    Played out{PagePicture(W, H, bandHeight), {}};
    PlayerOptions options;
    options.onRaster = [&](const RasterDelivery& d) { out.picture.placeBand(d); };
    JobPlayer player("job.kjob", ".", options);
    std::istringstream in(script);
    out.result = player.run(in);
    return out;
}

std::string header(int mode, bool grey) {
    std::ostringstream s;
    s << "Init " << W - 1 << ' ' << H - 1 << " 32 300 0x8009\nNewPage " << mode << '\n'
      << (grey ? "SelectSpace 1\n" : "") << "SetLogicalFunc 0xF0\n";
    return s.str();
}

bool black(const PagePicture& p, int32_t x, int32_t y) {
    return p.rgb()[(size_t(y) * W + size_t(x)) * 3] == 0;
}

// The painted pixels of the picture, in the columns the page mode's raster
// holds (host renderers of modes 2 to 7 leave out the last page column).
void expectPicture(const Played& played, const std::vector<uint8_t>& want, int32_t columns,
                   const std::string& what) {
    ASSERT_EQ(played.result.status, 0) << played.result.message;
    int64_t mismatches = 0;
    for (int32_t y = 0; y < H; ++y) {
        for (int32_t x = 0; x < columns; ++x) {
            mismatches += black(played.picture, x, y) != (want[size_t(y) * W + size_t(x)] != 0);
        }
    }
    EXPECT_EQ(mismatches, 0) << what;
}

} // namespace

TEST(RenderedFill, RandomPolygonsMatchTheReferenceOnGreyAndColourPages) {
    std::mt19937 rng(8);
    const OracleBounds bounds{0, W - 1, 0, H - 1};
    for (int n = 0; n < 200; ++n) {
        const bool grey = n % 2 == 1;
        const int mode = n % 4 < 2 ? 5 : 9;
        std::ostringstream script;
        script << header(mode, grey) << "SetMatrix [1 0 0 1 0 0]\n";
        std::vector<OraclePolygon> polys;
        for (int s = 0; s < 1 + n % 3; ++s) {
            OraclePolygon poly;
            const int vertices = 3 + int(rng() % 7);
            for (int v = 0; v < vertices; ++v) {
                const int32_t x = int32_t(rng() % (W + 40)) - 20;
                const int32_t y = int32_t(rng() % (H + 40)) - 20;
                poly.push_back({int64_t{x} * 16, int64_t{y} * 16});
                script << (v == 0 ? "MoveTo " : "LinesTo [") << x << ' ' << y
                       << (v == 0 ? "\n" : "] 1\n");
            }
            polys.push_back(poly);
        }
        const int rule = int(rng() % 2);
        script << "Fill " << rule << "\nClosePage\n";
        const Played played = play(script.str());
        expectPicture(played, oracleFill(polys, rule, 0, bounds), mode == 9 ? W : W - 1,
                      "case " + std::to_string(n));
    }
}

TEST(RenderedFill, RandomPolygonsUnderRandomScreensMatchCoverageAndCellBits) {
    std::mt19937 rng(16);
    const OracleBounds bounds{0, W - 1, 0, H - 1};
    for (int n = 0; n < 160; ++n) {
        const bool grey = n % 2 == 1;
        const int mode = n % 4 < 2 ? 5 : 9;
        const bool opaque = n % 8 < 4;
        const int32_t bandHeight = 5 + int32_t(rng() % 36); // cells start anywhere in a band
        const int32_t cellW = 1 + int32_t(rng() % 24);
        const int32_t cellH = 1 + int32_t(rng() % 12);
        std::vector<uint8_t> cell(size_t((cellW + 7) / 8 * cellH));
        std::ostringstream script;
        script << "Init " << W - 1 << ' ' << H - 1 << ' ' << bandHeight << " 300 0x8009\nNewPage "
               << mode << '\n'
               << (grey ? "SelectSpace 1\n" : "SelectSpace 0\n")
               << "SetLogicalFunc 0xF0\nSetMatrix [1 0 0 1 0 0]\nSetColor 0x808080 1\n"
               << "SetScreen {" << cellW << ' ' << cellH << " 1 1 hex:";
        for (uint8_t& b : cell) {
            b = uint8_t(rng());
            char hex[3];
            std::snprintf(hex, sizeof hex, "%02X", b);
            script << hex;
        }
        script << "} " << (opaque ? 1 : 0) << '\n';
        std::vector<OraclePolygon> polys;
        for (int sp = 0; sp < 1 + n % 3; ++sp) {
            OraclePolygon poly;
            const int vertices = 3 + int(rng() % 7);
            for (int v = 0; v < vertices; ++v) {
                const int32_t x = int32_t(rng() % (W + 40)) - 20;
                const int32_t y = int32_t(rng() % (H + 40)) - 20;
                poly.push_back({int64_t{x} * 16, int64_t{y} * 16});
                script << (v == 0 ? "MoveTo " : "LinesTo [") << x << ' ' << y
                       << (v == 0 ? "\n" : "] 1\n");
            }
            polys.push_back(poly);
        }
        const int rule = int(rng() % 2);
        script << "Fill " << rule << "\nClosePage\n";
        const Played played = play(script.str(), uint32_t(bandHeight));
        ASSERT_EQ(played.result.status, 0) << played.result.message;
        const std::vector<uint8_t> covered = oracleFill(polys, rule, 0, bounds);
        const int32_t columns = mode == 9 ? W : W - 1;
        int64_t mismatches = 0;
        for (int32_t y = 0; y < H; ++y) {
            for (int32_t x = 0; x < columns; ++x) {
                const int32_t c = x % cellW;
                const bool bit = (cell[size_t((y % cellH) * ((cellW + 7) / 8) + c / 8)] &
                                  (0x80 >> (c % 8))) != 0;
                uint8_t want = 0xFF;
                if (covered[size_t(y) * W + size_t(x)] != 0) {
                    want = bit ? 0x00 : opaque ? 0x80 : 0xFF;
                }
                mismatches += played.picture.rgb()[(size_t(y) * W + size_t(x)) * 3] != want;
            }
        }
        EXPECT_EQ(mismatches, 0) << "case " << n << " cell " << cellW << "x" << cellH
                                 << " bands of " << bandHeight;
    }
}

TEST(RenderedFill, SquaresCoverTheirPixelsByOrientation) {
    // A 10 x 10 square at (0, 0): rows and columns 0..9; at (0.5, 0.5): 1..10;
    // at (0, 0) under a half turn: 1..10 (strict at the top and left).
    const struct {
        const char* setup;
        int32_t first;
    } cases[] = {{"SetMatrix [1 0 0 1 0 0]\nRectPath 0 0 10 10\n", 0},
                 {"SetMatrix [1 0 0 1 0 0]\nSetScale 0.5\nRectPath 1 1 20 20\n", 1},
                 {"SetMatrix [-1 0 0 -1 120 90]\nRectPath 110 80 10 10\n", 1}};
    for (const auto& c : cases) {
        const Played played = play(header(9, true) + c.setup + "Fill 1\nClosePage\n");
        ASSERT_EQ(played.result.status, 0) << played.result.message;
        for (int32_t y = 0; y < 14; ++y) {
            for (int32_t x = 0; x < 14; ++x) {
                const bool inside =
                    x >= c.first && x < c.first + 10 && y >= c.first && y < c.first + 10;
                EXPECT_EQ(black(played.picture, x, y), inside) << c.setup << x << ',' << y;
            }
        }
    }
}

TEST(RenderedFill, HolesClipsAndExclusiveOrPaintEachPixelOnce) {
    const std::string square = "MoveTo 10 10\nLinesTo [60 10 60 60 10 60] 3\n";
    const std::string inner = "MoveTo 20 20\nLinesTo [50 20 50 50 20 50] 3\n";
    const std::string innerReversed = "MoveTo 20 20\nLinesTo [20 50 50 50 50 20] 3\n";
    auto at = [](const std::string& body, int32_t x, int32_t y) {
        const Played p = play(header(9, true) + "SetMatrix [1 0 0 1 0 0]\n" + body + "ClosePage\n");
        EXPECT_EQ(p.result.status, 0) << p.result.message;
        return black(p.picture, x, y);
    };
    EXPECT_FALSE(at(square + inner + "Fill 0\n", 30, 30)) << "even-odd: a hole";
    EXPECT_TRUE(at(square + inner + "Fill 1\n", 30, 30)) << "non-zero, same direction: filled";
    EXPECT_FALSE(at(square + innerReversed + "Fill 1\n", 30, 30)) << "opposite direction: a hole";
    const std::string clipped = "RectPath 0 0 30 30\nClip 0\n" + square + "Fill 1\n";
    EXPECT_TRUE(at(clipped, 20, 20));
    EXPECT_FALSE(at(clipped, 40, 40)) << "outside the clip";
    // XOR of white paint on the white page: each painted pixel turns black
    // once, and two overlapping fills cancel where they overlap.
    const std::string xored = "SetColor 0xFFFFFF 0\nSetLogicalFunc 0x5A\nRectPath 10 10 30 "
                              "30\nFill 1\nRectPath 20 20 30 30\nFill 1\n";
    EXPECT_TRUE(at(xored, 15, 15));
    EXPECT_FALSE(at(xored, 30, 30));
    EXPECT_TRUE(at(xored, 45, 45));
    const std::string star =
        "SetColor 0xFFFFFF 0\nSetLogicalFunc 0x5A\nMoveTo 5 5\nLinesTo [80 40 5 80 60 5 40 85] 4\n"
        "Fill 1\n";
    const Played once = play(header(9, true) + "SetMatrix [1 0 0 1 0 0]\n" + star + "ClosePage\n");
    const Played solid = play(header(9, true) + "SetMatrix [1 0 0 1 0 0]\n" +
                              star.substr(star.find("MoveTo")) + "ClosePage\n");
    EXPECT_EQ(once.picture.rgb(), solid.picture.rgb()) << "XOR paints every pixel exactly once";
}
