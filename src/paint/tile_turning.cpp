#include "paint/tile_turning.h"

#include "engine/memory.h"
#include "geometry/transform.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kryn {

namespace {

inline constexpr int64_t MAX_TURNED_SIDE = 65535;
// Steps beyond this many oriented pixels per output pixel all land on the
// last pixel; the cap keeps x * step inside 64 bits for any int32 x.
inline constexpr uint64_t MAX_STEP = uint64_t{1} << 32;

// Where oriented pixel (x, y) lies in the source, as an offset
// origin + x * stepX + y * stepY in the source's units (bits for 1-bit
// pixels, bytes otherwise).
struct SourceWalk {
    int64_t origin;
    int64_t stepX;
    int64_t stepY;
};

SourceWalk sourceWalk(const TileSource& s, const TilePick& pick, int64_t pixelUnits,
                      int64_t rowUnits) {
    const int64_t lastRow = int64_t{s.height - 1} * rowUnits;
    const int64_t lastColumn = int64_t{s.width - 1} * pixelUnits;
    if (!pick.swap) {
        return {(pick.flipX ? lastColumn : 0) + (pick.flipY ? lastRow : 0),
                pick.flipX ? -pixelUnits : pixelUnits, pick.flipY ? -rowUnits : rowUnits};
    }
    return {(pick.flipX ? lastRow : 0) + (pick.flipY ? lastColumn : 0),
            pick.flipX ? -rowUnits : rowUnits, pick.flipY ? -pixelUnits : pixelUnits};
}

// Oriented position of output pixel i: (i * step) >> 16, at most `last`.
inline int64_t pickedIndex(uint64_t position, int64_t last) {
    return std::min<int64_t>(static_cast<int64_t>(position >> 16), last);
}

template <int Bytes>
void pickBytes(const TileSource& source, const TilePick& pick, const SourceWalk& walk,
               int64_t orientedW, int64_t orientedH, uint8_t* data, int64_t rowBytes) {
    const bool rowsStayRows =
        pick.stepX == (uint64_t{1} << 16) && walk.stepX == Bytes && pick.width <= orientedW;
    uint64_t rowPosition = 0;
    for (int64_t y = 0; y < pick.height; ++y, rowPosition += pick.stepY) {
        const int64_t ty = pickedIndex(rowPosition, orientedH - 1);
        const uint8_t* sourceRow = source.data + walk.origin + ty * walk.stepY;
        uint8_t* at = data + y * rowBytes;
        if (rowsStayRows) {
            std::memcpy(at, sourceRow, size_t(rowBytes));
            continue;
        }
        uint64_t position = 0;
        for (int64_t x = 0; x < pick.width; ++x, position += pick.stepX, at += Bytes) {
            std::memcpy(at, sourceRow + pickedIndex(position, orientedW - 1) * walk.stepX, Bytes);
        }
    }
}

void pickBits(const TileSource& source, const TilePick& pick, const SourceWalk& walk,
              int64_t orientedW, int64_t orientedH, uint8_t* data, int64_t rowBytes) {
    uint64_t rowPosition = 0;
    for (int64_t y = 0; y < pick.height; ++y, rowPosition += pick.stepY) {
        const int64_t rowBit = walk.origin + pickedIndex(rowPosition, orientedH - 1) * walk.stepY;
        uint8_t* at = data + y * rowBytes;
        if (pick.stepX == (uint64_t{1} << 16) && walk.stepX == 1 && (rowBit & 7) == 0 &&
            pick.width <= orientedW) {
            std::memcpy(at, source.data + (rowBit >> 3), size_t(rowBytes));
            continue;
        }
        uint64_t position = 0;
        uint32_t byte = 0;
        for (int64_t x = 0; x < pick.width; ++x, position += pick.stepX) {
            const int64_t bit = rowBit + pickedIndex(position, orientedW - 1) * walk.stepX;
            byte = (byte << 1) | ((source.data[bit >> 3] >> (7 - (bit & 7))) & 1u);
            if ((x & 7) == 7) {
                *at++ = static_cast<uint8_t>(byte);
                byte = 0;
            }
        }
        if ((pick.width & 7) != 0) {
            *at = static_cast<uint8_t>(byte << (8 - (pick.width & 7)));
        }
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
    TilePick pick = quarterTurnPick(turn.quarterTurns, w, h);
    if (turn.resample) {
        const int32_t turnedW = static_cast<int32_t>(pick.width);
        const int32_t turnedH = static_cast<int32_t>(pick.height);
        if (!resampledSide(turnedW, turn.scale, pick.width) ||
            !resampledSide(turnedH, turn.scale, pick.height)) {
            return KRYN_ERR_NO_MEMORY;
        }
        const double s = std::trunc(65536.0 / double(turn.scale));
        pick.stepX = pick.stepY = static_cast<uint64_t>(std::min(s, double(MAX_STEP)));
    }
    if (pick.width > MAX_TURNED_SIDE || pick.height > MAX_TURNED_SIDE) {
        return KRYN_ERR_NO_MEMORY;
    }
    const TileSource sized{source.data, w, h, source.bytesPerRow, source.depth};
    return pickTile(sized, int32_t{sizeof(Pixel)} * 8, pick, out);
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

TilePick quarterTurnPick(int32_t quarterTurns, int32_t width, int32_t height) {
    TilePick pick;
    pick.swap = (quarterTurns & 1) != 0;
    pick.flipX = quarterTurns == 1 || quarterTurns == 2;
    pick.flipY = quarterTurns == 2 || quarterTurns == 3;
    pick.width = pick.swap ? height : width;
    pick.height = pick.swap ? width : height;
    return pick;
}

ResultCode pickTile(const TileSource& source, int32_t pixelBits, const TilePick& pick,
                    PixelTile& out) {
    constexpr int64_t SIDE_LIMIT = INT32_MAX;
    const bool emptySource = source.width <= 0 || source.height <= 0;
    const bool emptyOutput = pick.width == 0 || pick.height == 0;
    if ((pixelBits != 1 && pixelBits != 8 && pixelBits != 16 && pixelBits != 32) ||
        pick.width < 0 || pick.height < 0 || pick.width > SIDE_LIMIT || pick.height > SIDE_LIMIT ||
        (emptySource && !emptyOutput)) {
        return KRYN_ERR_INVALID;
    }
    const int64_t rowBytes = pixelBits == 1 ? (pick.width + 7) / 8 : pick.width * (pixelBits / 8);
    if (rowBytes > SIDE_LIMIT) {
        return KRYN_ERR_NO_MEMORY; // rows too long for a tile's row size
    }
    // One byte at least, so that an empty tile still has storage of its own.
    const int64_t bytes = std::max<int64_t>(rowBytes * pick.height, 1);
    auto* data = static_cast<uint8_t*>(allocBytes(size_t(bytes)));
    if (data == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    TilePick capped = pick;
    capped.stepX = std::min(pick.stepX, MAX_STEP);
    capped.stepY = std::min(pick.stepY, MAX_STEP);
    if (!emptyOutput) {
        const int64_t orientedW = pick.swap ? source.height : source.width;
        const int64_t orientedH = pick.swap ? source.width : source.height;
        const int64_t pixelUnits = pixelBits == 1 ? 1 : pixelBits / 8;
        const int64_t rowUnits = int64_t{source.bytesPerRow} * (pixelBits == 1 ? 8 : 1);
        const SourceWalk walk = sourceWalk(source, capped, pixelUnits, rowUnits);
        switch (pixelBits) {
        case 1:
            pickBits(source, capped, walk, orientedW, orientedH, data, rowBytes);
            break;
        case 8:
            pickBytes<1>(source, capped, walk, orientedW, orientedH, data, rowBytes);
            break;
        case 16:
            pickBytes<2>(source, capped, walk, orientedW, orientedH, data, rowBytes);
            break;
        default:
            pickBytes<4>(source, capped, walk, orientedW, orientedH, data, rowBytes);
            break;
        }
    }
    out.data = data;
    out.width = static_cast<int32_t>(pick.width);
    out.height = static_cast<int32_t>(pick.height);
    out.bytesPerRow = static_cast<int32_t>(rowBytes);
    out.depth = source.depth;
    return KRYN_OK;
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
