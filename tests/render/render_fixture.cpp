#include "render_fixture.h"

#include "engine/memory.h"
#include "engine/page_record.h"
#include "engine/page_resources.h"
#include "render/band_renderer.h"

#include <cstring>

namespace kryn::test {

namespace {

uint32_t wordAt(const std::vector<uint8_t>& data, size_t i) {
    uint32_t w = 0;
    std::memcpy(&w, data.data() + 4 * i, 4);
    return w;
}

} // namespace

BandPixels greyPixels(const Delivery& d, int32_t strideBytes, int32_t rows) {
    BandPixels out{strideBytes, rows, {}};
    out.pixels.assign(d.data.begin(), d.data.begin() + strideBytes * rows);
    return out;
}

// Runs as the receiver reads them: a head tagged 0x10 stands for as many
// pixels as the next word says, 0x20 makes the rest of the row white.
BandPixels colourPixels(const Delivery& d, int32_t strideWords, int32_t rows) {
    BandPixels out{strideWords, rows, std::vector<uint32_t>(size_t(strideWords) * rows, 0)};
    for (int32_t y = 0; y < rows; ++y) {
        int32_t x = 0;
        while (x < strideWords) {
            const uint32_t word = wordAt(d.data, size_t(y) * strideWords + x);
            const uint32_t tag = word >> 24;
            if ((tag & 0x20) != 0) {
                for (; x < strideWords; ++x) {
                    out.pixels[size_t(y) * strideWords + x] = 0xFFFFFF;
                }
                break;
            }
            uint32_t n = 1;
            if ((tag & 0x10) != 0 && x + 1 < strideWords) {
                n = wordAt(d.data, size_t(y) * strideWords + x + 1);
            }
            for (uint32_t i = 0; i < n && x < strideWords; ++i, ++x) {
                out.pixels[size_t(y) * strideWords + x] = word & 0xFFFFFF;
            }
        }
    }
    return out;
}

uint32_t ropByTruthTable(uint8_t code, uint32_t s, uint32_t p, uint32_t d, int bits) {
    uint32_t out = 0;
    for (int b = 0; b < bits; ++b) {
        const uint32_t index = ((p >> b) & 1) * 4 + ((s >> b) & 1) * 2 + ((d >> b) & 1);
        out |= uint32_t((code >> index) & 1) << b;
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
