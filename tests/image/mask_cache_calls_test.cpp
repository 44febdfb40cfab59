// The calls of masks and the image cache at their edges: what is refused
// and who keeps a handed-over buffer then, the cache disabling itself when
// memory runs out, its life across pages, and the record a placement makes.
#include "support/engine_fixture.h"

#include "displaylist/record_walk.h"
#include "image/image_cache.h"
#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace kryn::test {

namespace {

const int32_t IDENTITY[6] = {1, 0, 0, 1, 0, 0};
const uint8_t GLYPH[8] = {0x18, 0x3C, 0x7E, 0xFF, 0xFF, 0x7E, 0x3C, 0x18};

EnginePtr pageEngine() {
    EnginePtr e = makeEngine(199, 149, 16);
    EXPECT_EQ(KRYNNewPage(3, e.get()), KRYN_OK);
    EXPECT_EQ(KRYNSetMatrix(IDENTITY, e.get()), KRYN_OK);
    return e;
}

void* heapCopy(const void* bytes, size_t n) {
    void* block = GlobalAlloc(GMEM_FIXED, n);
    std::memcpy(block, bytes, n);
    return block;
}

} // namespace

// Ownership 1: a refused call leaves the buffer with the caller; every
// other answer leaves it with the engine, freed exactly once (by the page
// end at the latest). The live-block count shows where it is.
TEST(MaskCalls, AHandedOverBufferIsReleasedOnceOnEveryPath) {
    struct Case {
        const char* what;
        ImageDesc mask;
        int32_t x;
        int32_t scale; // matrix scale
        ResultCode answer;
        bool callerKeeps;
    };
    const Case cases[] = {
        {"width 0", {nullptr, 0, 8, 1, 1}, 10, 1, KRYN_ERR_INVALID, true},
        {"height -1", {nullptr, 8, -1, 1, 1}, 10, 1, KRYN_ERR_INVALID, true},
        {"stride 0", {nullptr, 8, 8, 0, 1}, 10, 1, KRYN_ERR_INVALID, true},
        {"stride short of a row", {nullptr, 17, 8, 2, 1}, 10, 1, KRYN_ERR_INVALID, true},
        {"format 8", {nullptr, 8, 8, 1, 8}, 10, 1, KRYN_ERR_INVALID, true},
        {"outside the clip", {nullptr, 8, 8, 1, 1}, 5000, 1, KRYN_OK, false},
        {"a sample too large", {nullptr, 8, 8, 1, 1}, 0, 70000, KRYN_ERR_NO_MEMORY, false},
        {"painted", {nullptr, 8, 8, 1, 1}, 10, 1, KRYN_OK, false},
        {"painted from a turned copy", {nullptr, 8, 8, 1, 1}, 10, -1, KRYN_OK, false},
    };
    for (const Case& c : cases) {
        const uint64_t live = KRYNPlatformLiveBlocks();
        {
            EnginePtr e = pageEngine();
            const int32_t m[6] = {c.scale, 0, 0, c.scale, 100, 100};
            ASSERT_EQ(KRYNSetMatrix(m, e.get()), KRYN_OK);
            const uint64_t before = KRYNPlatformLiveBlocks();
            ImageDesc mask = c.mask;
            mask.samples = heapCopy(GLYPH, sizeof GLYPH);
            EXPECT_EQ(KRYNPutImageMask(&mask, c.x, 0, 1, e.get()), c.answer) << c.what;
            if (c.callerKeeps) {
                EXPECT_EQ(KRYNPlatformLiveBlocks(), before + 1) << c.what;
                GlobalFree(mask.samples);
            }
            EXPECT_EQ(KRYNClosePage(nullptr, 0, e.get()), KRYN_OK);
        }
        EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << c.what;
    }
    EnginePtr e = pageEngine();
    EXPECT_EQ(KRYNPutImageMask(nullptr, 0, 0, 1, e.get()), KRYN_ERR_INVALID);
    ImageDesc noSamples{nullptr, 8, 8, 1, 1};
    EXPECT_EQ(KRYNPutImageMask(&noSamples, 0, 0, 1, e.get()), KRYN_ERR_INVALID);
}

TEST(ImageCacheCalls, RefusesWhatItCannotStoreOrPlace) {
    EnginePtr engine = makeEngine(199, 149, 16);
    Engine* e = engine.get();
    const std::vector<uint8_t> big(31 * 248, 0xFF);
    EXPECT_EQ(KRYNSetImageCache(1, 8, 8, 0, GLYPH, 0, e), KRYN_ERR_INVALID) << "no page";
    EXPECT_EQ(KRYNClearImageCache(31, e), KRYN_OK) << "a slot in range, nothing stored";
    ASSERT_EQ(KRYNNewPage(3, e), KRYN_OK);
    ASSERT_EQ(KRYNSetMatrix(IDENTITY, e), KRYN_OK);
    struct Store {
        int16_t width, height;
        const uint8_t* bitmap;
        uint16_t slot;
        ResultCode answer;
    };
    const Store stores[] = {
        {248, 248, big.data(), 0, KRYN_OK},
        {249, 1, big.data(), 1, KRYN_ERR_INVALID},
        {1, 249, big.data(), 1, KRYN_ERR_INVALID},
        {-1, 8, GLYPH, 1, KRYN_ERR_INVALID},
        {8, -32768, GLYPH, 1, KRYN_ERR_INVALID},
        {8, 8, nullptr, 1, KRYN_ERR_INVALID},
        {8, 8, GLYPH, 32, KRYN_ERR_INVALID},
        {8, 8, GLYPH, 65535, KRYN_ERR_INVALID},
        {0, 0, GLYPH, 2, KRYN_OK},
        {8, 8, GLYPH, 31, KRYN_OK},
    };
    for (const Store& s : stores) {
        EXPECT_EQ(KRYNSetImageCache(7, s.width, s.height, 0, s.bitmap, s.slot, e), s.answer)
            << s.width << " x " << s.height << " in slot " << s.slot;
    }
    EXPECT_EQ(KRYNSetImageCacheInfo(64, e), KRYN_OK);
    EXPECT_EQ(KRYNSetImageCache(7, 8, 8, 0, GLYPH, 40, e), KRYN_ERR_INVALID)
        << "the slot count is fixed once something is stored";
    EXPECT_EQ(KRYNPutImageCache(10, 10, 1, e), KRYN_ERR_INVALID) << "never stored";
    EXPECT_EQ(KRYNPutImageCache(10, 10, 32, e), KRYN_ERR_INVALID) << "out of range";
    EXPECT_EQ(KRYNPutImageCache(10, 10, 2, e), KRYN_OK) << "an empty entry paints nothing";
    EXPECT_EQ(KRYNPutImageCache(10, 10, 31, e), KRYN_OK);
    EXPECT_EQ(KRYNClearImageCache(31, e), KRYN_OK);
    EXPECT_EQ(KRYNClearImageCache(32, e), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNPutImageCache(10, 10, 31, e), KRYN_ERR_INVALID) << "cleared";
    EXPECT_EQ(KRYNSetImageCache(7, 8, 8, 0, GLYPH, 31, e), KRYN_OK);
    EXPECT_EQ(KRYNPutImageCache(10, 10, 31, e), KRYN_OK) << "stored again after the clear";
    EXPECT_EQ(KRYNDisposePage(e), KRYN_OK);
    EXPECT_EQ(KRYNPutImageCache(10, 10, 31, e), KRYN_ERR_INVALID) << "no page";
}

// The table cannot be made: disabled until KRYNSetImageCacheInfo. An entry
// cannot be made: disabled for good, while what is stored still paints.
TEST(ImageCacheCalls, AFailedAllocationDisablesTheCache) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        EnginePtr e = pageEngine();
        KRYNPlatformFailAfter(0);
        EXPECT_EQ(KRYNSetImageCache(1, 8, 8, 0, GLYPH, 0, e.get()), KRYN_ERR_NO_MEMORY);
        KRYNPlatformFailAfter(-1);
        EXPECT_EQ(KRYNSetImageCache(1, 8, 8, 0, GLYPH, 0, e.get()), KRYN_ERR_NO_MEMORY);
        EXPECT_EQ(KRYNSetImageCacheInfo(4, e.get()), KRYN_OK);
        EXPECT_EQ(KRYNSetImageCache(1, 8, 8, 0, GLYPH, 0, e.get()), KRYN_OK);
        const int32_t quarter[6] = {0, 1, -1, 0, 50, 50};
        ASSERT_EQ(KRYNSetMatrix(quarter, e.get()), KRYN_OK);
        KRYNPlatformFailAfter(1); // the turned copy is made, its entry is not
        EXPECT_EQ(KRYNSetImageCache(2, 8, 8, 0, GLYPH, 2, e.get()), KRYN_ERR_NO_MEMORY);
        KRYNPlatformFailAfter(-1);
        EXPECT_EQ(KRYNSetImageCacheInfo(4, e.get()), KRYN_OK);
        EXPECT_EQ(KRYNSetImageCache(2, 8, 8, 0, GLYPH, 2, e.get()), KRYN_ERR_NO_MEMORY);
        EXPECT_EQ(KRYNPutImageCache(0, 0, 0, e.get()), KRYN_OK);
        EXPECT_EQ(KRYNPutImageCache(0, 0, 2, e.get()), KRYN_ERR_INVALID);
        CallbackLog log;
        EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e.get()), KRYN_OK);
        EXPECT_FALSE(log.calls.empty());
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

// Entries live on from page to page; each page end leaves every slot its
// newest entry only, and KRYNEnd frees the rest.
TEST(ImageCacheCalls, PagesKeepTheNewestEntryOfEverySlot) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        EnginePtr e = pageEngine();
        for (int i = 0; i < 5; ++i) {
            ASSERT_EQ(KRYNSetImageCache(uint16_t(i), 8, 8, 0, GLYPH, 0, e.get()), KRYN_OK);
            ASSERT_EQ(KRYNPutImageCache(8 * i, 0, 0, e.get()), KRYN_OK);
        }
        ASSERT_EQ(KRYNSetImageCache(9, 8, 8, 0, GLYPH, 1, e.get()), KRYN_OK);
        const uint64_t withEntries = KRYNPlatformLiveBlocks();
        ASSERT_EQ(KRYNClosePage(nullptr, 0, e.get()), KRYN_OK);
        EXPECT_LT(KRYNPlatformLiveBlocks(), withEntries);
        const ImageCache* cache = e->imageCache;
        ASSERT_NE(cache, nullptr);
        ASSERT_NE(cache->slots[0].newest, nullptr);
        EXPECT_EQ(cache->slots[0].newest->key, 4u);
        EXPECT_EQ(cache->slots[0].newest->next, nullptr);
        EXPECT_EQ(cache->slots[1].newest->key, 9u);

        ASSERT_EQ(KRYNNewPage(3, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(IDENTITY, e.get()), KRYN_OK);
        EXPECT_EQ(KRYNPutImageCache(100, 50, 0, e.get()), KRYN_OK);
        // Band 3 (rows 48..63) holds the glyph's record 131: row 2, x 100,
        // 8 pixels by 8 rows, its data the entry's bitmap itself.
        const DisplayList* list = pageOf(e.get())->bands[3].list;
        ASSERT_NE(list, nullptr);
        int masks = 0;
        walkRecords(list, [&](uint8_t op, const uint8_t* r) {
            if (op == DL_OP_MASK_IMAGE) {
                ++masks;
                EXPECT_EQ(r[1], 2);
                EXPECT_EQ(loadU16(r + 2), 100);
                EXPECT_EQ(loadU16(r + 4), 8);
                EXPECT_EQ(r[8], 8);
                EXPECT_EQ(loadPointer(r + IMAGE_POINTER_OFFSET), cache->slots[0].newest->bitmap());
            }
            return true;
        });
        EXPECT_EQ(masks, 1);
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

} // namespace kryn::test
