// A picture made smaller for viewing: each pixel the rounded average of
// the block it stands for, the blocks at the right and bottom edges only
// as large as what the page holds there.
#include "page_picture.h"

#include "kryn/kryn.h"

#include <gtest/gtest.h>

#include <vector>

using namespace kryn::script;

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
