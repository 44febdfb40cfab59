// Pages played by the engine and assembled by the job player's page
// picture: the run marks of 32-bit rasters (expanded by the public raster
// helper) and the grey rasters decode to the painted page.
#include "page_picture.h"

#include "support/engine_fixture.h"

#include "displaylist/record_writers.h"
#include "engine/page_record.h"
#include "kryn/kryn_raster.h"

#include <gtest/gtest.h>

#include <random>

namespace kryn::test {
namespace {

struct Paint {
    int32_t band;
    uint8_t row;
    uint16_t x;
    uint32_t w;
    uint32_t h;
    uint32_t colour;
};

// Rectangles of 1 to 6 columns in a few colours, white among them, so that
// rows hold runs of every length next to each other and to white.
std::vector<Paint> randomPaints(uint32_t seed, int32_t width) {
    std::mt19937 rng(seed);
    const uint32_t colours[] = {0x0000FF, 0x00FF00, 0xFFFFFF, 0x000000, 0x808080};
    std::vector<Paint> paints;
    for (int i = 0; i < 40; ++i) {
        Paint p{};
        p.band = int32_t(rng() % 3);
        p.row = uint8_t(rng() % 16);
        p.w = 1 + rng() % 6;
        p.x = uint16_t(rng() % uint32_t(width - int32_t(p.w)));
        p.h = 1 + rng() % (16u - p.row);
        p.colour = colours[rng() % 5];
        paints.push_back(p);
    }
    return paints;
}

// Plays the paints on a page of (width + 1) x 48 pixels in 16-row bands and
// compares the assembled picture with the painted rectangles.
void checkPicture(int16_t mode, int32_t width, bool grey, const std::vector<Paint>& paints) {
    EnginePtr engine = makeEngine(width, 47, 16, 0x8007);
    ASSERT_EQ(KRYNNewPage(mode, engine.get()), KRYN_OK);
    if (grey) {
        ASSERT_EQ(KRYNSelectSpace(1, engine.get()), KRYN_OK);
    }
    PageRecord* page = pageOf(engine.get());
    std::vector<uint32_t> model(size_t(width + 1) * 48, 0xFFFFFF);
    for (const Paint& p : paints) {
        DisplayList* list = nullptr;
        ASSERT_EQ(getBandList(page, p.band, &list), KRYN_OK);
        ASSERT_EQ(writeRop(list, 0xF0, engine->resources), KRYN_OK);
        ASSERT_EQ(writePaintColour(list, p.colour, COLOUR_FORE, engine->resources), KRYN_OK);
        ASSERT_EQ(writeRect(list, {p.row, p.x}, p.w, p.h, engine->resources), KRYN_OK);
        const uint32_t shown = grey ? (p.colour & 0xFF) * 0x010101u : p.colour;
        for (uint32_t y = p.row; y < p.row + p.h; ++y) {
            for (uint32_t x = p.x; x < p.x + p.w; ++x) {
                model[(size_t(p.band) * 16 + y) * size_t(width + 1) + x] = shown;
            }
        }
    }
    CallbackLog log;
    ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), engine.get()), KRYN_OK);
    ASSERT_LE(log.calls.size(), 3u);
    script::PagePicture picture(uint32_t(width + 1), 48, 16);
    for (const Delivery& d : log.calls) {
        picture.placeBand({d.code, d.band, d.data.data(), d.bytes, &d.rect});
    }
    for (size_t i = 0; i < model.size(); ++i) {
        const uint8_t* rgb = picture.rgb().data() + 3 * i;
        const uint32_t got = uint32_t(rgb[0]) | uint32_t(rgb[1]) << 8 | uint32_t(rgb[2]) << 16;
        ASSERT_EQ(got, model[i]) << "mode " << mode << " pixel " << i % size_t(width + 1) << ", "
                                 << i / size_t(width + 1);
    }
}

TEST(PlayedPagePicture, RandomRunsDecodeToThePaintedPage) {
    // Modes 9 (65 pixels a row of 65 words) and 5 (one pixel fewer than
    // the page), colour and grey, widths odd and even.
    for (uint32_t seed = 1; seed <= 24; ++seed) {
        SCOPED_TRACE(seed);
        checkPicture(seed % 2 != 0 ? 9 : 5, 40 + int32_t(seed), seed % 4 >= 2,
                     randomPaints(seed, 40));
    }
}

// Whatever words a row holds, the helper writes exactly min(count, row
// words) untagged pixels and reads nothing past the row (the sanitizer build
// watches the reads).
TEST(PlayedPagePicture, RowHelperStaysInsideAnyRow) {
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

} // namespace
} // namespace kryn::test
