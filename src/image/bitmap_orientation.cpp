#include "image/bitmap_orientation.h"

#include <cmath>

namespace kryn {

namespace {

// Device pixels of `samples` samples of `scale` pixels each, rounded up
// (a product a rounding error above a whole number stays that number).
int64_t devicePixels(int32_t samples, double scale) {
    const double v = double(samples) * scale;
    return static_cast<int64_t>(std::ceil(v - v * 1e-9));
}

constexpr double MAX_SCALE = 65536.0;

// Source samples a device pixel, 16.16: shrinking steps truncated, as
// picking defines them; enlarging steps rounded up (1/3 of a sample is
// 21846, not 21845, so that device pixel 3 of a threefold scale starts
// sample 1).
uint64_t step(double scale) {
    const double v = 65536.0 / scale;
    return static_cast<uint64_t>(scale > 1.0 ? std::ceil(v) : v);
}

} // namespace

BitmapFit orientBitmap(double a, double b, double c, double d, int32_t width, int32_t height,
                       BitmapOrientation& out) {
    TilePick& pick = out.pick;
    double sx = 0;
    double sy = 0;
    // Device x runs along the rows (no swap) or down the columns (swap).
    const bool swap = (b != 0 || c != 0) && std::fabs(a * d) < std::fabs(b * c);
    if (swap) {
        pick.flipX = c < 0;
        pick.flipY = b < 0;
        sx = std::fabs(c);
        sy = std::fabs(b);
    } else {
        pick.flipX = a < 0;
        pick.flipY = d < 0;
        sx = std::fabs(a);
        sy = std::fabs(d);
    }
    pick.swap = swap;
    if (!(sx > 0 && sy > 0 && std::isfinite(sx) && std::isfinite(sy))) {
        return BitmapFit::EMPTY;
    }
    if (sx >= MAX_SCALE || sy >= MAX_SCALE) {
        return BitmapFit::TOO_LARGE;
    }
    const int32_t across = swap ? height : width;
    const int32_t down = swap ? width : height;
    out.copies = sx == 1.0 && sy == 1.0;
    pick.width = out.copies ? across : devicePixels(across, sx);
    pick.height = out.copies ? down : devicePixels(down, sy);
    if (pick.width < 1 || pick.height < 1) {
        return BitmapFit::EMPTY;
    }
    const int64_t rowBytes = (pick.width + 7) / 8;
    if (rowBytes > MAX_DEVICE_BITMAP_ROW_BYTES ||
        (!out.copies && pick.height > MAX_DEVICE_BITMAP_BYTES / rowBytes)) {
        return BitmapFit::TOO_LARGE;
    }
    pick.stepX = out.copies ? 0x10000 : step(sx);
    pick.stepY = out.copies ? 0x10000 : step(sy);
    return BitmapFit::FITS;
}

} // namespace kryn
