// Fill recording throughput: polygons, rectangles and tall slanted quads
// recorded into the band lists of an A4 page at 600 dpi (serialised mode,
// lists dropped at each page end). Reports items (fills) per second.
#include "kryn/kryn.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <vector>

namespace {

constexpr int32_t PAGE_W = 4960;
constexpr int32_t PAGE_H = 7016;
constexpr int32_t FILLS_PER_PAGE = 2000;

struct Figures {
    std::vector<std::vector<int32_t>> points; // x, y pairs; the first is the start
};

uint32_t nextRandom(uint32_t& s) {
    s ^= s << 13;
    s ^= s >> 17;
    s ^= s << 5;
    return s;
}

// Polygons of 3..12 vertices inside a 300-pixel box, as the standard
// polygon page draws them.
Figures polygons() {
    Figures f;
    uint32_t s = 7;
    for (int32_t i = 0; i < FILLS_PER_PAGE; ++i) {
        const int32_t x = int32_t(nextRandom(s) % (PAGE_W - 300));
        const int32_t y = int32_t(nextRandom(s) % (PAGE_H - 300));
        const int32_t n = 3 + int32_t(nextRandom(s) % 10);
        std::vector<int32_t> p;
        for (int32_t k = 0; k < n; ++k) {
            p.push_back(x + int32_t(nextRandom(s) % 300));
            p.push_back(y + int32_t(nextRandom(s) % 300));
        }
        f.points.push_back(p);
    }
    return f;
}

void playPage(benchmark::State& state, const Figures& figures, uint16_t level) {
    Engine* e = KRYNInit(PAGE_W - 1, PAGE_H - 1, 128, 600, level);
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    const ColourValue grey = 0x606060;
    for (auto _ : state) {
        KRYNNewPage(0, e);
        KRYNSetMatrix(identity, e);
        KRYNSetLogicalFunc(0xF0, e);
        KRYNSetColor(&grey, 0, e);
        for (const auto& p : figures.points) {
            KRYNMoveTo(p[0], p[1], e);
            KRYNLinesTo(p.data() + 2, int16_t(p.size() / 2 - 1), e);
            KRYNFill(FILL_NONZERO, e);
        }
        KRYNDisposePage(e);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(figures.points.size()));
    KRYNEnd(e);
}

void fillPolygons(benchmark::State& state) {
    static const Figures figures = polygons();
    playPage(state, figures, uint16_t(state.range(0)));
}

void fillRectangles(benchmark::State& state) {
    Engine* e = KRYNInit(PAGE_W - 1, PAGE_H - 1, 128, 600, uint16_t(state.range(0)));
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    uint32_t s = 11;
    std::vector<int32_t> rects;
    for (int32_t i = 0; i < FILLS_PER_PAGE; ++i) {
        rects.push_back(int32_t(nextRandom(s) % (PAGE_W - 400)));
        rects.push_back(int32_t(nextRandom(s) % (PAGE_H - 400)));
        rects.push_back(1 + int32_t(nextRandom(s) % 400));
        rects.push_back(1 + int32_t(nextRandom(s) % 400));
    }
    for (auto _ : state) {
        KRYNNewPage(0, e);
        KRYNSetMatrix(identity, e);
        for (size_t i = 0; i < rects.size(); i += 4) {
            KRYNRectPath(rects[i], rects[i + 1], rects[i + 2], rects[i + 3], e);
            KRYNFill(FILL_NONZERO, e);
        }
        KRYNDisposePage(e);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * FILLS_PER_PAGE);
    KRYNEnd(e);
}

} // namespace

BENCHMARK(fillPolygons)->Arg(0x8000)->Arg(0x8009)->Unit(benchmark::kMillisecond);
BENCHMARK(fillRectangles)->Arg(0x8000)->Arg(0x8009)->Unit(benchmark::kMillisecond);
