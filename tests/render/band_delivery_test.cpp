// Delivery of played bands: codes and rectangles by page mode, device level
// and content, blank bands, monochrome bands, clearing between bands,
// reverse numbering, the restart answer and the tag values.
#include "render_fixture.h"

#include "render/band_delivery.h"

#include <cstring>

namespace kryn::test {
namespace {

constexpr uint32_t RED = 0x0000FF;
constexpr uint32_t GREEN = 0x00FF00;
constexpr uint32_t BLUE = 0xFF0000;

class BandDelivery : public RenderTest {
  protected:
    void blackRect(int32_t band, uint8_t row, uint16_t x, uint32_t w, uint32_t h) {
        rop(band, 0xF0);
        paint(band, 0);
        rect(band, row, x, w, h);
    }
    uint32_t rawWord(size_t call, int32_t x, int32_t y) const {
        uint32_t w = 0;
        std::memcpy(&w, log_.calls.at(call).data.data() + 4 * (size_t(y) * (strideBytes() / 4) + x),
                    4);
        return w;
    }
};

TEST_F(BandDelivery, GreyBandsGoOutWholeAsStandardRasters) {
    for (int16_t mode : {5, 9}) {
        log_ = CallbackLog();
        open(mode, true);
        blackRect(1, 2, 3, 4, 5);
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 1u) << "mode " << mode;
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, CB_RASTER_STANDARD);
        EXPECT_EQ(d.band, 1u);
        EXPECT_EQ(d.bytes, uint32_t(strideBytes() * BAND_ROWS));
        EXPECT_EQ(d.rect.right, uint32_t(strideBytes() - 1)); // 63, or 71 for 65 pixels
        EXPECT_EQ(d.rect.bottom, 15u);
        EXPECT_EQ(pixels(0).at(3, 2), 0u);
        EXPECT_EQ(pixels(0).at(6, 6), 0u);
        EXPECT_EQ(pixels(0).at(7, 6), 0xFFu);
    }
}

TEST_F(BandDelivery, ColourPagesInBoxModesSendThePaintedBox) {
    for (int16_t mode : {2, 3, 4, 5, 6, 7}) {
        log_ = CallbackLog();
        open(mode, false, 0x8007);
        rop(0, 0xF0);
        paint(0, RED);
        rect(0, 4, 10, 6, 3);
        rect(0, 9, 30, 2, 1);
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 1u) << "mode " << mode;
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, CB_RASTER_BOX);
        EXPECT_EQ(d.bytes, 64u * 4u * 16u);
        EXPECT_EQ(d.rect.left, 10u);
        EXPECT_EQ(d.rect.top, 4u);
        EXPECT_EQ(d.rect.right, 31u);
        EXPECT_EQ(d.rect.bottom, 9u);
    }
}

TEST_F(BandDelivery, TypedModesCodeBandsByContentOnCapableDevices) {
    static const uint8_t samples[16] = {};
    const ImageSource image{samples, 2, 2, 8};
    struct Case {
        int16_t mode;
        uint16_t level;
        bool withImage;
        uint32_t code;
    };
    for (const Case c :
         {Case{8, 0x8008, false, CB_RASTER_KIND2}, Case{9, 0x8008, false, CB_RASTER_KIND2},
          Case{9, 0x8008, true, CB_RASTER_STANDARD}, Case{9, 0x8007, false, CB_RASTER_STANDARD}}) {
        log_ = CallbackLog();
        open(c.mode, false, c.level);
        notMonochrome(2);
        blackRect(2, 0, 0, 3, 3);
        if (c.withImage) {
            ASSERT_EQ(writeImage(list(2), 0x40, 0, {8, 8}, 2, 2, image, res()), KRYN_OK);
        }
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 1u);
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, c.code) << "mode " << c.mode << " level " << c.level;
        EXPECT_EQ(d.rect.left, 0u);
        EXPECT_EQ(d.rect.right, 65u); // 65 pixels: 66 words a row
        EXPECT_EQ(d.rect.bottom, 15u);
        EXPECT_EQ(d.bytes, 66u * 4u * 16u);
    }
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE, 0x8008), CB_RASTER_KIND1);
    EXPECT_EQ(typedRasterCode(CONTENT_BITMAP, 0x8009), CB_RASTER_KIND4);
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE | CONTENT_BITMAP, 0x8009), CB_RASTER_STANDARD);
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE, 0x8007), CB_RASTER_STANDARD);
}

TEST_F(BandDelivery, BlackAndWhiteBandsOfColourPagesGoOutOneBytePerPixel) {
    open(5, false, 0x8008);
    blackRect(0, 1, 2, 3, 2);
    notMonochrome(1);
    rop(1, 0xF0);
    paint(1, GREEN);
    rect(1, 5, 6, 2, 1);
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 2u);
    const Delivery& mono = log_.calls[0];
    EXPECT_EQ(mono.code, CB_RASTER_DIRECT);
    EXPECT_EQ(mono.bytes, 64u * 16u);
    EXPECT_EQ(mono.rect.right, 15u); // 64 bytes a row: 16 words
    EXPECT_EQ(mono.rect.bottom, 15u);
    const BandPixels grey = pixels(0);
    EXPECT_EQ(grey.at(2, 1), 0u);
    EXPECT_EQ(grey.at(4, 2), 0u);
    EXPECT_EQ(grey.at(5, 2), 0xFFu);
    // The colour band after it starts from a fully cleared raster.
    const Delivery& colour = log_.calls[1];
    EXPECT_EQ(colour.code, CB_RASTER_BOX);
    const BandPixels c = colourPixels(colour, 64, BAND_ROWS);
    for (int32_t y = 0; y < BAND_ROWS; ++y) {
        for (int32_t x = 0; x < 64; ++x) {
            const bool inRect = y == 5 && (x == 6 || x == 7);
            ASSERT_EQ(c.at(x, y), inRect ? GREEN : 0xFFFFFFu) << x << ", " << y;
        }
    }
}

TEST_F(BandDelivery, MonochromeBandsSkipImages) {
    static const uint8_t samples[4] = {};
    open(5, false, 0x8008);
    ASSERT_EQ(writeImage(list(0), 0x40, 0, {0, 0}, 1, 1, {samples, 1, 1, 4}, res()), KRYN_OK);
    ASSERT_EQ(close(), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty()); // the image was the only drawing record
}

TEST_F(BandDelivery, BlankBandsAreNotDelivered) {
    for (bool grey : {true, false}) {
        log_ = CallbackLog();
        open(5, grey, 0x8007);
        rop(0, 0xF0); // band 0: state records only
        paint(0, 0);
        rop(1, 0xF0); // band 1: white copied onto white
        paint(1, 0xFFFFFF);
        rect(1, 0, 0, 10, 10);
        rop(2, 0x5A); // band 2: the same XOR twice returns to white
        paint(2, RED);
        rect(2, 3, 3, 4, 4);
        rect(2, 3, 3, 4, 4);
        ASSERT_EQ(close(), KRYN_OK);
        EXPECT_TRUE(log_.calls.empty()) << (grey ? "grey" : "colour");
    }
}

TEST_F(BandDelivery, WhiteCopiesSkipWhatCannotShow) {
    open(5, false, 0x8007);
    rop(0, 0xF0);
    paint(0, 0xFFFFFF);
    const std::vector<std::vector<uint16_t>> runs = {{10, 0, 40, 10}, {11, 0, 40, 10}};
    ASSERT_EQ(writeRuns(list(0), runBuffer(0, runs, {1, 1, 2, 2}), 2, res()), KRYN_OK);
    paint(0, 0);
    rect(0, 0, 0, 4, 2);
    paint(0, 0xFFFFFF);
    rect(0, 8, 50, 4, 4); // apart from the black block: skipped
    rect(0, 1, 2, 6, 1);  // over it: painted
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 1u);
    const Delivery& d = log_.calls[0];
    EXPECT_EQ(d.rect.left, 0u);
    EXPECT_EQ(d.rect.top, 0u);
    EXPECT_EQ(d.rect.right, 7u);
    EXPECT_EQ(d.rect.bottom, 1u);
    EXPECT_EQ(pixels(0).at(1, 1), 0u);
    EXPECT_EQ(pixels(0).at(2, 1), 0xFFFFFFu);
}

TEST_F(BandDelivery, EachBandClearsWhatTheBandBeforeItPainted) {
    for (bool grey : {true, false}) {
        log_ = CallbackLog();
        open(5, grey, 0x8007);
        rop(0, 0xF0);
        paint(0, RED);
        rect(0, 3, 10, 31, 10);
        paint(0, BLUE);
        rect(0, 15, 0, 64, 1);
        rop(1, 0xF0);
        paint(1, GREEN);
        rect(1, 5, 20, 3, 1);
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 2u);
        const BandPixels second = pixels(1);
        const uint32_t white = grey ? 0xFF : 0xFFFFFF;
        const uint32_t green = grey ? 0x00 : GREEN;
        for (int32_t y = 0; y < BAND_ROWS; ++y) {
            for (int32_t x = 0; x < 64; ++x) {
                const bool inRect = y == 5 && x >= 20 && x <= 22;
                ASSERT_EQ(second.at(x, y), inRect ? green : white) << x << ", " << y;
            }
        }
    }
}

TEST_F(BandDelivery, ReverseSidesNumberBandsFromTheFarEnd) {
    open(5, true);
    blackRect(0, 0, 0, 1, 1);
    blackRect(2, 0, 5, 1, 1);
    ASSERT_EQ(KRYNSetReverseSide(e()), KRYN_OK);
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 2u);
    EXPECT_EQ(log_.calls[0].band, 1u); // band 2 of 4, played first
    EXPECT_EQ(pixels(0).at(5, 0), 0u);
    EXPECT_EQ(log_.calls[1].band, 3u);
    EXPECT_EQ(pixels(1).at(0, 0), 0u);
}

TEST_F(BandDelivery, ARestartAnswerReplaysThePageOnce) {
    open(5, true);
    blackRect(0, 0, 0, 2, 2);
    blackRect(1, 4, 4, 2, 2);
    log_.restartAt = {0};
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 3u);
    EXPECT_EQ(log_.calls[0].band, 0u);
    EXPECT_EQ(log_.calls[1].band, 0u);
    EXPECT_EQ(log_.calls[2].band, 1u);
    EXPECT_EQ(log_.calls[0].data, log_.calls[1].data);
    EXPECT_EQ(pixels(2).at(5, 5), 0u);

    // The answer to a box raster is not examined.
    log_ = CallbackLog();
    open(5, false, 0x8007);
    blackRect(0, 0, 0, 2, 2);
    blackRect(1, 4, 4, 2, 2);
    log_.restartAt = {0};
    ASSERT_EQ(close(), KRYN_OK);
    EXPECT_EQ(log_.calls.size(), 2u);

    // A typed colour raster replays with its marks intact.
    log_ = CallbackLog();
    open(9, false, 0x8007);
    blackRect(0, 0, 0, 2, 2);
    log_.restartAt = {0};
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 2u);
    EXPECT_EQ(log_.calls[0].data, log_.calls[1].data);
}

TEST_F(BandDelivery, ColourAttributesTagPaintAndPaperOfALiveRenderer) {
    open(5, false, 0x8007);
    ASSERT_EQ(KRYNColorAttribute(0x40, 0x80, 0xC0, e()), KRYN_OK);
    rop(0, 0xF0);
    paint(0, RED);
    rect(0, 2, 3, 7, 1);
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 1u);
    EXPECT_EQ(rawWord(0, 3, 2), 0x900000FFu); // run head: tag 0x80 | long run
    EXPECT_EQ(rawWord(0, 4, 2), 7u);          // its length
    EXPECT_EQ(rawWord(0, 5, 2), 0x800000FFu);
    EXPECT_EQ(rawWord(0, 0, 0), 0xA0FFFFFFu); // paper of a row outside the box
    EXPECT_EQ(rawWord(0, 1, 0), 0x80FFFFFFu);
}

} // namespace
} // namespace kryn::test
