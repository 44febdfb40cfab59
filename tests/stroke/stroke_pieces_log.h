// Test support for strokes: a piece sink that keeps every piece a stroke
// hands over, and the reference rasterisation of those pieces (each piece
// filled on its own by the reference rasteriser, then their union).
#pragma once

#include "stroke/stroke_pieces.h"
#include "support/fill_oracle.h"

#include <cmath>
#include <vector>

namespace kryn::test {

struct LoggedPiece {
    std::vector<StrokePoint> points; // polygon, or the disc's centre
    bool fixed = false;
    bool disc = false;
    std::vector<PenRow> pen; // the disc's rows
};

struct PieceLog {
    std::vector<LoggedPiece> pieces;

    PieceSink sink() {
        PieceSink s;
        s.ctx = this;
        s.polygon = [](void* ctx, const StrokePoint* p, int32_t n, bool, bool fixed) -> ResultCode {
            static_cast<PieceLog*>(ctx)->pieces.push_back({{p, p + n}, fixed, false, {}});
            return KRYN_OK;
        };
        s.disc = [](void* ctx, StrokePoint c, const PenCircle& pen, bool fixed) -> ResultCode {
            static_cast<PieceLog*>(ctx)->pieces.push_back(
                {{c}, fixed, true, {pen.rows, pen.rows + pen.rowCount}});
            return KRYN_OK;
        };
        return s;
    }
};

// A piece's point in sixteenths as its route converts it: the 16.16 route
// (always on non-negative coordinates) and the float route both truncate
// x * 16, the float route after rounding to float.
inline int64_t pieceSixteenths(double v, bool fixed) {
    return static_cast<int64_t>(
        std::trunc((fixed ? v : static_cast<double>(static_cast<float>(v))) * 16.0));
}

// The piece as a polygon in sixteenths; empty for a disc that is skipped.
inline OraclePolygon piecePolygon(const LoggedPiece& p) {
    OraclePolygon poly;
    if (!p.disc) {
        for (const StrokePoint& q : p.points) {
            poly.push_back({pieceSixteenths(q.x, p.fixed), pieceSixteenths(q.y, p.fixed)});
        }
        return poly;
    }
    const StrokePoint c = p.points[0];
    if (!p.fixed && (std::fabs(static_cast<float>(c.x)) > 16384.0f ||
                     std::fabs(static_cast<float>(c.y)) > 16384.0f)) {
        return poly;
    }
    const int64_t cx = pieceSixteenths(c.x, p.fixed);
    const int64_t cy = pieceSixteenths(c.y, p.fixed);
    for (const PenRow& r : p.pen) {
        poly.push_back({cx - r.extent, cy + r.offset});
    }
    for (size_t i = p.pen.size(); i-- > 0;) {
        poly.push_back({cx + p.pen[i].extent, cy + p.pen[i].offset});
    }
    return poly;
}

// The union of the pieces' pixels within `page`.
inline std::vector<uint8_t> pieceUnion(const std::vector<LoggedPiece>& pieces, int32_t quarterTurns,
                                       const OracleBounds& page) {
    std::vector<uint8_t> out(static_cast<size_t>(page.width()) * page.height(), 0);
    for (const LoggedPiece& piece : pieces) {
        const OraclePolygon poly = piecePolygon(piece);
        if (poly.empty()) {
            continue;
        }
        int64_t minX = INT64_MAX, maxX = INT64_MIN, minY = INT64_MAX, maxY = INT64_MIN;
        for (const OraclePoint& q : poly) {
            minX = std::min(minX, q.x), maxX = std::max(maxX, q.x);
            minY = std::min(minY, q.y), maxY = std::max(maxY, q.y);
        }
        OracleBounds b;
        b.minX = static_cast<int32_t>(std::max<int64_t>(page.minX, minX / 16 - 1));
        b.maxX = static_cast<int32_t>(std::min<int64_t>(page.maxX, maxX / 16 + 1));
        b.minY = static_cast<int32_t>(std::max<int64_t>(page.minY, minY / 16 - 1));
        b.maxY = static_cast<int32_t>(std::min<int64_t>(page.maxY, maxY / 16 + 1));
        if (b.minX > b.maxX || b.minY > b.maxY) {
            continue;
        }
        const std::vector<uint8_t> inside = oracleFill({poly}, FILL_NONZERO, quarterTurns, b);
        for (int32_t y = b.minY; y <= b.maxY; ++y) {
            for (int32_t x = b.minX; x <= b.maxX; ++x) {
                if (inside[static_cast<size_t>(y - b.minY) * b.width() + (x - b.minX)] != 0) {
                    out[static_cast<size_t>(y - page.minY) * page.width() + (x - page.minX)] = 1;
                }
            }
        }
    }
    return out;
}

} // namespace kryn::test
