#include "stroke/merged_spans.h"

#include "engine/memory.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

constexpr uint32_t FIRST_CAPACITY = 256;
constexpr uint32_t CAPACITY_LIMIT = 0x40000000; // entries; 12 GiB would be needed beyond

bool spanBefore(const CollectedSpan& a, const CollectedSpan& b) {
    return a.y != b.y ? a.y < b.y : a.x0 < b.x0;
}

// Sorts the spans and merges overlapping or touching ones of a row in place.
void compact(MergedSpans* m) {
    std::sort(m->spans, m->spans + m->count, spanBefore);
    uint32_t out = 0;
    for (uint32_t i = 0; i < m->count; ++i) {
        const CollectedSpan& s = m->spans[i];
        if (out > 0) {
            CollectedSpan& last = m->spans[out - 1];
            if (last.y == s.y && static_cast<int64_t>(s.x0) <= static_cast<int64_t>(last.x1) + 1) {
                last.x1 = std::max(last.x1, s.x1);
                continue;
            }
        }
        m->spans[out++] = s;
    }
    m->count = out;
}

// Room for one more span: merging first, then a collection twice the size
// when merging freed less than half.
ResultCode makeRoom(MergedSpans* m) {
    if (m->count < m->capacity) {
        return KRYN_OK;
    }
    if (m->capacity > 0) {
        compact(m);
        if (m->count <= m->capacity / 2) {
            return KRYN_OK;
        }
    }
    if (m->capacity >= CAPACITY_LIMIT) {
        return KRYN_ERR_NO_MEMORY;
    }
    const uint32_t capacity = m->capacity == 0 ? FIRST_CAPACITY : 2 * m->capacity;
    auto* grown = static_cast<CollectedSpan*>(allocBytes(sizeof(CollectedSpan) * capacity));
    if (grown == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    if (m->count > 0) {
        std::memcpy(grown, m->spans, sizeof(CollectedSpan) * m->count);
    }
    freeBytes(m->spans);
    m->spans = grown;
    m->capacity = capacity;
    return KRYN_OK;
}

ResultCode collectSpan(void* ctx, int32_t x0, int32_t x1, int32_t y) {
    auto* m = static_cast<MergedSpans*>(ctx);
    const ResultCode r = makeRoom(m);
    if (failed(r)) {
        return r;
    }
    m->spans[m->count++] = CollectedSpan{y, x0, x1};
    return KRYN_OK;
}

ResultCode collectRect(void* ctx, int32_t x0, int32_t x1, int32_t y0, int32_t y1) {
    for (int32_t y = y0; y <= y1; ++y) {
        const ResultCode r = collectSpan(ctx, x0, x1, y);
        if (failed(r)) {
            return r;
        }
    }
    return KRYN_OK;
}

} // namespace

void openMergedSpans(MergedSpans* merged, const SpanRecorder* target, SpanRecorder* collector) {
    *merged = MergedSpans();
    merged->target = target;
    *collector = SpanRecorder();
    collector->span = collectSpan;
    collector->rect = collectRect;
    collector->ctx = merged;
    collector->bounds = target->bounds;
    collector->bandHeight = target->bandHeight;
}

ResultCode finishMergedSpans(MergedSpans* merged) {
    compact(merged);
    ResultCode r = KRYN_OK;
    for (uint32_t i = 0; i < merged->count && !failed(r); ++i) {
        const CollectedSpan& s = merged->spans[i];
        r = merged->target->span(merged->target->ctx, s.x0, s.x1, s.y);
    }
    discardMergedSpans(merged);
    return r;
}

void discardMergedSpans(MergedSpans* merged) {
    freeAndClear(merged->spans);
    merged->count = merged->capacity = 0;
}

} // namespace kryn
