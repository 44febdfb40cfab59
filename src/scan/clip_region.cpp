#include "scan/clip_region.h"

#include "scan/clip_index.h"
#include "scan/scan_state.h"
#include "scan/wide_math.h"

namespace kryn {

namespace {

// x of an edge at y, rounded down or up to a sixteenth.
int32_t edgeXAt(const Edge& e, int32_t y, bool roundUp) {
    const int64_t dy = static_cast<int64_t>(e.yBottom) - e.yTop;
    if (dy == 0) {
        return roundUp ? (e.xTop > e.xBottom ? e.xTop : e.xBottom)
                       : (e.xTop < e.xBottom ? e.xTop : e.xBottom);
    }
    const int64_t dx = static_cast<int64_t>(e.xBottom) - e.xTop;
    const Int128 n = mul128(e.xTop, dy) + mul128(dx, static_cast<int64_t>(y) - e.yTop);
    Int128 q = floorDiv128(n, dy);
    if (roundUp && q * dy != n) {
        ++q;
    }
    return static_cast<int32_t>(q);
}

int32_t clampToInt32(int64_t v) {
    return v > INT32_MAX ? INT32_MAX : (v < INT32_MIN ? INT32_MIN : static_cast<int32_t>(v));
}

} // namespace

void setTrapezoidCorners(Trapezoid* t) {
    t->xTopLeft = edgeXAt(*t->leftEdge, t->yTop, false);
    t->xBottomLeft = edgeXAt(*t->leftEdge, t->yBottom, false);
    t->xTopRight = edgeXAt(*t->rightEdge, t->yTop, true);
    t->xBottomRight = edgeXAt(*t->rightEdge, t->yBottom, true);
}

IntBox trapezoidBox(const Trapezoid& t, int32_t quarterTurns) {
    IntBox b;
    b.minX = t.xTopLeft < t.xBottomLeft ? t.xTopLeft : t.xBottomLeft;
    b.maxX = t.xTopRight > t.xBottomRight ? t.xTopRight : t.xBottomRight;
    b.minY = t.yTop;
    b.maxY = t.yBottom;
    const bool strict = quarterTurns == 1 || quarterTurns == 2;
    if (t.minColumn != NO_COLUMN_MIN) {
        const int32_t x = clampToInt32(16 * t.minColumn - (strict ? 1 : 0));
        b.minX = x > b.minX ? x : b.minX;
    }
    if (t.maxColumn != NO_COLUMN_MAX) {
        const int32_t x = clampToInt32(16 * t.maxColumn + (strict ? 0 : 1));
        b.maxX = x < b.maxX ? x : b.maxX;
    }
    return b;
}

void setRegionShape(ClipRegion* region, const IntBox& box) {
    region->intBox = box;
    region->clipBox.minX = static_cast<float>(box.minX) * 0.0625f;
    region->clipBox.maxX = static_cast<float>(box.maxX) * 0.0625f;
    region->clipBox.minY = static_cast<float>(box.minY) * 0.0625f;
    region->clipBox.maxY = static_cast<float>(box.maxY) * 0.0625f;
    const Trapezoid* t = region->activeList;
    region->isRect =
        static_cast<int16_t>(t == nullptr || (region->index == nullptr && t->next == nullptr &&
                                              t->leftEdge->xTop == t->leftEdge->xBottom &&
                                              t->rightEdge->xTop == t->rightEdge->xBottom));
}

void releaseClip(ClipRegion* region) {
    if (region->index != nullptr && region->ownedList == &region->index->head) {
        freeRegionIndex(region->index);
    } else {
        freeTrapezoidList(region->ownedList);
    }
    region->index = nullptr;
    region->ownedList = nullptr;
    region->activeList = nullptr;
    if (region->pool != nullptr) {
        region->pool->reset();
    }
}

} // namespace kryn
