// KRYNNextBand: which bands are sent, which are dropped, and how the band
// group moves.
#include "support/engine_fixture.h"

#include "displaylist/display_list.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

// Bands for which a band header chunk (announced as 8 bytes) was sent.
std::vector<uint32_t> headerBands(const CallbackLog& log) {
    std::vector<uint32_t> bands;
    for (const Delivery& d : log.calls) {
        if (d.code == CB_STREAM_BEGIN && d.bytes == 8) {
            bands.push_back(d.band);
        }
    }
    return bands;
}

class NextBandTest : public ::testing::Test {
  protected:
    // A page of 10 bands of 16 rows.
    void openPage(int16_t mode, uint16_t level = 0x8009) {
        engine_ = makeEngine(99, 159, 16, level);
        ASSERT_EQ(KRYNNewPage(mode, engine_.get()), KRYN_OK);
        page_ = pageOf(engine_.get());
    }
    void record(int32_t band) {
        recordBytes(engine_.get(), band, {DL_OP_RECT, 0, 0, 0, 1, 0, 1, 0}, 8);
    }
    ResultCode next(uint32_t n) {
        return KRYNNextBand(n, CallbackLog::callback, log_.context(), engine_.get());
    }
    EnginePtr engine_;
    PageRecord* page_ = nullptr;
    CallbackLog log_;
};

TEST_F(NextBandTest, WholePageModeSendsTheRecordedRangeButNeverTheLastBand) {
    openPage(0);
    for (int32_t band : {2, 5, 9}) {
        record(band);
    }
    ASSERT_EQ(next(4), KRYN_OK);
    EXPECT_EQ(headerBands(log_), (std::vector<uint32_t>{2}));
    EXPECT_EQ(page_->bands[2].list, nullptr);
    EXPECT_EQ(page_->bands[5].list, nullptr);
    ASSERT_NE(page_->bands[9].list, nullptr); // kept for page close
    // The range is empty after every flush; it reached the last band, so
    // the bookkeeping stayed.
    EXPECT_TRUE(page_->dirty.empty());
    EXPECT_EQ(engine_->nextBandCount, 0);

    // Nothing is recorded any more: no header chunk, and the numbering
    // moves on (base 4 x 0, then 4 x 1).
    log_.calls.clear();
    ASSERT_EQ(next(4), KRYN_OK);
    ASSERT_EQ(next(4), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty());
    EXPECT_EQ(engine_->nextBandCount, 2);
    EXPECT_EQ(engine_->resources->bandBase, 4);
    ASSERT_NE(page_->bands[9].list, nullptr);
}

// The last band's list outlives the flushes: page close plays it (numbered
// from the moved base) exactly once, and nothing leaks.
TEST(NextBandLastBand, PageCloseStillPlaysTheLastBandOnceAndFreesIt) {
    for (const int16_t mode : {int16_t{5}, int16_t{2}}) {
        SCOPED_TRACE(mode);
        const uint64_t liveBefore = KRYNPlatformLiveBlocks();
        {
            EnginePtr e = makeEngine(99, 159, 16, 0x8009);
            ASSERT_EQ(KRYNNewPage(mode, e.get()), KRYN_OK);
            CallbackLog log;
            if (mode == 2) {
                // Open the group that holds the last band.
                ASSERT_EQ(KRYNNextBand(9, CallbackLog::callback, log.context(), e.get()), KRYN_OK);
                ASSERT_EQ(KRYNNextBand(2, CallbackLog::callback, log.context(), e.get()), KRYN_OK);
            }
            const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
            ASSERT_EQ(KRYNSetMatrix(identity, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNRectPath(10, 150, 20, 5, e.get()), KRYN_OK); // band 9 only
            ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNNextBand(3, CallbackLog::callback, log.context(), e.get()), KRYN_OK);
            ASSERT_EQ(KRYNNextBand(3, CallbackLog::callback, log.context(), e.get()), KRYN_OK);
            const uint16_t base = e->resources->bandBase;
            if (mode == 5) {
                // White paint still reaches the recorded last band.
                const uint32_t bytes = pageOf(e.get())->bands[9].list->serialBytes;
                ASSERT_EQ(KRYNSetLogicalFunc(0xFF, e.get()), KRYN_OK);
                ASSERT_EQ(KRYNRectPath(12, 151, 2, 2, e.get()), KRYN_OK);
                ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
                EXPECT_GT(pageOf(e.get())->bands[9].list->serialBytes, bytes);
            }
            log.calls.clear();
            ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e.get()), KRYN_OK);
            ASSERT_EQ(log.calls.size(), 1u);
            EXPECT_EQ(log.calls[0].band, uint16_t(9 - base));
        }
        EXPECT_EQ(KRYNPlatformLiveBlocks(), liveBefore);
    }
}

TEST_F(NextBandTest, AnEmptyWholePageSendsNothingNotEvenTheHeader) {
    openPage(0);
    ASSERT_EQ(next(1), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty());
}

TEST_F(NextBandTest, TheFirstCallInAGroupModeOpensTheGroupAndSendsNothing) {
    openPage(1);
    record(0);
    ASSERT_EQ(next(3), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty());
    EXPECT_EQ(page_->group.first, 0);
    EXPECT_EQ(page_->group.last, 2);
    // Records made before the group opened are dropped with it.
    EXPECT_EQ(page_->bands[0].list, nullptr);
    EXPECT_EQ(engine_->nextBandCount, 1);
}

TEST_F(NextBandTest, GroupsMoveDownThePageAndSendTheOpenGroup) {
    openPage(1);
    ASSERT_EQ(next(3), KRYN_OK); // group 0..2
    record(1);
    record(4);                   // outside the group: dropped when it moves on
    ASSERT_EQ(next(3), KRYN_OK); // sends 0..2, group 3..5
    EXPECT_EQ(headerBands(log_), (std::vector<uint32_t>{0}));
    EXPECT_EQ(page_->bands[1].list, nullptr);
    EXPECT_EQ(page_->bands[4].list, nullptr);
    EXPECT_EQ(page_->group.first, 3);
    EXPECT_EQ(page_->group.last, 5);
    const RenderResources& r = *engine_->resources;
    EXPECT_EQ(r.bandBase, 3);
    EXPECT_EQ(r.groupIndex, 1);
    EXPECT_EQ(r.groupBands, 3);
    EXPECT_EQ(engine_->nextBandCount, 2);
}

TEST_F(NextBandTest, AnEmptyGroupStillGetsItsHeaderOnCapableDevices) {
    openPage(2);
    ASSERT_EQ(next(4), KRYN_OK);
    ASSERT_EQ(next(4), KRYN_OK);
    EXPECT_EQ(headerBands(log_), (std::vector<uint32_t>{0}));
    log_ = CallbackLog();
    openPage(2, 0x8002);
    ASSERT_EQ(next(4), KRYN_OK);
    ASSERT_EQ(next(4), KRYN_OK);
    EXPECT_TRUE(log_.calls.empty());
}

TEST_F(NextBandTest, TheGroupReachingTheLastBandLeavesTheBookkeeping) {
    openPage(1);
    ASSERT_EQ(next(5), KRYN_OK); // 0..4
    ASSERT_EQ(next(5), KRYN_OK); // sends 0..4, opens 5..9
    const uint16_t base = engine_->resources->bandBase;
    record(9);
    ASSERT_EQ(next(5), KRYN_OK); // 5..9 is the last group
    EXPECT_EQ(engine_->resources->bandBase, base);
    EXPECT_EQ(engine_->nextBandCount, 2);
    EXPECT_NE(page_->bands[9].list, nullptr); // the last band is never sent here
    EXPECT_EQ(page_->group.first, 10);
}

TEST_F(NextBandTest, GroupsPastTheEndOfThePageAreHarmless) {
    openPage(8);
    for (uint32_t n : {7u, 7u, 7u, 70000u, 1u, 0u}) {
        ASSERT_EQ(next(n), KRYN_OK);
        record(3);
    }
    EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log_.context(), engine_.get()), KRYN_OK);
}

TEST_F(NextBandTest, FlushedBandsKeepTheirPositionAndMonochromeFlag) {
    openPage(0);
    record(3);
    BandEntry& band = page_->bands[3];
    band.bandMonochrome = 0;
    band.lastPaintColour = 0x123456;
    band.lastBlendOn = 1;
    band.lastLogicalFunction = 0x66;
    ASSERT_EQ(next(1), KRYN_OK);
    EXPECT_EQ(band.bandTop, 48);
    EXPECT_EQ(band.bandMonochrome, 0);
    EXPECT_EQ(band.lastBlendOn, 1u);
    EXPECT_EQ(band.lastPaintColour, 0u);
    EXPECT_EQ(band.lastLogicalFunction, 0xA8u);
    record(3); // a flushed band may receive a new list
    EXPECT_NE(band.list, nullptr);
}

} // namespace
} // namespace kryn::test
