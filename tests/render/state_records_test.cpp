// State records and what they leave in the paint state, per band variant;
// records the renderers cannot paint yet, and malformed records, are passed
// over without harm.
#include "render_fixture.h"

#include "engine/memory.h"
#include "render/band_renderer.h"
#include "render/paint_state.h"
#include "render/renderer_lists.h"
#include "render/state_records.h"

#include <cstring>

namespace kryn::test {
namespace {

class StateRecords : public ::testing::Test {
  protected:
    void SetUp() override {
        const uint8_t attrs[3] = {3, 1, 2};
        renderer_ = createBandRenderer({64, 16, attrs, 0});
        ASSERT_NE(renderer_, nullptr);
        auto* tile = static_cast<RendererTile*>(allocBytes(sizeof(RendererTile) + 8, true));
        tile->screenId = 0x4007;
        tile->kind = 1;
        tile->width = 64;
        tile->height = 2;
        tile->base = reinterpret_cast<const uint8_t*>(tile + 1);
        renderer_->tileList = tile;
    }
    void TearDown() override { destroyBandRenderer(renderer_); }
    PaintState& fresh(bool grey) {
        initPaintState(state_, *renderer_, grey);
        return state_;
    }
    size_t apply(std::vector<uint8_t> record, BandVariant variant) {
        return applyStateRecord(state_, *renderer_, record.data(), variant);
    }
    BandRenderer* renderer_ = nullptr;
    PaintState state_{};
};

TEST_F(StateRecords, BandStartDefaults) {
    const PaintState& s = fresh(false);
    EXPECT_EQ(s.colour[SLOT_IMAGE_BACK], 0xFFFFFFu);
    EXPECT_EQ(s.colour[SLOT_PAINT], 0u);
    EXPECT_EQ(s.ropCode, 0xA8);
    EXPECT_EQ(s.ropMode, ROP_MODE_GENERIC);
    EXPECT_EQ(s.fillOpaque, 1);
    EXPECT_EQ(s.scaleX, 0x10000u);
    EXPECT_EQ(s.tagGraphicsWord, 0x01000000u);
    EXPECT_EQ(s.box, &renderer_->box);
    EXPECT_EQ(fresh(true).colour[SLOT_PAINT_BACK], 0xFFu);
}

TEST_F(StateRecords, ColoursByRasterLayout) {
    fresh(false);
    EXPECT_EQ(apply({DL_OP_PAINT_COLOUR, 0x11, 0x22, 0x33}, BAND_COLOUR), 4u);
    EXPECT_EQ(state_.colour[SLOT_PAINT], 0x332211u);
    EXPECT_EQ(apply({DL_OP_IMAGE_BACK_COLOUR_A, 1, 2, 3, 0x80}, BAND_COLOUR), 5u);
    EXPECT_EQ(state_.colourAlpha[SLOT_IMAGE_BACK], 0x80030201u);
    EXPECT_EQ(state_.colour[SLOT_IMAGE_BACK], 0x030201u);
    fresh(true);
    apply({DL_OP_PAINT_BACK_COLOUR, 0x44, 0x55, 0x66}, BAND_GREY);
    EXPECT_EQ(state_.colour[SLOT_PAINT_BACK], 0x44u);
    apply({DL_OP_PAINT_COLOUR_A, 0x12, 0, 0, 0x34}, BAND_GREY);
    EXPECT_EQ(state_.colour[SLOT_PAINT], 0x12u);
    EXPECT_EQ(state_.colourAlpha[SLOT_PAINT], 0x34u);
}

TEST_F(StateRecords, ScreensAndOpaqueFlagsChooseTheMember) {
    fresh(false);
    EXPECT_EQ(apply({DL_OP_SET_SCREEN, 0, 3, 0, 0x07, 0x40}, BAND_COLOUR), 6u);
    EXPECT_EQ(state_.tileKind, 1);
    EXPECT_EQ(state_.tileStride, 2); // 64 bits a row, in words
    EXPECT_EQ(state_.screenPhaseY, 3);
    EXPECT_EQ(state_.screenMember, SCREEN_BITS_OPAQUE);
    apply({DL_OP_SET_OPAQUE, 255, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.screenMember, SCREEN_BITS_TRANSPARENT);
    apply({DL_OP_SET_OPAQUE, 0, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.imageOpaque, 0);
    apply({DL_OP_SET_SCREEN, 0, 9, 0, 0x08, 0x40}, BAND_COLOUR); // no such tile
    EXPECT_EQ(state_.screenPhaseY, 3);
    apply({DL_OP_SET_SCREEN, 0, 9, 0, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.tileKind, 0);
    EXPECT_EQ(state_.screenMember, SCREEN_SOLID);
    fresh(true);
    apply({DL_OP_SET_SCREEN, 0, 0, 0, 0x07, 0x40}, BAND_GREY);
    EXPECT_EQ(state_.tileStride, 8); // in bytes on grey rasters
}

TEST_F(StateRecords, PhasesRopsAndBlendSettings) {
    fresh(false);
    apply({DL_OP_IMAGE_ORIGIN, 0, 0, 0, 5, 0, 0, 0, 9, 0, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.yPhase, 5u);
    EXPECT_EQ(state_.xPhase, 9u);
    apply({DL_OP_RESERVED_161, 0, 2, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.xPhase, 0x20000u);
    EXPECT_EQ(state_.yPhase, 0u);
    apply({DL_OP_RESERVED_177, 0, 6, 0, 7, 0, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.yPhase, 6u);
    EXPECT_EQ(state_.xPhase, 7u);
    apply({DL_OP_SET_ROP, 0x5A}, BAND_COLOUR);
    EXPECT_EQ(state_.ropMode, ROP_MODE_XOR);
    apply({DL_OP_SET_ROP2, 0xCC}, BAND_COLOUR);
    EXPECT_EQ(state_.rop2Code, 0xCC);
    apply({DL_OP_BLEND, 0, 1, 0}, BAND_COLOUR);
    apply({DL_OP_BLEND_DATA_B, 4, 0x10, 0x20, 0, 0, 0, 0}, BAND_COLOUR);
    EXPECT_EQ(state_.blendOn, 1);
    EXPECT_EQ(state_.blendSelectB, 4);
    EXPECT_EQ(state_.blendRangesB[0], 0x2010u);
}

TEST_F(StateRecords, WhichRecordsEachVariantUnderstands) {
    fresh(true);
    EXPECT_EQ(apply({DL_OP_COLOUR_SPACE_1, 0, 0, 0}, BAND_GREY), 4u);
    EXPECT_EQ(apply({DL_OP_COLOUR_SPACE_1, 0, 0, 0}, BAND_COLOUR), 0u);
    EXPECT_EQ(apply({DL_OP_RESERVED_194, 0, 0, 0}, BAND_MONO), 4u);
    EXPECT_EQ(apply({DL_OP_RESERVED_194, 0, 0, 0}, BAND_GREY), 0u);
    EXPECT_EQ(apply({DL_OP_BLEND, 0, 1, 0}, BAND_MONO), 0u);
    EXPECT_EQ(apply({DL_OP_BLEND_SELECT, 0, 1}, BAND_GREY), 3u);
    EXPECT_EQ(apply({DL_OP_MARK}, BAND_COLOUR), 1u);
    EXPECT_EQ(apply({DL_OP_CHUNK, 0, 0, 0, 0, 0, 0, 0}, BAND_COLOUR), 8u);
    for (uint8_t op : {134, 162, 170, 175, 182, 200}) {
        EXPECT_EQ(apply({op, 0, 0, 0, 0, 0, 0, 0}, BAND_COLOUR), 0u) << int(op);
    }
}

class RobustPlayback : public RenderTest {};

TEST_F(RobustPlayback, UnpaintableAndMalformedRecordsArePassedOver) {
    open(5, true);
    // Band 0: a screened fill (no screened member yet), then an unknown
    // opcode that ends the block before the black rectangle.
    auto* tile = static_cast<RendererTile*>(allocBytes(sizeof(RendererTile) + 8, true));
    *tile = RendererTile{nullptr, 0x4007, 1, 64, 1, reinterpret_cast<uint8_t*>(tile + 1)};
    res()->renderer->tileList = tile; // released with the page
    recordBytes(e(), 0, {DL_OP_SET_SCREEN, 0, 0, 0, 0x07, 0x40}, 4);
    rop(0, 0xF0);
    paint(0, 0);
    rect(0, 8, 0, 4, 4);
    recordBytes(e(), 0, {134, 0, 0, 0}, 4);
    rect(0, 0, 0, 4, 4);
    // Band 1: an array record without its array, a rectangle far outside the
    // band, a colour image (grey bands do not paint that kind) and a mask
    // (no painter yet).
    static const uint8_t samples[4] = {};
    std::vector<uint8_t> noArray(ARRAY_RECORD_SIZE, 0);
    noArray[0] = DL_OP_RUNS;
    noArray[2] = 5;
    recordBytes(e(), 1, noArray, 8);
    rop(1, 0xF0);
    paint(1, 0);
    ASSERT_EQ(writeImage(list(1), 0x40, 0, {0, 0}, 1, 1, {samples, 1, 1, 4}, res()), KRYN_OK);
    ASSERT_EQ(writeMaskImage(list(1), 0, {0, 0}, 8, 1, {samples, 8, 1, 1}, res()), KRYN_OK);
    recordBytes(e(), 1, {DL_OP_RECT, 250, 0x60, 0xEA, 0xFF, 0xFF, 200, 0}, 8);
    rect(1, 15, 60, 40, 1);
    list(1)->hasDrawing = 1;
    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 1u);
    EXPECT_EQ(log_.calls[0].band, 1u);
    const BandPixels band1 = pixels(0);
    EXPECT_EQ(band1.at(59, 15), 0xFFu);
    EXPECT_EQ(band1.at(60, 15), 0u);
    EXPECT_EQ(band1.at(63, 15), 0u); // clipped at the raster's last column
    EXPECT_EQ(band1.at(0, 0), 0xFFu);
}

} // namespace
} // namespace kryn::test
