// KRYNFill and KRYNClip end to end: random paths built with the exported
// calls in every page orientation and device level, read back from the band
// lists and compared pixel for pixel with the reference rasteriser (the
// path's own device points are its input, so the test checks scan
// conversion, clipping and recording, not the transformation).
#include "support/band_coverage.h"
#include "support/engine_fixture.h"
#include "support/fill_oracle.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

#include <random>

using namespace kryn;
using namespace kryn::test;

namespace {

constexpr int32_t W = 260;
constexpr int32_t H = 300;

std::vector<OraclePolygon> devicePath(Engine* e) {
    std::vector<OraclePolygon> polys;
    const GraphicsState* gs = currentState(e);
    for (const Subpath* sp = gs->path.paintFirst; sp != nullptr; sp = sp->next) {
        OraclePolygon poly{{oracleSixteenths(sp->start[0]), oracleSixteenths(sp->start[1])}};
        for (const PathSegment* s = sp->paintFirstSegment; s != nullptr; s = s->next) {
            if (s->type == SEG_LINE) {
                poly.push_back({oracleSixteenths(s->line[0]), oracleSixteenths(s->line[1])});
            } else if (s->type == SEG_LINE_INT) {
                poly.push_back({int64_t{s->lineInt[0]} * 16, int64_t{s->lineInt[1]} * 16});
            }
        }
        polys.push_back(poly);
    }
    return polys;
}

int32_t coordinate(std::mt19937& rng, int32_t extent) {
    if (rng() % 40 == 0) {
        return (rng() % 2 == 0 ? -1 : 1) * int32_t(200000000 + rng() % 100000000);
    }
    return int32_t(rng() % uint32_t(extent + 120)) - 60;
}

void randomFigure(Engine* e, std::mt19937& rng, int32_t subpaths, int32_t maxVertices) {
    ASSERT_EQ(KRYNNewPath(e), KRYN_OK);
    for (int32_t s = 0; s < subpaths; ++s) {
        const int32_t n = 3 + int32_t(rng() % uint32_t(maxVertices - 2));
        std::vector<int32_t> points;
        for (int32_t i = 1; i < n; ++i) {
            points.push_back(coordinate(rng, W));
            points.push_back(coordinate(rng, H));
        }
        ASSERT_EQ(KRYNMoveTo(coordinate(rng, W), coordinate(rng, H), e), KRYN_OK);
        ASSERT_EQ(KRYNLinesTo(points.data(), int16_t(n - 1), e), KRYN_OK);
    }
}

std::vector<uint8_t> intersect(std::vector<uint8_t> a, const std::vector<uint8_t>& b) {
    for (size_t i = 0; i < a.size(); ++i) {
        a[i] = uint8_t(a[i] & b[i]);
    }
    return a;
}

// Matrices that establish each page orientation (with the page in view).
const int32_t ORIENTATIONS[4][6] = {
    {1, 0, 0, 1, 0, 0}, {0, 1, -1, 0, W, 0}, {-1, 0, 0, -1, W, H}, {0, -1, 1, 0, 0, H}};
const uint16_t LEVELS[3] = {0x8000, 0x8003, 0x8009};
const float SCALES[3] = {1.0f, 0.5f, 0.3f};

} // namespace

TEST(FillEngine, RandomPathsAndClipsMatchTheReferenceRasteriserExactly) {
    std::mt19937 rng(20261123);
    bool seenTurns[4] = {};
    // Every region is cut by the page rectangle under the orientation's
    // tie rules (the reset clip is that rectangle itself).
    const OraclePolygon pageRect{{0, 0}, {W * 16, 0}, {W * 16, H * 16}, {0, H * 16}};
    std::vector<uint8_t> pageClips[4];
    for (int32_t q = 0; q < 4; ++q) {
        pageClips[q] = oracleFill({pageRect}, 0, q, {0, W - 1, 0, H - 1});
    }
    for (int32_t n = 0; n < 480; ++n) {
        EnginePtr e = makeEngine(W - 1, H - 1, 32, LEVELS[n % 3]);
        ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
        ASSERT_EQ(KRYNSetMatrix(ORIENTATIONS[(n / 3) % 4], e.get()), KRYN_OK);
        const int32_t q = pageOf(e.get())->pageQuarterTurns;
        ASSERT_GE(q, 0);
        seenTurns[q] = true;
        ASSERT_EQ(KRYNSetScale(SCALES[(n / 12) % 3], e.get()), KRYN_OK);
        const OracleBounds page{0, W - 1, 0, H - 1};
        std::vector<uint8_t> clip = pageClips[q];
        if (n % 3 == 1) {
            randomFigure(e.get(), rng, 1 + int32_t(rng() % 2), 5);
            const uint16_t clipRule = uint16_t(rng() % 2);
            clip = intersect(clip, oracleFill(devicePath(e.get()), clipRule, q, page));
            ASSERT_EQ(KRYNClip(clipRule, e.get()), KRYN_OK);
        }
        randomFigure(e.get(), rng, 1 + int32_t(rng() % 3), 9);
        const uint16_t rule = uint16_t(rng() % 2);
        const auto want = intersect(oracleFill(devicePath(e.get()), rule, q, page), clip);
        ASSERT_EQ(KRYNFill(rule, e.get()), KRYN_OK);
        const Coverage got = pageCoverage(pageOf(e.get()));
        ASSERT_EQ(got.outside, 0) << "case " << n;
        int64_t mismatches = 0;
        for (size_t i = 0; i < want.size(); ++i) {
            if (got.counts[i] != want[i] && mismatches < 12 && getenv("KRYN_DEBUG")) {
                printf("x=%zu y=%zu got %d want %d\n", i % W, i / W, got.counts[i], want[i]);
            }
            mismatches += got.counts[i] != want[i];
        }
        ASSERT_EQ(mismatches, 0) << "case " << n << " q " << q << " rule " << rule;
    }
    EXPECT_TRUE(seenTurns[0] && seenTurns[1] && seenTurns[2] && seenTurns[3]);
}
