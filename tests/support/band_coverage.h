// Reads the drawing records of a page's band lists back into pixels: how
// many times each pixel of the page is painted. Lets fills be checked
// against the reference rasteriser without any renderer.
#pragma once

#include "engine/page_record.h"

#include <cstdint>
#include <vector>

namespace kryn::test {

struct Coverage {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint8_t> counts; // row-major; saturates at 255
    // Pixels painted by records that reach outside the page (must stay 0).
    int64_t outside = 0;

    uint8_t at(int32_t x, int32_t y) const { return counts[size_t(y) * size_t(width) + size_t(x)]; }
};

// Coverage of every band list of the open page (runs, rectangles, columns,
// rectangle lists, column runs and row spans).
Coverage pageCoverage(const PageRecord* page);

} // namespace kryn::test
