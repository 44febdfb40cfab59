#include "scan/edge_crossing.h"

#include "scan/wide_math.h"

namespace kryn {

namespace {

// Cross product (b - a) x (p - a), exact.
Int128 side(int64_t ax, int64_t ay, int64_t bx, int64_t by, int64_t px, int64_t py) {
    return mul128(bx - ax, py - ay) - mul128(by - ay, px - ax);
}

} // namespace

bool edgesCross(const Edge& a, const Edge& b) {
    const Int128 d1 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xTop, a.yTop);
    const Int128 d2 = side(b.xTop, b.yTop, b.xBottom, b.yBottom, a.xBottom, a.yBottom);
    if (sign128(d1) * sign128(d2) >= 0) {
        return false;
    }
    const Int128 d3 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xTop, b.yTop);
    const Int128 d4 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xBottom, b.yBottom);
    return sign128(d3) * sign128(d4) < 0;
}

int64_t crossingKey(const Edge& a, const Edge& b) {
    // Parameter along b: s / d = d3 / (d3 - d4); y = yTopB + dyB * s / d.
    const Int128 d3 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xTop, b.yTop);
    const Int128 d4 = side(a.xTop, a.yTop, a.xBottom, a.yBottom, b.xBottom, b.yBottom);
    Int128 num = d3;
    Int128 den = d3 - d4;
    if (den < 0) {
        num = -num;
        den = -den;
    }
    const int64_t dyB = static_cast<int64_t>(b.yBottom) - b.yTop;
    const Int128 yNum = static_cast<Int128>(b.yTop) * den + static_cast<Int128>(dyB) * num;
    // A double estimate of the floor, corrected exactly (no 128-bit division).
    auto y = static_cast<int64_t>(static_cast<double>(yNum) / static_cast<double>(den));
    while (static_cast<Int128>(y) * den > yNum) {
        --y;
    }
    while (static_cast<Int128>(y + 1) * den <= yNum) {
        ++y;
    }
    const bool whole = static_cast<Int128>(y) * den == yNum;
    return whole ? 2 * y : 2 * (y + 1) - 1;
}

} // namespace kryn
