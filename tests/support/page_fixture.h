// A page of 65 x 64 pixels in four 16-row bands on a fresh engine, with the
// means to write records into its band lists, send band 0 as the device
// receives it, close the page on the host and read the delivered rasters
// back as pixels (32-bit rasters with their run marks expanded).
#pragma once

#include "support/engine_fixture.h"
#include "support/stream_decoder.h"

#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/memory.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace kryn::test {

// Pixels of one delivered band: grey bytes, or 24-bit colours (tags dropped).
struct BandPixels {
    int32_t rowPixels = 0;
    int32_t rows = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int32_t x, int32_t y) const {
        return pixels[size_t(y) * size_t(rowPixels) + size_t(x)];
    }
};

// A buffer from the engine heap holding the given bytes.
uint8_t* heapBytes(const std::vector<uint8_t>& bytes);

// Run buffers as the writers take them (engine heap); null when it fails.
// Each entry's fields are written in order: bytes where widths say 1,
// little-endian u16 where they say 2.
uint8_t* runBuffer(uint8_t form, const std::vector<std::vector<uint16_t>>& entries,
                   const std::vector<int>& widths);

class PageTest : public ::testing::Test {
  public:
    static constexpr int32_t BAND_ROWS = 16;

  protected:
    // Opens the page (grey: colour space 1) and band 0's list, list_. Host
    // rasters are 64 pixels wide, 65 in modes 8 and 9.
    void open(int16_t mode = 0, uint16_t level = 0x8009, bool grey = false);
    Engine* e() { return engine_.get(); }
    RenderResources* res() { return engine_->resources; }
    DisplayList* list(int32_t band);

    void rop(int32_t band, uint8_t code) { ASSERT_EQ(writeRop(list(band), code, res()), KRYN_OK); }
    void paint(int32_t band, uint32_t colour, ColourWhich which = COLOUR_FORE) {
        ASSERT_EQ(writePaintColour(list(band), colour, which, res()), KRYN_OK);
    }
    void source(int32_t band, uint32_t colour) {
        ASSERT_EQ(writeImageColour(list(band), colour, COLOUR_FORE, res()), KRYN_OK);
    }
    void rect(int32_t band, uint8_t row, uint16_t x, uint32_t w, uint32_t h) {
        ASSERT_EQ(writeRect(list(band), {row, x}, w, h, res()), KRYN_OK);
    }
    // Lets a colour band take the 32-bit interpreter on typed-raster devices.
    void notMonochrome(int32_t band) { page_->bands[band].bandMonochrome = 0; }

    // Ends, sends and frees band 0's list; answers the chunks sent so far.
    std::vector<StreamChunk> send();
    // Sends band 0 as one chunk and answers its bytes without the end record.
    std::vector<uint8_t> sentRecords();
    // Opcodes of band 0's records, in order, and the records' bytes.
    std::vector<uint8_t> ops() const;
    std::vector<std::vector<uint8_t>> records() const;

    ResultCode close() { return KRYNClosePage(CallbackLog::callback, log_.context(), e()); }
    // Pixels of delivery i.
    BandPixels pixels(size_t i) const;

    EnginePtr engine_;
    PageRecord* page_ = nullptr;
    RenderResources* res_ = nullptr;
    DisplayList* list_ = nullptr;
    CallbackLog log_;
    bool grey_ = false;
};

} // namespace kryn::test
