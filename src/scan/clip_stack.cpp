#include "scan/clip_stack.h"

#include "scan/scan_convert.h"

namespace kryn {

namespace {

int32_t poolIndex(const ClipStack& s, const EdgePool* pool) {
    for (int32_t i = 0; i < CLIP_POOL_COUNT; ++i) {
        if (&s.pools[i] == pool) {
            return i;
        }
    }
    return -1;
}

// Moves the first pool in state `from` to `to`; false when there is none.
bool movePool(ClipStack* s, int16_t from, int16_t to) {
    for (int32_t i = 0; i < CLIP_POOL_COUNT; ++i) {
        if (s->poolState[i] == from) {
            s->poolState[i] = to;
            return true;
        }
    }
    return false;
}

bool sameRegion(const ClipRegion& a, const ClipRegion& b) {
    return a.ownedList == b.ownedList && a.pool == b.pool;
}

void clearSaved(ClipStack* s) {
    s->saved = ClipRegion();
}

// The saved region is the current one: forget the save, and the pool that
// held it is the current region's again.
ResultCode forgetSaveOfCurrent(ClipStack* s) {
    clearSaved(s);
    return movePool(s, CLIP_POOL_SAVED, CLIP_POOL_CURRENT) ? KRYN_OK : KRYN_ERR_INVALID;
}

} // namespace

namespace {

struct PolylineFigure {
    const Polyline* subpaths;
    int32_t count;
    int32_t pathRecords;
};

ResultCode buildPolylineEdges(void* context, ScanState* scan, const ScanFloatBox& box) {
    const auto* figure = static_cast<const PolylineFigure*>(context);
    return buildEdges(scan, figure->subpaths, figure->count, figure->pathRecords, box);
}

} // namespace

ResultCode clipWithPolylines(ClipStack* stack, ScanState* scan, const BaseClip& base,
                             const Polyline* subpaths, int32_t count, int32_t pathRecords,
                             int32_t rule, const ClipPage& page) {
    PolylineFigure figure{subpaths, count, pathRecords};
    return clipWithEdges(stack, scan, base, EdgeSource{buildPolylineEdges, &figure}, rule, page);
}

ResultCode clipWithEdges(ClipStack* stack, ScanState* scan, const BaseClip& base,
                         const EdgeSource& source, int32_t rule, const ClipPage& page) {
    if (rule != FILL_EVEN_ODD && rule != FILL_NONZERO) {
        return KRYN_ERR_INVALID;
    }
    int32_t picked = -1;
    for (int32_t i = 0; i < CLIP_POOL_COUNT && picked < 0; ++i) {
        if (stack->poolState[i] == CLIP_POOL_FREE) {
            picked = i;
        }
    }
    if (picked < 0) {
        return KRYN_ERR_INVALID;
    }
    EdgePool* pool = &stack->pools[picked];
    stack->poolState[picked] = CLIP_POOL_BUILDING;
    scan->clipPool = pool;
    ScanFloatBox pageBox;
    pageBox.maxX = static_cast<float>(page.pageWidth);
    pageBox.maxY = static_cast<float>(page.pageHeight);
    ResultCode r = source.build(source.context, scan, pageBox);
    if (failed(r)) {
        releaseEdges(scan);
    } else {
        r = scanConvert(scan, rule, base.region, SCAN_MODE_CLIP, nullptr);
    }
    scan->clipPool = nullptr;
    Trapezoid* list = scan->collected;
    RegionIndex* index = scan->collectedIndex;
    const IntBox box = scan->collectedBox;
    scan->collected = scan->collectedTail = nullptr;
    scan->collectedIndex = nullptr;
    scan->collectedBox = IntBox();
    if (failed(r)) {
        freeTrapezoidList(list);
        freeRegionIndex(index);
        pool->reset();
        stack->poolState[picked] = CLIP_POOL_FREE;
        return r;
    }
    for (int32_t i = 0; i < CLIP_POOL_COUNT; ++i) {
        if (stack->poolState[i] == CLIP_POOL_CURRENT) {
            stack->poolState[i] = CLIP_POOL_FREE;
        }
    }
    const ClipRegion old = stack->current;
    if (!sameRegion(old, stack->saved) && old.ownedList != nullptr) {
        ClipRegion doomed = old;
        releaseClip(&doomed);
    }
    ClipRegion region;
    if (index != nullptr) {
        region.index = index;
        list = &index->head;
    }
    if (list == nullptr) {
        pool->reset();
        stack->poolState[picked] = CLIP_POOL_FREE;
    } else {
        region.pool = pool;
        stack->poolState[picked] = CLIP_POOL_CURRENT;
    }
    region.ownedList = region.activeList = list;
    setRegionShape(&region, box);
    stack->current = region;
    return KRYN_OK;
}

ResultCode resetClip(ClipStack* stack, ScanState* scan, const BaseClip& base,
                     const ClipPage& page) {
    int32_t top = 0;
    int32_t bottom = page.pageHeight;
    const bool wholePage =
        page.mode == 0 || page.mode == 3 || page.mode == 5 || page.mode == 7 || page.mode == 9;
    if (!wholePage) {
        top = page.groupFirst > 0 ? page.groupFirst * page.bandHeight - 1 : 0;
        bottom = page.groupLast + 1 >= page.bandCount ? page.pageHeight
                                                      : (page.groupLast + 1) * page.bandHeight + 1;
    }
    const float w = static_cast<float>(page.pageWidth);
    const FloatPoint rect[4] = {{0, static_cast<float>(top)},
                                {w, static_cast<float>(top)},
                                {w, static_cast<float>(bottom)},
                                {0, static_cast<float>(bottom)}};
    Polyline line;
    line.floatPoints = rect;
    line.count = 4;
    return clipWithPolylines(stack, scan, base, &line, 1, 5, FILL_EVEN_ODD, page);
}

ResultCode pushClip(ClipStack* s) {
    if (s->current.ownedList == nullptr) {
        return KRYN_OK;
    }
    if (s->saved.ownedList != nullptr) {
        if (s->saved.ownedList == s->current.ownedList) {
            return KRYN_OK;
        }
        if (!movePool(s, CLIP_POOL_SAVED, CLIP_POOL_FREE)) {
            return KRYN_ERR_INVALID;
        }
        releaseClip(&s->saved);
    }
    s->saved = s->current;
    const int32_t i = poolIndex(*s, s->current.pool);
    if (i < 0 || s->poolState[i] != CLIP_POOL_CURRENT) {
        return KRYN_ERR_INVALID;
    }
    s->poolState[i] = CLIP_POOL_SAVED;
    return KRYN_OK;
}

ResultCode popClip(ClipStack* s) {
    if (s->current.ownedList == nullptr) {
        return KRYN_OK;
    }
    if (s->saved.ownedList != nullptr) {
        if (s->saved.ownedList == s->current.ownedList) {
            return forgetSaveOfCurrent(s);
        }
        if (!movePool(s, CLIP_POOL_CURRENT, CLIP_POOL_FREE)) {
            return KRYN_ERR_INVALID;
        }
        releaseClip(&s->current);
        s->current = s->saved;
        return forgetSaveOfCurrent(s);
    }
    if (s->saved.activeList != nullptr && s->saved.activeList != s->current.activeList) {
        movePool(s, CLIP_POOL_CURRENT, CLIP_POOL_FREE);
        releaseClip(&s->current);
        s->current = s->saved;
    }
    clearSaved(s);
    return KRYN_OK;
}

ResultCode voidPushClip(ClipStack* s) {
    if (s->current.ownedList == nullptr) {
        return KRYN_OK;
    }
    if (s->saved.ownedList != nullptr) {
        if (s->saved.ownedList == s->current.ownedList) {
            return forgetSaveOfCurrent(s);
        }
        if (!movePool(s, CLIP_POOL_SAVED, CLIP_POOL_FREE)) {
            return KRYN_ERR_INVALID;
        }
        releaseClip(&s->saved);
    }
    clearSaved(s);
    return KRYN_OK;
}

void inheritClip(const ClipStack& outer, ClipStack* inner) {
    *inner = ClipStack();
    inner->current = outer.current;
    inner->current.pool = nullptr;
    inner->current.ownedList = nullptr;
    inner->saved = outer.saved;
    inner->saved.pool = nullptr;
    inner->saved.ownedList = nullptr;
}

void releaseClipStack(ClipStack* s) {
    if (s->saved.ownedList != nullptr && s->saved.ownedList != s->current.ownedList) {
        releaseClip(&s->saved);
    }
    if (s->current.ownedList != nullptr) {
        releaseClip(&s->current);
    }
    for (EdgePool& p : s->pools) {
        p.release();
    }
    *s = ClipStack();
}

} // namespace kryn
