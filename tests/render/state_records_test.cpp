// State records the band variants understand (their sizes, or 0 for a
// record the variant passes over), and playback that passes over records
// the renderers cannot paint and malformed records without harm, and
// images in monochrome bands. Delivery codes: the golden jobs
// typed_delivery, host_delivery, host_bands and page_modes.
#include "support/page_fixture.h"

#include "engine/memory.h"
#include "render/band_renderer.h"
#include "render/paint_state.h"
#include "render/renderer_lists.h"
#include "render/state_records.h"

namespace kryn::test {
namespace {

TEST(StateRecords, WhichRecordsEachVariantUnderstands) {
    const uint8_t attrs[3] = {3, 1, 2};
    BandRenderer* renderer = createBandRenderer({64, 16, attrs, 0});
    ASSERT_NE(renderer, nullptr);
    const struct {
        std::vector<uint8_t> record;
        BandVariant variant;
        size_t size;
    } cases[] = {
        {{DL_OP_PAINT_COLOUR, 1, 2, 3}, BAND_COLOUR, 4},
        {{DL_OP_IMAGE_BACK_COLOUR_A, 1, 2, 3, 4}, BAND_COLOUR, 5},
        {{DL_OP_SET_SCREEN, 0, 3, 0, 0, 0}, BAND_COLOUR, 6},
        {{DL_OP_IMAGE_ORIGIN, 0, 0, 0, 5, 0, 0, 0, 9, 0, 0, 0}, BAND_COLOUR, 12},
        {{DL_OP_RESERVED_177, 0, 6, 0, 7, 0, 0, 0}, BAND_COLOUR, 8},
        {{DL_OP_SET_ROP2, 0xCC}, BAND_COLOUR, 2},
        {{DL_OP_COLOUR_SPACE_1, 0, 0, 0}, BAND_GREY, 4},
        {{DL_OP_COLOUR_SPACE_1, 0, 0, 0}, BAND_COLOUR, 0},
        {{DL_OP_RESERVED_194, 0, 0, 0}, BAND_MONO, 4},
        {{DL_OP_RESERVED_194, 0, 0, 0}, BAND_GREY, 0},
        {{DL_OP_BLEND, 0, 1, 0}, BAND_MONO, 0},
        {{DL_OP_BLEND_SELECT, 0, 1}, BAND_GREY, 3},
        {{DL_OP_MARK}, BAND_COLOUR, 1},
        {{DL_OP_CHUNK, 0, 0, 0, 0, 0, 0, 0}, BAND_COLOUR, 8},
        {{134, 0, 0, 0}, BAND_COLOUR, 0},
        {{170, 0, 0, 0}, BAND_COLOUR, 0},
        {{200, 0, 0, 0}, BAND_COLOUR, 0},
    };
    for (const auto& c : cases) {
        PaintState state{};
        initPaintState(state, *renderer, c.variant == BAND_GREY);
        EXPECT_EQ(applyStateRecord(state, *renderer, c.record.data(), c.variant), c.size)
            << int(c.record[0]) << " variant " << c.variant;
    }
    destroyBandRenderer(renderer);
}

class RobustPlayback : public PageTest {};

TEST_F(RobustPlayback, UnpaintableAndMalformedRecordsArePassedOver) {
    open(5, 0x8009, true);
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

// A band that only an image record would paint, monochrome, is not delivered.
TEST_F(RobustPlayback, MonochromeBandsSkipImages) {
    static const uint8_t samples[4] = {};
    open(5, 0x8008);
    ASSERT_EQ(writeImage(list(0), 0x40, 0, {0, 0}, 1, 1, {samples, 1, 1, 4}, res()), KRYN_OK);
    ASSERT_EQ(close(), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty());
}

} // namespace
} // namespace kryn::test
