// The golden job next_band_pictures played through the job player: after
// KRYNNextBand with varying group sizes, in a band-group mode, on a whole
// page and on a reverse side, the page pictures show exactly the rectangles
// that page close delivered (the flushed bands went to the stream), each at
// its place on the page.
#include "job_player.h"
#include "page_picture.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace kryn::script;

namespace {

constexpr uint32_t W = 100;
constexpr uint32_t H = 160;

struct Rect {
    uint32_t x, y, w, h;
    uint32_t colour; // red in bits 0-7
};

// White paper with the rectangles on it, as RGB bytes.
std::vector<uint8_t> expectedPicture(const std::vector<Rect>& rects) {
    std::vector<uint8_t> rgb(size_t{W} * H * 3, 0xFF);
    for (const Rect& r : rects) {
        for (uint32_t y = r.y; y < r.y + r.h; ++y) {
            for (uint32_t x = r.x; x < r.x + r.w; ++x) {
                for (uint32_t c = 0; c < 3; ++c) {
                    rgb[(size_t{y} * W + x) * 3 + c] = uint8_t(r.colour >> (8 * c));
                }
            }
        }
    }
    return rgb;
}

std::string firstDifference(const std::vector<uint8_t>& got, const std::vector<uint8_t>& want) {
    for (size_t i = 0; i < want.size(); ++i) {
        if (got[i] != want[i]) {
            return "pixel " + std::to_string(i / 3 % W) + "," + std::to_string(i / 3 / W);
        }
    }
    return {};
}

} // namespace

TEST(NextBandPictures, DeliveredBandsLandAtTheirPlaceOnThePage) {
    std::vector<PagePicture> pages;
    PagePicture picture(W, H, 16);
    PlayerOptions options;
    options.onRaster = [&](const RasterDelivery& d) { picture.placeBand(d); };
    options.onPageClosed = [&] {
        pages.push_back(picture);
        picture = PagePicture(W, H, 16);
    };
    const std::string path = KRYN_SOURCE_DIR "/tests/golden/next_band_pictures.kjob";
    std::ifstream script(path);
    ASSERT_TRUE(script) << path;
    JobPlayer player(path, ".", options);
    ASSERT_EQ(player.run(script).status, 0);
    ASSERT_EQ(pages.size(), 3u);

    // Band groups: the last group (bands 6..9) only.
    EXPECT_EQ(firstDifference(pages[0].rgb(), expectedPicture({{5, 100, 30, 20, 0x00FFFF},
                                                               {40, 140, 50, 20, 0xFF0000}})),
              "");
    // Whole grey page: what was drawn after the last NextBand.
    EXPECT_EQ(firstDifference(pages[1].rgb(), expectedPicture({{10, 115, 40, 10, 0x808080},
                                                               {30, 150, 60, 10, 0x808080}})),
              "");
    // Reverse side.
    EXPECT_EQ(firstDifference(pages[2].rgb(), expectedPicture({{50, 96, 40, 16, 0x00FF00},
                                                               {0, 144, 20, 16, 0xFF00FF}})),
              "");
}
