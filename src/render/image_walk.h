// What every image renderer shares: the part of the raster an image record
// paints, and which source sample each of its device pixels takes.
//
// Along each axis a record starts at a first sample and the device pixels
// of that sample that lie before the record (the phase); sample c then
// covers device pixels floor(c x scale / 65536) up to
// floor((c + 1) x scale / 65536) from the image's first pixel (scale in
// 16.16), and past the last sample the last one repeats. A record at
// device size (130) starts at sample 0 with scale 1.0. No division per
// pixel: runs of equal samples are found by adding the scale.
#pragma once

#include "render/image_operand.h"
#include "render/paint_state.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace kryn {

inline constexpr uint32_t UNIT_SCALE = 0x10000;

// The record's rectangle clipped to the raster.
struct ImageArea {
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t rows;
};

// False when nothing of the record lies on the raster; otherwise the area
// in *area and the dirty box widened by it.
inline bool clipImageArea(const PaintState& state, const ImageOperand& op, ImageArea& area) {
    area.left = op.left;
    area.top = op.top;
    area.width = static_cast<int32_t>(
        std::min<int64_t>(op.width, std::max<int64_t>(int64_t{state.width} - op.left, 0)));
    area.rows = static_cast<int32_t>(
        std::min<int64_t>(op.rows, std::max<int64_t>(int64_t{state.height} - op.top, 0)));
    if (area.width <= 0 || area.rows <= 0 || op.sourceColumns == 0 || op.sourceRows == 0 ||
        op.left < 0 || op.top < 0) {
        return false;
    }
    widenDirtyBox(*state.box, area.left, area.top, area.left + area.width - 1,
                  area.top + area.rows - 1);
    return true;
}

// Runs of equal samples along one axis.
class SampleRuns {
  public:
    SampleRuns(uint32_t first, uint32_t phase, uint32_t scale, uint32_t count)
        : last_(count - 1), scale_(std::max<uint32_t>(scale, 1)) {
        c_ = std::min(first, last_);
        end_ = (uint64_t{c_} + 1) * scale_;
        position_ = ((uint64_t{c_} * scale_) >> 16) + phase;
    }

    // The next run: its sample and how many device pixels it covers (the
    // last sample's run never ends).
    void next(uint32_t& sample, int64_t& length) {
        for (;;) {
            if (c_ >= last_) {
                sample = last_;
                length = std::numeric_limits<int64_t>::max();
                return;
            }
            const uint64_t end = end_ >> 16;
            if (end > position_) {
                sample = c_;
                length = static_cast<int64_t>(end - position_);
                position_ = end;
                ++c_;
                end_ += scale_;
                return;
            }
            // Samples narrower than a pixel: jump to the one at the position.
            const uint64_t at = (position_ << 16) / scale_;
            c_ = static_cast<uint32_t>(std::min<uint64_t>(std::max<uint64_t>(at, c_ + 1u), last_));
            end_ = (uint64_t{c_} + 1) * scale_;
        }
    }

  private:
    uint32_t last_;
    uint64_t scale_;
    uint32_t c_;
    uint64_t end_;      // (c + 1) x scale: where sample c ends, 16.16
    uint64_t position_; // device pixel of the next run's start, from the image's first
};

// The row and column runs of a record.
inline SampleRuns rowRuns(const PaintState& state, const ImageOperand& op) {
    return op.scaled != 0 ? SampleRuns(op.sourceRow, state.yPhase, op.scaleY, op.sourceRows)
                          : SampleRuns(0, 0, UNIT_SCALE, op.sourceRows);
}
inline SampleRuns columnRuns(const PaintState& state, const ImageOperand& op) {
    return op.scaled != 0 ? SampleRuns(op.sourceColumn, state.xPhase, op.scaleX, op.sourceColumns)
                          : SampleRuns(0, 0, UNIT_SCALE, op.sourceColumns);
}

// Calls rows(y, n, sourceRow) for each source row the area shows: the
// first device row y it covers there, how many (n), and its samples.
template <class Rows>
void forEachSourceRow(const PaintState& state, const ImageOperand& op, const ImageArea& area,
                      Rows&& rows) {
    SampleRuns runs = rowRuns(state, op);
    for (int32_t i = 0; i < area.rows;) {
        uint32_t r = 0;
        int64_t length = 0;
        runs.next(r, length);
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(length, area.rows - i));
        rows(area.top + i, n, op.data + uint64_t{r} * op.sourceStride);
        i += n;
    }
}

// Fills out[done..width) run by run of `columns`, each run with
// value(sample).
template <class Pixel, class Value>
void fillColumnRuns(SampleRuns& columns, Pixel* out, int32_t done, int32_t width, Value&& value) {
    while (done < width) {
        uint32_t c = 0;
        int64_t length = 0;
        columns.next(c, length);
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(length, width - done));
        std::fill_n(out + done, n, value(c));
        done += n;
    }
}

// Both factors 1.0: the members that take one sample a pixel.
inline bool imageAtDeviceSize(const ImageOperand& op) {
    return op.scaleX == UNIT_SCALE && op.scaleY == UNIT_SCALE;
}

// How the image members paint under the record's raster operation.
enum ImageRop : uint8_t { IMAGE_ROP_COPY, IMAGE_ROP_XOR, IMAGE_ROP_GENERIC };

inline ImageRop imageRopOf(const PaintState& state) {
    return state.ropCode == 0xCC   ? IMAGE_ROP_COPY
           : state.ropCode == 0x66 ? IMAGE_ROP_XOR
                                   : IMAGE_ROP_GENERIC;
}

} // namespace kryn
