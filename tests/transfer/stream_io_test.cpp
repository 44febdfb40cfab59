// The staging stream: how chunks are cut into calls and checksummed.
#include "support/engine_fixture.h"

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

// How a chunk of n data bytes is cut into calls: the begin call announces
// n + 4, whole 2048-byte buffers go out as data calls, and the end call
// carries the rest with the checksum (alone when no room was left for it).
TEST_F(StreamTest, ChunksAreCutIntoBufferSizedCalls) {
    const struct {
        uint32_t n;
        std::vector<uint32_t> dataCalls; // data call sizes, then the end call's
    } cases[] = {{16, {20}},
                 {2044, {2048}},
                 {2045, {2045, 4}},
                 {2048, {2048, 4}},
                 {5000, {2048, 2048, 908}}};
    for (const auto& c : cases) {
        log_ = CallbackLog();
        sendChunk(c.n);
        ASSERT_EQ(log_.calls.size(), c.dataCalls.size() + 1) << c.n;
        EXPECT_EQ(log_.calls[0].code, CB_STREAM_BEGIN);
        EXPECT_EQ(log_.calls[0].band, 7u);
        EXPECT_EQ(log_.calls[0].bytes, c.n + 4);
        for (size_t i = 0; i < c.dataCalls.size(); ++i) {
            EXPECT_EQ(log_.calls[i + 1].code,
                      i + 1 == c.dataCalls.size() ? CB_STREAM_END : CB_STREAM_DATA);
            EXPECT_EQ(log_.calls[i + 1].bytes, c.dataCalls[i]) << c.n << " call " << i;
        }
        const std::vector<uint8_t> bytes = log_.streamBytes();
        EXPECT_EQ(std::vector<uint8_t>(bytes.end() - 4, bytes.end()), bigEndian(byteSum(c.n)));
    }
    sendChunk(4); // each chunk's checksum starts again
    EXPECT_EQ(log_.calls.back().data, (std::vector<uint8_t>{0, 1, 2, 3, 0, 0, 0, 6}));
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

// KRYNEnd sends bytes still buffered as the end of a chunk.
TEST(StreamEnd, EndSendsBufferedStreamBytesAsTheEndOfAChunk) {
    CallbackLog log;
    Engine* e = KRYNInit(10, 10, 4, 600, 0);
    ASSERT_NE(e, nullptr);
    OutputStream& stream = e->resources->stream;
    stream.callback = CallbackLog::callback;
    stream.context = log.context();
    putU32(stream, 0x01020304);
    EXPECT_EQ(KRYNEnd(e), KRYN_OK);
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0].code, CB_STREAM_END);
    EXPECT_EQ(log.calls[0].data, (std::vector<uint8_t>{1, 2, 3, 4, 0, 0, 0, 0x0A}));
}

} // namespace
} // namespace kryn::test
