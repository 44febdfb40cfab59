// Seeded random polygons in sixteenths for comparing the scan converter with
// the oracle: convex, arbitrary (concave, self-crossing), stars, several
// subpaths, coordinates on sample points and far outside the raster.
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

    int64_t coord(int64_t limit) {
        std::uniform_int_distribution<int64_t> d(-64, limit + 64);
        int64_t v = d(rng_);
        const int snap = pick(4);
        if (snap == 0) {
            v &= ~int64_t{15}; // on a sample line
        } else if (snap == 1) {
            v &= ~int64_t{7};
        }
        if (pick(25) == 0) {
            v = pick(2) ? 400000 + v : -400000 - v; // far outside
        }
        return v;
    }

    OraclePolygon arbitrary(int32_t n) {
        OraclePolygon p;
        for (int32_t i = 0; i < n; ++i) {
            p.push_back({coord(w_), coord(h_)});
        }
        return p;
    }

    OraclePolygon convex(int32_t n) {
        const double cx = static_cast<double>(coord(w_));
        const double cy = static_cast<double>(coord(h_));
        const double r = 16.0 + pick(static_cast<int32_t>(w_));
        std::vector<double> angles;
        std::uniform_real_distribution<double> a(0, 2 * M_PI);
        for (int32_t i = 0; i < n; ++i) {
            angles.push_back(a(rng_));
        }
        std::sort(angles.begin(), angles.end());
        OraclePolygon p;
        const bool reverse = pick(2) != 0;
        for (int32_t i = 0; i < n; ++i) {
            const double t = angles[static_cast<size_t>(reverse ? n - 1 - i : i)];
            p.push_back({static_cast<int64_t>(cx + r * std::cos(t)),
                         static_cast<int64_t>(cy + r * std::sin(t))});
        }
        return p;
    }

    OraclePolygon star(int32_t points, int32_t skip) {
        const double cx = static_cast<double>(coord(w_));
        const double cy = static_cast<double>(coord(h_));
        const double r = 32.0 + pick(static_cast<int32_t>(w_));
        const double phase = pick(360) * M_PI / 180.0;
        OraclePolygon p;
        for (int32_t i = 0; i < points; ++i) {
            const double t = phase + 2 * M_PI * (i * skip % points) / points;
            p.push_back({static_cast<int64_t>(cx + r * std::cos(t)),
                         static_cast<int64_t>(cy + r * std::sin(t))});
        }
        return p;
    }

    // One to five subpaths of mixed kinds.
    std::vector<OraclePolygon> figure() {
        std::vector<OraclePolygon> polys;
        const int32_t count = 1 + (pick(3) == 0 ? pick(5) : 0);
        for (int32_t i = 0; i < count; ++i) {
            switch (pick(4)) {
            case 0:
                polys.push_back(convex(3 + pick(6)));
                break;
            case 1:
                polys.push_back(star(5 + 2 * pick(3), 2 + pick(2)));
                break;
            default:
                polys.push_back(arbitrary(3 + pick(9)));
                break;
            }
        }
        return polys;
    }

    int32_t pick(int32_t n) { return std::uniform_int_distribution<int32_t>(0, n - 1)(rng_); }

  private:
    std::mt19937 rng_;
    int64_t w_, h_;
};

} // namespace kryn::test
