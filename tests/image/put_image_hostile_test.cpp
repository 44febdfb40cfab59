// KRYNPutImage, KRYNSetImageTable and KRYNPutImageWithMask under hostile
// input: sizes, strides and formats at their extremes, destination
// rectangles and matrices far beyond the page, huge reductions and
// enlargements. Every call answers a documented code, the sample buffer is
// released exactly once (by the caller after KRYN_ERR_INVALID, by the
// engine otherwise), no call makes more than a handful of allocations, and
// the page still plays (or is sent) afterwards.
#include "support/engine_fixture.h"

#include "render/renderer_lists.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace {

using kryn::test::CallbackLog;
using kryn::test::documented;

constexpr size_t BUFFER_BYTES = 4096;

void* samples(size_t bytes = BUFFER_BYTES) {
    void* p = GlobalAlloc(GMEM_FIXED, bytes);
    std::memset(p, 0x5A, bytes);
    return p;
}

struct Page {
    explicit Page(int16_t mode, int32_t space = 0) {
        e = KRYNInit(199, 149, 32, 600, 0x8009);
        EXPECT_EQ(KRYNNewPage(mode, e), KRYN_OK);
        EXPECT_EQ(KRYNSelectSpace(space, e), KRYN_OK);
        const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
        EXPECT_EQ(KRYNSetMatrix(identity, e), KRYN_OK);
        EXPECT_EQ(KRYNSetLogicalFunc(0xCC, e), KRYN_OK);
    }
    // Places an image whose buffer the call takes unless it refuses.
    ResultCode put(ImageDesc d, int32_t x, int32_t y, int32_t w, int32_t h) {
        const uint64_t count = KRYNPlatformAllocCount();
        const ResultCode r = KRYNPutImage(&d, x, y, w, h, e);
        EXPECT_LT(KRYNPlatformAllocCount() - count, 200u) << "unbounded allocation";
        if (r == KRYN_ERR_INVALID) {
            GlobalFree(d.samples); // still the caller's
        }
        return r;
    }
    ~Page() {
        CallbackLog log;
        EXPECT_EQ(KRYNNextBand(1, &CallbackLog::callback, log.context(), e), KRYN_OK);
        EXPECT_EQ(KRYNClosePage(&CallbackLog::callback, log.context(), e), KRYN_OK);
        KRYNEnd(e);
    }
    Engine* e = nullptr;
};

TEST(PutImageHostile, DescriptionsAreRefusedBeforeTheirSamplesAreRead) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    const int32_t sizes[] = {0, -1, INT32_MIN, 1, 3};
    for (int16_t mode : {3, 0}) {
        Page page(mode);
        for (int32_t w : sizes) {
            for (int32_t h : sizes) {
                for (int32_t stride : {0, -1, INT32_MIN, 1, 12, 2048}) {
                    for (uint32_t format :
                         {0u, 1u, 4u, 8u, 24u, 7u, 104u, 108u, 124u, 254u, 255u, 0xFFFFFFFFu}) {
                        const bool sized = w > 0 && h > 0 && stride > 0;
                        const int64_t bits = format == 24  ? 32
                                             : format == 4 ? 4
                                             : format == 1 ? 1
                                                           : 8;
                        const bool shortStride = stride < (w * bits + 7) / 8;
                        const bool stateRefuses = format >= 104 && format <= 255;
                        // As many bytes as the description claims.
                        const size_t bytes = sized ? size_t(stride) * size_t(h) : 16;
                        const ResultCode r =
                            page.put({samples(bytes), w, h, stride, format}, 1, 1, 9, 7);
                        const std::string what = std::to_string(w) + "x" + std::to_string(h) +
                                                 " stride " + std::to_string(stride) + " format " +
                                                 std::to_string(format);
                        const bool unknown = format == 0 || format == 7 || format == 0xFFFFFFFFu;
                        if (!sized || (shortStride && !unknown) || stateRefuses) {
                            EXPECT_EQ(r, KRYN_ERR_INVALID) << what;
                        } else if (unknown) {
                            EXPECT_EQ(r, KRYN_ERR_NO_MEMORY) << what << ": no such format";
                        } else {
                            EXPECT_EQ(r, KRYN_OK) << what;
                        }
                    }
                }
            }
        }
        ImageDesc nulls{nullptr, 2, 2, 8, 24};
        EXPECT_EQ(KRYNPutImage(&nulls, 0, 0, 2, 2, page.e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNPutImage(nullptr, 0, 0, 2, 2, page.e), KRYN_ERR_INVALID);
        // A grey-only format on a colour page, and strides one byte short.
        EXPECT_EQ(page.put({samples(), 4, 2, 4, 255}, 0, 0, 4, 2), KRYN_ERR_INVALID);
        EXPECT_EQ(page.put({samples(), 9, 2, 1, 1}, 0, 0, 9, 2), KRYN_ERR_INVALID);
        EXPECT_EQ(page.put({samples(), 9, 2, 4, 4}, 0, 0, 9, 2), KRYN_ERR_INVALID);
        EXPECT_EQ(page.put({samples(), 9, 2, 8, 8}, 0, 0, 9, 2), KRYN_ERR_INVALID);
    }
    {
        Page grey(5, 1);
        EXPECT_EQ(grey.put({samples(), 4, 2, 4, 255}, 0, 0, 4, 2), KRYN_OK);
        EXPECT_EQ(grey.put({samples(), 4, 2, 4, 254}, 0, 0, 4, 2), KRYN_ERR_INVALID);
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

TEST(PutImageHostile, PlacementsFarBeyondThePageStayBounded) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    const int32_t coords[] = {0, -1, INT32_MIN, INT32_MAX, 1 << 27, -(1 << 27), 100};
    const int32_t extents[] = {0, 1, -1, INT32_MIN, INT32_MAX, 1 << 20, 7};
    const std::vector<std::vector<int32_t>> matrices = {
        {1, 0, 0, 1, 0, 0},
        {0, 1, -1, 0, 199, 0},
        {-1, 0, 0, -1, 199, 149},
        {INT32_MAX, 0, 0, INT32_MAX, 0, 0},
        {0, INT32_MAX, INT32_MIN, 0, 0, 0},
        {INT32_MIN, 0, 0, INT32_MIN, INT32_MAX, INT32_MIN},
        {3, 1, 1, 3, 0, 0},
        {1, 0, 0, 1, 1 << 27, -(1 << 27)},
    };
    for (const auto& m : matrices) {
        for (float scale : {1.0f, 1e20f, 1e-20f, 0.3f}) {
            for (int16_t mode : {3, 0}) {
                Page page(mode);
                ASSERT_TRUE(documented(KRYNSetMatrix(m.data(), page.e)));
                ASSERT_TRUE(documented(KRYNSetScale(scale, page.e)));
                for (int32_t x : coords) {
                    for (int32_t w : extents) {
                        EXPECT_TRUE(documented(page.put({samples(96), 4, 3, 32, 24}, x, x / 2, w,
                                                        w == INT32_MIN ? 5 : w)))
                            << m[0] << ' ' << scale << ' ' << x << ' ' << w;
                        EXPECT_TRUE(documented(page.put({samples(8), 9, 3, 2, 1}, 10, x, w, 3)));
                    }
                }
                // Huge sources into tiny and enormous rectangles.
                EXPECT_TRUE(
                    documented(page.put({samples(1 << 20), 1024, 1024, 1024, 8}, 5, 5, 3, 2)));
                EXPECT_TRUE(documented(
                    page.put({samples(1 << 20), 1024, 256, 4096, 24}, -3, -3, INT32_MAX, 9)));
                EXPECT_TRUE(documented(
                    page.put({samples(1 << 16), 1, 1 << 16, 1, 255}, 0, 0, 2, INT32_MAX)));
            }
        }
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

TEST(PutImageHostile, TablesAndTheMaskVariant) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        Page page(3);
        std::vector<ColourValue> table(256, 0x123456);
        for (uint32_t count : {0u, 1u, 3u, 15u, 17u, 255u, 257u, 0xFFFFFFFFu}) {
            EXPECT_EQ(KRYNSetImageTable(count, table.data(), 0, page.e), KRYN_ERR_INVALID) << count;
        }
        EXPECT_EQ(KRYNSetImageTable(16, nullptr, 0, page.e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetImageTable(16, table.data(), 0, nullptr), KRYN_ERR_INVALID);
        // Tables are numbered from 0; the page keeps 32768 of them. The
        // newest is made the 32768th here, so the next distinct one is
        // refused while an equal one is still found.
        EXPECT_EQ(KRYNSetImageTable(16, table.data(), 0, page.e), KRYN_OK);
        kryn::openPage(page.e)->colourTables->tableId = 32767;
        table[0] = 40000;
        EXPECT_EQ(KRYNSetImageTable(16, table.data(), 0, page.e), KRYN_ERR_INVALID);
        table[0] = 0x123456;
        EXPECT_EQ(KRYNSetImageTable(16, table.data(), 0, page.e), KRYN_OK); // the equal one
        EXPECT_EQ(page.put({samples(), 8, 8, 8, 8}, 0, 0, 16, 16), KRYN_OK);

        ImageDesc image{samples(), 2, 2, 8, 24};
        ImageDesc mask{samples(), 2, 2, 1, 1};
        EXPECT_EQ(KRYNPutImageWithMask(&image, nullptr, 0, 0, 2, 2, page.e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNPutImageWithMask(&image, &mask, 0, 0, 2, 2, nullptr), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNPutImageWithMask(&image, &mask, INT32_MIN, 0, -1, 0, page.e), KRYN_OK);
        ImageDesc shared{samples(), 2, 2, 8, 24};
        EXPECT_EQ(KRYNPutImageWithMask(&shared, &shared, 0, 0, 2, 2, page.e), KRYN_OK);
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

} // namespace
