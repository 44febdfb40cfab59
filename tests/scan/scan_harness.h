// Test harness for scan conversion: a recorder that counts how often every
// pixel is painted and logs every call, and a page-like owner of the scan state, clip stack and
// base clip.
#pragma once

#include "scan/clip_stack.h"
#include "scan/scan_convert.h"
#include "support/fill_oracle.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kryn::test {

struct PixelCounts {
    OracleBounds bounds;
    std::vector<uint8_t> hits;
    int64_t outside = 0; // pieces reaching beyond the bounds
    int64_t bandCalls = 0, rectCalls = 0, spanCalls = 0;
    int64_t failAfterCalls = -1; // recorder answers NO_MEMORY after this many calls
    std::vector<int64_t> calls;  // every call with its arguments, in order

    explicit PixelCounts(const OracleBounds& b)
        : bounds(b), hits(static_cast<size_t>(b.width()) * b.height(), 0) {}

    ResultCode paint(int32_t x0, int32_t x1, int32_t y) {
        if (x0 < bounds.minX || x1 > bounds.maxX || y < bounds.minY || y > bounds.maxY || x0 > x1) {
            ++outside;
            return KRYN_OK;
        }
        for (int32_t x = x0; x <= x1; ++x) {
            ++hits[static_cast<size_t>(y - bounds.minY) * bounds.width() + (x - bounds.minX)];
        }
        return KRYN_OK;
    }
    ResultCode call() {
        if (failAfterCalls == 0) {
            return KRYN_ERR_NO_MEMORY;
        }
        if (failAfterCalls > 0) {
            --failAfterCalls;
        }
        return KRYN_OK;
    }

    SpanRecorder recorder(int32_t bandHeight = 0, bool bandSpans = false) {
        SpanRecorder r;
        r.ctx = this;
        r.bounds = {bounds.minX, bounds.maxX, bounds.minY, bounds.maxY};
        r.bandHeight = bandHeight;
        r.span = [](void* ctx, int32_t x0, int32_t x1, int32_t y) -> ResultCode {
            auto* self = static_cast<PixelCounts*>(ctx);
            ++self->spanCalls;
            self->calls.insert(self->calls.end(), {1, x0, x1, y});
            const ResultCode c = self->call();
            return c != KRYN_OK ? c : self->paint(x0, x1, y);
        };
        r.rect = [](void* ctx, int32_t x0, int32_t x1, int32_t y0, int32_t y1) -> ResultCode {
            auto* self = static_cast<PixelCounts*>(ctx);
            ++self->rectCalls;
            self->calls.insert(self->calls.end(), {2, x0, x1, y0, y1});
            const ResultCode c = self->call();
            if (c != KRYN_OK) {
                return c;
            }
            if (y0 >= y1) {
                ++self->outside; // a one-row rectangle must come as a span
            }
            for (int32_t y = y0; y <= y1; ++y) {
                self->paint(x0, x1, y);
            }
            return KRYN_OK;
        };
        if (bandSpans) {
            r.bandRowSpans = [](void* ctx, int32_t first, int32_t count, const uint16_t* pairs,
                                int32_t allEqual) -> ResultCode {
                auto* self = static_cast<PixelCounts*>(ctx);
                ++self->bandCalls;
                self->calls.insert(self->calls.end(), {3, first, count, allEqual});
                self->calls.insert(self->calls.end(), pairs, pairs + 2 * count);
                const ResultCode c = self->call();
                if (c != KRYN_OK) {
                    return c;
                }
                for (int32_t i = 0; i < count; ++i) {
                    if (pairs[2 * i + 1] > 0) {
                        self->paint(pairs[2 * i], pairs[2 * i] + pairs[2 * i + 1] - 1, first + i);
                    }
                }
                return KRYN_OK;
            };
        }
        return r;
    }
};

// A page of (width + 1) x (height + 1) pixels with its scan state and clip.
struct ScanPage {
    ScanState scan;
    ClipStack clip;
    BaseClip* base = nullptr;
    ClipPage page;

    ScanPage(int32_t width, int32_t height, int32_t quarterTurns, int32_t bandHeight = 16) {
        page.pageWidth = width;
        page.pageHeight = height;
        page.bandHeight = bandHeight;
        page.bandCount = (height + bandHeight) / bandHeight;
        page.groupLast = page.bandCount - 1;
        ok = openScanState(&scan, quarterTurns, bandHeight) == KRYN_OK &&
             buildBaseClip(&scan, page, &base) == KRYN_OK &&
             resetClip(&clip, &scan, *base, page) == KRYN_OK;
    }
    ~ScanPage() {
        releaseClipStack(&clip);
        freeAndClear(base);
        closeScanState(&scan);
    }
    OracleBounds raster() const { return {0, page.pageWidth, 0, page.pageHeight}; }

    bool ok = false;
};

// Polygons in sixteenths handed over as 16.16 fixed points, or as floats
// (which hold sixteenths exactly).
struct Polylines {
    std::vector<std::vector<FixedPoint>> fixed;
    std::vector<std::vector<FloatPoint>> floats;
    std::vector<Polyline> lines;
    int32_t records = 0; // the edge table is bucketed from 40 on

    explicit Polylines(const std::vector<OraclePolygon>& polys, bool asFloat = false) {
        for (const OraclePolygon& p : polys) {
            fixed.emplace_back();
            floats.emplace_back();
            for (const OraclePoint& q : p) {
                if (asFloat) {
                    floats.back().push_back({static_cast<float>(static_cast<double>(q.x) / 16),
                                             static_cast<float>(static_cast<double>(q.y) / 16)});
                } else {
                    fixed.back().push_back(
                        {static_cast<int32_t>(q.x * 4096), static_cast<int32_t>(q.y * 4096)});
                }
            }
        }
        for (size_t i = 0; i < polys.size(); ++i) {
            Polyline l;
            l.fixedPoints = asFloat ? nullptr : fixed[i].data();
            l.floatPoints = asFloat ? floats[i].data() : nullptr;
            l.count = static_cast<int32_t>(polys[i].size());
            records += l.count;
            lines.push_back(l);
        }
    }
    int32_t count() const { return static_cast<int32_t>(lines.size()); }
};

inline ScanFloatBox everywhere() {
    return {-1e30f, 1e30f, -1e30f, 1e30f};
}

// Fills polygons (sixteenths, within 16.16 range) on the page with its
// current clip.
inline ResultCode fillPolygons(ScanPage& p, const std::vector<OraclePolygon>& polys, int32_t rule,
                               const SpanRecorder& rec) {
    const Polylines f(polys);
    ResultCode r = buildEdges(&p.scan, f.lines.data(), f.count(), f.records, everywhere());
    if (r != KRYN_OK) {
        releaseEdges(&p.scan);
        return r;
    }
    return scanConvert(&p.scan, rule, p.clip.current, SCAN_MODE_PAINT, &rec);
}

inline ResultCode clipPolygons(ScanPage& p, const std::vector<OraclePolygon>& polys, int32_t rule) {
    const Polylines f(polys);
    return clipWithPolylines(&p.clip, &p.scan, *p.base, f.lines.data(), f.count(), f.records, rule,
                             p.page);
}

// The base clip's pixels: the page rectangle as a fill.
inline OraclePolygon pageRectangle(const ClipPage& page) {
    const int64_t w = 16 * static_cast<int64_t>(page.pageWidth);
    const int64_t h = 16 * static_cast<int64_t>(page.pageHeight);
    return {{0, 0}, {w, 0}, {w, h}, {0, h}};
}

// Describes the first differing pixel, or returns empty.
inline std::string firstMismatch(const std::vector<uint8_t>& got, const std::vector<uint8_t>& want,
                                 const OracleBounds& b) {
    for (size_t i = 0; i < got.size(); ++i) {
        if (got[i] != want[i]) {
            return "pixel (" + std::to_string(static_cast<int32_t>(i) % b.width() + b.minX) + ", " +
                   std::to_string(static_cast<int32_t>(i) / b.width() + b.minY) + ") painted " +
                   std::to_string(got[i]) + " times, expected " + std::to_string(want[i]);
        }
    }
    return "";
}

inline std::string describe(const std::vector<OraclePolygon>& polys) {
    std::string s;
    for (const auto& p : polys) {
        s += "[";
        for (const auto& q : p) {
            // Appended piece by piece: "(" + std::to_string(...) trips a
            // false -Wrestrict in GCC 12 at -O3.
            s += '(';
            s += std::to_string(q.x);
            s += ',';
            s += std::to_string(q.y);
            s += ')';
        }
        s += "]";
    }
    return s;
}

} // namespace kryn::test
