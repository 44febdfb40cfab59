// Sending whole bands: the download tables go first in a chunk of their own,
// and host-mode lists are announced with the bytes actually sent. Band
// headers, chunk splitting and what NextBand and page close send are pinned
// by the golden jobs chunk_limit, next_band_ranges and page_modes.
#include "support/page_fixture.h"

#include "displaylist/record_writers.h"
#include "transfer/download_tables.h"

namespace kryn::test {
namespace {

using Bytes = std::vector<uint8_t>;

class SerialiseBandTest : public PageTest {};

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
