// Run marks on finished colour rasters: the marks themselves on crafted
// rows, and that a receiver reading them gets every pixel's colour back.
#include "render/mark_runs.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace kryn {
namespace {

constexpr uint32_t PAPER = 0x01FFFFFF;
constexpr uint32_t RED = 0x010000FF;

// Colours of a marked raster as the receiver reads them.
std::vector<uint32_t> readRuns(const std::vector<uint32_t>& raster, int32_t stride) {
    std::vector<uint32_t> out(raster.size(), 0xFFFFFF);
    const auto rows = static_cast<int32_t>(raster.size()) / stride;
    for (int32_t y = 0; y < rows; ++y) {
        const uint32_t* row = raster.data() + size_t(y) * stride;
        int32_t x = 0;
        while (x < stride) {
            const uint32_t tag = row[x] >> 24;
            if ((tag & RUN_TAG_BLANK) != 0) {
                break;
            }
            uint32_t n = (tag & RUN_TAG_LONG) != 0 ? row[x + 1] : 1;
            const uint32_t colour = row[x] & 0xFFFFFF;
            for (; n > 0 && x < stride; --n, ++x) {
                out[size_t(y) * stride + x] = colour;
            }
        }
    }
    return out;
}

TEST(MarkRuns, OneRedPixelOnWhite) {
    const int32_t w = 16;
    std::vector<uint32_t> row(w, PAPER);
    row[10] = RED;
    EXPECT_TRUE(markRuns(row.data(), w, 1, DirtyBox{10, 10, 0, 0}));
    EXPECT_EQ(row[0], PAPER | 0x10000000u); // the ten white columns before it
    EXPECT_EQ(row[1], 10u);
    EXPECT_EQ(row[10], RED | 0x02000000u); // a run of one
    EXPECT_EQ(row[11], PAPER | 0x10000000u);
    EXPECT_EQ(row[12], 5u); // columns 11..15
    for (int32_t x : {2, 9, 13, 15}) {
        EXPECT_EQ(row[size_t(x)], PAPER) << x;
    }
}

TEST(MarkRuns, BlankRowsShortRunsAndTheLastColumn) {
    const int32_t w = 8;
    std::vector<uint32_t> raster(size_t(w) * 4, PAPER);
    // Row 1: two red pixels, then white to the end of the box at column 6.
    raster[w + 1] = RED;
    raster[w + 2] = RED;
    EXPECT_TRUE(markRuns(raster.data(), w, 4, DirtyBox{1, 6, 1, 2}));
    EXPECT_EQ(raster[0], PAPER | 0x20000000u);     // above the box
    EXPECT_EQ(raster[3 * w], PAPER | 0x20000000u); // below it
    EXPECT_EQ(raster[w + 0], PAPER | 0x02000000u); // white run of one before the red
    EXPECT_EQ(raster[w + 1], RED | 0x04000000u);   // red run of two
    EXPECT_EQ(raster[w + 3], PAPER | 0x10000000u); // columns 3..6, the box's end
    EXPECT_EQ(raster[w + 4], 4u);
    EXPECT_EQ(raster[w + 7], PAPER);               // a single column after the box stands alone
    EXPECT_EQ(raster[2 * w], PAPER | 0x20000000u); // row 2 holds no ink
    EXPECT_EQ(readRuns(raster, w)[w + 2], 0x0000FFu);
}

TEST(MarkRuns, NothingToDeliverWithoutInk) {
    std::vector<uint32_t> raster(32, PAPER);
    EXPECT_FALSE(markRuns(raster.data(), 8, 4, DirtyBox{0, 7, 0, 3}));
    EXPECT_FALSE(markRuns(raster.data(), 8, 4, DirtyBox{7, 0, 3, 0})); // an empty box
}

// The marks of one row written pixel by pixel, the plainest way: the
// engine's row scan must leave exactly these.
void referenceMarkRow(uint32_t* row, int32_t width, int32_t minX, int32_t maxX) {
    auto close = [&](int32_t head, int32_t length) {
        if (length > 3) {
            row[head] |= RUN_TAG_LONG << 24;
            row[head + 1] = uint32_t(length);
        } else {
            row[head] |= uint32_t(length) * 2u << 24;
        }
    };
    auto white = [](uint32_t p) { return (p & 0xFFFFFF) == 0xFFFFFF; };
    int32_t head = 0;
    int32_t length = minX;
    bool inked = false;
    for (int32_t x = minX; x <= maxX; ++x) {
        if (!inked && white(row[x])) {
            ++length;
            continue;
        }
        inked = true;
        if (row[x] == row[head]) {
            ++length;
        } else {
            close(head, length);
            head = x;
            length = 1;
        }
    }
    const int32_t rest = width - maxX - 1;
    if (rest >= 2 && !white(row[head])) {
        close(head, length);
        head = maxX + 1;
        length = rest;
    } else if (rest >= 2) {
        length += rest;
    }
    if (inked) {
        close(head, length);
    } else {
        row[head] |= RUN_TAG_BLANK << 24;
    }
}

TEST(MarkRuns, ReceiversReadBackEveryColourAndTheMarksAreExact) {
    std::mt19937 random(7);
    const uint32_t palette[] = {PAPER, PAPER, RED, 0x03123456, 0x0100FF00, 0x03FFFFFF};
    for (int trial = 0; trial < 2000; ++trial) {
        const int32_t stride = 2 + int32_t(random() % 30);
        const int32_t rows = 1 + int32_t(random() % 6);
        const int32_t minX = int32_t(random() % uint32_t(stride));
        const int32_t maxX = minX + int32_t(random() % uint32_t(stride - minX));
        const int32_t minY = int32_t(random() % uint32_t(rows));
        const int32_t maxY = minY + int32_t(random() % uint32_t(rows - minY));
        std::vector<uint32_t> raster(size_t(stride) * rows, PAPER);
        for (int32_t y = minY; y <= maxY; ++y) {
            // Runs of 1..9 equal pixels, so that pairs and long runs occur.
            for (int32_t x = minX; x <= maxX;) {
                const uint32_t colour = palette[random() % 6];
                for (int32_t n = 1 + int32_t(random() % 9); n > 0 && x <= maxX; --n, ++x) {
                    raster[size_t(y) * stride + x] = colour;
                }
            }
        }
        std::vector<uint32_t> expected(raster.size());
        for (size_t i = 0; i < raster.size(); ++i) {
            expected[i] = raster[i] & 0xFFFFFF;
        }
        std::vector<uint32_t> reference = raster;
        for (int32_t y = 0; y < rows; ++y) {
            uint32_t* row = reference.data() + size_t(y) * stride;
            if (y < minY || y > maxY) {
                row[0] |= RUN_TAG_BLANK << 24;
            } else {
                referenceMarkRow(row, stride, minX, maxX);
            }
        }
        markRuns(raster.data(), stride, rows, DirtyBox{minX, maxX, minY, maxY});
        ASSERT_EQ(readRuns(raster, stride), expected) << "trial " << trial;
        ASSERT_EQ(raster, reference) << "trial " << trial;
    }
}

} // namespace
} // namespace kryn
