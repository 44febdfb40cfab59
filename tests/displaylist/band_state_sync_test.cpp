// Per-band state synchronisation: what reaches a band, in which order, only
// once, and when the band stops counting as black-and-white.
#include "support/page_fixture.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/record_walk.h"

namespace kryn::test {
namespace {

using Ops = std::vector<uint8_t>;

class BandStateSyncTest : public PageTest {
  protected:
    void SetUp() override { open(5); }
    BandEntry* band() { return &page_->bands[0]; }
    PaintDescriptor& paint() { return page_->paint; }
    ResultCode sync() { return syncBandForSpans(page_, band(), list_); }
    // The record with the given opcode (the first), or an empty vector.
    std::vector<uint8_t> record(uint8_t op) const {
        for (const auto& r : records()) {
            if (r[0] == op) {
                return r;
            }
        }
        return {};
    }
};

TEST_F(BandStateSyncTest, PaintingTwiceWithTheSameStateWritesItOnce) {
    paint().logicalFunction = 0x66;
    paint().screenId = 5;
    paint().screenCellHeight = 5;
    paint().paintColour = 0x123456;
    band()->bandTop = 16;
    ASSERT_EQ(sync(), KRYN_OK);
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops(), (Ops{DL_OP_SET_ROP, DL_OP_SET_SCREEN, DL_OP_PAINT_COLOUR}));
    EXPECT_EQ(record(DL_OP_SET_SCREEN), (Ops{DL_OP_SET_SCREEN, 0, 1, 0, 5, 0})); // 16 mod 5
    paint().paintBackColour = 0x000000;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops().back(), DL_OP_PAINT_BACK_COLOUR);
    EXPECT_EQ(band()->lastPaintBackColour, 0u);
}

TEST_F(BandStateSyncTest, ColourMirrorsCompareOnlyTheColourBytes) {
    paint().paintColour = 0x77000000; // alpha byte only: no change outside blending
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_TRUE(ops().empty());
}

TEST_F(BandStateSyncTest, BlendingComesFirstAndBringsItsKeysAndWholeWordColours) {
    res_->alphaMode = 1;
    paint().blendOn = 1;
    paint().logicalFunction = 0x66;
    paint().paintColour = 0x80000000;
    paint().blendSelect = 3;
    paint().blendSelectA = 4;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops(), (Ops{DL_OP_BLEND, DL_OP_SET_ROP, DL_OP_PAINT_COLOUR_A, DL_OP_BLEND_SELECT,
                          DL_OP_BLEND_DATA_A}));
    EXPECT_EQ(band()->lastBlendPaintColour, 0x80000000u);
    EXPECT_EQ(band()->lastPaintColour, 0x80000000u); // the record set the plain slot too
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops().size(), 5u);
    paint().blendDataA[1] = 7;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops().back(), DL_OP_BLEND_DATA_A);
    EXPECT_EQ(ops().size(), 6u);
}

TEST_F(BandStateSyncTest, TransparentFillsSendOnlyTheForegroundColour) {
    paint().fillOpaque = 0;
    paint().paintColour = 0x0000FF;
    paint().paintBackColour = 0x00FF00;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops(), (Ops{DL_OP_SET_OPAQUE, DL_OP_PAINT_COLOUR}));
    EXPECT_EQ(record(DL_OP_SET_OPAQUE), (Ops{DL_OP_SET_OPAQUE, 255, 0, 0}));
}

TEST_F(BandStateSyncTest, ClassedScreensForceOpaqueFillsSkipColoursAndEndMonochrome) {
    band()->lastFillOpaque = 0;
    paint().fillOpaque = 0;
    paint().screenId = 0x4005;
    paint().screenCellHeight = 8;
    paint().paintColour = 0x0000FF;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(ops(), (Ops{DL_OP_SET_SCREEN, DL_OP_SET_OPAQUE}));
    EXPECT_EQ(record(DL_OP_SET_OPAQUE), (Ops{DL_OP_SET_OPAQUE, 255, 0xFF, 0xFF}));
    EXPECT_EQ(band()->lastFillOpaque, 1);
    EXPECT_EQ(band()->bandMonochrome, 0);
}

TEST_F(BandStateSyncTest, OnlyBlackAndWhiteKeepTheBandMonochrome) {
    paint().paintColour = 0xFFFFFF;
    paint().paintBackColour = 0;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(band()->bandMonochrome, 1);
    paint().paintBackColour = 0x808080;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(band()->bandMonochrome, 0);
    paint().paintBackColour = 0;
    ASSERT_EQ(sync(), KRYN_OK);
    EXPECT_EQ(band()->bandMonochrome, 0); // never set again within the band
}

TEST_F(BandStateSyncTest, OlderDevicesGetTheScreenPhaseInEightBits) {
    for (uint16_t level : {uint16_t{0x8003}, uint16_t{0x8004}}) {
        open(5, level);
        paint().screenId = 7;
        paint().screenCellHeight = 700;
        band()->bandTop = 1000; // phase 300
        ASSERT_EQ(sync(), KRYN_OK);
        const uint16_t phase = level < 0x8004 ? 300 & 0xFF : 300;
        EXPECT_EQ(record(DL_OP_SET_SCREEN), (Ops{DL_OP_SET_SCREEN, 0, static_cast<uint8_t>(phase),
                                                 static_cast<uint8_t>(phase >> 8), 7, 0}))
            << std::hex << level;
    }
}

// Images, synchronised twice with the same state: masks send their phase
// and changed image colours, 1-bit images both colours every time, other
// images the pattern and key-one data once. Any of them ends monochrome.
TEST_F(BandStateSyncTest, ImagesSendTheirPhaseAndColours) {
    const struct {
        ImageRecordKind kind;
        bool oneBit;
        ImagePhase phase;
        Ops ops;
    } cases[] = {
        {ImageRecordKind::MASK, false, {3, 0, 0}, {DL_OP_IMAGE_MODE, DL_OP_IMAGE_COLOUR}},
        {ImageRecordKind::BITMAP,
         true,
         {0, 2, 5},
         {DL_OP_IMAGE_ORIGIN, DL_OP_SET_OPAQUE, DL_OP_IMAGE_COLOUR, DL_OP_IMAGE_BACK_COLOUR,
          DL_OP_IMAGE_COLOUR, DL_OP_IMAGE_BACK_COLOUR}},
        {ImageRecordKind::OTHER, false, {0, 0, 0}, {DL_OP_SELECT_PATTERN, DL_OP_BLEND_DATA_B}},
    };
    for (const auto& c : cases) {
        open(5);
        if (c.kind == ImageRecordKind::MASK) {
            paint().imageColour = 0x0000FF; // a coloured mask
        } else if (c.oneBit) {
            paint().imageOpaque = 0;
        } else {
            paint().paintKind = 8;
            paint().paintIndex = 4;
            paint().blendOn = 1;
            paint().blendSelectB = 2;
            band()->lastBlendOn = 1;
        }
        for (int i = 0; i < 2; ++i) {
            ASSERT_EQ(syncBandForImage(page_, band(), list_, c.kind, c.oneBit, c.phase), KRYN_OK);
        }
        EXPECT_EQ(ops(), c.ops) << int(c.kind);
        if (c.oneBit) {
            EXPECT_EQ(record(DL_OP_SET_OPAQUE), (Ops{DL_OP_SET_OPAQUE, 0, 0, 0}));
        }
        EXPECT_EQ(band()->bandMonochrome, 0);
    }
}

} // namespace
} // namespace kryn::test
