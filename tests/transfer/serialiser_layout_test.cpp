// Every record's words as the device receives them, against hand-written
// bytes. Each list is sent as a mode-0 chunk, so the decoder also checks
// that the announced size (the writers' serialBytes) matches what was sent.
// Whole bands: the download tables go first in a chunk of their own, and
// host-mode lists are announced with the bytes actually sent. Band headers,
// chunk splitting and what NextBand and page close send are pinned by the
// golden jobs chunk_limit, next_band_ranges and page_modes.
#include "support/page_fixture.h"

#include "displaylist/record_writers.h"
#include "transfer/download_tables.h"

namespace kryn::test {
namespace {

using Bytes = std::vector<uint8_t>;

class SerialiseLayoutTest : public PageTest {};

TEST_F(SerialiseLayoutTest, RectangleAndColumn) {
    open();
    ASSERT_EQ(writeRect(list_, {1, 2}, 300, 5, res_), KRYN_OK);
    ASSERT_EQ(writeRect(list_, {0, 400}, 200, 16, res_), KRYN_OK);
    EXPECT_EQ(sentRecords(), wordBytes({0x85010002, 0x012C0500, 0x95C80190}));
}

TEST_F(SerialiseLayoutTest, RunAndSpanArrays) {
    open();
    ASSERT_EQ(
        writeRuns(list_, heapBytes({0, 0, 2, 0, 3, 0, 10, 0, 0x2C, 1, 4, 0, 20, 0, 5, 0}), 2, res_),
        KRYN_OK);
    ASSERT_EQ(
        writeRuns(list_, heapBytes({0, 255, 2, 0, 3, 0, 10, 0, 7, 0, 4, 0, 20, 0, 9, 0}), 2, res_),
        KRYN_OK);
    ASSERT_EQ(writeColumnRuns(list_, heapBytes({0, 0, 2, 0, 3, 5, 10, 0, 4, 6, 20, 0}), 2, res_),
              KRYN_OK);
    ASSERT_EQ(writeRects(list_, heapBytes({0, 0,  3, 0, 1, 0,  5, 0,  2, 3, 10,
                                           0, 12, 0, 0, 1, 20, 0, 30, 0, 4, 4}),
                         3, res_),
              KRYN_OK);
    ASSERT_EQ(writeRowSpans(list_, 3, heapBytes({10, 0, 5, 0, 11, 0, 6, 0}), 2, res_), KRYN_OK);
    ASSERT_EQ(writeRowSpans(list_, 1, heapBytes({1, 0, 2, 0, 3, 0, 4, 0, 5, 1, 6, 0}), -3, res_),
              KRYN_OK);
    EXPECT_EQ(sentRecords(), wordBytes({
                                 0x84000002, 0x000A0300, 0x012C0014, 0x04000005, // 132, no pad
                                 0x8D000002, 0x000A0307, 0x00140409,             // 141
                                 0x8B000002, 0x000A0305, 0x00140406,             // 139
                                 0x8E000003, 0x00010005, 0x0203000A, 0x000C0001, // 142
                                 0x0014001E, 0x04040000,                         // padded
                                 0x94030002, 0x000A0005, 0x000B0006,             // 148
                                 0x9D010003, 0x00010200, 0x03040105, 0x06000000, // 157
                             }));
}

TEST_F(SerialiseLayoutTest, StateRecords) {
    open();
    const uint16_t keys[3] = {1, 2, 3};
    const uint16_t zeros[3] = {0, 0, 0};
    ASSERT_EQ(writeRop(list_, 0x166, res_), KRYN_OK);
    ASSERT_EQ(writeScreen(list_, 5, 300, res_), KRYN_OK);
    ASSERT_EQ(writeScreen(list_, 0x8003, 7, res_), KRYN_OK);
    ASSERT_EQ(writeOpaque(list_, 3, 1, res_), KRYN_OK);
    ASSERT_EQ(writeOpaque(list_, 0, 0, res_), KRYN_OK);
    ASSERT_EQ(writeImageColour(list_, 0x332211, COLOUR_FORE, res_), KRYN_OK);
    ASSERT_EQ(writeImageColour(list_, 0x332211, COLOUR_BACK, res_), KRYN_OK);
    ASSERT_EQ(writePaintColour(list_, 0x665544, COLOUR_FORE, res_), KRYN_OK);
    ASSERT_EQ(writePaintColour(list_, 0x665544, COLOUR_BACK, res_), KRYN_OK);
    ASSERT_EQ(writePattern(list_, 9, res_), KRYN_OK);
    ASSERT_EQ(writeBlend(list_, 7, res_), KRYN_OK);
    ASSERT_EQ(writeBlendSelect(list_, 7, res_), KRYN_OK);
    ASSERT_EQ(writeBlendData(list_, keys, 4, BLEND_DATA_A, res_), KRYN_OK);
    ASSERT_EQ(writeBlendData(list_, zeros, 4, BLEND_DATA_B, res_), KRYN_OK);
    ASSERT_EQ(writeMark(list_), KRYN_OK);
    res_->alphaMode = 1;
    ASSERT_EQ(writeImageColour(list_, 0x44332211, COLOUR_FORE, res_), KRYN_OK);
    ASSERT_EQ(writeImageColour(list_, 0x44332211, COLOUR_BACK, res_), KRYN_OK);
    ASSERT_EQ(writePaintColour(list_, 0x88776655, COLOUR_FORE, res_), KRYN_OK);
    ASSERT_EQ(writePaintColour(list_, 0x88776655, COLOUR_BACK, res_), KRYN_OK);
    EXPECT_EQ(sentRecords(), wordBytes({
                                 0xA0660000,             // 160: low byte of the code
                                 0xB3000005, 0x0000012C, // 163 with phase 300: long form
                                 0xA307C003,             // shared class becomes 0xC000
                                 0xA5FFFFFF, 0xA5000000, // 165
                                 0xA6112233, 0xA7112233, 0xA8445566, 0xA9445566,
                                 0xAB000009,             // 171
                                 0xBB00FFFF,             // 187
                                 0xBC000007,             // 188
                                 0x00000001, 0x00000001, // 189
                                 0x00000001, 0x00000000, // 190 with zero data
                                 0xA4000000,             // 164
                                 0xB7000000, 0x11223344, 0xB7000100, 0x11223344, // 183, 184
                                 0xB7010000, 0x55667788, 0xB7010100, 0x55667788, // 185, 186
                             }));
}

TEST_F(SerialiseLayoutTest, RecordsWithoutWriters) {
    open();
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_161, 0, 0x34, 0x12}, 4);
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_172}, 4);
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_173, 0, 0x02, 0x01}, 4);
    recordBytes(engine_.get(), 0, {DL_OP_SET_ROP2, 0x55}, 4);
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_177, 0, 0x02, 0x01, 0x44, 0x33, 0x22, 0x11}, 8);
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_193, 9, 2, 1, 4, 5, 6, 0, 8, 7, 10, 9}, 12);
    recordBytes(engine_.get(), 0, {DL_OP_RESERVED_194, 0, 0x02, 0x01}, 4);
    EXPECT_EQ(sentRecords(),
              wordBytes({0xA1001234, 0xAC000000, 0xAD000102, 0xB0550000, 0xB1000102, 0x11223344,
                         0xC1090102, 0x04050600, 0x0708090A, 0xC2010200}));
}

TEST_F(SerialiseLayoutTest, ImagesCarryTheirPaddedData) {
    open();
    const Bytes bits{1, 2, 3, 4};
    const Bytes pixels{0x10, 0x20, 0x30, 0x40};
    const Bytes mask{1, 2, 3, 4, 5, 6};
    const Bytes samples{1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(writeImage(list_, 0x00, 0, {3, 5}, 10, 2, {bits.data(), 10, 2, 2}, res_), KRYN_OK);
    ASSERT_EQ(writeImage(list_, 0x40, 0, {0, 1}, 1, 1, {pixels.data(), 1, 1, 4}, res_), KRYN_OK);
    ASSERT_EQ(writeMaskImage(list_, 0, {2, 6}, 9, 3, {mask.data(), 9, 3, 2}, res_), KRYN_OK);
    const ScaledPlacement placement{1, 2, 3, 4, 0x00020000, 0x00018000};
    ASSERT_EQ(writeScaledImage(list_, 0xB0, 0, {4, 7}, placement, {samples.data(), 2, 1, 8}, res_),
              KRYN_OK);
    EXPECT_EQ(writeImage(list_, 0x10, 0, {0, 0}, 1, 1, {bits.data(), 1, 1, 1}, res_),
              KRYN_ERR_INVALID);
    EXPECT_EQ(writeMaskImage(list_, 1, {0, 0}, 1, 1, {bits.data(), 1, 1, 1}, res_),
              KRYN_ERR_INVALID);
    EXPECT_EQ(sentRecords(), wordBytes({
                                 0x82030005,
                                 0x0002000A,
                                 0x01000300, // 1 bit: 10 of the 16 bits of each row
                                 0x82000001,
                                 0x40010001,
                                 0x10203040, // 4 bytes a pixel
                                 0x83020006,
                                 0x00030009,
                                 0x01000300, // 9 bits of each 2-byte row
                                 0x05000000, // padded
                                 0x92040007,
                                 0x0003B004,
                                 0x00018000,
                                 0x00010002,
                                 0x01020304,
                                 0x05060708,
                             }));
}

TEST_F(SerialiseLayoutTest, ColourSpaceOneAdaptsIdentifiersAndSampleSize) {
    open(0, 0x8009, true);
    const Bytes samples{9, 8, 7};
    ASSERT_EQ(writeScreen(list_, 0x8003, 0, res_), KRYN_OK);
    ASSERT_EQ(writeScreen(list_, 0xC003, 0, res_), KRYN_OK);
    ASSERT_EQ(writePattern(list_, 0x8009, res_), KRYN_OK);
    const ScaledPlacement placement{0, 0, 3, 1, 0x10000, 0x10000};
    ASSERT_EQ(writeScaledImage(list_, 0xC0, 0, {0, 0}, placement, {samples.data(), 3, 1, 3}, res_),
              KRYN_OK);
    EXPECT_EQ(sentRecords(), wordBytes({
                                 0xAE000000, // the list opens in colour space 1
                                 0xA3004003, // shared class becomes 0x4000
                                 0xA3004003, // bit 15 cleared
                                 0xAB000009, // bit 15 cleared
                                 0x92000000,
                                 0x0003C001,
                                 0x00010000,
                                 0x00010003,
                                 0x09080700,
                             }));
}

TEST_F(SerialiseLayoutTest, DownloadTablesGoFirstInTheirOwnChunkAndAreEmptiedOnce) {
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

TEST_F(SerialiseLayoutTest, HostModeListsAreAnnouncedWithTheBytesActuallySent) {
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
