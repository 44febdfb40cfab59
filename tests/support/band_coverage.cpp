#include "support/band_coverage.h"

#include "displaylist/opcodes.h"
#include "displaylist/record_walk.h"

#include <cstring>

namespace kryn::test {

namespace {

uint16_t u16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

const uint8_t* arrayOf(const uint8_t* record) {
    const uint8_t* array = nullptr;
    std::memcpy(&array, record + ARRAY_POINTER_OFFSET, sizeof array);
    return array;
}

struct Painter {
    Coverage& c;
    int32_t bandTop;
    int32_t bandHeight;

    void paint(int32_t left, int32_t width, int32_t row, int32_t rows) {
        for (int32_t r = row; r < row + rows; ++r) {
            for (int32_t x = left; x < left + width; ++x) {
                const int32_t y = bandTop + r;
                if (x < 0 || x >= c.width || y < 0 || y >= c.height || r >= bandHeight) {
                    ++c.outside;
                    continue;
                }
                uint8_t& n = c.counts[size_t(y) * size_t(c.width) + size_t(x)];
                n = n == 255 ? n : uint8_t(n + 1);
            }
        }
    }

    void record(uint8_t op, const uint8_t* r) {
        const uint16_t count = u16(r + 2);
        const uint8_t* a = nullptr;
        switch (op) {
        case DL_OP_RECT:
            paint(u16(r + 2), u16(r + 4), r[1], r[6]);
            break;
        case DL_OP_COLUMN:
            paint(u16(r + 2), r[1], 0, bandHeight);
            break;
        case DL_OP_RUNS:
        case DL_OP_RUNS_SHORT:
            a = arrayOf(r) + 4;
            for (uint16_t i = 0; i < count; ++i, a += 6) {
                paint(u16(a + 2), u16(a + 4), a[0], 1);
            }
            break;
        case DL_OP_COLUMN_RUNS:
            a = arrayOf(r) + 4;
            for (uint16_t i = 0; i < count; ++i, a += 4) {
                paint(u16(a + 2), 1, a[0], a[1]);
            }
            break;
        case DL_OP_RECTS:
            a = arrayOf(r) + 4;
            for (uint16_t i = 0; i < count; ++i, a += 6) {
                paint(u16(a), u16(a + 2) - u16(a) + 1, a[4], a[5] - a[4] + 1);
            }
            break;
        case DL_OP_ROW_SPANS:
        case DL_OP_ROW_SPANS_SHORT:
            a = arrayOf(r);
            for (uint16_t i = 0; i < count; ++i, a += 4) {
                paint(u16(a), u16(a + 2), r[1] + i, 1);
            }
            break;
        default:
            break;
        }
    }
};

} // namespace

Coverage pageCoverage(const PageRecord* page) {
    Coverage c;
    c.width = page->pageWidth;
    c.height = page->pageHeight;
    c.counts.assign(size_t(c.width) * size_t(c.height), 0);
    for (int32_t i = 0; i < page->bandCount; ++i) {
        const DisplayList* list = page->bands[i].list;
        if (list == nullptr) {
            continue;
        }
        Painter painter{c, page->bands[i].bandTop, page->bandHeight};
        walkRecords(list, [&](uint8_t op, const uint8_t* r) {
            painter.record(op, r);
            return true;
        });
    }
    return c;
}

} // namespace kryn::test
