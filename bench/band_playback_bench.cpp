// Band playback of area records on a 4960-pixel-wide band of 64 rows:
// rectangles and span lists per second, on grey and colour rasters, under
// the copy and XOR fast paths and a raster operation called per pixel.
#include "displaylist/display_list.h"
#include "displaylist/record_writers.h"
#include "engine/engine.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "kryn/kryn.h"
#include "render/band_interpreters.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <cstring>

namespace {

constexpr int32_t WIDTH = 4960;
constexpr int16_t ROWS = 64;
constexpr int RECORDS = 500;
constexpr uint16_t SPANS = 2000;

uint32_t nextRandom(uint32_t& seed) {
    seed = seed * 1664525u + 1013904223u;
    return seed >> 8;
}

// A page with one band list of area records, ended and terminated, ready
// to be played again and again without a callback.
struct Band {
    Engine* engine = nullptr;
    kryn::DisplayList* list = nullptr;
    int items = 0;

    Band(bool grey, uint8_t rop, bool spans) {
        engine = KRYNInit(WIDTH - 1, ROWS - 1, ROWS, 600, 0x8009);
        KRYNNewPage(5, engine);
        if (grey) {
            KRYNSelectSpace(1, engine);
        }
        kryn::PageRecord* page = kryn::openPage(engine);
        page->bands[0].bandMonochrome = 0;
        kryn::getBandList(page, 0, &list);
        kryn::RenderResources* res = engine->resources;
        kryn::writeRop(list, rop, res);
        kryn::writePaintColour(list, 0x336699, kryn::COLOUR_FORE, res);
        uint32_t seed = 1;
        if (spans) {
            for (int r = 0; r < RECORDS / 10; ++r) {
                auto* buffer = static_cast<uint8_t*>(kryn::allocBytes(4 + SPANS * 6u, true));
                for (uint16_t i = 0; i < SPANS; ++i) {
                    uint8_t* e = buffer + 4 + 6 * i;
                    e[0] = static_cast<uint8_t>(nextRandom(seed) % ROWS);
                    const auto x = static_cast<uint16_t>(nextRandom(seed) % (WIDTH - 600));
                    const auto w = static_cast<uint16_t>(1 + nextRandom(seed) % 500);
                    std::memcpy(e + 2, &x, 2);
                    std::memcpy(e + 4, &w, 2);
                }
                kryn::writeRuns(list, buffer, SPANS, res);
                items += SPANS;
            }
        } else {
            for (int r = 0; r < RECORDS; ++r) {
                const auto x = static_cast<uint16_t>(nextRandom(seed) % (WIDTH - 2000));
                const auto row = static_cast<uint8_t>(nextRandom(seed) % 32);
                kryn::writeRect(list, {row, x}, 1 + nextRandom(seed) % 2000,
                                1 + nextRandom(seed) % 32, res);
                kryn::writePaintColour(list, nextRandom(seed), kryn::COLOUR_FORE, res);
                ++items;
            }
        }
        kryn::appendEndRecord(list);
        kryn::appendTerminator(list);
    }
    ~Band() {
        KRYNDisposePage(engine);
        KRYNEnd(engine);
    }
};

void play(benchmark::State& state, bool grey, bool spans) {
    const auto rop = static_cast<uint8_t>(state.range(0));
    Band band(grey, rop, spans);
    kryn::RenderResources* res = band.engine->resources;
    const kryn::BandInterpreters& interpreters = *res->interpreters;
    const kryn::BandInterpreter interpreter =
        grey ? interpreters.playBand8 : interpreters.playBand32;
    for (auto _ : state) {
        benchmark::DoNotOptimize(interpreter(res->renderer, res, 0, band.list, 2));
    }
    state.SetItemsProcessed(state.iterations() * band.items);
}

void greyRects(benchmark::State& s) {
    play(s, true, false);
}
void colourRects(benchmark::State& s) {
    play(s, false, false);
}
void greySpans(benchmark::State& s) {
    play(s, true, true);
}
void colourSpans(benchmark::State& s) {
    play(s, false, true);
}

BENCHMARK(greyRects)->Arg(0xF0)->Arg(0x5A)->Arg(0xB8);
BENCHMARK(colourRects)->Arg(0xF0)->Arg(0x5A)->Arg(0xB8);
BENCHMARK(greySpans)->Arg(0xF0)->Arg(0x5A)->Arg(0xB8);
BENCHMARK(colourSpans)->Arg(0xF0)->Arg(0x5A)->Arg(0xB8);

} // namespace
