// The sample copies of image placement against a direct reading of their
// rules: every orientation of 1-, 8-, 16- and 32-bit samples with any output
// size and step, nibble unpacking, and the image-source list's ownership.
#include "engine/page_record.h"
#include "image/image_sources.h"
#include "image/sample_image.h"
#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace kryn {
namespace {

uint32_t sampleAt(const SampleImage& image, int64_t x, int64_t y) {
    const uint8_t* row = image.data + y * image.stride;
    if (image.bits == 1) {
        return (row[x >> 3] >> (7 - (x & 7))) & 1u;
    }
    uint32_t v = 0;
    std::memcpy(&v, row + x * (image.bits / 8), size_t(image.bits / 8));
    return v;
}

// Output (x, y) of a pick, read the long way: the oriented coordinates, then
// the source pixel they name.
uint32_t expectedPick(const SampleImage& s, const TilePick& p, int64_t x, int64_t y) {
    const int64_t ow = p.swap ? s.height : s.width;
    const int64_t oh = p.swap ? s.width : s.height;
    int64_t ox = std::min<int64_t>(int64_t((uint64_t(x) * p.stepX) >> 16), ow - 1);
    int64_t oy = std::min<int64_t>(int64_t((uint64_t(y) * p.stepY) >> 16), oh - 1);
    ox = p.flipX ? ow - 1 - ox : ox;
    oy = p.flipY ? oh - 1 - oy : oy;
    return p.swap ? sampleAt(s, oy, ox) : sampleAt(s, ox, oy);
}

TEST(SamplePick, EveryOrientationSizeAndStepReadsTheRightSample) {
    std::mt19937 random(19);
    for (int bits : {1, 8, 16, 32}) {
        for (int round = 0; round < 64; ++round) {
            const int32_t w = 1 + int32_t(random() % 37);
            const int32_t h = 1 + int32_t(random() % 23);
            const int64_t stride = packedRowBytes(w, bits) + int64_t(random() % 5);
            std::vector<uint8_t> data(size_t(stride * h));
            for (uint8_t& b : data) {
                b = uint8_t(random());
            }
            const SampleImage source{data.data(), w, h, stride, bits};
            TilePick pick;
            pick.swap = (round & 1) != 0;
            pick.flipX = (round & 2) != 0;
            pick.flipY = (round & 4) != 0;
            pick.width = 1 + random() % 50;
            pick.height = 1 + random() % 50;
            pick.stepX = (round & 8) != 0 ? 0x10000 : 1 + random() % 0x30000;
            pick.stepY = (round & 16) != 0 ? 0x10000 : 1 + random() % 0x30000;
            SampleBuffer buffer;
            SampleImage picked;
            ASSERT_EQ(pickSamples(source, pick, buffer, picked), KRYN_OK);
            ASSERT_EQ(picked.stride, packedRowBytes(pick.width, bits));
            for (int64_t y = 0; y < pick.height; ++y) {
                for (int64_t x = 0; x < pick.width; ++x) {
                    ASSERT_EQ(sampleAt(picked, x, y), expectedPick(source, pick, x, y))
                        << bits << "-bit round " << round << " at " << x << ',' << y;
                }
            }
        }
    }
}

TEST(SamplePick, ResamplingAndNibblesFollowTheirRules) {
    std::vector<uint8_t> data(100 * 7);
    for (size_t i = 0; i < data.size(); ++i) {
        data[i] = uint8_t(i * 7);
    }
    const SampleImage source{data.data(), 100, 7, 100, 8};
    SampleBuffer buffer;
    SampleImage reduced;
    ASSERT_EQ(pickSamples(source, resamplePick(source, 10, 14), buffer, reduced), KRYN_OK);
    for (int i = 0; i < 14; ++i) {
        for (int j = 0; j < 10; ++j) { // s = 10.0, t = 0.5 in 16.16
            EXPECT_EQ(sampleAt(reduced, j, i), sampleAt(source, j * 10, i / 2));
        }
    }
    const uint8_t nibbles[] = {0x12, 0x3F, 0xAB, 0xC0}; // two rows of 3 samples
    SampleImage unpacked;
    ASSERT_EQ(unpackNibbles({nibbles, 3, 2, 2, 4}, buffer, unpacked), KRYN_OK);
    EXPECT_EQ(std::vector<uint8_t>(unpacked.data, unpacked.data + 6),
              (std::vector<uint8_t>{1, 2, 3, 0xA, 0xB, 0xC}));
}

TEST(ImageSources, EveryBufferIsReleasedOnceWhateverFails) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    PageRecord page;
    for (int64_t failAfter = 0; failAfter < 3; ++failAfter) {
        SampleBuffer buffer(GlobalAlloc(0, 16));
        KRYNPlatformFailAfter(failAfter);
        const ImageSourceEntry* entry = nullptr;
        const ResultCode r = keepImageSource(&page, buffer, ImageSourceEntry{}, &entry);
        KRYNPlatformFailAfter(-1);
        EXPECT_TRUE(buffer.empty());
        EXPECT_EQ(r == KRYN_OK, failAfter > 0);
        EXPECT_EQ(r == KRYN_OK, entry != nullptr && entry == page.imageSources);
    }
    releaseImageSources(&page);
    EXPECT_EQ(page.imageSources, nullptr);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}

} // namespace
} // namespace kryn
