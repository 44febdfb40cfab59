// The geometry of the area families, shared by every member: each record's
// entries clipped to the raster, the dirty box widened by what is left, and
// the pixels handed to a paint policy as blocks, row pieces and column
// pieces. A member is a walk over its geometry with its own paint:
//
//   paint.block(state, left, top, right, bottom)  rectangles, clipped
//   paint.span(state, y, left, right)             one row piece (row spans)
//   paint.listSpan(state, y, left, right)         one span of a span list
//   paint.column(state, x, top, bottom)           one column piece
#pragma once

#include "displaylist/display_list.h"
#include "render/area_operand.h"
#include "render/paint_state.h"

#include <algorithm>

namespace kryn {

// An inclusive span clipped to the raster; false when nothing is left.
inline bool clipColumns(const PaintState& state, int32_t left, int32_t right, int32_t& outLeft,
                        int32_t& outRight) {
    outLeft = std::max(left, 0);
    outRight = std::min(right, state.width - 1);
    return outLeft <= outRight;
}

template <class Paint>
void walkRect(PaintState& state, const AreaOperand& op, Paint& paint) {
    int32_t left = 0;
    int32_t right = 0;
    const int32_t top = std::max(op.top, 0);
    const int32_t bottom = std::min(op.bottom, state.height - 1);
    if (!clipColumns(state, op.left, op.right, left, right) || top > bottom) {
        return;
    }
    widenDirtyBox(*state.box, left, top, right, bottom);
    paint.block(state, left, top, right, bottom);
}

template <class Paint>
void walkRectList(PaintState& state, const AreaOperand& op, Paint& paint) {
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += RECT_LIST_ENTRY_BYTES) {
        int32_t left = 0;
        int32_t right = 0;
        const int32_t top = e[4];
        const int32_t bottom = std::min<int32_t>(e[5], state.height - 1);
        if (!clipColumns(state, loadU16(e), loadU16(e + 2), left, right) || top > bottom) {
            continue;
        }
        widenDirtyBox(box, left, top, right, bottom);
        paint.block(state, left, top, right, bottom);
    }
}

template <class Paint>
void walkSpanList(PaintState& state, const AreaOperand& op, Paint& paint) {
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += SPAN_LIST_ENTRY_BYTES) {
        const int32_t y = e[0];
        const int32_t start = loadU16(e + 2);
        int32_t left = 0;
        int32_t right = 0;
        if (y >= state.height ||
            !clipColumns(state, start, start + loadU16(e + 4) - 1, left, right)) {
            continue;
        }
        widenDirtyBox(box, left, y, right, y);
        paint.listSpan(state, y, left, right);
    }
}

template <class Paint>
void walkRowSpans(PaintState& state, const AreaOperand& op, Paint& paint) {
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += ROW_SPAN_ENTRY_BYTES) {
        const int32_t y = op.top + static_cast<int32_t>(i);
        if (y >= state.height) {
            break;
        }
        const int32_t start = loadU16(e);
        int32_t left = 0;
        int32_t right = 0;
        if (!clipColumns(state, start, start + loadU16(e + 2) - 1, left, right)) {
            continue;
        }
        widenDirtyBox(box, left, y, right, y);
        paint.span(state, y, left, right);
    }
}

template <class Paint>
void walkColumnRuns(PaintState& state, const AreaOperand& op, Paint& paint) {
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += COLUMN_RUN_ENTRY_BYTES) {
        const int32_t top = e[0];
        const int32_t bottom = std::min<int32_t>(top + e[1] - 1, state.height - 1);
        const int32_t x = loadU16(e + 2);
        if (x >= state.width || top > bottom) {
            continue;
        }
        widenDirtyBox(box, x, top, x, bottom);
        paint.column(state, x, top, bottom);
    }
}

// The walk of geometry G with a given paint.
template <AreaGeometry G, class Paint>
void walkArea(PaintState& state, const AreaOperand& op, Paint& paint) {
    switch (G) {
    case AREA_RECT:
        walkRect(state, op, paint);
        break;
    case AREA_RECT_LIST:
        walkRectList(state, op, paint);
        break;
    case AREA_SPAN_LIST:
        walkSpanList(state, op, paint);
        break;
    case AREA_ROW_SPANS:
        walkRowSpans(state, op, paint);
        break;
    default:
        walkColumnRuns(state, op, paint);
        break;
    }
}

// One member: the walk of geometry G with a fresh paint of type Paint.
template <class Paint, AreaGeometry G>
void paintAreaWith(PaintState& state, const AreaOperand& op) {
    Paint paint(state);
    walkArea<G>(state, op, paint);
}

} // namespace kryn
