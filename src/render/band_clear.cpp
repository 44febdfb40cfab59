#include "render/band_clear.h"

#include "render/band_renderer.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

void clearWhole(BandRenderer& r, bool grey) {
    const size_t bytes = size_t(r.strideWords) * 4u * size_t(r.height);
    if (grey) {
        std::memset(r.raster, 0xFF, bytes);
    } else {
        std::fill_n(reinterpret_cast<uint32_t*>(r.raster), bytes / 4, r.paperWord);
    }
}

void clearGreyBox(BandRenderer& r, const DirtyBox& box) {
    const int32_t stride = r.strideWords * 4;
    const auto n = static_cast<size_t>(box.maxX - box.minX + 1);
    for (int32_t y = box.minY; y <= box.maxY; ++y) {
        std::memset(r.raster + int64_t{y} * stride + box.minX, 0xFF, n);
    }
}

void clearColourBox(BandRenderer& r, const DirtyBox& box) {
    auto* words = reinterpret_cast<uint32_t*>(r.raster);
    const int32_t stride = r.strideWords;
    const int32_t heads = std::min(stride, 2);
    for (int32_t y = 0; y < r.height; ++y) {
        std::fill_n(words + int64_t{y} * stride, heads, r.paperWord);
    }
    const int32_t right = std::min(box.maxX + 3, stride - 1);
    const auto n = static_cast<size_t>(right - box.minX + 1);
    uint32_t* first = words + int64_t{box.minY} * stride + box.minX;
    std::fill_n(first, n, r.paperWord);
    for (int32_t y = box.minY + 1; y <= box.maxY; ++y) {
        std::memcpy(words + int64_t{y} * stride + box.minX, first, n * 4);
    }
}

} // namespace

void clearBandRaster(BandRenderer& r, bool grey) {
    const DirtyBox box = r.box;
    const int32_t rowPixels = grey ? r.strideWords * 4 : r.strideWords;
    const bool partial = box.maxX != 0 && box.maxY != 0 && box.minX >= 0 && box.minY >= 0 &&
                         box.minX <= box.maxX && box.minY <= box.maxY && box.maxX < rowPixels &&
                         box.maxY < r.height;
    if (!partial) {
        clearWhole(r, grey);
    } else if (grey) {
        clearGreyBox(r, box);
    } else {
        clearColourBox(r, box);
    }
}

} // namespace kryn
