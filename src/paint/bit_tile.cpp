#include "paint/bit_tile.h"

#include "engine/memory.h"

#include <algorithm>
#include <cstring>

namespace kryn {

namespace {

inline bool bitAt(const uint8_t* row, int64_t x) {
    return (row[x >> 3] & (0x80u >> (x & 7))) != 0;
}

// Appends bits most significant first to a byte buffer.
struct BitWriter {
    uint8_t* at;
    uint32_t pending = 0; // bits waiting, in the low `count` bits
    int32_t count = 0;

    void put(uint32_t bits, int32_t n) { // n <= 8
        pending = (pending << n) | (bits & ((1u << n) - 1u));
        count += n;
        if (count >= 8) {
            count -= 8;
            *at++ = static_cast<uint8_t>(pending >> count);
        }
    }
};

} // namespace

int64_t widenedRowBits(int64_t width) {
    if (width <= 0) {
        return 0;
    }
    // Halving while even, at most five times, leaves width / gcd(width, 32).
    int64_t m = width;
    for (int i = 0; i < 5 && (m & 1) == 0; ++i) {
        m >>= 1;
    }
    return m * 32;
}

ResultCode transformTile(const TileSource& source, int32_t quarterTurns, PixelTile& out) {
    const int32_t w = std::max(source.width, 0);
    const int32_t h = std::max(source.height, 0);
    int32_t outW = 0;
    int32_t outH = 0;
    turnedSize(quarterTurns, w, h, outW, outH);
    const int64_t inRow = bitRowBytes(w);
    const int64_t outRow = bitRowBytes(outW);
    auto* data =
        static_cast<uint8_t*>(allocBytes(size_t(std::max<int64_t>(outRow * outH, 1)), true));
    if (data == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    for (int64_t y = 0; y < outH; ++y) {
        uint8_t* row = data + y * outRow;
        if (quarterTurns == 0) {
            std::memcpy(row, source.data + y * inRow, size_t(outRow));
            continue;
        }
        for (int64_t x = 0; x < outW; ++x) {
            // Source pixel of turned (x, y); see turnTile for the mapping.
            int64_t sx = x;
            int64_t sy = y;
            switch (quarterTurns) {
            case 1:
                sx = y;
                sy = h - 1 - x;
                break;
            case 2:
                sx = w - 1 - x;
                sy = h - 1 - y;
                break;
            default:
                sx = w - 1 - y;
                sy = x;
                break;
            }
            if (bitAt(source.data + sy * inRow, sx)) {
                row[x >> 3] = static_cast<uint8_t>(row[x >> 3] | (0x80u >> (x & 7)));
            }
        }
    }
    // Bits past the width in a row's last byte are cleared, so that equal
    // cells compare equal whatever the caller left there.
    if (quarterTurns == 0 && (outW & 7) != 0) {
        const auto keep = static_cast<uint8_t>(0xFF00u >> (outW & 7));
        for (int64_t y = 0; y < outH; ++y) {
            data[y * outRow + outRow - 1] &= keep;
        }
    }
    out.data = data;
    out.width = outW;
    out.height = outH;
    out.bytesPerRow = static_cast<int32_t>(outRow);
    out.depth = source.depth;
    return KRYN_OK;
}

void replicateTileRow(const uint8_t* row, int32_t width, uint8_t* out, int64_t outBytes) {
    if (width <= 0) {
        std::memset(out, 0, size_t(outBytes));
        return;
    }
    if ((width & 7) == 0) {
        const int64_t rowBytes = width / 8;
        for (int64_t j = 0, k = 0; j < outBytes; ++j) {
            out[j] = row[k];
            if (++k == rowBytes) {
                k = 0;
            }
        }
        return;
    }
    // Whole source bytes, then the last byte's leftover bits, again and
    // again until the output is full.
    BitWriter writer{out};
    const int64_t fullBytes = width / 8;
    const int32_t tailBits = width & 7;
    const uint8_t* end = out + outBytes;
    while (writer.at < end) {
        for (int64_t j = 0; j < fullBytes && writer.at < end; ++j) {
            writer.put(row[j], 8);
        }
        if (writer.at < end) {
            writer.put(uint32_t{row[fullBytes]} >> (8 - tailBits), tailBits);
        }
    }
}

ResultCode widenBitTile(const PixelTile& turned, PixelTile& out) {
    const int64_t bits = widenedRowBits(turned.width);
    const int64_t rowBytes = bits / 8;
    const int64_t bytes = rowBytes * turned.height;
    auto* data = static_cast<uint8_t*>(allocBytes(size_t(std::max<int64_t>(bytes, 1)), true));
    if (data == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    for (int64_t y = 0; y < turned.height; ++y) {
        replicateTileRow(turned.data + y * turned.bytesPerRow, turned.width, data + y * rowBytes,
                         rowBytes);
    }
    out.data = data;
    out.width = static_cast<int32_t>(bits);
    out.height = turned.height;
    out.bytesPerRow = static_cast<int32_t>(rowBytes);
    out.depth = turned.depth;
    return KRYN_OK;
}

} // namespace kryn
