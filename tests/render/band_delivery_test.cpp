// Delivery codes that depend on a band's content: typed rasters by content
// and device level (images included), and monochrome bands, which skip
// images. Codes, rectangles and pixels of ordinary pages are pinned by the
// golden jobs host_delivery, host_bands and page_modes.
#include "support/page_fixture.h"

#include "render/band_delivery.h"

namespace kryn::test {
namespace {

class BandDelivery : public PageTest {};

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
         {Case{8, 0x8008, false, CB_RASTER_KIND2}, Case{9, 0x8008, true, CB_RASTER_STANDARD},
          Case{9, 0x8007, false, CB_RASTER_STANDARD}}) {
        log_ = CallbackLog();
        open(c.mode, c.level);
        notMonochrome(2);
        rop(2, 0xF0);
        paint(2, 0);
        rect(2, 0, 0, 3, 3);
        if (c.withImage) {
            ASSERT_EQ(writeImage(list(2), 0x40, 0, {8, 8}, 2, 2, image, res()), KRYN_OK);
        }
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 1u);
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, c.code) << "mode " << c.mode << " level " << c.level;
        EXPECT_EQ(d.rect.right, 65u); // 65 pixels: 66 words a row
        EXPECT_EQ(d.bytes, 66u * 4u * 16u);
    }
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE, 0x8008), CB_RASTER_KIND1);
    EXPECT_EQ(typedRasterCode(CONTENT_BITMAP, 0x8009), CB_RASTER_KIND4);
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE | CONTENT_BITMAP, 0x8009), CB_RASTER_STANDARD);
    EXPECT_EQ(typedRasterCode(CONTENT_IMAGE, 0x8007), CB_RASTER_STANDARD);
}

TEST_F(BandDelivery, MonochromeBandsSkipImages) {
    static const uint8_t samples[4] = {};
    open(5, 0x8008);
    ASSERT_EQ(writeImage(list(0), 0x40, 0, {0, 0}, 1, 1, {samples, 1, 1, 4}, res()), KRYN_OK);
    ASSERT_EQ(close(), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty()); // the image was the only drawing record
}

} // namespace
} // namespace kryn::test
