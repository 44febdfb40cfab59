// Text: glyph-like 24 x 32 bitmaps on a band of 4960 x 128 pixels, three
// lines of 188 glyphs, as the standard glyphs page sets them. Measures
// placing them from the image cache (recording, glyphs per second) and
// playing their mask records into grey and colour rasters.
#include "displaylist/display_list.h"
#include "engine/engine.h"
#include "engine/page_record.h"
#include "kryn/kryn.h"
#include "render/band_interpreters.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <vector>

namespace {

constexpr int32_t WIDTH = 4960;
constexpr int16_t ROWS = 128;
constexpr int GLYPHS = 64;
constexpr int COLUMNS = 188;
constexpr int LINES = 3;

uint32_t nextRandom(uint32_t& seed) {
    seed = seed * 1664525u + 1013904223u;
    return seed >> 8;
}

// A glyph: a few stems and bars three pixels thick inside a margin.
std::vector<uint8_t> glyph(uint32_t& seed) {
    std::vector<uint8_t> rows(3 * 32, 0);
    const auto set = [&](int x, int y) { rows[size_t(y * 3 + x / 8)] |= uint8_t(0x80 >> (x % 8)); };
    const int strokes = 2 + int(nextRandom(seed) % 4);
    for (int s = 0; s < strokes; ++s) {
        const bool stem = nextRandom(seed) % 2 == 0;
        const int at = 2 + int(nextRandom(seed) % (stem ? 18 : 26));
        for (int i = 2; i < (stem ? 30 : 22); ++i) {
            for (int t = 0; t < 3; ++t) {
                stem ? set(at + t, i) : set(i, at + t);
            }
        }
    }
    return rows;
}

// A one-band page whose glyphs are stored in the cache.
struct TextBand {
    Engine* engine = nullptr;

    explicit TextBand(bool grey) {
        engine = KRYNInit(WIDTH - 1, ROWS - 1, ROWS, 600, 0x8009);
        KRYNSetImageCacheInfo(GLYPHS, engine);
        open(grey);
        uint32_t seed = 7;
        for (int g = 0; g < GLYPHS; ++g) {
            const std::vector<uint8_t> rows = glyph(seed);
            KRYNSetImageCache(uint16_t(g), 24, 32, 0, rows.data(), uint16_t(g), engine);
        }
    }
    void open(bool grey) {
        KRYNNewPage(5, engine);
        if (grey) {
            KRYNSelectSpace(1, engine);
        }
        const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
        KRYNSetMatrix(identity, engine);
    }
    void place(int columns = COLUMNS) {
        uint32_t seed = 11;
        for (int line = 0; line < LINES; ++line) {
            for (int c = 0; c < columns; ++c) {
                KRYNPutImageCache(25 + 25 * c, 4 + 42 * line, uint16_t(nextRandom(seed) % GLYPHS),
                                  engine);
            }
        }
    }
    ~TextBand() {
        KRYNDisposePage(engine);
        KRYNEnd(engine);
    }
};

void placeFromCache(benchmark::State& state) {
    TextBand band(true);
    for (auto _ : state) {
        band.place();
        state.PauseTiming();
        KRYNDisposePage(band.engine);
        band.open(true);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * LINES * COLUMNS);
}

// Arg: glyphs a line (1 measures the band's clearing and delivery alone).
void play(benchmark::State& state, bool grey) {
    TextBand band(grey);
    const auto columns = static_cast<int>(state.range(0));
    band.place(columns);
    kryn::PageRecord* page = kryn::openPage(band.engine);
    page->bands[0].bandMonochrome = 0;
    kryn::DisplayList* list = page->bands[0].list;
    kryn::appendEndRecord(list);
    kryn::appendTerminator(list);
    kryn::RenderResources* res = band.engine->resources;
    const kryn::BandInterpreters& interpreters = *res->interpreters;
    const kryn::BandInterpreter interpreter =
        grey ? interpreters.playBand8 : interpreters.playBand32;
    for (auto _ : state) {
        benchmark::DoNotOptimize(interpreter(res->renderer, res, 0, list, 2));
    }
    state.SetItemsProcessed(state.iterations() * LINES * columns);
}

void playGreyMasks(benchmark::State& s) {
    play(s, true);
}
void playColourMasks(benchmark::State& s) {
    play(s, false);
}

BENCHMARK(placeFromCache);
BENCHMARK(playGreyMasks)->Arg(COLUMNS)->Arg(1);
BENCHMARK(playColourMasks)->Arg(COLUMNS)->Arg(1);

} // namespace
