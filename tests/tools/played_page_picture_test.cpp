// Pages played by the engine and assembled by the job player's page
// picture: the run marks of 32-bit rasters and the grey rasters decode to
// the painted page.
#include "page_picture.h"

#include "support/engine_fixture.h"

#include "displaylist/record_writers.h"
#include "engine/page_record.h"

#include <gtest/gtest.h>

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

// Plays the paints on a page of (width + 1) x 48 pixels in 16-row bands and
// compares the assembled picture with the painted rectangles.
void checkPicture(int16_t mode, int32_t width, bool grey) {
    EnginePtr engine = makeEngine(width, 47, 16, 0x8007);
    ASSERT_EQ(KRYNNewPage(mode, engine.get()), KRYN_OK);
    if (grey) {
        ASSERT_EQ(KRYNSelectSpace(1, engine.get()), KRYN_OK);
    }
    const std::vector<Paint> paints = {{0, 2, 3, 7, 3, 0x0000FF},  {0, 5, 20, 30, 9, 0x00FF00},
                                       {0, 6, 25, 2, 1, 0x00FF00}, {2, 0, 0, 60, 16, 0x123456},
                                       {2, 4, 10, 5, 5, 0xFFFFFF}, {2, 15, 59, 1, 1, 0x000000}};
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
    ASSERT_EQ(log.calls.size(), 2u);
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

TEST(PlayedPagePicture, ColourRunMarksDecodeToThePaintedPage) {
    checkPicture(9, 64, false); // 65 pixels a row
    checkPicture(5, 63, false); // 63 pixels in rows of 64 words
}

TEST(PlayedPagePicture, GreyRastersDecodeToThePaintedPage) {
    checkPicture(9, 64, true);
    checkPicture(5, 63, true);
}

} // namespace
} // namespace kryn::test
