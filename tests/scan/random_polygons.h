// Seeded random figures for comparing the scan converter with the oracle
// and the reference sweep, in sixteenths of a pixel: convex and arbitrary
// (concave, self-crossing) polygons, stars (skipping or alternating),
// zigzags across the page, many small polygons, polygons on a grid (edges
// on one line, crossings on whole sixteenths), rectangles, coordinates on
// sample lines and points far outside the page.
#pragma once

#include "support/fill_oracle.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace kryn::test {

class PolygonMaker {
  public:
    PolygonMaker(uint32_t seed, int32_t width, int32_t height)
        : rng_(seed), w_(16 * width), h_(16 * height) {}

    int32_t pick(int32_t n) { return std::uniform_int_distribution<int32_t>(0, n - 1)(rng_); }

    // From 0.3 of the extent (in sixteenths) before it to 0.3 after it; half
    // of the values on a sample line or half-way between two.
    int64_t coord(int64_t extent) {
        int64_t v =
            std::uniform_int_distribution<int64_t>(-extent * 3 / 10, extent * 13 / 10)(rng_);
        const int32_t snap = pick(4);
        return snap == 0 ? v & ~int64_t{15} : snap == 1 ? v & ~int64_t{7} : v;
    }
    OraclePoint point() { return {coord(w_), coord(h_)}; }

    // n points, each on the grid (in sixteenths) when one is given.
    OraclePolygon arbitrary(int32_t n, int64_t grid = 0) {
        OraclePolygon p;
        for (int32_t i = 0; i < n; ++i) {
            OraclePoint q = point();
            if (grid > 0) {
                q = {q.x / grid * grid, q.y / grid * grid};
            }
            p.push_back(q);
        }
        return p;
    }

    OraclePolygon convex(int32_t n) {
        std::vector<double> angles;
        for (int32_t i = 0; i < n; ++i) {
            angles.push_back(std::uniform_real_distribution<double>(0, 2 * M_PI)(rng_));
        }
        std::sort(angles.begin(), angles.end());
        if (pick(2) != 0) {
            std::reverse(angles.begin(), angles.end());
        }
        return around(angles, 16.0 + pick(static_cast<int32_t>(w_)), 1.0);
    }

    // Points around a circle, each `skip` on from the last; alternating
    // stars take every other point at the inner radius instead.
    OraclePolygon star(int32_t points, int32_t skip, bool alternating = false) {
        const double phase = pick(360) * M_PI / 180.0;
        std::vector<double> angles;
        for (int32_t i = 0; i < points; ++i) {
            angles.push_back(phase + 2 * M_PI * (i * skip % points) / points);
        }
        const double inner = alternating ? 0.2 + pick(70) / 100.0 : 1.0;
        return around(angles, 32.0 + pick(static_cast<int32_t>(std::max(w_, h_))), inner);
    }

    // Lines running to and fro across the page.
    OraclePolygon zigzag() {
        const bool sideways = pick(2) == 0;
        const int64_t across = sideways ? h_ : w_, along = sideways ? w_ : h_;
        OraclePolygon p;
        for (int32_t i = 4 + pick(60); i > 0; --i) {
            const int64_t a = coord(across) / 5 + (i % 2 == 0 ? 0 : across);
            p.push_back(sideways ? OraclePoint{coord(along), a} : OraclePoint{a, coord(along)});
        }
        return p;
    }

    OraclePolygon rectangle() {
        const OraclePoint a = point(), b = point();
        return {{a.x, a.y}, {b.x, a.y}, {b.x, b.y}, {a.x, b.y}};
    }

    // One of the kinds above, or several subpaths of them; with
    // `farAllowed` sometimes with points far outside: beyond 16.16 range
    // and the clamping limit when `huge`, otherwise up to 25000 pixels out.
    std::vector<OraclePolygon> figure(bool huge = false) {
        std::vector<OraclePolygon> f;
        switch (pick(8)) {
        case 0:
            f.push_back(star(5 + pick(40), 1 + pick(20)));
            break;
        case 1:
            f.push_back(star(2 * (10 + pick(90)), 1, true));
            break;
        case 2:
            f.push_back(zigzag());
            break;
        case 3: // many small polygons
            for (int32_t i = 5 + pick(40); i > 0; --i) {
                const OraclePoint c = point();
                f.push_back({});
                for (int32_t k = 3 + pick(3); k > 0; --k) {
                    f.back().push_back({c.x + pick(640) - 320, c.y + pick(640) - 320});
                }
            }
            break;
        case 4: // on a grid: edges on one line, crossings on whole sixteenths
            for (int32_t i = 1 + pick(3); i > 0; --i) {
                f.push_back(arbitrary(3 + pick(12), pick(2) ? 64 : 8));
            }
            break;
        case 5:
            for (int32_t i = 1 + pick(4); i > 0; --i) {
                f.push_back(pick(3) == 0 ? rectangle() : arbitrary(3 + pick(8), 16));
            }
            break;
        default: // one to five convex, star and arbitrary subpaths
            for (int32_t i = pick(3) == 0 ? 1 + pick(5) : 1; i > 0; --i) {
                const int32_t kind = pick(4);
                f.push_back(kind == 0   ? convex(3 + pick(6))
                            : kind == 1 ? star(5 + 2 * pick(3), 2 + pick(2))
                                        : arbitrary(3 + pick(30)));
            }
            break;
        }
        if (pick(5) == 0) {
            for (OraclePolygon& p : f) {
                for (OraclePoint& q : p) {
                    if (pick(6) == 0) {
                        const int64_t far =
                            int64_t{16} * (huge && pick(2) ? 150000000 + pick(1000) * 150000
                                                           : 20000 + pick(5000));
                        (pick(2) ? q.x : q.y) = pick(2) ? far : -far;
                    }
                }
            }
        }
        return f;
    }

  private:
    OraclePolygon around(const std::vector<double>& angles, double r, double inner) {
        const double cx = static_cast<double>(coord(w_)), cy = static_cast<double>(coord(h_));
        OraclePolygon p;
        for (size_t i = 0; i < angles.size(); ++i) {
            const double radius = i % 2 == 1 ? r * inner : r;
            p.push_back({static_cast<int64_t>(cx + radius * std::cos(angles[i])),
                         static_cast<int64_t>(cy + radius * std::sin(angles[i]))});
        }
        return p;
    }

    std::mt19937 rng_;
    int64_t w_, h_;
};

} // namespace kryn::test
