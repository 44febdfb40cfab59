// Page pictures are written in every format the player offers and shrunk
// for viewing (each pixel the rounded average of the block it stands for,
// the blocks at the right and bottom edges only as large as what the page
// holds there), and the public raster helper never reads outside a row,
// whatever its marks hold.
// Placing and decoding bands is checked against played pages (the
// next_band_picture, rendered_fill and placement oracle tests), and the helper
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

TEST(PagePicture, ShrinkAveragesEachBlockOfThePage) {
    // 5 x 3 grey pixels, one band: values 10 * (x + 5 y).
    std::vector<uint8_t> band(8 * 3, 0);
    for (uint32_t y = 0; y < 3; ++y) {
        for (uint32_t x = 0; x < 5; ++x) {
            band[y * 8 + x] = static_cast<uint8_t>(10 * (x + 5 * y));
        }
    }
    PagePicture page(5, 3, 3);
    page.placeBand({CB_RASTER_DIRECT, 0, band.data(), uint32_t(band.size()), nullptr});
    page.shrink(2);
    ASSERT_EQ(page.width(), 3u);
    ASSERT_EQ(page.height(), 2u);
    // Blocks: {0,10,50,60} {20,30,70,80} {40,90} / {100,110} {120,130} {140}.
    const uint8_t want[6] = {30, 50, 65, 105, 125, 140};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(page.rgb()[size_t(3 * i)], want[i]) << i;
        EXPECT_EQ(page.rgb()[size_t(3 * i + 2)], want[i]) << i;
    }
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
