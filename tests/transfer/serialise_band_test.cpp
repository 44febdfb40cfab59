// Sending whole bands: chunks, their sizes and checksums, the download
// tables, host-mode lists, and what KRYNNextBand and KRYNClosePage send.
#include "support/list_fixture.h"

#include "displaylist/record_writers.h"
#include "transfer/download_tables.h"

namespace kryn::test {
namespace {

using Bytes = std::vector<uint8_t>;

class SerialiseBandTest : public ListTest {};

TEST_F(SerialiseBandTest, AnEmptyModeZeroBandSendsItsHeaderThenOnlyTheEndRecord) {
    open(0);
    DisplayList* last = nullptr;
    ASSERT_EQ(getBandList(page_, 9, &last), KRYN_OK);
    ASSERT_EQ(KRYNNextBand(1, CallbackLog::callback, log_.context(), engine_.get()), KRYN_OK);
    const std::vector<StreamChunk> chunks = decodeChunks(log_.calls);
    ASSERT_EQ(chunks.size(), 2u); // the last band is not sent
    EXPECT_EQ(chunks[0].announced, 8u);
    EXPECT_EQ(chunks[0].data, (Bytes{0x8C, 0x00, 0x00, 0x63}));
    EXPECT_EQ(chunks[1].band, 0u);
    EXPECT_EQ(chunks[1].announced, 8u);
    EXPECT_EQ(chunks[1].data, wordBytes({0x87000000}));
    EXPECT_EQ(log_.calls.back().data, (Bytes{0x87, 0, 0, 0, 0, 0, 0, 0x87}));
    const size_t calls = log_.calls.size();
    ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log_.context(), engine_.get()), KRYN_OK);
    EXPECT_EQ(log_.calls.size(), calls); // serialised modes send nothing at page close
}

// Masks of 255 rows of 2040 pixels count 65036 stream bytes each; the fourth
// crosses the chunk limit, so the next record opens a second chunk.
TEST_F(SerialiseBandTest, AListCrossingTheChunkLimitIsSentAsTwoChunks) {
    open(0);
    const Bytes mask(255 * 255, 0xA5);
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(writeMaskImage(list_, 0, {0, 0}, 2040, 255, {mask.data(), 2040, 255, 255}, res_),
                  KRYN_OK);
    }
    ASSERT_EQ(writeRect(list_, {1, 2}, 3, 4, res_), KRYN_OK);
    const std::vector<StreamChunk> chunks = send();
    ASSERT_EQ(chunks.size(), 2u);
    EXPECT_EQ(chunks[0].announced, 4u * 65036u + 4u);
    EXPECT_EQ(chunks[1].announced, 8u + 4u + 4u); // rectangle, end record, checksum
    EXPECT_EQ(chunks[1].data, wordBytes({0x85010002, 0x00030400, 0x87000000}));
    EXPECT_EQ(decodeRecords(chunks[0].data).size(), 4u);
}

TEST_F(SerialiseBandTest, DownloadTablesGoFirstInTheirOwnChunkAndAreEmptiedOnce) {
    open(0);
    const uint64_t live = KRYNPlatformLiveBlocks();
    const Bytes glyph{0xAA, 0x55};
    Bytes screen(75);
    for (size_t i = 0; i < screen.size(); ++i) {
        screen[i] = static_cast<uint8_t>(i);
    }
    const Bytes shared{1, 2, 3, 4};

    auto* a =
        static_cast<DownloadNode*>(allocBytes(sizeof(DownloadNode) + 2 * sizeof(DownloadEntryA)));
    *a = {nullptr, 2};
    entriesOf<DownloadEntryA>(a)[0] = {8, 2, 0x41, 0, const_cast<uint8_t*>(glyph.data())};
    entriesOf<DownloadEntryA>(a)[1] = {16, 16, 0x42, 1, heapBytes({7, 0, 0, 0, 0x11, 0x22, 0x33})};
    auto* b =
        static_cast<DownloadNode*>(allocBytes(sizeof(DownloadNode) + 2 * sizeof(DownloadEntryB)));
    *b = {nullptr, 2};
    entriesOf<DownloadEntryB>(b)[0] = {1, 1, 0x8000, 0, shared.data()};
    entriesOf<DownloadEntryB>(b)[1] = {300, 2, 0x0000, 0, screen.data()};
    auto* c = static_cast<DownloadNode*>(allocBytes(sizeof(DownloadNode) + sizeof(DownloadEntryC)));
    *c = {nullptr, 1};
    entriesOf<DownloadEntryC>(c)[0] = {
        1, 0x0107, reinterpret_cast<uint32_t*>(heapBytes({4, 3, 2, 1, 8, 7, 6, 5}))};
    res_->downloadA = a;
    res_->downloadB = b;
    res_->downloadC = c;
    for (int i = 0; i < 2; ++i) {
        res_->downloadABytes += downloadEntryBytes(entriesOf<DownloadEntryA>(a)[i]);
        res_->downloadBBytes += downloadEntryBytes(entriesOf<DownloadEntryB>(b)[i], 0);
    }
    res_->downloadCBytes = downloadEntryBytes(entriesOf<DownloadEntryC>(c)[0]);

    const std::vector<StreamChunk> chunks = send();
    ASSERT_EQ(chunks.size(), 2u);
    Bytes expected = wordBytes({
        0xC0080200, 0x00410000, 0xAA550000,             // A, plain
        0xC0101001, 0x00420000, 0x00000007, 0x11223300, // A, compressed: its length, then data
        0xA2010001, 0x80000001, 0x01020304,             // B, class 0x8000: f = 1
        0xB2000002, 0x0000012C,                         // B, wide form
    });
    expected.insert(expected.end(), screen.begin(), screen.end());
    expected.push_back(0); // 75 bytes padded
    const Bytes tableC = wordBytes({0xAA010107, 0x01020304, 0x05060708});
    expected.insert(expected.end(), tableC.begin(), tableC.end());
    EXPECT_EQ(chunks[0].data, expected);
    EXPECT_EQ(res_->downloadA, nullptr);
    EXPECT_EQ(res_->downloadABytes + res_->downloadBBytes + res_->downloadCBytes, 0u);
    // Everything the tables owned is freed, and so are the list header and block.
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live - 2);

    ASSERT_EQ(getBandList(page_, 0, &list_), KRYN_OK);
    log_.calls.clear();
    EXPECT_EQ(send().size(), 1u); // no second download chunk
}

TEST_F(SerialiseBandTest, HostModeListsAreAnnouncedWithTheBytesActuallySent) {
    for (int16_t mode : {int16_t{5}, int16_t{9}}) {
        open(mode);
        log_.calls.clear();
        ASSERT_EQ(writeRect(list_, {1, 2}, 3, 4, res_), KRYN_OK);
        ASSERT_EQ(writeImageMode(list_, 3, res_), KRYN_OK); // host only: ends the block's walk
        ASSERT_EQ(writeRect(list_, {5, 6}, 7, 8, res_), KRYN_OK);
        const std::vector<StreamChunk> chunks = send();
        ASSERT_EQ(chunks.size(), 1u) << mode;
        EXPECT_EQ(chunks[0].data, wordBytes({0x85010002, 0x00030400})) << mode;
    }
}

} // namespace
} // namespace kryn::test
