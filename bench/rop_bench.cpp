// Raster-operation routines over a band row, called through the table as a
// renderer does, against decoding the code bit by bit.
#include "paint/rop_table.h"

#include <benchmark/benchmark.h>
#include <cstdint>
#include <vector>

namespace {

constexpr int ROW = 4096;

std::vector<uint32_t> pattern(uint32_t seed) {
    std::vector<uint32_t> v(ROW);
    for (uint32_t& x : v) {
        seed = seed * 1664525u + 1013904223u;
        x = seed;
    }
    return v;
}

void byteRow(benchmark::State& state) {
    const kryn::RopFn8 fn = kryn::ropFn8(static_cast<uint32_t>(state.range(0)));
    const std::vector<uint32_t> s = pattern(1), p = pattern(2);
    std::vector<uint8_t> d(ROW, 0x5A);
    for (auto _ : state) {
        for (int i = 0; i < ROW; ++i) {
            d[i] = fn(s[i], p[i], d[i]);
        }
        benchmark::DoNotOptimize(d.data());
    }
    state.SetItemsProcessed(state.iterations() * ROW);
}

void pixelRow(benchmark::State& state) {
    const kryn::RopFn24 fn = kryn::ropFn24(static_cast<uint32_t>(state.range(0)));
    const std::vector<uint32_t> s = pattern(1), p = pattern(2);
    std::vector<uint32_t> d = pattern(3);
    for (auto _ : state) {
        for (int i = 0; i < ROW; ++i) {
            d[i] = fn(s[i], p[i], d[i], 0x24000000);
        }
        benchmark::DoNotOptimize(d.data());
    }
    state.SetItemsProcessed(state.iterations() * ROW);
}

// The code read as a truth table for each bit of each byte.
void byteRowDecoded(benchmark::State& state) {
    const auto code = static_cast<uint32_t>(state.range(0));
    const std::vector<uint32_t> s = pattern(1), p = pattern(2);
    std::vector<uint8_t> d(ROW, 0x5A);
    for (auto _ : state) {
        for (int i = 0; i < ROW; ++i) {
            uint32_t r = 0;
            for (int k = 0; k < 8; ++k) {
                const uint32_t bit =
                    4 * ((p[i] >> k) & 1) + 2 * ((s[i] >> k) & 1) + ((d[i] >> k) & 1);
                r |= ((code >> bit) & 1) << k;
            }
            d[i] = static_cast<uint8_t>(r);
        }
        benchmark::DoNotOptimize(d.data());
    }
    state.SetItemsProcessed(state.iterations() * ROW);
}

// 0xF0 pattern copy, 0xA8 the default, 0xB8 a three-operand mix, 0x88 with
// its tag test, 0x6B one of the longest formulas (five operations).
BENCHMARK(byteRow)->Arg(0xF0)->Arg(0xA8)->Arg(0xB8)->Arg(0x6B);
BENCHMARK(pixelRow)->Arg(0xF0)->Arg(0xA8)->Arg(0x88)->Arg(0x6B);
BENCHMARK(byteRowDecoded)->Arg(0xA8);

} // namespace
