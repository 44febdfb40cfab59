// The rectangle writer on what fills do not reach: single-entry buffers
// become rectangles, and rectangles that do not fit their fields are
// refused. Merging, columns and the functions under which overlapping
// rectangles stay separate are pinned by the golden job
// fill_merging_and_state.
#include "support/page_fixture.h"

#include "displaylist/record_writers.h"

namespace kryn::test {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes rectRecord(uint8_t row, uint16_t x, uint16_t width, uint8_t height) {
    return {DL_OP_RECT,
            row,
            static_cast<uint8_t>(x),
            static_cast<uint8_t>(x >> 8),
            static_cast<uint8_t>(width),
            static_cast<uint8_t>(width >> 8),
            height,
            0};
}

class RectWriterTest : public PageTest {
  protected:
    void SetUp() override { open(5); } // a host mode: the list starts empty
    void put(uint8_t row, uint16_t x, uint32_t w, uint32_t h) {
        ASSERT_EQ(writeRect(list_, {row, x}, w, h, res_), KRYN_OK);
    }
};

TEST_F(RectWriterTest, SingleEntryBuffersAreWrittenAsRectangles) {
    put(15, 90, 1, 1); // the list's first block exists before counting
    const uint64_t live = KRYNPlatformLiveBlocks();
    ASSERT_EQ(writeRuns(list_, heapBytes({0, 0, 1, 0, 3, 0, 10, 0, 7, 0}), 1, res_), KRYN_OK);
    ASSERT_EQ(writeColumnRuns(list_, heapBytes({0, 0, 1, 0, 2, 5, 40, 0}), 1, res_), KRYN_OK);
    ASSERT_EQ(writeRects(list_, heapBytes({0, 0, 1, 0, 60, 0, 69, 0, 1, 4}), 1, res_), KRYN_OK);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live); // the buffers were freed
    EXPECT_EQ(records(), (std::vector<Bytes>{rectRecord(15, 90, 1, 1), rectRecord(3, 10, 7, 1),
                                             rectRecord(2, 40, 1, 5), rectRecord(1, 60, 10, 4)}));
}

TEST_F(RectWriterTest, RectanglesThatDoNotFitTheirFieldsAreRefused) {
    EXPECT_EQ(writeRect(list_, {0, 0}, 0x10000, 1, res_), KRYN_ERR_INVALID);
    EXPECT_EQ(writeRect(list_, {1, 0}, 1, 256, res_), KRYN_ERR_INVALID); // past a band's 256 rows
    EXPECT_EQ(writeRect(list_, {0, 0}, 1, 257, res_), KRYN_ERR_INVALID);
    EXPECT_EQ(writeRect(list_, {0, 0xFFFF}, 2, 1, res_), KRYN_ERR_INVALID);
    EXPECT_TRUE(records().empty());
}

} // namespace
} // namespace kryn::test
