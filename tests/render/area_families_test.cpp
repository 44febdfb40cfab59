// Every area family on 8-bit and 32-bit rasters under the three fast raster
// operations and a generic one, checked pixel by pixel against a model of
// the band, together with the painted box the band is delivered with.
#include "render_fixture.h"

#include "displaylist/record_walk.h"
#include "engine/memory.h"

#include <algorithm>
#include <cstring>
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

} // namespace
} // namespace kryn::test
