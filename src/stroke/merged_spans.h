// A span sink for raster operations that must not touch a pixel twice: the
// spans of every piece of one stroke are collected, merged per device row
// into disjoint runs, and recorded once at the end.
#pragma once

#include "engine/result_codes.h"
#include "scan/span_recorder.h"

#include <cstdint>

namespace kryn {

struct CollectedSpan {
    int32_t y, x0, x1;
};

struct MergedSpans {
    const SpanRecorder* target = nullptr;
    CollectedSpan* spans = nullptr; // from the global heap
    uint32_t count = 0;
    uint32_t capacity = 0;
};

// Points *collector at `merged`: its spans and rectangles are collected
// (within the target's raster bounds), whole-band row spans come as spans.
void openMergedSpans(MergedSpans* merged, const SpanRecorder* target, SpanRecorder* collector);

// Records the merged runs through the target, row by row from the top, and
// frees the collection. The first recording error is returned.
ResultCode finishMergedSpans(MergedSpans* merged);

// Frees the collection without recording anything.
void discardMergedSpans(MergedSpans* merged);

} // namespace kryn
