// The image cache disabling itself when memory runs out, its life across
// pages, and the record a placement makes. What the mask and cache calls
// refuse, and who keeps a handed-over buffer then: the golden job
// mask_cache_calls.
#include "support/engine_fixture.h"

#include "displaylist/record_walk.h"
#include "image/image_cache.h"

#include <gtest/gtest.h>

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

} // namespace

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
