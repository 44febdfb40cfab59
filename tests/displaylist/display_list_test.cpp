// Block storage: the fill limit, the link marker, chunk accounting, ending
// and terminating, and the release walks.
#include "support/engine_fixture.h"

#include "displaylist/display_list.h"
#include "displaylist/record_walk.h"
#include "engine/memory.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

uint32_t offsetInBlock(const DisplayListBlock* block, const uint8_t* at) {
    return static_cast<uint32_t>(at - reinterpret_cast<const uint8_t*>(block));
}

class DisplayListTest : public ::testing::Test {
  protected:
    void openPage(int16_t mode) {
        engine_ = makeEngine(999, 999, 64);
        ASSERT_EQ(KRYNNewPage(mode, engine_.get()), KRYN_OK);
        ASSERT_EQ(getBandList(pageOf(engine_.get()), 0, &list_), KRYN_OK);
    }
    // Appends a 4-byte record (a full-band column) counting 4 stream bytes.
    void appendColumn() {
        uint8_t* at = reserveRecord(list_, 4);
        ASSERT_NE(at, nullptr);
        at[0] = DL_OP_COLUMN;
        at[1] = 1;
        list_->serialBytes += 4;
        ASSERT_EQ(commitRecord(list_, engine_->resources), KRYN_OK);
    }
    EnginePtr engine_;
    DisplayList* list_ = nullptr;
};

TEST_F(DisplayListTest, ARecordEndingAtTheFillLimitStaysAndTheNextStartsABlockAfterALinkMarker) {
    openPage(5); // no opening records
    // Fill the first block up to 8 bytes short of the limit.
    uint8_t* at = reserveRecord(list_, 8);
    ASSERT_NE(at, nullptr);
    DisplayListBlock* first = list_->firstBlock;
    const uint32_t start = offsetInBlock(first, at);
    uint32_t used = start + 8;
    while (used + 8 <= BLOCK_FILL_LIMIT - 8) {
        ASSERT_NE(reserveRecord(list_, 8), nullptr);
        used += 8;
    }
    // A record ending exactly at the limit goes into the current block.
    const uint32_t exact = BLOCK_FILL_LIMIT - used;
    uint8_t* last = reserveRecord(list_, exact);
    EXPECT_EQ(list_->currentBlock, first);
    EXPECT_EQ(offsetInBlock(first, last) + exact, BLOCK_FILL_LIMIT);
    // One more byte does not fit: a new block, and 255 where the old one stopped.
    uint8_t* next = reserveRecord(list_, 1);
    ASSERT_NE(list_->currentBlock, first);
    EXPECT_EQ(first->next, list_->currentBlock);
    EXPECT_EQ(next, list_->currentBlock->area);
    EXPECT_EQ(*first->writePointer, DL_OP_TERMINATOR);
    EXPECT_EQ(offsetInBlock(first, first->writePointer), BLOCK_FILL_LIMIT);
}

TEST_F(DisplayListTest, ChunksSplitAfterTheLimitInSerialisedModesWithExactSizes) {
    openPage(0);
    ASSERT_NE(list_->pendingSizeSlot, nullptr);
    uint8_t* firstSlot = list_->pendingSizeSlot;
    // 204796 / 4 records reach the limit exactly; the record that reaches
    // it closes the chunk.
    const uint32_t perChunk = CHUNK_LIMIT / 4;
    for (uint32_t i = 0; i + 1 < perChunk; ++i) {
        appendColumn();
    }
    EXPECT_EQ(list_->pendingSizeSlot, firstSlot);
    appendColumn();
    EXPECT_NE(list_->pendingSizeSlot, firstSlot);
    EXPECT_EQ(loadU32(firstSlot), CHUNK_LIMIT);
    EXPECT_EQ(list_->chunkStart, CHUNK_LIMIT);
    EXPECT_EQ(loadU32(list_->pendingSizeSlot), 0u); // open until serialised
}

TEST_F(DisplayListTest, AChunkThatCannotStartIsRetriedAtTheNextRecord) {
    openPage(1);
    uint8_t* firstSlot = list_->pendingSizeSlot;
    // Fill the block so that one more 4-byte record fits but a chunk record
    // after it does not, and let that record reach the chunk limit.
    while (offsetInBlock(list_->currentBlock, list_->currentBlock->writePointer) + 4 + 8 <=
           BLOCK_FILL_LIMIT) {
        appendColumn();
    }
    list_->chunkLimit = list_->serialBytes - list_->chunkStart + 4;
    uint8_t* at = reserveRecord(list_, 4);
    ASSERT_NE(at, nullptr);
    at[0] = DL_OP_COLUMN;
    at[1] = 1;
    list_->serialBytes += 4;
    KRYNPlatformFailAfter(0);
    EXPECT_EQ(commitRecord(list_, engine_->resources), KRYN_OK);
    KRYNPlatformFailAfter(-1);
    EXPECT_EQ(list_->pendingSizeSlot, firstSlot); // the chunk goes on
    EXPECT_EQ(loadU32(firstSlot), 0u);
    const uint32_t before = list_->serialBytes;
    appendColumn();
    EXPECT_NE(list_->pendingSizeSlot, firstSlot);
    EXPECT_EQ(loadU32(firstSlot), before + 4); // every byte up to the new chunk
}

TEST_F(DisplayListTest, EndAndTerminatorFitIntoAFullBlock) {
    openPage(5);
    ASSERT_NE(reserveRecord(list_, 4), nullptr);
    while (offsetInBlock(list_->currentBlock, list_->currentBlock->writePointer) + 4 <=
           BLOCK_FILL_LIMIT) {
        ASSERT_NE(reserveRecord(list_, 4), nullptr);
    }
    const uint64_t allocations = KRYNPlatformAllocCount();
    KRYNPlatformFailAfter(0); // ending never needs memory
    appendEndRecord(list_);
    appendEndRecord(list_); // once only
    appendTerminator(list_);
    appendTerminator(list_); // a replayed page reads the same terminated list
    KRYNPlatformFailAfter(-1);
    EXPECT_EQ(KRYNPlatformAllocCount(), allocations);
    EXPECT_EQ(list_->firstBlock->next, nullptr);
    const uint8_t* end = list_->firstBlock->writePointer - 5;
    EXPECT_EQ(end - reinterpret_cast<const uint8_t*>(list_->firstBlock), BLOCK_FILL_LIMIT);
    EXPECT_EQ(end[0], DL_OP_END);
    EXPECT_EQ(end[1], DL_OP_TERMINATOR);
    EXPECT_EQ(list_->serialBytes, 4u);
}

TEST(DisplayListRelease, FreeingAListFreesOwnedArraysButNotImageData) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    void* imageData = GlobalAlloc(GMEM_FIXED, 64);
    {
        EnginePtr e = makeEngine(99, 99, 32);
        ASSERT_EQ(KRYNNewPage(5, e.get()), KRYN_OK);
        DisplayList* list = nullptr;
        ASSERT_EQ(getBandList(pageOf(e.get()), 1, &list), KRYN_OK);
        for (uint8_t op : {DL_OP_RUNS, DL_OP_COLUMN_RUNS, DL_OP_RUNS_SHORT, DL_OP_RECTS,
                           DL_OP_ROW_SPANS, DL_OP_ROW_SPANS_SHORT}) {
            uint8_t* at = reserveRecord(list, ARRAY_RECORD_SIZE);
            at[0] = op;
            storePointer(at + ARRAY_POINTER_OFFSET, GlobalAlloc(GMEM_FIXED, 16));
        }
        uint8_t* image = reserveRecord(list, IMAGE_RECORD_SIZE);
        image[0] = DL_OP_IMAGE;
        storePointer(image + IMAGE_POINTER_OFFSET, imageData);
        uint8_t* scaled = reserveRecord(list, SCALED_IMAGE_RECORD_SIZE);
        scaled[0] = DL_OP_SCALED_IMAGE;
        storePointer(scaled + SCALED_IMAGE_POINTER_OFFSET, imageData);
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live + 1); // only the image data is left
    GlobalFree(imageData);
}

} // namespace
} // namespace kryn::test
