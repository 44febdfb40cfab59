#include "scan/clip_index.h"

#include "engine/memory.h"
#include "scan/active_order.h"
#include "scan/clip_region.h"
#include "scan/edge_rows.h"
#include "scan/scan_state.h"

namespace kryn {

struct RunBlock {
    static constexpr int32_t RUNS = 256;
    RunBlock* next = nullptr;
    ClipRun runs[RUNS];
};

template <class T>
T* BlockArray<T>::append() {
    if (last == nullptr || count % BLOCK == 0) {
        Block* b = createRecord<Block>();
        if (b == nullptr) {
            return nullptr;
        }
        if (last == nullptr) {
            first = b;
        } else {
            last->next = b;
        }
        last = b;
    }
    T* item = &last->items[count % BLOCK];
    *item = T();
    ++count;
    return item;
}

template <class T>
bool BlockArray<T>::finish() {
    const int32_t blocks = (count + BLOCK - 1) / BLOCK;
    directory = static_cast<Block**>(allocBytes(sizeof(Block*) * static_cast<size_t>(blocks + 1)));
    if (directory == nullptr) {
        return false;
    }
    int32_t i = 0;
    for (Block* b = first; b != nullptr; b = b->next) {
        directory[i++] = b;
    }
    return true;
}

template <class T>
void BlockArray<T>::release() {
    while (first != nullptr) {
        Block* next = first->next;
        destroyRecord(first);
        first = next;
    }
    last = nullptr;
    count = 0;
    freeAndClear(directory);
}

void freeRegionIndex(RegionIndex* index) {
    if (index == nullptr) {
        return;
    }
    index->bands.release();
    index->ops.release();
    index->checkpoints.release();
    while (index->runs != nullptr) {
        RunBlock* next = index->runs->next;
        destroyRecord(index->runs);
        index->runs = next;
    }
    destroyRecord(index);
}

namespace {

int32_t minX(const Edge& e) {
    return e.xTop < e.xBottom ? e.xTop : e.xBottom;
}
int32_t maxX(const Edge& e) {
    return e.xTop > e.xBottom ? e.xTop : e.xBottom;
}

} // namespace

int64_t RegionIndex::pieceTop(int32_t b) const {
    const int64_t y = bands.at(b).yTop;
    return cut && y < baseTop ? baseTop : y;
}

int64_t RegionIndex::pieceBottom(int32_t b) const {
    const int64_t y = bands.at(b).yBottom;
    return cut && y > baseBottom ? baseBottom : y;
}

bool RegionIndex::piece(const ClipBand& band, const ClipRun& r, Trapezoid* out) const {
    Trapezoid t;
    t.yTop = band.yTop;
    t.yBottom = band.yBottom;
    t.leftEdge = r.left;
    t.rightEdge = r.right;
    if (!cut ||
        (r.side == RUN_INSIDE && band.yTop >= baseBox.minY && band.yBottom <= baseBox.maxY)) {
        *out = t;
        return true;
    }
    if (r.side == RUN_OUTSIDE) {
        return false;
    }
    // As the page rectangle's clip stored it: unchanged when inside, else
    // trimmed to its lines and limited to its columns.
    setTrapezoidCorners(&t);
    const IntBox box = trapezoidBox(t, quarterTurns);
    if (!box.meets(baseBox)) {
        return false;
    }
    if (!box.inside(baseBox)) {
        t.yTop = t.yTop > baseTop ? t.yTop : baseTop;
        t.yBottom = t.yBottom < baseBottom ? t.yBottom : baseBottom;
        if (t.yBottom <= t.yTop) {
            return false;
        }
        t.minColumn = baseMinColumn;
        t.maxColumn = baseMaxColumn;
        int64_t first = 0;
        int64_t last = 0;
        rowsOfRange(t.yTop, t.yBottom, quarterTurns, &first, &last);
        if (first > last || t.minColumn > t.maxColumn) {
            return false;
        }
    }
    *out = t;
    return true;
}

void ClipCursor::moveTo(const RegionIndex* region, int32_t b) {
    const bool same = index == region && serial == region->serial;
    if (!same || b < band || b - band > 2 * CHECKPOINT_BANDS) {
        index = region;
        serial = region->serial;
        band = b - b % CHECKPOINT_BANDS;
        const ClipBand& at = region->bands.at(band);
        first = nullptr;
        ClipRun* last = nullptr;
        for (int32_t i = 0; i < at.checkpointCount; ++i) {
            ClipRun* r = region->checkpoints.at(at.firstCheckpoint + i);
            r->prev = last;
            r->next = nullptr;
            if (last == nullptr) {
                first = r;
            } else {
                last->next = r;
            }
            last = r;
        }
    }
    while (band < b) {
        ++band;
        const ClipBand& at = region->bands.at(band);
        for (int32_t i = 0; i < at.opCount; ++i) {
            const ClipOp& op = region->ops.at(at.firstOp + i);
            ClipRun* r = op.run;
            if (op.remove != 0) {
                if (r->prev != nullptr) {
                    r->prev->next = r->next;
                } else {
                    first = r->next;
                }
                if (r->next != nullptr) {
                    r->next->prev = r->prev;
                }
                continue;
            }
            r->prev = op.after;
            r->next = op.after != nullptr ? op.after->next : first;
            if (r->next != nullptr) {
                r->next->prev = r;
            }
            if (op.after != nullptr) {
                op.after->next = r;
            } else {
                first = r;
            }
        }
    }
}

BandView* ClipCursor::view(const RegionIndex* region, int32_t b) {
    if (viewIndex != region || viewSerial != region->serial || capacity < region->widest) {
        for (BandView& v : views) {
            v = BandView();
        }
        viewIndex = nullptr;
        if (capacity < region->widest) {
            freeAndClear(storage);
            capacity = 0;
            storage = static_cast<ClipRun**>(
                allocBytes(sizeof(ClipRun*) * BAND_VIEWS * static_cast<size_t>(region->widest)));
            if (storage == nullptr) {
                return nullptr;
            }
            capacity = region->widest;
        }
        viewIndex = region;
        viewSerial = region->serial;
    }
    ++clock;
    BandView* oldest = &views[0];
    for (BandView& v : views) {
        if (v.band == b) {
            v.used = clock;
            return &v;
        }
        oldest = v.used < oldest->used ? &v : oldest;
    }
    moveTo(region, b);
    *oldest = BandView();
    oldest->band = b;
    oldest->used = clock;
    oldest->runs = storage + (oldest - views) * capacity;
    for (ClipRun* r = first; r != nullptr; r = r->next) {
        oldest->runs[oldest->count++] = r;
    }
    return oldest;
}

void ClipCursor::release() {
    freeAndClear(storage);
    *this = ClipCursor();
}

namespace {

ClipRun* newRun(RegionIndex* index) {
    if (index->runs == nullptr || index->runsInBlock == RunBlock::RUNS) {
        RunBlock* b = createRecord<RunBlock>();
        if (b == nullptr) {
            return nullptr;
        }
        b->next = index->runs;
        index->runs = b;
        index->runsInBlock = 0;
    }
    ClipRun* r = &index->runs->runs[index->runsInBlock++];
    *r = ClipRun();
    return r;
}

// Adds the box of a run's inside pieces to the region's box.
void closeRun(RegionBuilder* b, ClipRun* r) {
    if (r->insideTop > r->insideBottom) {
        return;
    }
    Trapezoid t;
    t.yTop = r->insideTop;
    t.yBottom = r->insideBottom;
    t.leftEdge = r->left;
    t.rightEdge = r->right;
    setTrapezoidCorners(&t);
    const IntBox box = trapezoidBox(t, b->index->quarterTurns);
    b->box.include(box.minX, box.minY);
    b->box.include(box.maxX, box.maxY);
    r->insideTop = INT32_MAX;
    r->insideBottom = INT32_MIN;
}

} // namespace

ResultCode RegionBuilder::open(ScanState* scan, const ClipRegion* base) {
    index = createRecord<RegionIndex>();
    if (index == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    index->serial = ++scan->regionSerial;
    index->quarterTurns = scan->quarterTurns;
    if (base != nullptr) {
        const Trapezoid& c = *base->activeList;
        index->cut = true;
        index->baseBox = base->intBox;
        index->baseTop = c.yTop;
        index->baseBottom = c.yBottom;
        index->baseMinColumn = columnAt(*c.leftEdge, 0, scan->quarterTurns);
        index->baseMaxColumn = columnAt(*c.rightEdge, 0, scan->quarterTurns) - 1;
    }
    return KRYN_OK;
}

ResultCode RegionBuilder::beginBand(int64_t yTop, int64_t yBottom) {
    ClipBand* b = index->bands.append();
    if (b == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    ++band;
    current = b;
    b->yTop = static_cast<int32_t>(yTop);
    b->yBottom = static_cast<int32_t>(yBottom);
    b->firstOp = index->ops.count;
    bandInside = !index->cut || (yTop >= index->baseBox.minY && yBottom <= index->baseBox.maxY);
    lastInBand = nullptr;
    lastOrder = -1;
    return KRYN_OK;
}

ResultCode RegionBuilder::addPiece(SweepNode* left, SweepNode* right) {
    // A run goes on when the same pair of edges had a piece in the band
    // before, in the same order among the others (between two bands the
    // edges may have crossed and come back in other places).
    ClipRun* r = left->run;
    if (r != nullptr && r->right == right->edge && r->lastBand == band - 1 &&
        r->order > lastOrder) {
        lastOrder = r->order;
    } else {
        r = newRun(index);
        ClipOp* op = r == nullptr ? nullptr : index->ops.append();
        if (op == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
        r->left = left->edge;
        r->right = right->edge;
        if (index->cut) {
            const IntBox& base = index->baseBox;
            if (minX(*r->left) >= base.minX && maxX(*r->right) <= base.maxX) {
                r->side = RUN_INSIDE;
            } else if (maxX(*r->right) < base.minX || minX(*r->left) > base.maxX) {
                r->side = RUN_OUTSIDE;
            } else {
                r->side = RUN_ACROSS;
            }
        }
        op->run = r;
        op->after = lastInBand;
        r->prev = lastInBand;
        r->next = lastInBand != nullptr ? lastInBand->next : live;
        if (r->next != nullptr) {
            r->next->prev = r;
        }
        if (lastInBand != nullptr) {
            lastInBand->next = r;
        } else {
            live = r;
        }
        left->run = r;
    }
    r->lastBand = band;
    lastInBand = r;
    const ClipBand& b = *current;
    Trapezoid t;
    if (r->side == RUN_INSIDE && bandInside) {
        r->insideTop = b.yTop < r->insideTop ? b.yTop : r->insideTop;
        r->insideBottom = b.yBottom > r->insideBottom ? b.yBottom : r->insideBottom;
    } else if (index->piece(b, *r, &t)) {
        setTrapezoidCorners(&t);
        const IntBox pieceBox = trapezoidBox(t, index->quarterTurns);
        box.include(pieceBox.minX, pieceBox.minY);
        box.include(pieceBox.maxX, pieceBox.maxY);
    } else {
        return KRYN_OK;
    }
    if (pieces++ == 0) {
        firstPieceBand = b;
        firstPieceRun = r;
    }
    return KRYN_OK;
}

ResultCode RegionBuilder::endBand() {
    ClipBand& b = *current;
    int32_t order = 0;
    for (ClipRun* r = live; r != nullptr;) {
        ClipRun* next = r->next;
        if (r->lastBand == band) {
            r->order = order++;
        } else {
            ClipOp* op = index->ops.append();
            if (op == nullptr) {
                return KRYN_ERR_NO_MEMORY;
            }
            op->run = r;
            op->remove = 1;
            closeRun(this, r);
            if (r->prev != nullptr) {
                r->prev->next = next;
            } else {
                live = next;
            }
            if (next != nullptr) {
                next->prev = r->prev;
            }
        }
        r = next;
    }
    b.opCount = index->ops.count - b.firstOp;
    index->widest = order > index->widest ? order : index->widest;
    if (band % CHECKPOINT_BANDS == 0) {
        b.firstCheckpoint = index->checkpoints.count;
        for (ClipRun* r = live; r != nullptr; r = r->next) {
            ClipRun** slot = index->checkpoints.append();
            if (slot == nullptr) {
                return KRYN_ERR_NO_MEMORY;
            }
            *slot = r;
            ++b.checkpointCount;
        }
    }
    return KRYN_OK;
}

ResultCode RegionBuilder::finish(ScanState* scan) {
    for (ClipRun* r = live; r != nullptr; r = r->next) {
        closeRun(this, r);
    }
    live = nullptr;
    Trapezoid first;
    if (pieces > 0) {
        index->piece(firstPieceBand, *firstPieceRun, &first);
        setTrapezoidCorners(&first);
    }
    if (pieces <= 1) {
        // One piece (or none): the plain list, as a rectangle region needs.
        Trapezoid* copy = pieces == 1 ? copyRecord(first) : nullptr;
        if (pieces == 1 && copy == nullptr) {
            abandon();
            return KRYN_ERR_NO_MEMORY;
        }
        if (copy != nullptr) {
            copy->next = nullptr;
            scan->collected = scan->collectedTail = copy;
        }
        abandon();
    } else {
        if (!index->bands.finish() || !index->ops.finish() || !index->checkpoints.finish()) {
            abandon();
            return KRYN_ERR_NO_MEMORY;
        }
        index->head = first;
        index->head.next = nullptr;
        scan->collectedIndex = index;
        index = nullptr;
    }
    if (!box.empty()) {
        scan->collectedBox.include(box.minX, box.minY);
        scan->collectedBox.include(box.maxX, box.maxY);
    }
    return KRYN_OK;
}

void RegionBuilder::abandon() {
    freeRegionIndex(index);
    index = nullptr;
    live = nullptr;
}

} // namespace kryn
