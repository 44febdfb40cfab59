// Run marks on finished colour rasters, over random rasters and boxes: the
// marks are exactly those of a plain pixel-by-pixel reference, a receiver
// reading them gets every pixel's colour back, and a raster without ink
// (or an empty box) has nothing to deliver.
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
        bool inked = false;
        for (int32_t y = minY; y <= maxY; ++y) {
            for (int32_t x = minX; x <= maxX; ++x) {
                inked = inked || (raster[size_t(y) * stride + x] & 0xFFFFFF) != 0xFFFFFF;
            }
        }
        ASSERT_EQ(markRuns(raster.data(), stride, rows, DirtyBox{minX, maxX, minY, maxY}), inked);
        ASSERT_EQ(readRuns(raster, stride), expected) << "trial " << trial;
        ASSERT_EQ(raster, reference) << "trial " << trial;
    }
    std::vector<uint32_t> paper(32, PAPER);
    EXPECT_FALSE(markRuns(paper.data(), 8, 4, DirtyBox{7, 0, 3, 0})); // an empty box
}

} // namespace
} // namespace kryn
