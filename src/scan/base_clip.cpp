#include "engine/memory.h"
#include "scan/clip_stack.h"
#include "scan/edge_rows.h"

#include <algorithm>

namespace kryn {

namespace {

bool wholePageMode(int32_t mode) {
    return mode == 0 || mode == 3 || mode == 5 || mode == 7 || mode == 9;
}

void setEdge(Edge* e, int32_t x, int32_t yTop, int32_t yBottom, int16_t direction, int32_t q) {
    e->xTop = e->xBottom = x;
    e->yTop = yTop;
    e->yBottom = yBottom;
    e->direction = direction;
    e->curTop = yTop;
    setupEdgeRows(e, q);
}

} // namespace

// The rectangle's right and bottom sides lie one pixel beyond the last
// column and row (except in page mode 3, whose extra band entry already
// covers the row below), so that the region's box is exactly the pixels it
// admits and a fill inside the page is never cut.
ResultCode buildBaseClip(ScanState* scan, const ClipPage& page, BaseClip** base) {
    const int32_t q = scan->quarterTurns;
    const int32_t turnRow = (q == 2 || q == 3) ? 1 : 0;
    int32_t top = 0;
    const int32_t further = page.mode == 3 ? 0 : 1;
    int32_t right = page.pageWidth - 1 + further;
    const int32_t pageBottom = page.pageHeight - 1 + further;
    int32_t bottom = pageBottom;
    if (!wholePageMode(page.mode)) {
        // A group moved past the page (or wrapped in 16 bits) keeps its rows
        // on the page, so that their sixteenths fit 32 bits: it admits nothing.
        const int64_t groupTop = int64_t{page.groupFirst} * page.bandHeight - turnRow;
        top = static_cast<int32_t>(std::clamp<int64_t>(groupTop, 0, pageBottom));
        const int64_t groupBottom = int64_t{page.groupLast + 1} * page.bandHeight - turnRow;
        bottom = page.groupLast + 1 >= page.bandCount
                     ? pageBottom
                     : static_cast<int32_t>(std::clamp<int64_t>(groupBottom, top, pageBottom));
    }
    freeAndClear(*base);
    BaseClip* b = createRecord<BaseClip>();
    if (b == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    setEdge(&b->left, 0, top * 16, bottom * 16, 1, q);
    setEdge(&b->right, right * 16, top * 16, bottom * 16, -1, q);
    b->trapezoid.yTop = top * 16;
    b->trapezoid.yBottom = bottom * 16;
    b->trapezoid.leftEdge = &b->left;
    b->trapezoid.rightEdge = &b->right;
    b->trapezoid.flag = TRAPEZOID_CLIP_RECT;
    setTrapezoidCorners(&b->trapezoid);
    b->region.activeList = &b->trapezoid;
    setRegionShape(&b->region, trapezoidBox(b->trapezoid, q));
    *base = b;
    return KRYN_OK;
}

} // namespace kryn
