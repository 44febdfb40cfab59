// Engine creation, page geometry and the handling of bad handles.
#include "support/engine_fixture.h"

#include "transfer/stream_io.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

struct Geometry {
    int32_t width, height;
    int16_t bandHeight;
    int32_t pageWidth, pageHeight, bandCount;
};

TEST(Engine, PageGeometryAddsTheExtraColumnAndRowAndRoundsBandsUp) {
    const Geometry cases[] = {
        {1, 1, 1, 2, 2, 2},           {4959, 7015, 128, 4960, 7016, 55},
        {100, 99, 100, 101, 100, 1},  // bands exactly fill the page
        {100, 100, 100, 101, 101, 2}, // one row spills into a second band
        {10, 10, 256, 11, 11, 1},     // band taller than the page
    };
    for (const Geometry& g : cases) {
        EnginePtr e = makeEngine(g.width, g.height, g.bandHeight);
        ASSERT_NE(e, nullptr);
        uint32_t w = 0, h = 0;
        EXPECT_EQ(KRYNGetPageResource(&w, &h, e.get()), KRYN_OK);
        EXPECT_EQ(w, static_cast<uint32_t>(g.pageWidth));
        EXPECT_EQ(h, static_cast<uint32_t>(g.pageHeight));
        EXPECT_EQ(e->bandCount, g.bandCount) << g.width << "x" << g.height << "/" << g.bandHeight;
    }
}

TEST(Engine, InitRejectsGeometryItCannotAddressWithoutAllocating) {
    const uint64_t before = KRYNPlatformAllocCount();
    EXPECT_EQ(KRYNInit(0, 10, 10, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(10, 0, 10, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(10, 10, 0, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(10, 10, -5, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(-1, 10, 10, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(INT32_MAX, 10, 10, 600, 0), nullptr); // columns beyond 16 bits
    EXPECT_EQ(KRYNInit(10, INT32_MAX, 10, 600, 0), nullptr);
    EXPECT_EQ(KRYNInit(10, 40000, 1, 600, 0), nullptr); // more bands than indices
    for (const int16_t rows : {int16_t{257}, int16_t{300}, int16_t{512}, int16_t{32767}}) {
        EXPECT_EQ(KRYNInit(10, 1000, rows, 600, 0), nullptr) << rows; // record rows are 8-bit
    }
    EXPECT_EQ(KRYNPlatformAllocCount(), before);
    EnginePtr widest = makeEngine(65535, 10, 16);
    EXPECT_NE(widest, nullptr);
    EnginePtr tallestBands = makeEngine(10, 1000, 256);
    EXPECT_NE(tallestBands, nullptr);
}

TEST(Engine, EveryOperationRejectsANullHandle) {
    uint32_t w, h;
    uint16_t info[6];
    EXPECT_EQ(KRYNEnd(nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNGetPageResource(&w, &h, nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNNewPage(0, nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNClosePage(nullptr, 0, nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNDisposePage(nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNNextBand(1, nullptr, 0, nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetReverseSide(nullptr), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNGetPageInfo(info, nullptr), KRYN_ERR_INVALID);
}

TEST(Engine, NullOutputPointersAreRejected) {
    EnginePtr e = makeEngine(10, 10, 4);
    uint32_t w = 7;
    EXPECT_EQ(KRYNGetPageResource(&w, nullptr, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNGetPageResource(nullptr, &w, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(w, 7u);
    ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
    EXPECT_EQ(KRYNGetPageInfo(nullptr, e.get()), KRYN_ERR_INVALID);
}

TEST(Engine, EndSendsBufferedStreamBytesAsTheEndOfAChunk) {
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

TEST(Engine, EndWithAnOpenPageReleasesEverything) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    Engine* e = KRYNInit(300, 300, 16, 600, 0x8009);
    ASSERT_EQ(KRYNNewPage(5, e), KRYN_OK);
    recordBytes(e, 3, {DL_OP_RECT, 0, 1, 0, 5, 0, 2, 0}, 8);
    EXPECT_EQ(KRYNEnd(e), KRYN_OK);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

} // namespace
} // namespace kryn::test
