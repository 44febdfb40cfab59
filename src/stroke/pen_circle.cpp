#include "stroke/pen_circle.h"

#include "engine/memory.h"
#include "engine/page_record.h"

#include <cstddef>

namespace kryn {

namespace {

PenCircle* buildPen(int32_t radius) {
    const int32_t r = radius >> 13; // eighths of a pixel
    const int32_t rowCount = 2 * r + 1;
    const size_t bytes = sizeof(PenCircle) + sizeof(PenRow) * static_cast<size_t>(rowCount);
    auto* pen = static_cast<PenCircle*>(allocBytes(bytes, true));
    if (pen == nullptr) {
        return nullptr;
    }
    pen->next = nullptr;
    pen->rows = reinterpret_cast<PenRow*>(pen + 1);
    pen->radius = radius;
    pen->rowCount = rowCount;
    // Midpoint circle over one octant; each point widens the rows it touches
    // in the lower half (row offset >= 0), which is then mirrored upward.
    PenRow* lower = pen->rows + r;
    auto widen = [lower](int32_t row, int32_t extent) {
        if (extent > lower[row].extent) {
            lower[row].extent = extent;
        }
    };
    int32_t x = 0;
    int32_t y = r;
    int32_t d = 1 - r;
    while (x <= y) {
        widen(y, x);
        widen(x, y);
        if (d < 0) {
            d += 2 * x + 3;
        } else {
            d += 2 * (x - y) + 5;
            --y;
        }
        ++x;
    }
    int32_t widest = 0;
    for (int32_t i = 0; i <= r; ++i) {
        lower[i].extent *= 2;
        lower[i].offset = 2 * i;
        pen->rows[r - i] = PenRow{lower[i].extent, -2 * i};
        widest = lower[i].extent > widest ? lower[i].extent : widest;
    }
    pen->maxExtent = widest;
    return pen;
}

} // namespace

const PenCircle* findOrBuildPen(PageRecord* page, int32_t radius) {
    PenCircle** link = &page->penCircles;
    int32_t kept = 0;
    for (PenCircle* p = page->penCircles; p != nullptr; p = p->next) {
        if (p->radius == radius) {
            return p;
        }
        ++kept;
    }
    PenCircle* pen = buildPen(radius);
    if (pen == nullptr) {
        return nullptr;
    }
    if (kept >= PEN_CACHE_SIZE) {
        // Drop the oldest (the list's tail): pens are only used within a stroke.
        while ((*link)->next != nullptr) {
            link = &(*link)->next;
        }
        freeBytes(*link);
        *link = nullptr;
    }
    pen->next = page->penCircles;
    page->penCircles = pen;
    return pen;
}

void releasePens(PenCircle*& list) {
    while (list != nullptr) {
        PenCircle* next = list->next;
        freeBytes(list);
        list = next;
    }
}

} // namespace kryn
