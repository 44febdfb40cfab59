#include "render_fixture.h"

#include "engine/memory.h"
#include "engine/page_record.h"
#include "engine/page_resources.h"
#include "render/band_renderer.h"

#include "kryn/kryn_raster.h"

#include <cstring>

namespace kryn::test {

BandPixels greyPixels(const Delivery& d, int32_t strideBytes, int32_t rows) {
    BandPixels out{strideBytes, rows, {}};
    out.pixels.assign(d.data.begin(), d.data.begin() + strideBytes * rows);
    return out;
}

// Run marks expanded as a receiver reads them, with the public helper.
BandPixels colourPixels(const Delivery& d, int32_t strideWords, int32_t rows) {
    BandPixels out{strideWords, rows, std::vector<uint32_t>(size_t(strideWords) * rows, 0)};
    std::vector<uint32_t> row(static_cast<size_t>(strideWords));
    for (int32_t y = 0; y < rows; ++y) {
        std::memcpy(row.data(), d.data.data() + size_t(y) * strideWords * 4, row.size() * 4);
        krynExpandRow(row.data(), uint32_t(strideWords), &out.pixels[size_t(y) * strideWords],
                      uint32_t(strideWords));
    }
    return out;
}

uint8_t* runBuffer(uint8_t form, const std::vector<std::vector<uint16_t>>& entries,
                   const std::vector<int>& widths) {
    // Each entry is written as its fields in order: bytes where widths say 1,
    // little-endian u16 where they say 2.
    size_t entryBytes = 0;
    for (int w : widths) {
        entryBytes += size_t(w);
    }
    const size_t bytes = 4 + entries.size() * entryBytes;
    auto* buffer = static_cast<uint8_t*>(allocBytes(bytes, true));
    if (buffer == nullptr) {
        return nullptr;
    }
    buffer[1] = form;
    const auto count = static_cast<uint16_t>(entries.size());
    std::memcpy(buffer + 2, &count, 2);
    uint8_t* at = buffer + 4;
    for (const auto& entry : entries) {
        for (size_t f = 0; f < widths.size(); ++f) {
            std::memcpy(at, &entry[f], size_t(widths[f]));
            at += widths[f];
        }
    }
    return buffer;
}

DisplayList* RenderTest::list(int32_t band) {
    DisplayList* l = nullptr;
    EXPECT_EQ(getBandList(pageOf(e()), band, &l), KRYN_OK);
    return l;
}

int32_t RenderTest::rasterWidth() const {
    return rendererWidth(engine_->pageWidth, engine_->resources->mode);
}

int32_t RenderTest::strideBytes() const {
    return rasterStrideBytes(rasterWidth(), grey_);
}

BandPixels RenderTest::pixels(size_t i) const {
    const Delivery& d = log_.calls.at(i);
    if (grey_ || d.code == CB_RASTER_DIRECT) {
        return greyPixels(d, rasterStrideBytes(rasterWidth(), true), BAND_ROWS);
    }
    return colourPixels(d, strideBytes() / 4, BAND_ROWS);
}

} // namespace kryn::test
