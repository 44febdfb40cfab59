#include "paint/tile_turning.h"

#include "engine/memory.h"
#include "geometry/transform.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kryn {

namespace {

inline constexpr int64_t MAX_TURNED_SIDE = 65535;

// Where turned pixel (x, y) lies in the source, as a byte offset
// origin + x * stepX + y * stepY. A quarter turn maps source (sx, sy) of a
// w x h tile to (h - 1 - sy, sx); three quarters to (sy, w - 1 - sx).
struct SourceWalk {
    int64_t origin;
    int64_t stepX;
    int64_t stepY;
};

SourceWalk sourceWalk(const TileSource& s, int32_t quarterTurns, int64_t pixelBytes) {
    const int64_t stride = s.bytesPerRow;
    const int64_t lastRow = int64_t{s.height - 1} * stride;
    const int64_t lastColumn = int64_t{s.width - 1} * pixelBytes;
    switch (quarterTurns) {
    case 1:
        return {lastRow, -stride, pixelBytes};
    case 2:
        return {lastRow + lastColumn, -pixelBytes, -stride};
    case 3:
        return {lastColumn, stride, -pixelBytes};
    default:
        return {0, pixelBytes, stride};
    }
}

// Output side and 16.16 step of a resampled side; false when too large.
bool resampledSide(int32_t side, float scale, int64_t& out) {
    const double size = std::ceil(double(side) * double(scale));
    if (!(size <= double(MAX_TURNED_SIDE))) {
        return false;
    }
    out = static_cast<int64_t>(size);
    return true;
}

template <class Pixel>
ResultCode turnTile(const TileSource& source, const TileTurn& turn, PixelTile& out) {
    if (turn.quarterTurns < 0 || turn.quarterTurns > 3 ||
        (turn.resample && !(turn.scale > 0.0f && std::isfinite(turn.scale)))) {
        return KRYN_ERR_INVALID;
    }
    const int32_t w = std::max(source.width, 0);
    const int32_t h = std::max(source.height, 0);
    int32_t turnedW = 0;
    int32_t turnedH = 0;
    turnedSize(turn.quarterTurns, w, h, turnedW, turnedH);
    int64_t outW = turnedW;
    int64_t outH = turnedH;
    // Source positions of output pixels and rows in 16.16.
    uint64_t step = uint64_t{1} << 16;
    if (turn.resample) {
        if (!resampledSide(turnedW, turn.scale, outW) ||
            !resampledSide(turnedH, turn.scale, outH)) {
            return KRYN_ERR_NO_MEMORY;
        }
        const double s = std::trunc(65536.0 / double(turn.scale));
        step = static_cast<uint64_t>(std::min(s, 1099511627776.0)); // at most 2^40
    }
    if (outW > MAX_TURNED_SIDE || outH > MAX_TURNED_SIDE) {
        return KRYN_ERR_NO_MEMORY;
    }
    const int64_t rowBytes = outW * int64_t{sizeof(Pixel)};
    // One byte at least, so that an empty tile still has storage of its own.
    auto* data = static_cast<uint8_t*>(allocBytes(size_t(std::max<int64_t>(rowBytes * outH, 1))));
    if (data == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    const SourceWalk walk = sourceWalk(source, turn.quarterTurns, int64_t{sizeof(Pixel)});
    uint64_t rowPosition = 0;
    for (int64_t y = 0; y < outH; ++y, rowPosition += step) {
        const int64_t ty = std::min<int64_t>(int64_t(rowPosition >> 16), turnedH - 1);
        const uint8_t* sourceRow = source.data + walk.origin + ty * walk.stepY;
        uint8_t* at = data + y * rowBytes;
        if (!turn.resample && walk.stepX == int64_t{sizeof(Pixel)}) {
            std::memcpy(at, sourceRow, size_t(rowBytes)); // rows stay rows
            continue;
        }
        uint64_t position = 0;
        for (int64_t x = 0; x < outW; ++x, position += step, at += sizeof(Pixel)) {
            const int64_t tx = std::min<int64_t>(int64_t(position >> 16), turnedW - 1);
            std::memcpy(at, sourceRow + tx * walk.stepX, sizeof(Pixel));
        }
    }
    out.data = data;
    out.width = static_cast<int32_t>(outW);
    out.height = static_cast<int32_t>(outH);
    out.bytesPerRow = static_cast<int32_t>(rowBytes);
    out.depth = source.depth;
    return KRYN_OK;
}

} // namespace

int32_t tileQuarterTurns(const Transform& t) {
    if (t.b == 0.0f && t.c == 0.0f && t.a == t.d && t.a != 0.0f) {
        return t.a > 0.0f ? 0 : 2;
    }
    if (t.a == 0.0f && t.d == 0.0f && t.b == -t.c && t.b != 0.0f) {
        return t.b > 0.0f ? 1 : 3;
    }
    return -1;
}

ResultCode turnTile8(const TileSource& source, const TileTurn& turn, PixelTile& out) {
    return turnTile<uint8_t>(source, turn, out);
}

ResultCode turnTile16(const TileSource& source, const TileTurn& turn, PixelTile& out) {
    return turnTile<uint16_t>(source, turn, out);
}

ResultCode turnTile32(const TileSource& source, const TileTurn& turn, PixelTile& out) {
    return turnTile<uint32_t>(source, turn, out);
}

} // namespace kryn
