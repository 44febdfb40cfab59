// Page close: band order, reverse numbering, the one replay, and end records.
#include "support/engine_fixture.h"

#include "displaylist/display_list.h"
#include "displaylist/record_walk.h"
#include "render/band_interpreters.h"
#include "render/band_renderer.h"
#include "render/paint_state.h"
#include "transfer/raster_delivery.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

// Interpreters that deliver one standard raster per band, carrying the
// number of end records in the list, so tests see order, numbering, replay
// and ending from the callback alone.
ResultCode deliverEndCount(BandRenderer*, RenderResources* resources, uint16_t band,
                           DisplayList* list, int32_t) {
    uint8_t ends = 0;
    walkRecords(list, [&](uint8_t op, const uint8_t*) {
        ends = static_cast<uint8_t>(ends + (op == DL_OP_END ? 1 : 0));
        return true;
    });
    const RasterRect rect{0, 0, 0, 0};
    return deliverRaster(resources->stream, CB_RASTER_STANDARD, band, &ends, 1, rect);
}

ResultCode deliverMono(BandRenderer*, RenderResources* resources, uint16_t band, DisplayList*,
                       int32_t) {
    const uint8_t marker = 0;
    return deliverRaster(resources->stream, CB_RASTER_DIRECT, band, &marker, 1, RasterRect{});
}

constexpr BandInterpreters kTestInterpreters = {deliverEndCount, deliverMono, deliverEndCount};

class PlaybackTest : public ::testing::Test {
  protected:
    // A page of 10 bands with records in the given bands, for a device that
    // takes every band as a standard raster unless told otherwise.
    void openPage(int16_t mode, std::initializer_list<int32_t> bands, uint16_t level = 0x8007) {
        engine_ = makeEngine(99, 159, 16, level);
        ASSERT_EQ(KRYNNewPage(mode, engine_.get()), KRYN_OK);
        engine_->resources->interpreters = &kTestInterpreters;
        for (int32_t band : bands) {
            recordBytes(engine_.get(), band, {DL_OP_RECT, 0, 0, 0, 1, 0, 1, 0}, 8);
        }
    }
    std::vector<uint32_t> closeAndListBands() {
        EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log_.context(), engine_.get()), KRYN_OK);
        std::vector<uint32_t> bands;
        for (const Delivery& d : log_.calls) {
            bands.push_back(d.band);
        }
        return bands;
    }
    EnginePtr engine_;
    CallbackLog log_;
};

TEST_F(PlaybackTest, BandsWithListsArePlayedInPageOrder) {
    openPage(5, {7, 2, 4});
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{2, 4, 7}));
    for (const Delivery& d : log_.calls) {
        EXPECT_EQ(d.data, std::vector<uint8_t>{1}); // one end record each
    }
}

TEST_F(PlaybackTest, ReverseSideNumbersBandsFromTheFarEnd) {
    openPage(7, {0, 3, 9});
    ASSERT_EQ(KRYNSetReverseSide(engine_.get()), KRYN_OK);
    // Played last to first; band i reaches the driver as 9 - i.
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{0, 6, 9}));
}

TEST_F(PlaybackTest, OneRestartReplaysThePageWithoutSecondEndRecords) {
    openPage(5, {1, 2, 3, 4});
    log_.restartAt = {2}; // the third band asks for the page again
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{1, 2, 3, 1, 2, 3, 4}));
    for (const Delivery& d : log_.calls) {
        EXPECT_EQ(d.data, std::vector<uint8_t>{1}) << "band " << d.band;
    }
}

TEST_F(PlaybackTest, ASecondRestartEndsPlayback) {
    openPage(5, {1, 2, 3, 4});
    log_.restartAt = {2, 4};
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{1, 2, 3, 1, 2}));
}

TEST_F(PlaybackTest, ARestartInReverseOrderStartsAgainFromTheLastBand) {
    openPage(9, {1, 5, 8});
    ASSERT_EQ(KRYNSetReverseSide(engine_.get()), KRYN_OK);
    log_.restartAt = {1};
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{1, 4, 1, 4, 8}));
}

TEST_F(PlaybackTest, SerialisedModesPlayNothingAndEmptyPagesNothing) {
    openPage(0, {1, 2});
    EXPECT_TRUE(closeAndListBands().empty());
    openPage(5, {});
    EXPECT_TRUE(closeAndListBands().empty());
}

TEST_F(PlaybackTest, MonochromeBandsUseTheDirectInterpreterOnCapableDevices) {
    openPage(5, {1, 2}, 0x8008);
    pageOf(engine_.get())->bands[2].bandMonochrome = 0;
    closeAndListBands();
    ASSERT_EQ(log_.calls.size(), 2u);
    EXPECT_EQ(log_.calls[0].code, CB_RASTER_DIRECT);
    EXPECT_EQ(log_.calls[1].code, CB_RASTER_STANDARD);

    log_ = CallbackLog();
    openPage(5, {1}, 0x8007);
    closeAndListBands();
    EXPECT_EQ(log_.calls.at(0).code, CB_RASTER_STANDARD);
}

// A monochrome band is played by the shared renderer under the grey layout:
// afterwards the renderer has its colour layout back and nothing it keeps
// points into memory that is gone.
TEST(MonochromePlayback, LeavesTheRendererWholeForTheNextBand) {
    EnginePtr e = makeEngine(99, 47, 16, 0x8009);
    ASSERT_EQ(KRYNNewPage(9, e.get()), KRYN_OK);
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(identity, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(2, 2, 20, 10, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
    CallbackLog log;
    ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e.get()), KRYN_OK);
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0].code, CB_RASTER_DIRECT);
    const BandRenderer* renderer = e->resources->renderer;
    EXPECT_EQ(renderer->paintState->box, &renderer->box);
    EXPECT_EQ(renderer->strideWords, rasterStrideBytes(renderer->width, false) / 4);
}

TEST_F(PlaybackTest, TheExtraBandOfModeThreeIsNotPlayed) {
    openPage(3, {9, 10});
    EXPECT_EQ(closeAndListBands(), (std::vector<uint32_t>{9}));
}

} // namespace
} // namespace kryn::test
