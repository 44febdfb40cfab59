#include "support/page_fixture.h"

#include "displaylist/record_walk.h"
#include "engine/page_resources.h"
#include "kryn/kryn_raster.h"
#include "render/band_renderer.h"
#include "transfer/serialiser.h"

#include <cstring>

namespace kryn::test {

uint8_t* heapBytes(const std::vector<uint8_t>& bytes) {
    auto* p = static_cast<uint8_t*>(allocBytes(bytes.size()));
    std::memcpy(p, bytes.data(), bytes.size());
    return p;
}

uint8_t* runBuffer(uint8_t form, const std::vector<std::vector<uint16_t>>& entries,
                   const std::vector<int>& widths) {
    size_t entryBytes = 0;
    for (int w : widths) {
        entryBytes += size_t(w);
    }
    auto* buffer = static_cast<uint8_t*>(allocBytes(4 + entries.size() * entryBytes, true));
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

void PageTest::open(int16_t mode, uint16_t level, bool grey) {
    log_ = CallbackLog();
    engine_ = makeEngine(64, 63, BAND_ROWS, level);
    ASSERT_NE(engine_, nullptr);
    ASSERT_EQ(KRYNNewPage(mode, e()), KRYN_OK);
    page_ = pageOf(e());
    res_ = res();
    grey_ = grey;
    if (grey) {
        ASSERT_EQ(KRYNSelectSpace(1, e()), KRYN_OK);
    }
    ASSERT_EQ(getBandList(page_, 0, &list_), KRYN_OK);
}

DisplayList* PageTest::list(int32_t band) {
    DisplayList* l = nullptr;
    EXPECT_EQ(getBandList(page_, band, &l), KRYN_OK);
    return l;
}

std::vector<StreamChunk> PageTest::send() {
    appendEndRecord(list_);
    serialiseBand(CallbackLog::callback, log_.context(), 0, list_, res_);
    freeDisplayListBlocks(list_);
    page_->bands[0].list = nullptr;
    list_ = nullptr;
    return decodeChunks(log_.calls);
}

std::vector<uint8_t> PageTest::sentRecords() {
    const std::vector<StreamChunk> chunks = send();
    EXPECT_EQ(chunks.size(), 1u);
    if (chunks.empty() || chunks.back().data.size() < 4) {
        return {};
    }
    std::vector<uint8_t> data = chunks.back().data;
    EXPECT_EQ(std::vector<uint8_t>(data.end() - 4, data.end()), wordBytes({0x87000000}));
    data.resize(data.size() - 4);
    return data;
}

std::vector<uint8_t> PageTest::ops() const {
    std::vector<uint8_t> out;
    walkRecords(list_, [&](uint8_t op, const uint8_t*) {
        out.push_back(op);
        return true;
    });
    return out;
}

std::vector<std::vector<uint8_t>> PageTest::records() const {
    std::vector<std::vector<uint8_t>> out;
    walkRecords(list_, [&](uint8_t op, const uint8_t* r) {
        out.emplace_back(r, r + recordSize(op));
        return true;
    });
    return out;
}

BandPixels PageTest::pixels(size_t i) const {
    const Delivery& d = log_.calls.at(i);
    const int32_t width = rendererWidth(engine_->pageWidth, engine_->resources->mode);
    const bool grey = grey_ || d.code == CB_RASTER_DIRECT;
    const int32_t stride = rasterStrideBytes(width, grey) / (grey ? 1 : 4);
    BandPixels out{stride, BAND_ROWS, std::vector<uint32_t>(size_t(stride) * BAND_ROWS, 0)};
    if (grey) {
        out.pixels.assign(d.data.begin(), d.data.begin() + stride * BAND_ROWS);
        return out;
    }
    // Run marks expanded as a receiver reads them, with the public helper.
    std::vector<uint32_t> row(static_cast<size_t>(stride));
    for (int32_t y = 0; y < BAND_ROWS; ++y) {
        std::memcpy(row.data(), d.data.data() + size_t(y) * size_t(stride) * 4, row.size() * 4);
        krynExpandRow(row.data(), uint32_t(stride), &out.pixels[size_t(y) * size_t(stride)],
                      uint32_t(stride));
    }
    return out;
}

} // namespace kryn::test
