// Every area family on 8-bit and 32-bit rasters under the three fast raster
// operations and a generic one, checked pixel by pixel against a model of
// the band, together with the painted box the band is delivered with; and
// the screened members under random tiles, phases, operations and shapes
// against a per-pixel model of the screen.
#include "render_fixture.h"

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
constexpr int32_t ROWS = RenderTest::BAND_ROWS;

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

// Writes the family's record into the list and answers the pixels it
// covers and the opcode it must have become.
std::vector<Cell> writeShape(Family f, DisplayList* list, RenderResources* res, uint8_t& op) {
    std::vector<Cell> cells;
    switch (f) {
    case RECT:
        EXPECT_EQ(writeRect(list, {2, 3}, 7, 3, res), KRYN_OK);
        addBlock(cells, 3, 2, 9, 4);
        op = DL_OP_RECT;
        break;
    case COLUMN:
        EXPECT_EQ(writeRect(list, {0, 40}, 5, ROWS, res), KRYN_OK);
        addBlock(cells, 40, 0, 44, ROWS - 1);
        op = DL_OP_COLUMN;
        break;
    case RECTS: {
        const std::vector<std::vector<uint16_t>> e = {
            {5, 12, 1, 3}, {30, 40, 6, 9}, {60, 70, 14, 15}};
        EXPECT_EQ(writeRects(list, runBuffer(0, e, {2, 2, 1, 1}), 3, res), KRYN_OK);
        for (const auto& r : e) {
            addBlock(cells, r[0], r[2], r[1], r[3]);
        }
        op = DL_OP_RECTS;
        break;
    }
    case RUNS:
    case RUNS_SHORT: {
        const std::vector<std::vector<uint16_t>> e = {
            {1, 0, 4, 10}, {5, 0, 2, 20}, {6, 0, 10, 5}, {6, 0, 40, 8}, {15, 0, 58, 10}};
        const uint8_t form = f == RUNS_SHORT ? 255 : 0;
        EXPECT_EQ(writeRuns(list, runBuffer(form, e, {1, 1, 2, 2}), 5, res), KRYN_OK);
        for (const auto& r : e) {
            addBlock(cells, r[2], r[0], r[2] + r[3] - 1, r[0]);
        }
        op = f == RUNS_SHORT ? DL_OP_RUNS_SHORT : DL_OP_RUNS;
        break;
    }
    case ROW_SPANS:
    case ROW_SPANS_SHORT: {
        const std::vector<std::pair<uint16_t, uint16_t>> spans = {
            {5, 10}, {6, 12}, {7, 0}, {60, 10}};
        const int32_t count = f == ROW_SPANS ? 4 : -4;
        EXPECT_EQ(writeRowSpans(list, 3, spanArray(spans), count, res), KRYN_OK);
        for (size_t i = 0; i < spans.size(); ++i) {
            const int32_t y = 3 + static_cast<int32_t>(i);
            addBlock(cells, spans[i].first, y, spans[i].first + spans[i].second - 1, y);
        }
        op = f == ROW_SPANS ? DL_OP_ROW_SPANS : DL_OP_ROW_SPANS_SHORT;
        break;
    }
    case COLUMN_RUNS: {
        const std::vector<std::vector<uint16_t>> e = {{2, 5, 7}, {0, 16, 50}, {10, 3, 63}};
        EXPECT_EQ(writeColumnRuns(list, runBuffer(0, e, {1, 1, 2}), 3, res), KRYN_OK);
        for (const auto& r : e) {
            addBlock(cells, r[2], r[0], r[2], r[0] + r[1] - 1);
        }
        op = DL_OP_COLUMN_RUNS;
        break;
    }
    }
    return cells;
}

using AreaCase = std::tuple<Family, bool, uint8_t>; // family, grey, raster op

class AreaFamilies : public RenderTest, public ::testing::WithParamInterface<AreaCase> {};

TEST_P(AreaFamilies, PaintEveryCoveredPixelOnceUnderTheRasterOperation) {
    const auto [family, grey, code] = GetParam();
    open(5, grey);
    notMonochrome(0);
    const int bits = grey ? 8 : 24;
    const uint32_t white = grey ? 0xFF : 0xFFFFFF;
    const uint32_t base = grey ? 0x33 : 0x113355;
    const uint32_t p = grey ? 0x5C : 0x5C3A17;
    const uint32_t s = grey ? 0xC5 : 0xA5C30F;

    // A base block so the operation meets more than white, then the shape.
    rop(0, 0xF0);
    paint(0, base);
    rect(0, 0, 0, 32, 8);
    rop(0, code);
    paint(0, p);
    source(0, s);
    uint8_t expectedOp = 0;
    const std::vector<Cell> cells = writeShape(family, list(0), res(), expectedOp);
    uint8_t lastOp = 0;
    walkRecords(list(0), [&](uint8_t op, const uint8_t*) {
        lastOp = op;
        return true;
    });
    ASSERT_EQ(lastOp, expectedOp);

    std::vector<uint32_t> model(size_t(WIDTH) * ROWS, white);
    int32_t minX = 0, minY = 0, maxX = 31, maxY = 7;
    for (int32_t y = 0; y < 8; ++y) {
        std::fill_n(model.begin() + y * WIDTH, 32, base);
    }
    for (const Cell& c : cells) {
        uint32_t& d = model[size_t(c.y) * WIDTH + size_t(c.x)];
        d = ropByTruthTable(code, s, p, d, bits);
        minX = std::min(minX, c.x);
        maxX = std::max(maxX, c.x);
        minY = std::min(minY, c.y);
        maxY = std::max(maxY, c.y);
    }

    ASSERT_EQ(close(), KRYN_OK);
    ASSERT_EQ(log_.calls.size(), 1u);
    const Delivery& d = log_.calls[0];
    if (grey) {
        EXPECT_EQ(d.code, CB_RASTER_STANDARD);
    } else {
        EXPECT_EQ(d.code, CB_RASTER_BOX);
        EXPECT_EQ(d.rect.left, uint32_t(minX));
        EXPECT_EQ(d.rect.top, uint32_t(minY));
        EXPECT_EQ(d.rect.right, uint32_t(maxX));
        EXPECT_EQ(d.rect.bottom, uint32_t(maxY));
    }
    const BandPixels got = pixels(0);
    for (int32_t y = 0; y < ROWS; ++y) {
        for (int32_t x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(got.at(x, y), model[size_t(y) * WIDTH + size_t(x)])
                << "pixel (" << x << ", " << y << ")";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllFamilies, AreaFamilies,
                         ::testing::Combine(::testing::Values(RECT, COLUMN, RECTS, RUNS, RUNS_SHORT,
                                                              ROW_SPANS, ROW_SPANS_SHORT,
                                                              COLUMN_RUNS),
                                            ::testing::Bool(),
                                            ::testing::Values(0xF0, 0x5A, 0xFF, 0xB8)));

// A random screen: a 1-bit cell (transparent or opaque zeros) or a tile of
// grey bytes or colour pixels, kept as the caller gave it, for the model.
struct RandomScreen {
    int kind = 0; // 0: 1-bit transparent, 1: 1-bit opaque, 2: grey samples, 3: colour samples
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> cell; // the cell: rows of (width + 7) / 8 bytes, or pixels
    PixelTile widened;         // 1-bit cells as the registry stores them
    uint8_t depth = 0;

    // P at page column x of tile row r, or false under a transparent zero.
    bool pattern(int32_t x, int32_t r, uint32_t one, uint32_t zero, bool grey, uint32_t& p) const {
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

class ScreenedFamilies : public RenderTest {
  protected:
    void TearDown() override { freeBytes(screen_.widened.data); }
    RandomScreen screen_;
};

TEST_F(ScreenedFamilies, EveryPixelIsTheOperationOfTheTileValueAtItsPagePosition) {
    std::mt19937 rng(163);
    const uint8_t generic[] = {0xB8, 0x0A, 0x8E, 0x6C, 0x3F};
    for (int n = 0; n < 600; ++n) {
        const bool grey = n % 2 == 0;
        open(5, grey);
        notMonochrome(0);
        const int bits = grey ? 8 : 24;
        const uint32_t mask = grey ? 0xFF : 0xFFFFFF;
        RandomScreen& sc = screen_;
        freeBytes(sc.widened.data);
        sc = RandomScreen{};
        sc.kind = int(rng() % 4);
        // Mostly small tiles (whose rows the members keep per record), some
        // too tall or too wide for that.
        const bool large = rng() % 4 == 0;
        sc.height = 1 + int32_t(rng() % (large ? 40 : 12));
        std::vector<uint8_t> defined;
        TileDefinition def{};
        if (sc.kind <= 1) {
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
        ASSERT_EQ(defineRendererTile(res()->renderer, def), KRYN_OK);
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
        rect(0, 0, 0, WIDTH, ROWS);
        rop(0, code);
        paint(0, one);
        paint(0, zero, COLOUR_BACK);
        source(0, s);
        ASSERT_EQ(writeScreen(list(0), def.screenId, phase, res()), KRYN_OK);
        ASSERT_EQ(writeOpaque(list(0), sc.kind == 0 ? 0 : 1, 255, res()), KRYN_OK);

        // A random shape of a random family, as the cells it covers in order.
        std::vector<Cell> cells;
        const auto entryCount = uint16_t(2 + rng() % 4);
        const auto randomX = [&] { return uint16_t(rng() % (WIDTH + 8)); };
        const auto randomY = [&] { return uint16_t(rng() % ROWS); };
        const Family family = Family(rng() % 8);
        switch (family) {
        case RECT:
        case COLUMN: {
            const uint16_t x = randomX(), y = family == RECT ? randomY() : 0;
            const uint32_t w = 1 + rng() % 40, h = family == RECT ? 1 + rng() % 10 : ROWS;
            ASSERT_EQ(writeRect(list(0), {uint8_t(y), x}, w, h, res()), KRYN_OK);
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
            ASSERT_EQ(writeRects(list(0), runBuffer(0, e, {2, 2, 1, 1}), entryCount, res()),
                      KRYN_OK);
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
            ASSERT_EQ(writeRuns(list(0), runBuffer(form, e, {1, 1, 2, 2}), entryCount, res()),
                      KRYN_OK);
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
            ASSERT_EQ(writeRowSpans(list(0), first, spanArray(spans), count, res()), KRYN_OK);
            break;
        }
        case COLUMN_RUNS: {
            std::vector<std::vector<uint16_t>> e;
            for (int i = 0; i < entryCount; ++i) {
                const uint16_t t = randomY(), len = uint16_t(1 + rng() % 16), x = randomX();
                e.push_back({t, len, x});
                addBlock(cells, x, t, x, t + len - 1);
            }
            ASSERT_EQ(writeColumnRuns(list(0), runBuffer(0, e, {1, 1, 2}), entryCount, res()),
                      KRYN_OK);
            break;
        }
        }

        std::vector<uint32_t> model(size_t(WIDTH) * ROWS, base);
        for (const Cell& c : cells) {
            uint32_t p = 0;
            const int32_t r = int32_t((uint32_t(c.y) + phase) % uint32_t(sc.height));
            if (sc.pattern(c.x, r, one, zero, grey, p)) {
                uint32_t& d = model[size_t(c.y) * WIDTH + size_t(c.x)];
                d = ropByTruthTable(code, s, p, d, bits);
            }
        }
        ASSERT_EQ(close(), KRYN_OK);
        ASSERT_EQ(log_.calls.size(), 1u);
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
