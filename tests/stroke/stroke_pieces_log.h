// Test support for strokes: a piece sink that keeps every piece a stroke
// hands over, and the reference pixels of those pieces (each piece filled on
// its own by the reference rasteriser, then their union).
#pragma once

#include "stroke/stroke_pieces.h"
#include "support/fill_oracle.h"

#include <cmath>
#include <vector>

namespace kryn::test {

struct LoggedPiece {
    std::vector<StrokePoint> points; // polygon, or the disc's centre
    bool fixed = false;
    std::vector<PenRow> pen; // a disc's rows
};

struct PieceLog {
    std::vector<LoggedPiece> pieces;

    PieceSink sink() {
        PieceSink s;
        s.ctx = this;
        s.polygon = [](void* ctx, const StrokePoint* p, int32_t n, bool, bool fixed) {
            static_cast<PieceLog*>(ctx)->pieces.push_back({{p, p + n}, fixed, {}});
            return ResultCode{KRYN_OK};
        };
        s.disc = [](void* ctx, StrokePoint c, const PenCircle& pen, bool fixed) {
            static_cast<PieceLog*>(ctx)->pieces.push_back(
                {{c}, fixed, {pen.rows, pen.rows + pen.rowCount}});
            return ResultCode{KRYN_OK};
        };
        return s;
    }
};

// A piece's coordinate in sixteenths as its route converts it: both
// truncate v * 16 (the 16.16 route only ever sees non-negative values), the
// float route after rounding v to float.
inline int64_t pieceSixteenths(double v, bool fixed) {
    return static_cast<int64_t>(std::trunc((fixed ? v : double(float(v))) * 16.0));
}

// The piece as a polygon in sixteenths (a disc: its table's vertices around
// the centre); empty for a float disc beyond +-16384 pixels, which is skipped.
inline OraclePolygon piecePolygon(const LoggedPiece& p) {
    OraclePolygon poly;
    if (p.pen.empty()) {
        for (const StrokePoint& q : p.points) {
            poly.push_back({pieceSixteenths(q.x, p.fixed), pieceSixteenths(q.y, p.fixed)});
        }
        return poly;
    }
    const StrokePoint c = p.points[0];
    if (!p.fixed && (std::fabs(float(c.x)) > 16384.0f || std::fabs(float(c.y)) > 16384.0f)) {
        return poly;
    }
    const int64_t cx = pieceSixteenths(c.x, p.fixed), cy = pieceSixteenths(c.y, p.fixed);
    for (const PenRow& r : p.pen) {
        poly.push_back({cx - r.extent, cy + r.offset});
    }
    for (size_t i = p.pen.size(); i-- > 0;) {
        poly.push_back({cx + p.pen[i].extent, cy + p.pen[i].offset});
    }
    return poly;
}

// The union of the pieces' pixels within `page`.
inline std::vector<uint8_t> pieceUnion(const std::vector<LoggedPiece>& pieces, int32_t q,
                                       const OracleBounds& page) {
    std::vector<uint8_t> out(size_t(page.width()) * size_t(page.height()), 0);
    for (const LoggedPiece& piece : pieces) {
        const OraclePolygon poly = piecePolygon(piece);
        OracleBounds b{INT32_MAX, INT32_MIN, INT32_MAX, INT32_MIN};
        for (const OraclePoint& p : poly) { // the piece's pixels and a margin, on the page
            b.minX = std::min<int32_t>(b.minX, int32_t(std::max<int64_t>(page.minX, p.x / 16 - 1)));
            b.maxX = std::max<int32_t>(b.maxX, int32_t(std::min<int64_t>(page.maxX, p.x / 16 + 1)));
            b.minY = std::min<int32_t>(b.minY, int32_t(std::max<int64_t>(page.minY, p.y / 16 - 1)));
            b.maxY = std::max<int32_t>(b.maxY, int32_t(std::min<int64_t>(page.maxY, p.y / 16 + 1)));
        }
        if (poly.empty() || b.minX > b.maxX || b.minY > b.maxY) {
            continue;
        }
        const std::vector<uint8_t> inside = oracleFill({poly}, FILL_NONZERO, q, b);
        for (int32_t y = b.minY; y <= b.maxY; ++y) {
            for (int32_t x = b.minX; x <= b.maxX; ++x) {
                out[size_t(y - page.minY) * size_t(page.width()) + size_t(x - page.minX)] |=
                    inside[size_t(y - b.minY) * size_t(b.width()) + size_t(x - b.minX)];
            }
        }
    }
    return out;
}

} // namespace kryn::test
