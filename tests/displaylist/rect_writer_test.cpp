// Rectangle merging: which consecutive rectangles become one record, the
// full-band column form, and the logical functions under which overlapping
// rectangles must stay separate.
#include "support/list_fixture.h"

#include "displaylist/record_writers.h"

namespace kryn::test {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes rect(uint8_t row, uint16_t x, uint16_t width, uint8_t height) {
    return {DL_OP_RECT,
            row,
            static_cast<uint8_t>(x),
            static_cast<uint8_t>(x >> 8),
            static_cast<uint8_t>(width),
            static_cast<uint8_t>(width >> 8),
            height,
            0};
}

Bytes column(uint16_t x, uint8_t width) {
    return {DL_OP_COLUMN, width, static_cast<uint8_t>(x), static_cast<uint8_t>(x >> 8)};
}

class RectWriterTest : public ListTest {
  protected:
    void SetUp() override { open(5); } // a host mode: the list starts empty
    void put(uint8_t row, uint16_t x, uint32_t w, uint32_t h) {
        ASSERT_EQ(writeRect(list_, {row, x}, w, h, res_), KRYN_OK);
    }
};

TEST_F(RectWriterTest, AbuttingRectanglesMergeUntilAnotherRecordComesBetween) {
    put(2, 10, 5, 3);
    put(2, 15, 5, 3); // extends right
    put(2, 4, 6, 3);  // extends left
    ASSERT_EQ(writePaintColour(list_, 0x123456, COLOUR_FORE, res_), KRYN_OK);
    put(2, 20, 5, 3); // abuts, but a colour record came between
    EXPECT_EQ(records(),
              (std::vector<Bytes>{
                  rect(2, 4, 16, 3), {DL_OP_PAINT_COLOUR, 0x56, 0x34, 0x12}, rect(2, 20, 5, 3)}));
    EXPECT_EQ(list_->serialBytes, 8u + 4u + 8u); // merging counts nothing
    EXPECT_EQ(list_->hasDrawing, 1u);
}

TEST_F(RectWriterTest, VerticalMergesContainmentAndMisses) {
    put(4, 10, 5, 2);
    put(6, 10, 5, 3); // extends down
    put(1, 10, 5, 3); // extends up
    put(3, 11, 2, 2); // inside: nothing written
    EXPECT_EQ(records(), (std::vector<Bytes>{rect(1, 10, 5, 8)}));
    put(0, 9, 8, 10); // covers the candidate: replaces it
    EXPECT_EQ(records(), (std::vector<Bytes>{rect(0, 9, 8, 10)}));
    put(11, 9, 8, 1);  // same columns, a row apart
    put(11, 30, 2, 1); // same rows, apart
    put(12, 31, 2, 1); // neither
    EXPECT_EQ(records().size(), 4u);
}

TEST_F(RectWriterTest, FullBandRectanglesBecomeColumnsThatGrowToAtMost255) {
    put(0, 0, 200, 16);
    put(0, 200, 55, 16); // grows to 255
    put(0, 255, 1, 16);  // would reach 256: a new column
    put(0, 250, 6, 16);  // inside the new one? no: extends it left to 250..255
    put(0, 100, 300, 16);
    EXPECT_EQ(records(),
              (std::vector<Bytes>{column(0, 255), column(250, 6), rect(0, 100, 300, 16)}));
    EXPECT_EQ(list_->serialBytes, 4u + 4u + 8u);
}

TEST_F(RectWriterTest, ColumnsNeedACapableDevice) {
    open(5, 0x8005);
    put(0, 0, 200, 16);
    EXPECT_EQ(records(), (std::vector<Bytes>{rect(0, 0, 200, 16)}));
}

TEST_F(RectWriterTest, SingleEntryBuffersAreWrittenAsRectangles) {
    put(15, 90, 1, 1); // the list's first block exists before counting
    const uint64_t live = KRYNPlatformLiveBlocks();
    ASSERT_EQ(writeRuns(list_, heapBytes({0, 0, 1, 0, 3, 0, 10, 0, 7, 0}), 1, res_), KRYN_OK);
    ASSERT_EQ(writeColumnRuns(list_, heapBytes({0, 0, 1, 0, 2, 5, 40, 0}), 1, res_), KRYN_OK);
    ASSERT_EQ(writeRects(list_, heapBytes({0, 0, 1, 0, 60, 0, 69, 0, 1, 4}), 1, res_), KRYN_OK);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live); // the buffers were freed
    EXPECT_EQ(records(), (std::vector<Bytes>{rect(15, 90, 1, 1), rect(3, 10, 7, 1),
                                             rect(2, 40, 1, 5), rect(1, 60, 10, 4)}));
}

TEST_F(RectWriterTest, RectanglesThatDoNotFitTheirFieldsAreRefused) {
    EXPECT_EQ(writeRect(list_, {0, 0}, 0x10000, 1, res_), KRYN_ERR_INVALID);
    EXPECT_EQ(writeRect(list_, {1, 0}, 1, 256, res_), KRYN_ERR_INVALID); // past a band's 256 rows
    EXPECT_EQ(writeRect(list_, {0, 0}, 1, 257, res_), KRYN_ERR_INVALID);
    EXPECT_EQ(writeRect(list_, {0, 0xFFFF}, 2, 1, res_), KRYN_ERR_INVALID);
    EXPECT_TRUE(records().empty());
}

// Under P XOR D a pixel painted twice is restored, so the union of two
// overlapping rectangles must not be painted once.
TEST_F(RectWriterTest, NonIdempotentFunctionsKeepOverlapsSeparateButStillJoinAbuttingRectangles) {
    ASSERT_EQ(writeRop(list_, 0x5A, res_), KRYN_OK);
    put(0, 0, 10, 4);
    put(0, 5, 10, 4);  // overlaps: its own record
    put(0, 15, 5, 4);  // abuts the last: merges
    put(1, 6, 2, 1);   // inside: its own record, not dropped
    put(0, 30, 5, 16); // column
    put(0, 32, 5, 16); // overlaps the column
    put(0, 37, 3, 16); // abuts it
    EXPECT_EQ(records(), (std::vector<Bytes>{{DL_OP_SET_ROP, 0x5A},
                                             rect(0, 0, 10, 4),
                                             rect(0, 5, 15, 4),
                                             rect(1, 6, 2, 1),
                                             column(30, 5),
                                             column(32, 8)}));
}

TEST_F(RectWriterTest, IdempotentFunctionsMergeOverlapsAndDropContainedRectangles) {
    ASSERT_EQ(writeRop(list_, 0xF0, res_), KRYN_OK);
    put(0, 0, 10, 4);
    put(0, 5, 10, 4);
    put(0, 15, 5, 4);
    put(1, 6, 2, 1);
    EXPECT_EQ(records(), (std::vector<Bytes>{{DL_OP_SET_ROP, 0xF0}, rect(0, 0, 20, 4)}));
}

} // namespace
} // namespace kryn::test
