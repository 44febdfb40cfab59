#include "image/sample_image.h"

#include <algorithm>

namespace kryn {

ResultCode pickSamples(const SampleImage& source, const TilePick& pick, SampleBuffer& out,
                       SampleImage& picked) {
    if (source.bits == 4 || source.stride < 0 || source.stride > INT32_MAX) {
        return KRYN_ERR_INVALID;
    }
    const TileSource tile{source.data, source.width, source.height,
                          static_cast<int32_t>(source.stride), 0};
    PixelTile result;
    const ResultCode r = pickTile(tile, source.bits, pick, result);
    if (failed(r)) {
        return r;
    }
    out = SampleBuffer(result.data);
    picked = {result.data, result.width, result.height, result.bytesPerRow, source.bits};
    return KRYN_OK;
}

TilePick resamplePick(const SampleImage& source, int64_t width, int64_t height) {
    TilePick pick;
    pick.width = width;
    pick.height = height;
    pick.stepX = width > 0 ? (static_cast<uint64_t>(source.width) << 16) / uint64_t(width) : 0;
    pick.stepY = height > 0 ? (static_cast<uint64_t>(source.height) << 16) / uint64_t(height) : 0;
    return pick;
}

ResultCode unpackNibbles(const SampleImage& source, SampleBuffer& out, SampleImage& unpacked) {
    const int64_t w = source.width;
    const int64_t h = source.height;
    auto* data = static_cast<uint8_t*>(allocBytes(size_t(std::max<int64_t>(w * h, 1))));
    if (data == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    for (int64_t y = 0; y < h; ++y) {
        const uint8_t* in = source.data + y * source.stride;
        uint8_t* at = data + y * w;
        for (int64_t x = 0; x + 1 < w; x += 2) {
            at[x] = static_cast<uint8_t>(in[x >> 1] >> 4);
            at[x + 1] = static_cast<uint8_t>(in[x >> 1] & 0x0F);
        }
        if ((w & 1) != 0) {
            at[w - 1] = static_cast<uint8_t>(in[(w - 1) >> 1] >> 4);
        }
    }
    out = SampleBuffer(data);
    unpacked = {data, source.width, source.height, w, 8};
    return KRYN_OK;
}

} // namespace kryn
