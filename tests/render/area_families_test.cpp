// Every area family on 8-bit and 32-bit rasters, with random shapes reaching
// past the raster, solid and under random screens (1-bit cells, grey and
// colour tiles, random phases), under the three fast raster operations and
// generic ones: every pixel against a per-pixel model of the band, and for
// solid paint the painted box the band is delivered with.
#include "support/page_fixture.h"

#include "paint/rop_test_support.h"

#include "displaylist/record_walk.h"
#include "engine/memory.h"
#include "paint/bit_tile.h"
#include "render/band_renderer.h"
#include "render/tile_definitions.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <tuple>

namespace kryn::test {
namespace {

enum Family { RECT, COLUMN, RECTS, RUNS, RUNS_SHORT, ROW_SPANS, ROW_SPANS_SHORT, COLUMN_RUNS };

struct Cell {
    int32_t x;
    int32_t y;
};

constexpr int32_t WIDTH = 64; // mode 5 raster width
constexpr int32_t ROWS = PageTest::BAND_ROWS;

// Row-span arrays carry no header.
uint8_t* spanArray(const std::vector<std::pair<uint16_t, uint16_t>>& spans) {
    auto* a = static_cast<uint8_t*>(allocBytes(spans.size() * 4));
    for (size_t i = 0; i < spans.size(); ++i) {
        std::memcpy(a + 4 * i, &spans[i].first, 2);
        std::memcpy(a + 4 * i + 2, &spans[i].second, 2);
    }
    return a;
}

void addBlock(std::vector<Cell>& cells, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    for (int32_t y = std::max(top, 0); y <= std::min(bottom, ROWS - 1); ++y) {
        for (int32_t x = std::max(left, 0); x <= std::min(right, WIDTH - 1); ++x) {
            cells.push_back({x, y});
        }
    }
}

// Writes a random shape of the family into the list and answers the cells
// it covers, in order.
std::vector<Cell> writeRandomShape(Family family, std::mt19937& rng, DisplayList* list,
                                   RenderResources* res) {
    std::vector<Cell> cells;
    const auto entryCount = uint16_t(2 + rng() % 4);
    const auto randomX = [&] { return uint16_t(rng() % (WIDTH + 8)); };
    const auto randomY = [&] { return uint16_t(rng() % ROWS); };
    switch (family) {
    case RECT:
    case COLUMN: {
        const uint16_t x = randomX(), y = family == RECT ? randomY() : 0;
        const uint32_t w = 1 + rng() % 40, h = family == RECT ? 1 + rng() % 10 : ROWS;
        EXPECT_EQ(writeRect(list, {uint8_t(y), x}, w, h, res), KRYN_OK);
        addBlock(cells, x, y, int32_t(x + w - 1), int32_t(y + h - 1));
        break;
    }
    case RECTS: {
        std::vector<std::vector<uint16_t>> e;
        for (int i = 0; i < entryCount; ++i) {
            const uint16_t l = randomX(), t = randomY();
            e.push_back({l, uint16_t(l + rng() % 30), t, uint16_t(t + rng() % 6)});
            addBlock(cells, e.back()[0], e.back()[2], e.back()[1], e.back()[3]);
        }
        EXPECT_EQ(writeRects(list, runBuffer(0, e, {2, 2, 1, 1}), entryCount, res), KRYN_OK);
        break;
    }
    case RUNS:
    case RUNS_SHORT: {
        std::vector<std::vector<uint16_t>> e;
        for (int i = 0; i < entryCount; ++i) {
            const uint16_t y = randomY(), l = randomX(), len = uint16_t(1 + rng() % 50);
            e.push_back({y, 0, l, len});
            addBlock(cells, l, y, l + len - 1, y);
        }
        const uint8_t form = family == RUNS_SHORT ? 255 : 0;
        EXPECT_EQ(writeRuns(list, runBuffer(form, e, {1, 1, 2, 2}), entryCount, res), KRYN_OK);
        break;
    }
    case ROW_SPANS:
    case ROW_SPANS_SHORT: {
        const uint8_t first = uint8_t(rng() % 8);
        std::vector<std::pair<uint16_t, uint16_t>> spans;
        for (int i = 0; i < entryCount; ++i) {
            const uint16_t l = randomX(), len = uint16_t(rng() % 60);
            spans.push_back({l, len});
            addBlock(cells, l, first + i, l + len - 1, first + i);
        }
        const int32_t count = family == ROW_SPANS ? entryCount : -entryCount;
        EXPECT_EQ(writeRowSpans(list, first, spanArray(spans), count, res), KRYN_OK);
        break;
    }
    case COLUMN_RUNS: {
        std::vector<std::vector<uint16_t>> e;
        for (int i = 0; i < entryCount; ++i) {
            const uint16_t t = randomY(), len = uint16_t(1 + rng() % 16), x = randomX();
            e.push_back({t, len, x});
            addBlock(cells, x, t, x, t + len - 1);
        }
        EXPECT_EQ(writeColumnRuns(list, runBuffer(0, e, {1, 1, 2}), entryCount, res), KRYN_OK);
        break;
    }
    }

    return cells;
}

// A random screen: a 1-bit cell (transparent or opaque zeros) or a tile of
// grey bytes or colour pixels, kept as the caller gave it, for the model; or
// none (solid paint).
struct RandomScreen {
    int kind = 0; // 0: 1-bit transparent, 1: 1-bit opaque, 2: grey, 3: colour samples, 4: solid
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> cell; // the cell: rows of (width + 7) / 8 bytes, or pixels
    PixelTile widened;         // 1-bit cells as the registry stores them
    uint8_t depth = 0;

    // P at page column x of tile row r, or false under a transparent zero.
    bool pattern(int32_t x, int32_t r, uint32_t one, uint32_t zero, bool grey, uint32_t& p) const {
        if (kind == 4) {
            p = one;
            return true;
        }
        const int32_t c = x % width;
        if (kind <= 1) {
            const bool bit = (cell[size_t(r * ((width + 7) / 8) + c / 8)] & (0x80 >> (c % 8))) != 0;
            p = bit ? one : zero;
            return bit || kind == 1;
        }
        const size_t step = depth == 8 ? 1 : 4;
        const uint8_t* at = cell.data() + (size_t(r) * size_t(width) + size_t(c)) * step;
        if (grey) {
            p = at[0]; // colour tiles reach grey rasters as their first channel
        } else if (depth == 8) {
            p = at[0] * 0x010101u; // grey tiles reach colour rasters as grey words
        } else {
            p = uint32_t{at[0]} | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16;
        }
        return true;
    }
};

class AreaFamilies : public PageTest {
  protected:
    void TearDown() override { freeBytes(screen_.widened.data); }
    RandomScreen screen_;
};

// Solid paint starts from a base block on white, so that the operation meets
// more than white and the delivered box can be checked; screened paint from
// a band of base colour.
TEST_F(AreaFamilies, EveryPixelIsTheOperationOfTheTileValueAtItsPagePosition) {
    const uint8_t ops[] = {
        DL_OP_RECT,       DL_OP_COLUMN,    DL_OP_RECTS,           DL_OP_RUNS,
        DL_OP_RUNS_SHORT, DL_OP_ROW_SPANS, DL_OP_ROW_SPANS_SHORT, DL_OP_COLUMN_RUNS};
    std::mt19937 rng(163);
    const uint8_t generic[] = {0xB8, 0x0A, 0x8E, 0x6C, 0x3F};
    for (int n = 0; n < 900; ++n) {
        const bool grey = n % 2 == 0;
        open(5, 0x8009, grey);
        notMonochrome(0);
        const int bits = grey ? 8 : 24;
        const uint32_t mask = grey ? 0xFF : 0xFFFFFF;
        RandomScreen& sc = screen_;
        freeBytes(sc.widened.data);
        sc = RandomScreen{};
        sc.kind = int(rng() % 5);
        const bool solid = sc.kind == 4;
        // Mostly small tiles (whose rows the members keep per record), some
        // too tall or too wide for that.
        const bool large = rng() % 4 == 0;
        sc.height = 1 + int32_t(rng() % (large ? 40 : 12));
        std::vector<uint8_t> defined;
        TileDefinition def{};
        if (solid) {
            sc.height = 1;
        } else if (sc.kind <= 1) {
            sc.width = 1 + int32_t(rng() % 40);
            sc.depth = 1;
            sc.cell.resize(size_t((sc.width + 7) / 8 * sc.height));
            for (uint8_t& b : sc.cell) {
                b = uint8_t(rng());
            }
            const PixelTile cell{sc.cell.data(), sc.width, sc.height, (sc.width + 7) / 8, 1};
            ASSERT_EQ(widenBitTile(cell, sc.widened), KRYN_OK);
            def = {sc.widened.data, sc.widened.width, sc.height, 1, 0x0005};
        } else {
            sc.width = 1 + int32_t(rng() % (large ? 70 : 12));
            sc.depth = rng() % 2 == 0 ? 8 : 24;
            sc.cell.resize(size_t(sc.width * sc.height * (sc.depth == 8 ? 1 : 4)));
            for (uint8_t& b : sc.cell) {
                b = uint8_t(rng());
            }
            def = {sc.cell.data(), sc.width, sc.height, sc.depth, 0xC006};
        }
        if (!solid) {
            ASSERT_EQ(defineRendererTile(res()->renderer, def), KRYN_OK);
        }
        const uint32_t phase = rng() % 3 == 0 ? rng() % 65536 : rng() % 24;
        const int pick = int(rng() % 8);
        const uint8_t code = pick < 2    ? 0xF0
                             : pick < 4  ? 0x5A
                             : pick == 4 ? 0xFF
                                         : generic[rng() % 5];
        const uint32_t base = rng() & mask;
        const uint32_t one = rng() & mask;
        const uint32_t zero = rng() & mask;
        const uint32_t s = rng() & mask;

        rop(0, 0xF0);
        paint(0, base);
        const int32_t blockW = solid ? 32 : WIDTH, blockH = solid ? 8 : ROWS;
        rect(0, 0, 0, uint32_t(blockW), uint32_t(blockH));
        rop(0, code);
        paint(0, one);
        paint(0, zero, COLOUR_BACK);
        source(0, s);
        if (!solid) {
            ASSERT_EQ(writeScreen(list(0), def.screenId, phase, res()), KRYN_OK);
            ASSERT_EQ(writeOpaque(list(0), sc.kind == 0 ? 0 : 1, 255, res()), KRYN_OK);
        }

        const Family family = Family(rng() % 8);
        const std::vector<Cell> cells = writeRandomShape(family, rng, list(0), res());
        uint8_t lastOp = 0;
        walkRecords(list(0), [&](uint8_t op, const uint8_t*) {
            lastOp = op;
            return true;
        });
        ASSERT_EQ(lastOp, ops[family]) << "case " << n;

        std::vector<uint32_t> model(size_t(WIDTH) * ROWS, mask);
        DirtyBox box{0, blockW - 1, 0, blockH - 1};
        for (int32_t y = 0; y < blockH; ++y) {
            std::fill_n(model.begin() + y * WIDTH, blockW, base);
        }
        for (const Cell& c : cells) {
            uint32_t p = 0;
            const int32_t r = int32_t((uint32_t(c.y) + phase) % uint32_t(sc.height));
            if (sc.pattern(c.x, r, one, zero, grey, p)) {
                uint32_t& d = model[size_t(c.y) * WIDTH + size_t(c.x)];
                d = referenceRop(code, s, p, d, bits);
            }
            box = {std::min(box.minX, c.x), std::max(box.maxX, c.x), std::min(box.minY, c.y),
                   std::max(box.maxY, c.y)};
        }
        ASSERT_EQ(close(), KRYN_OK);
        if (log_.calls.empty()) { // a blank band is not delivered
            ASSERT_EQ(std::count(model.begin(), model.end(), mask), ptrdiff_t(model.size()))
                << "case " << n;
            continue;
        }
        ASSERT_EQ(log_.calls.size(), 1u);
        const Delivery& d = log_.calls[0];
        EXPECT_EQ(d.code, grey ? CB_RASTER_STANDARD : CB_RASTER_BOX);
        if (solid && !grey) {
            EXPECT_EQ(d.rect.left, uint32_t(box.minX)) << "case " << n;
            EXPECT_EQ(d.rect.top, uint32_t(box.minY)) << "case " << n;
            EXPECT_EQ(d.rect.right, uint32_t(box.maxX)) << "case " << n;
            EXPECT_EQ(d.rect.bottom, uint32_t(box.maxY)) << "case " << n;
        }
        const BandPixels got = pixels(0);
        for (int32_t y = 0; y < ROWS; ++y) {
            for (int32_t x = 0; x < WIDTH; ++x) {
                ASSERT_EQ(got.at(x, y), model[size_t(y) * WIDTH + size_t(x)])
                    << "case " << n << " family " << family << " screen kind " << sc.kind
                    << " code 0x" << std::hex << int(code) << std::dec << " phase " << phase
                    << " tile " << sc.width << "x" << sc.height << " pixel (" << x << ", " << y
                    << ")";
            }
        }
        log_.calls.clear();
    }
}

} // namespace
} // namespace kryn::test
