// Page pictures from delivered band rasters: band placement, grey and
// 32-bit layouts, and the row runs that 32-bit rasters arrive marked with.
#include "page_picture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

using namespace kryn::script;

namespace {

void putWord(std::vector<uint8_t>& raster, size_t index, uint32_t word) {
    for (int i = 0; i < 4; ++i) {
        raster[index * 4 + static_cast<size_t>(i)] = static_cast<uint8_t>(word >> (8 * i));
    }
}

const uint8_t* pixel(const PagePicture& p, uint32_t x, uint32_t y) {
    return p.rgb().data() + (size_t{y} * p.width() + x) * 3;
}

} // namespace

TEST(PagePicture, GreyBandsLandAtTheirRowsAndRowsBelowThePageAreCut) {
    PagePicture page(10, 5, 4); // stride 16 bytes, bands of 4 rows: band 1 has one row on the page
    std::vector<uint8_t> raster(16 * 4, 0xFF);
    raster[16 * 0 + 3] = 0x40; // band 1, row 0 -> page row 4
    raster[16 * 1 + 3] = 0x00; // row 5: below the page
    RasterRect rect{0, 0, 15, 3};
    page.placeBand({CB_RASTER_STANDARD, 1, raster.data(), 64, &rect});
    EXPECT_FALSE(page.isColour());
    EXPECT_EQ(pixel(page, 3, 4)[1], 0x40);
    EXPECT_EQ(pixel(page, 3, 0)[1], 0xFF) << "band 0 was never delivered: paper white";
}

TEST(PagePicture, ColourRowsAreDecodedFromTheirRuns) {
    // Width 20: stride 80 bytes. Row 0 holds one red pixel at column 10 on
    // white: the head at column 0 runs 10 columns (long run, length in
    // column 1), the red pixel is a run of one, and the white columns 11..19
    // form a long run (length in column 12). Row 1 is marked blank.
    PagePicture page(20, 2, 2);
    std::vector<uint8_t> raster(80 * 2, 0);
    const uint32_t white = 0x01FFFFFF;
    for (size_t i = 0; i < 40; ++i) {
        putWord(raster, i, white);
    }
    putWord(raster, 0, white | 0x10000000);
    putWord(raster, 1, 10);
    putWord(raster, 10, 0x000000FF | (uint32_t{1 | 2} << 24));
    putWord(raster, 11, white | 0x10000000);
    putWord(raster, 12, 9);
    putWord(raster, 20, white | 0x20000000);
    putWord(raster, 21, 0x00123456); // behind a blank-row mark: ignored
    RasterRect box{10, 0, 10, 0};
    page.placeBand({CB_RASTER_BOX, 0, raster.data(), 160, &box});
    ASSERT_TRUE(page.isColour());
    for (uint32_t x = 0; x < 20; ++x) {
        const uint8_t* p = pixel(page, x, 0);
        if (x == 10) {
            EXPECT_TRUE(p[0] == 0xFF && p[1] == 0 && p[2] == 0);
        } else {
            EXPECT_TRUE(p[0] == 0xFF && p[1] == 0xFF && p[2] == 0xFF) << x;
        }
        EXPECT_EQ(pixel(page, x, 1)[2], 0xFF) << x;
    }
}

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
