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

// Writes a random polygon of 3 to 9 vertices, some off the page, into the
// script and answers it for the reference.
OraclePolygon randomPolygon(std::mt19937& rng, std::ostringstream& script) {
    OraclePolygon poly;
    const int vertices = 3 + int(rng() % 7);
    for (int v = 0; v < vertices; ++v) {
        const int32_t x = int32_t(rng() % (W + 40)) - 20;
        const int32_t y = int32_t(rng() % (H + 40)) - 20;
        poly.push_back({int64_t{x} * 16, int64_t{y} * 16});
        script << (v == 0 ? "MoveTo " : "LinesTo [") << x << ' ' << y << (v == 0 ? "\n" : "] 1\n");
    }
    return poly;
}

} // namespace

// Half of the cases paint through a random 1-bit cell, transparent or with
// opaque zeros in grey, on bands of random height (cells start anywhere in
// a band): each pixel is then the cell bit at its page position.
TEST(RenderedFill, RandomPolygonsMatchTheReferenceOnGreyAndColourPagesAndUnderScreens) {
    std::mt19937 rng(16);
    const OracleBounds bounds{0, W - 1, 0, H - 1};
    for (int n = 0; n < 320; ++n) {
        const bool grey = n % 2 == 1;
        const int mode = n % 4 < 2 ? 5 : 9;
        const bool screened = n % 8 >= 4;
        const bool opaque = n % 16 < 8;
        const int32_t bandHeight = screened ? 5 + int32_t(rng() % 36) : 32;
        const int32_t cellW = 1 + int32_t(rng() % 24);
        const int32_t cellH = 1 + int32_t(rng() % 12);
        std::vector<uint8_t> cell(size_t((cellW + 7) / 8 * cellH));
        std::ostringstream script;
        script << "Init " << W - 1 << ' ' << H - 1 << ' ' << bandHeight << " 300 0x8009\nNewPage "
               << mode << "\nSelectSpace " << (grey ? 1 : 0)
               << "\nSetLogicalFunc 0xF0\nSetMatrix [1 0 0 1 0 0]\nSetColor 0x808080 1\n";
        if (screened) {
            script << "SetScreen {" << cellW << ' ' << cellH << " 1 1 hex:";
            for (uint8_t& b : cell) {
                b = uint8_t(rng());
                char hex[3];
                std::snprintf(hex, sizeof hex, "%02X", b);
                script << hex;
            }
            script << "} " << (opaque ? 1 : 0) << '\n';
        }
        std::vector<OraclePolygon> polys;
        for (int sp = 0; sp < 1 + n % 3; ++sp) {
            polys.push_back(randomPolygon(rng, script));
        }
        const int rule = int(rng() % 2);
        script << "Fill " << rule << "\nClosePage\n";
        const Played played = play(script.str(), uint32_t(bandHeight));
        ASSERT_EQ(played.result.status, 0) << played.result.message;
        const std::vector<uint8_t> covered = oracleFill(polys, rule, 0, bounds);
        // Host renderers of modes 2 to 7 leave out the last page column.
        const int32_t columns = mode == 9 ? W : W - 1;
        int64_t mismatches = 0;
        for (int32_t y = 0; y < H; ++y) {
            for (int32_t x = 0; x < columns; ++x) {
                const int32_t c = x % cellW;
                const bool bit =
                    !screened || (cell[size_t((y % cellH) * ((cellW + 7) / 8) + c / 8)] &
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
