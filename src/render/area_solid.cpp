#include "render/area_solid.h"

#include "displaylist/display_list.h"
#include "render/area_walk.h"
#include "render/paint_state.h"
#include "render/raster_pixels.h"

#include <algorithm>
#include <cstring>

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

    // A clipped rectangle: fills copy their first row down.
    void block(const PaintState& state, int32_t left, int32_t top, int32_t right, int32_t bottom) {
        const int32_t n = right - left + 1;
        Pixel* first = Pixels::row(state, top) + left;
        row(first, n);
        for (int32_t y = top + 1; y <= bottom; ++y) {
            Pixel* at = Pixels::row(state, y) + left;
            if (fills()) {
                std::memcpy(at, first, static_cast<size_t>(n) * sizeof(Pixel));
            } else {
                row(at, n);
            }
        }
    }

    void span(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        row(Pixels::row(state, y) + left, right - left + 1);
    }

    // Spans of one record: under a plain fill each span after the first
    // copies what it can from the span painted before it and fills only the
    // rest.
    void listSpan(const PaintState& state, int32_t y, int32_t left, int32_t right) {
        Pixel* at = Pixels::row(state, y) + left;
        const int32_t n = right - left + 1;
        if (mode == ROP_MODE_COPY && previous != nullptr) {
            const int32_t copied = std::min(n, previousLength);
            std::memmove(at, previous, static_cast<size_t>(copied) * sizeof(Pixel));
            Pixels::fill(at + copied, n - copied, fillValue);
        } else {
            row(at, n);
        }
        previous = at;
        previousLength = n;
    }

    // n pixels down one column.
    void column(const PaintState& state, int32_t x, int32_t top, int32_t bottom) {
        const int32_t step = state.strideBytes / static_cast<int32_t>(sizeof(Pixel));
        const int32_t n = bottom - top + 1;
        Pixel* at = Pixels::row(state, top) + x;
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
    const Pixel* previous = nullptr;
    int32_t previousLength = 0;
};

template <class Pixels>
void paintRect(PaintState& state, const AreaOperand& op) {
    paintAreaWith<SolidPaint<Pixels>, AREA_RECT>(state, op);
}
template <class Pixels>
void paintRectList(PaintState& state, const AreaOperand& op) {
    paintAreaWith<SolidPaint<Pixels>, AREA_RECT_LIST>(state, op);
}
template <class Pixels>
void paintSpanList(PaintState& state, const AreaOperand& op) {
    paintAreaWith<SolidPaint<Pixels>, AREA_SPAN_LIST>(state, op);
}
template <class Pixels>
void paintRowSpans(PaintState& state, const AreaOperand& op) {
    paintAreaWith<SolidPaint<Pixels>, AREA_ROW_SPANS>(state, op);
}
template <class Pixels>
void paintColumnRuns(PaintState& state, const AreaOperand& op) {
    paintAreaWith<SolidPaint<Pixels>, AREA_COLUMN_RUNS>(state, op);
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
