// The staging stream: how chunks are cut into calls and checksummed.
#include "support/engine_fixture.h"

#include "transfer/serialiser.h"
#include "transfer/stream_io.h"

#include <gtest/gtest.h>
#include <numeric>

namespace kryn::test {
namespace {

class StreamTest : public ::testing::Test {
  protected:
    void SetUp() override {
        engine_ = makeEngine(4959, 7015, 128);
        stream_ = &engine_->resources->stream;
        stream_->callback = CallbackLog::callback;
        stream_->context = log_.context();
    }
    // Sends one chunk of n data bytes (values i & 0xFF) and returns the calls.
    void sendChunk(uint32_t n) {
        streamBegin(*stream_, 7, n);
        std::vector<uint8_t> data(n);
        std::iota(data.begin(), data.end(), uint8_t{0});
        putBytes(*stream_, data.data(), data.size());
        streamFlush(*stream_, STREAM_END_OF_CHUNK);
    }
    static uint32_t byteSum(uint32_t n) {
        uint32_t sum = 0;
        for (uint32_t i = 0; i < n; ++i) {
            sum += i & 0xFF;
        }
        return sum;
    }
    static std::vector<uint8_t> bigEndian(uint32_t v) {
        return {uint8_t(v >> 24), uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
    }
    EnginePtr engine_;
    OutputStream* stream_ = nullptr;
    CallbackLog log_;
};

TEST_F(StreamTest, AChunkThreeBytesShortOfTheBufferSendsItsChecksumAlone) {
    sendChunk(2045);
    ASSERT_EQ(log_.calls.size(), 3u);
    EXPECT_EQ(log_.calls[0].code, CB_STREAM_BEGIN);
    EXPECT_EQ(log_.calls[0].band, 7u);
    EXPECT_EQ(log_.calls[0].bytes, 2049u);
    EXPECT_EQ(log_.calls[1].code, CB_STREAM_DATA);
    EXPECT_EQ(log_.calls[1].bytes, 2045u);
    EXPECT_EQ(log_.calls[2].code, CB_STREAM_END);
    EXPECT_EQ(log_.calls[2].data, bigEndian(byteSum(2045)));
}

TEST_F(StreamTest, AFullBufferIsHandedOverBeforeTheChecksum) {
    sendChunk(2048);
    ASSERT_EQ(log_.calls.size(), 3u);
    EXPECT_EQ(log_.calls[1].code, CB_STREAM_DATA);
    EXPECT_EQ(log_.calls[1].bytes, 2048u);
    EXPECT_EQ(log_.calls[2].data, bigEndian(byteSum(2048)));
}

TEST_F(StreamTest, ASmallChunkTravelsInItsEndCall) {
    sendChunk(16);
    ASSERT_EQ(log_.calls.size(), 2u);
    EXPECT_EQ(log_.calls[0].bytes, 20u);
    EXPECT_EQ(log_.calls[1].code, CB_STREAM_END);
    EXPECT_EQ(log_.calls[1].bytes, 20u);
}

TEST_F(StreamTest, ChecksumsCoverEveryDataCallOfTheChunkAndRestartPerChunk) {
    sendChunk(5000); // 2048 + 2048 + 904 + checksum
    sendChunk(4);
    const std::vector<uint8_t> bytes = log_.streamBytes();
    ASSERT_EQ(bytes.size(), 5000u + 4 + 4 + 4);
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 5000, bytes.begin() + 5004),
              bigEndian(byteSum(5000)));
    EXPECT_EQ(std::vector<uint8_t>(bytes.end() - 8, bytes.end()),
              (std::vector<uint8_t>{0, 1, 2, 3, 0, 0, 0, 6}));
}

TEST_F(StreamTest, WordsAreBigEndianWhereverTheBufferBoundaryFalls) {
    streamBegin(*stream_, 0, 2052);
    putZeros(*stream_, 2046);
    putU32(*stream_, 0x01020304); // does not fit: the buffer goes first
    putU16(*stream_, 0x0506);
    streamFlush(*stream_, STREAM_END_OF_CHUNK);
    ASSERT_EQ(log_.calls.size(), 3u);
    EXPECT_EQ(log_.calls[1].bytes, 2046u);
    EXPECT_EQ(log_.calls[2].data, (std::vector<uint8_t>{1, 2, 3, 4, 5, 6, 0, 0, 0, 0x15}));
}

TEST_F(StreamTest, BandHeaderChunkCarriesTheWidthArgument) {
    sendBandHeader(CallbackLog::callback, log_.context(), 3, 4960, engine_->resources);
    ASSERT_EQ(log_.calls.size(), 2u);
    EXPECT_EQ(log_.calls[0].code, CB_STREAM_BEGIN);
    EXPECT_EQ(log_.calls[0].band, 3u);
    EXPECT_EQ(log_.calls[0].bytes, 8u);
    EXPECT_EQ(log_.calls[1].data, (std::vector<uint8_t>{0x8C, 0, 0x13, 0x5F, 0, 0, 0, 0xFE}));
}

} // namespace
} // namespace kryn::test
