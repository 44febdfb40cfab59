#include "render/area_solid.h"

#include "displaylist/display_list.h"
#include "render/paint_state.h"
#include "render/raster_pixels.h"

#include <algorithm>

namespace kryn {

namespace {

// The solid paint of one record: the raster operation's mode and operands,
// fixed before any pixel is touched.
template <class Pixels>
struct SolidPaint {
    using Pixel = typename Pixels::Pixel;

    explicit SolidPaint(const PaintState& state)
        : mode(state.ropMode), p(state.colour[SLOT_PAINT]),
          fillValue(mode == ROP_MODE_WHITE ? Pixels::whiteValue(state)
                                           : Pixels::copyValue(state, p)),
          rop(Pixels::rop(state, state.colour[SLOT_IMAGE], p)) {}

    bool fills() const { return mode == ROP_MODE_COPY || mode == ROP_MODE_WHITE; }

    void row(Pixel* at, int32_t n) const {
        switch (mode) {
        case ROP_MODE_COPY:
        case ROP_MODE_WHITE:
            Pixels::fill(at, n, fillValue);
            break;
        case ROP_MODE_XOR:
            Pixels::xorRow(at, n, p);
            break;
        case ROP_MODE_GENERIC:
            for (int32_t i = 0; i < n; ++i) {
                at[i] = rop(at[i]);
            }
            break;
        }
    }

    // n pixels down one column, `step` pixels apart.
    void column(Pixel* at, int32_t step, int32_t n) const {
        switch (mode) {
        case ROP_MODE_COPY:
        case ROP_MODE_WHITE:
            for (int32_t i = 0; i < n; ++i, at += step) {
                *at = fillValue;
            }
            break;
        case ROP_MODE_XOR:
            for (int32_t i = 0; i < n; ++i, at += step) {
                *at = Pixels::xorPixel(*at, p);
            }
            break;
        case ROP_MODE_GENERIC:
            for (int32_t i = 0; i < n; ++i, at += step) {
                *at = rop(*at);
            }
            break;
        }
    }

    RopMode mode;
    uint32_t p;
    Pixel fillValue;
    typename Pixels::Rop rop;
};

// An inclusive span clipped to the raster; false when nothing is left.
struct Span {
    int32_t left;
    int32_t right;
};

inline bool clipColumns(const PaintState& state, int32_t left, int32_t right, Span& out) {
    out.left = std::max(left, 0);
    out.right = std::min(right, state.width - 1);
    return out.left <= out.right;
}

inline bool rowInside(const PaintState& state, int32_t y) {
    return y >= 0 && y < state.height;
}

// Paints a clipped rectangle: fills copy their first row down.
template <class Pixels>
void paintBlock(const PaintState& state, const SolidPaint<Pixels>& paint, int32_t left, int32_t top,
                int32_t right, int32_t bottom) {
    using Pixel = typename Pixels::Pixel;
    const int32_t n = right - left + 1;
    Pixel* first = Pixels::row(state, top) + left;
    paint.row(first, n);
    for (int32_t y = top + 1; y <= bottom; ++y) {
        Pixel* at = Pixels::row(state, y) + left;
        if (paint.fills()) {
            std::memcpy(at, first, static_cast<size_t>(n) * sizeof(Pixel));
        } else {
            paint.row(at, n);
        }
    }
}

template <class Pixels>
void paintRect(PaintState& state, const AreaOperand& op) {
    Span cols;
    const int32_t top = std::max(op.top, 0);
    const int32_t bottom = std::min(op.bottom, state.height - 1);
    if (!clipColumns(state, op.left, op.right, cols) || top > bottom) {
        return;
    }
    widenDirtyBox(*state.box, cols.left, top, cols.right, bottom);
    paintBlock(state, SolidPaint<Pixels>(state), cols.left, top, cols.right, bottom);
}

template <class Pixels>
void paintRectList(PaintState& state, const AreaOperand& op) {
    const SolidPaint<Pixels> paint(state);
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += RECT_LIST_ENTRY_BYTES) {
        Span cols;
        const int32_t top = e[4];
        const int32_t bottom = std::min<int32_t>(e[5], state.height - 1);
        if (!clipColumns(state, loadU16(e), loadU16(e + 2), cols) || top > bottom) {
            continue;
        }
        widenDirtyBox(box, cols.left, top, cols.right, bottom);
        paintBlock(state, paint, cols.left, top, cols.right, bottom);
    }
}

// Spans of one record: under a plain fill each span after the first copies
// what it can from the span painted before it and fills only the rest.
template <class Pixels>
void paintSpanList(PaintState& state, const AreaOperand& op) {
    using Pixel = typename Pixels::Pixel;
    const SolidPaint<Pixels> paint(state);
    DirtyBox& box = *state.box;
    const Pixel* previous = nullptr;
    int32_t previousLength = 0;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += SPAN_LIST_ENTRY_BYTES) {
        const int32_t y = e[0];
        const int32_t left = loadU16(e + 2);
        Span cols;
        if (!rowInside(state, y) || !clipColumns(state, left, left + loadU16(e + 4) - 1, cols)) {
            continue;
        }
        widenDirtyBox(box, cols.left, y, cols.right, y);
        Pixel* at = Pixels::row(state, y) + cols.left;
        const int32_t n = cols.right - cols.left + 1;
        if (paint.mode == ROP_MODE_COPY && previous != nullptr) {
            const int32_t copied = std::min(n, previousLength);
            std::memmove(at, previous, static_cast<size_t>(copied) * sizeof(Pixel));
            Pixels::fill(at + copied, n - copied, paint.fillValue);
        } else {
            paint.row(at, n);
        }
        previous = at;
        previousLength = n;
    }
}

template <class Pixels>
void paintRowSpans(PaintState& state, const AreaOperand& op) {
    const SolidPaint<Pixels> paint(state);
    DirtyBox& box = *state.box;
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += ROW_SPAN_ENTRY_BYTES) {
        const int32_t y = op.top + static_cast<int32_t>(i);
        if (y >= state.height) {
            break;
        }
        const int32_t left = loadU16(e);
        Span cols;
        if (!clipColumns(state, left, left + loadU16(e + 2) - 1, cols)) {
            continue;
        }
        widenDirtyBox(box, cols.left, y, cols.right, y);
        paint.row(Pixels::row(state, y) + cols.left, cols.right - cols.left + 1);
    }
}

template <class Pixels>
void paintColumnRuns(PaintState& state, const AreaOperand& op) {
    using Pixel = typename Pixels::Pixel;
    const SolidPaint<Pixels> paint(state);
    DirtyBox& box = *state.box;
    const int32_t step = state.strideBytes / static_cast<int32_t>(sizeof(Pixel));
    const uint8_t* e = op.entries;
    for (uint32_t i = 0; i < op.count; ++i, e += COLUMN_RUN_ENTRY_BYTES) {
        const int32_t top = e[0];
        const int32_t bottom = std::min<int32_t>(top + e[1] - 1, state.height - 1);
        const int32_t x = loadU16(e + 2);
        if (x >= state.width || top > bottom) {
            continue;
        }
        widenDirtyBox(box, x, top, x, bottom);
        paint.column(Pixels::row(state, top) + x, step, bottom - top + 1);
    }
}

} // namespace

void paintSolidRectGrey(PaintState& s, const AreaOperand& o) {
    paintRect<GreyPixels>(s, o);
}
void paintSolidRectListGrey(PaintState& s, const AreaOperand& o) {
    paintRectList<GreyPixels>(s, o);
}
void paintSolidSpanListGrey(PaintState& s, const AreaOperand& o) {
    paintSpanList<GreyPixels>(s, o);
}
void paintSolidRowSpansGrey(PaintState& s, const AreaOperand& o) {
    paintRowSpans<GreyPixels>(s, o);
}
void paintSolidColumnRunsGrey(PaintState& s, const AreaOperand& o) {
    paintColumnRuns<GreyPixels>(s, o);
}

void paintSolidRectColour(PaintState& s, const AreaOperand& o) {
    paintRect<ColourPixels>(s, o);
}
void paintSolidRectListColour(PaintState& s, const AreaOperand& o) {
    paintRectList<ColourPixels>(s, o);
}
void paintSolidSpanListColour(PaintState& s, const AreaOperand& o) {
    paintSpanList<ColourPixels>(s, o);
}
void paintSolidRowSpansColour(PaintState& s, const AreaOperand& o) {
    paintRowSpans<ColourPixels>(s, o);
}
void paintSolidColumnRunsColour(PaintState& s, const AreaOperand& o) {
    paintColumnRuns<ColourPixels>(s, o);
}

} // namespace kryn
