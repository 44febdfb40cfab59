// The engine's sweep against the reference sweep (reference_sweep.h) and
// the oracle on seeded random figures (random_polygons.h), handed over as
// floats (points far beyond the clamping limit too) or as 16.16 fixed
// points, in every orientation, with both rules, unclipped and under
// rectangular and other clip regions, on pages of every band height, tall
// ones too. The recorder calls must be the same, one by one, so the band
// lists are the same; a share of the cases is recorded into real pages and
// their band lists compared byte for byte, and another share is checked
// pixel for pixel against the oracle.
#include "random_polygons.h"
#include "reference_sweep.h"
#include "scan_harness.h"

#include "displaylist/opcodes.h"
#include "displaylist/record_walk.h"
#include "displaylist/record_writers.h"
#include "engine/graphics_state.h"
#include "scan/clip_index.h"
#include "scan/page_clip.h"
#include "scan/page_recorders.h"
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace kryn::test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr uint32_t CASES = 1000;
#else
constexpr uint32_t CASES = 10000;
#endif

std::string firstDifference(const std::vector<int64_t>& got, const std::vector<int64_t>& want) {
    size_t i = 0;
    while (i < got.size() && i < want.size() && got[i] == want[i]) {
        ++i;
    }
    if (i == got.size() && i == want.size()) {
        return "";
    }
    std::string s = "calls differ at word " + std::to_string(i) + " of " +
                    std::to_string(got.size()) + " / " + std::to_string(want.size()) + ": got";
    for (size_t k = i; k < got.size() && k < i + 8; ++k) {
        s += " " + std::to_string(got[k]);
    }
    s += ", want";
    for (size_t k = i; k < want.size() && k < i + 8; ++k) {
        s += " " + std::to_string(want[k]);
    }
    return s;
}

struct Case {
    uint32_t seed;
    int32_t width, height, bandHeight, q, rule, clipRule;
    bool stroke, asFloat;
    std::vector<OraclePolygon> fill, clip;

    explicit Case(uint32_t s) : seed(s) {
        std::mt19937 rng(s * 2654435761u + 17);
        const bool tall = rng() % 4 == 0;
        width = 40 + static_cast<int32_t>(rng() % 160);
        height =
            tall ? 260 + static_cast<int32_t>(rng() % 140) : 30 + static_cast<int32_t>(rng() % 120);
        const int32_t heights[4] = {8, 16, 32, 64};
        bandHeight = heights[rng() % 4];
        q = static_cast<int32_t>(s % 4);
        rule = static_cast<int32_t>(s / 4 % 2);
        clipRule = static_cast<int32_t>(rng() % 2);
        stroke = rng() % 16 == 0;
        asFloat = s / 24 % 2 == 0;
        PolygonMaker maker(s, width, height);
        fill = maker.figure(asFloat);
        const int32_t clipKind = static_cast<int32_t>(s / 8 % 3); // none, rectangle, figure
        if (clipKind == 1) {
            clip.push_back(maker.rectangle());
        } else if (clipKind == 2) {
            clip = maker.figure(asFloat);
        }
    }
    // Points beyond the clamping limit: the figure changes far from the page.
    bool clamped() const {
        for (const auto* f : {&fill, &clip}) {
            for (const OraclePolygon& p : *f) {
                for (const OraclePoint& pt : p) {
                    if (std::abs(pt.x) > (int64_t{1} << 31) ||
                        std::abs(pt.y) > (int64_t{1} << 31)) {
                        return true;
                    }
                }
            }
        }
        return false;
    }
    std::string text() const {
        return "seed " + std::to_string(seed) + (asFloat ? " float" : " fixed") + " q " +
               std::to_string(q) + " rule " + std::to_string(rule) + " page " +
               std::to_string(width) + "x" + std::to_string(height) + "/" +
               std::to_string(bandHeight) + " fill " + describe(fill) + " clip(" +
               std::to_string(clipRule) + ") " + describe(clip);
    }
};

// The engine (reference false) or the reference converts the case's clip
// and fill on `page` into the recorder.
ResultCode runCase(const Case& c, ScanPage& page, const SpanRecorder& rec, bool reference) {
    if (!c.clip.empty()) {
        const Polylines clip(c.clip, c.asFloat);
        const ResultCode r =
            reference ? referenceClip(&page.clip, &page.scan, *page.base, clip.lines.data(),
                                      clip.count(), clip.records, c.clipRule, page.page)
                      : clipWithPolylines(&page.clip, &page.scan, *page.base, clip.lines.data(),
                                          clip.count(), clip.records, c.clipRule, page.page);
        if (r != KRYN_OK) {
            return r;
        }
    }
    const Polylines fill(c.fill, c.asFloat);
    const ResultCode r = buildEdges(&page.scan, fill.lines.data(), fill.count(), fill.records,
                                    page.clip.current.clipBox);
    if (r != KRYN_OK) {
        releaseEdges(&page.scan);
        return r;
    }
    if (c.stroke) {
        return reference ? referenceScanConvertStroke(&page.scan, page.clip.current,
                                                      SCAN_MODE_PAINT, &rec)
                         : scanConvertStroke(&page.scan, page.clip.current, SCAN_MODE_PAINT, &rec);
    }
    return reference
               ? referenceScanConvert(&page.scan, c.rule, page.clip.current, SCAN_MODE_PAINT, &rec)
               : scanConvert(&page.scan, c.rule, page.clip.current, SCAN_MODE_PAINT, &rec);
}

// The pieces of a region in order: the reference's list, or the engine's
// index replayed band by band.
std::vector<int64_t> regionPieces(ScanState* scan, const ClipRegion& region) {
    std::vector<int64_t> out;
    auto add = [&](const Trapezoid& t) {
        out.insert(out.end(),
                   {t.yTop, t.yBottom, t.leftEdge->xTop, t.leftEdge->yTop, t.leftEdge->xBottom,
                    t.leftEdge->yBottom, t.rightEdge->xTop, t.rightEdge->yTop, t.rightEdge->xBottom,
                    t.rightEdge->yBottom, t.minColumn, t.maxColumn});
    };
    if (region.index == nullptr) {
        for (const Trapezoid* t = region.activeList; t != nullptr; t = t->next) {
            add(*t);
        }
        return out;
    }
    const RegionIndex& index = *region.index;
    for (int32_t b = 0; b < index.bands.count; ++b) {
        scan->cursor.moveTo(&index, b);
        for (const ClipRun* r = scan->cursor.first; r != nullptr; r = r->next) {
            Trapezoid t;
            if (index.piece(index.bands.at(b), *r, &t)) {
                add(t);
            }
        }
    }
    return out;
}

TEST(SweepIdentity, RecorderCallsMatchTheReference) {
    int64_t calls = 0;
    for (uint32_t seed = 0; seed < CASES; ++seed) {
        const Case c(seed);
        ScanPage engine(c.width, c.height, c.q, c.bandHeight);
        ScanPage reference(c.width, c.height, c.q, c.bandHeight);
        ASSERT_TRUE(engine.ok && reference.ok);
        PixelCounts got(engine.raster());
        PixelCounts want(reference.raster());
        ASSERT_EQ(runCase(c, engine, got.recorder(c.bandHeight, true), false), KRYN_OK);
        ASSERT_EQ(runCase(c, reference, want.recorder(c.bandHeight, true), true), KRYN_OK);
        ASSERT_EQ(firstDifference(regionPieces(&engine.scan, engine.clip.current),
                                  regionPieces(&reference.scan, reference.clip.current)),
                  "")
            << "region " << c.text();
        const ClipRegion& a = engine.clip.current;
        const ClipRegion& b = reference.clip.current;
        ASSERT_TRUE(a.isRect == b.isRect && a.intBox.minX == b.intBox.minX &&
                    a.intBox.maxX == b.intBox.maxX && a.intBox.minY == b.intBox.minY &&
                    a.intBox.maxY == b.intBox.maxY)
            << "region shape " << c.text();
        const std::string d = firstDifference(got.calls, want.calls);
        ASSERT_EQ(d, "") << c.text();
        calls += static_cast<int64_t>(got.calls.size());
    }
    EXPECT_GT(calls, int64_t{CASES} * 20); // the cases record something
}

// The list's records with each array record's array in place of its pointer.
std::vector<uint8_t> listBytes(const DisplayList* list) {
    std::vector<uint8_t> bytes;
    if (list == nullptr) {
        return bytes;
    }
    walkRecords(list, [&](uint8_t op, const uint8_t* record) {
        if (!ownsArray(op)) {
            bytes.insert(bytes.end(), record, record + recordSize(op));
            return true;
        }
        bytes.insert(bytes.end(), record, record + ARRAY_POINTER_OFFSET);
        const auto* array = static_cast<const uint8_t*>(loadPointer(record + ARRAY_POINTER_OFFSET));
        const size_t count = loadU16(record + 2);
        size_t size = count * 4;
        if (op == DL_OP_RUNS || op == DL_OP_RUNS_SHORT || op == DL_OP_RECTS) {
            size = RUN_BUFFER_HEADER + count * 6;
        } else if (op == DL_OP_COLUMN_RUNS) {
            size = RUN_BUFFER_HEADER + count * 4;
        }
        bytes.insert(bytes.end(), array, array + size);
        return true;
    });
    return bytes;
}

const int32_t MATRICES[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, 0, 0}, {-1, 0, 0, -1, 0, 0}, {0, -1, 1, 0, 0, 0}};
const uint16_t LEVELS[3] = {0x8000, 0x8003, 0x8009};

// The case on a real page of mode 0, its band lists kept.
EnginePtr casePage(const Case& c, bool reference) {
    EnginePtr e =
        makeEngine(c.width, c.height, static_cast<int16_t>(c.bandHeight), LEVELS[c.seed / 4 % 3]);
    if (e == nullptr || KRYNNewPage(0, e.get()) != KRYN_OK ||
        KRYNSetMatrix(MATRICES[c.q], e.get()) != KRYN_OK) {
        return nullptr;
    }
    PageRecord* page = pageOf(e.get());
    GraphicsState* gs = currentState(e.get());
    page->paintNotWhite = 1;
    if (!c.clip.empty()) {
        const Polylines clip(c.clip, c.asFloat);
        const ClipPage geometry = clipPageOf(e.get(), page);
        const ResultCode r =
            reference ? referenceClip(&gs->clip, &page->scan, *e->baseClip, clip.lines.data(),
                                      clip.count(), clip.records, c.clipRule, geometry)
                      : clipWithPolylines(&gs->clip, &page->scan, *e->baseClip, clip.lines.data(),
                                          clip.count(), clip.records, c.clipRule, geometry);
        if (r != KRYN_OK) {
            return nullptr;
        }
    }
    const Polylines fill(c.fill, c.asFloat);
    if (buildEdges(&page->scan, fill.lines.data(), fill.count(), fill.records,
                   gs->clip.current.clipBox) != KRYN_OK) {
        return nullptr;
    }
    SpanRecorder rec;
    installPageRecorders(page, &rec);
    const ResultCode r =
        reference
            ? referenceScanConvert(&page->scan, c.rule, gs->clip.current, SCAN_MODE_PAINT, &rec)
            : scanConvert(&page->scan, c.rule, gs->clip.current, SCAN_MODE_PAINT, &rec);
    if (r != KRYN_OK || flushPendingRuns(page) != KRYN_OK) {
        return nullptr;
    }
    return e;
}

TEST(SweepIdentity, BandListsMatchTheReferenceByteForByte) {
    size_t bytes = 0;
    for (uint32_t seed = 0; seed < CASES; seed += 20) {
        const Case c(seed);
        const EnginePtr engine = casePage(c, false);
        const EnginePtr reference = casePage(c, true);
        ASSERT_TRUE(engine != nullptr && reference != nullptr) << c.text();
        const PageRecord* a = pageOf(engine.get());
        const PageRecord* b = pageOf(reference.get());
        ASSERT_EQ(a->bandCount, b->bandCount);
        for (int32_t i = 0; i < a->bandCount; ++i) {
            const std::vector<uint8_t> got = listBytes(a->bands[i].list);
            ASSERT_EQ(got, listBytes(b->bands[i].list)) << "band " << i << " " << c.text();
            bytes += got.size();
        }
    }
    EXPECT_GT(bytes, size_t{CASES / 20} * 100);
}

// Clamped points change the figure, and the stroke entry does not cut at
// crossings: those cases are left out. Half the cases record row spans of
// whole bands.
TEST(SweepIdentity, PixelsMatchTheOracle) {
    int64_t painted = 0, bandCalls = 0;
    for (uint32_t seed = 3; seed < CASES; seed += 5) {
        const Case c(seed);
        if (c.clamped() || c.stroke) {
            continue;
        }
        ScanPage page(c.width, c.height, c.q, c.bandHeight);
        ASSERT_TRUE(page.ok);
        PixelCounts counts(page.raster());
        ASSERT_EQ(runCase(c, page, counts.recorder(c.bandHeight, seed % 2 == 0), false), KRYN_OK);
        auto want = oracleFill(c.fill, c.rule, c.q, page.raster());
        const auto inPage = oracleFill({pageRectangle(page.page)}, 0, c.q, page.raster());
        const auto inClip =
            c.clip.empty() ? inPage : oracleFill(c.clip, c.clipRule, c.q, page.raster());
        for (size_t i = 0; i < want.size(); ++i) {
            want[i] = static_cast<uint8_t>(want[i] & inPage[i] & inClip[i]);
        }
        ASSERT_EQ(firstMismatch(counts.hits, want, page.raster()), "") << c.text();
        ASSERT_EQ(counts.outside, 0) << c.text();
        painted += std::count(want.begin(), want.end(), 1);
        bandCalls += counts.bandCalls;
    }
    EXPECT_GT(painted, int64_t{CASES} * 20);
    EXPECT_GT(bandCalls, 0);
}

} // namespace
} // namespace kryn::test
