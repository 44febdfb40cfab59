#include "support/fill_oracle.h"

#include <cmath>

namespace kryn::test {

namespace {

__extension__ typedef __int128 Wide;

struct OracleEdge {
    int64_t xTop, yTop, xBottom, yBottom;
    int32_t direction;
};

std::vector<OracleEdge> edgesOf(const std::vector<OraclePolygon>& subpaths) {
    std::vector<OracleEdge> edges;
    for (const OraclePolygon& p : subpaths) {
        for (size_t i = 0; i < p.size(); ++i) {
            const OraclePoint& a = p[i];
            const OraclePoint& b = p[(i + 1) % p.size()];
            if (a.y == b.y) {
                continue; // horizontal: crosses no sample row
            }
            if (a.y < b.y) {
                edges.push_back({a.x, a.y, b.x, b.y, 1});
            } else {
                edges.push_back({b.x, b.y, a.x, a.y, -1});
            }
        }
    }
    return edges;
}

} // namespace

int64_t oracleSixteenths(double pixels) {
    return static_cast<int64_t>(std::trunc(pixels * 16.0));
}

std::vector<uint8_t> oracleFill(const std::vector<OraclePolygon>& subpaths, int32_t rule,
                                int32_t quarterTurns, const OracleBounds& bounds) {
    const std::vector<OracleEdge> edges = edgesOf(subpaths);
    const bool rowsBelow = quarterTurns == 2 || quarterTurns == 3;     // (yTop, yBottom]
    const bool strictColumns = quarterTurns == 1 || quarterTurns == 2; // sample just left
    std::vector<uint8_t> out(static_cast<size_t>(bounds.width()) * bounds.height(), 0);
    for (int32_t r = bounds.minY; r <= bounds.maxY; ++r) {
        const int64_t y = 16 * static_cast<int64_t>(r);
        for (int32_t c = bounds.minX; c <= bounds.maxX; ++c) {
            const int64_t x = 16 * static_cast<int64_t>(c);
            int32_t winding = 0;
            int32_t parity = 0;
            for (const OracleEdge& e : edges) {
                const bool onRow =
                    rowsBelow ? (e.yTop < y && y <= e.yBottom) : (e.yTop <= y && y < e.yBottom);
                if (!onRow) {
                    continue;
                }
                // Sign of (edge x at y) - x, times dy > 0.
                const Wide dy = e.yBottom - e.yTop;
                const Wide lhs = static_cast<Wide>(e.xTop) * dy +
                                 static_cast<Wide>(e.xBottom - e.xTop) * (y - e.yTop);
                const Wide rhs = static_cast<Wide>(x) * dy;
                // The sample sits infinitesimally right of x (left for strict
                // columns): an edge through it counts as left of it or not.
                const bool leftOfSample = strictColumns ? lhs < rhs : lhs <= rhs;
                if (leftOfSample) {
                    winding += e.direction;
                    parity ^= 1;
                }
            }
            const bool inside = rule == 0 ? parity != 0 : winding != 0;
            out[static_cast<size_t>(r - bounds.minY) * bounds.width() + (c - bounds.minX)] =
                inside ? 1 : 0;
        }
    }
    return out;
}

} // namespace kryn::test
