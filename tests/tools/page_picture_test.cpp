// Page pictures are written in every format the player offers. Placing and
// decoding bands is checked against played pages (played_page_picture,
// next_band_picture, tall_bands and rendered_fill tests).
#include "page_picture.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

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
