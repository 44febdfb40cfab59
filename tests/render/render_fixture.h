// Pages played on the host: records written into band lists with the
// record writers, the page closed through a recording callback, and the
// delivered rasters read back as pixels (32-bit rasters decoded from their
// run marks).
#pragma once

#include "support/engine_fixture.h"

#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/engine.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace kryn::test {

// Pixels of one delivered band: grey bytes, or the 24-bit colours of a
// 32-bit raster after decoding its run marks (tags dropped).
struct BandPixels {
    int32_t rowPixels = 0;
    int32_t rows = 0;
    std::vector<uint32_t> pixels;
    uint32_t at(int32_t x, int32_t y) const {
        return pixels[size_t(y) * size_t(rowPixels) + size_t(x)];
    }
};

BandPixels greyPixels(const Delivery& d, int32_t strideBytes, int32_t rows);
BandPixels colourPixels(const Delivery& d, int32_t strideWords, int32_t rows);

// Run buffers as the writers take them (engine heap); null when it fails.
uint8_t* runBuffer(uint8_t form, const std::vector<std::vector<uint16_t>>& entries,
                   const std::vector<int>& widths);

class RenderTest : public ::testing::Test {
  public:
    static constexpr int32_t BAND_ROWS = 16;

  protected:
    // A page 64 pixels wide (65 in modes 8 and 9) of four 16-row bands.
    void open(int16_t mode, bool grey, uint16_t level = 0x8009) {
        engine_ = makeEngine(64, 63, BAND_ROWS, level);
        ASSERT_NE(engine_, nullptr);
        ASSERT_EQ(KRYNNewPage(mode, engine_.get()), KRYN_OK);
        if (grey) {
            ASSERT_EQ(KRYNSelectSpace(1, engine_.get()), KRYN_OK);
        }
        grey_ = grey;
    }
    Engine* e() { return engine_.get(); }
    RenderResources* res() { return engine_->resources; }
    DisplayList* list(int32_t band);
    int32_t rasterWidth() const;
    int32_t strideBytes() const;

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
    void notMonochrome(int32_t band) { pageOf(e())->bands[band].bandMonochrome = 0; }

    ResultCode close() { return KRYNClosePage(CallbackLog::callback, log_.context(), e()); }
    // Pixels of delivery i.
    BandPixels pixels(size_t i) const;

    EnginePtr engine_;
    CallbackLog log_;
    bool grey_ = false;
};

} // namespace kryn::test
