// Page pictures are written in every format the player offers, and the
// public raster helper never reads outside a row, whatever its marks hold.
// Placing and decoding bands is checked against played pages (the
// next_band_picture, tall_bands and rendered_fill tests), and the helper
// against the engine's deliveries wherever a test reads a 32-bit raster
// (support/page_fixture).
#include "page_picture.h"

#include "kryn/kryn_raster.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <vector>

using namespace kryn::script;

TEST(PagePicture, WritesEveryFormatAndRefusesOthers) {
    PagePicture page(3, 2, 2);
    std::string error;
    const std::string dir = ::testing::TempDir();
    for (const char* name : {"/pic.png", "/pic.pgm", "/pic.ppm"}) {
        ASSERT_TRUE(writePicture(page, dir + name, error)) << error;
        std::ifstream in(dir + name, std::ios::binary);
        std::string head(4, '\0');
        in.read(head.data(), 4);
        EXPECT_TRUE(head == "\x89PNG" || head.starts_with("P5\n3") || head.starts_with("P6\n3"))
            << name;
        std::remove((dir + name).c_str());
    }
    EXPECT_FALSE(writePicture(page, dir + "/pic.bmp", error));
}

// Whatever words a row holds, the helper writes exactly min(count, row
// words) untagged pixels and reads nothing past the row (the sanitizer build
// watches the reads).
TEST(RasterHelper, ExpandRowStaysInsideAnyRow) {
    std::mt19937 rng(7);
    for (int i = 0; i < 2000; ++i) {
        const uint32_t rowWords = 1 + rng() % 12;
        std::vector<uint32_t> row(rowWords);
        for (uint32_t& w : row) {
            w = rng() % 4 == 0 ? rng() % 20 : rng();
        }
        const uint32_t count = rng() % 16;
        std::vector<uint32_t> pixels(count + 1, 0xDEADBEEF);
        const uint32_t written = krynExpandRow(row.data(), rowWords, pixels.data(), count);
        ASSERT_EQ(written, std::min(count, rowWords));
        for (uint32_t x = 0; x < written; ++x) {
            ASSERT_EQ(pixels[x] >> 24, 0u);
        }
        ASSERT_EQ(pixels[written], 0xDEADBEEF);
    }
}
