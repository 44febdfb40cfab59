// Failed allocations while building paths: every call answers OK or
// no-memory, a failed call leaves the path exactly as before and succeeds
// when retried with memory back, and nothing is left allocated once the
// engine ends. And the pool's blocks after NewPath.
#include "support/alloc_sweep.h"
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace kryn::test {
namespace {

// A path's subpaths and segments as plain values, so that two paths (before
// and after a failed call) compare with ==.
struct SegmentDump {
    int32_t type;
    float body[8];
    bool operator==(const SegmentDump& o) const {
        return type == o.type && std::memcmp(body, o.body, sizeof body) == 0;
    }
};

struct SubpathDump {
    float start[2];
    int16_t closed;
    std::vector<SegmentDump> segments;
    bool operator==(const SubpathDump& o) const {
        return start[0] == o.start[0] && start[1] == o.start[1] && closed == o.closed &&
               segments == o.segments;
    }
};

struct PathDump {
    std::vector<SubpathDump> subpaths;
    bool hasCurrent;
    float current[2];
    bool operator==(const PathDump& o) const {
        return subpaths == o.subpaths && hasCurrent == o.hasCurrent &&
               (!hasCurrent || (current[0] == o.current[0] && current[1] == o.current[1]));
    }
};

inline PathDump dumpPath(const Path& path) {
    PathDump d{};
    for (const Subpath* s = path.paintFirst; s != nullptr; s = s->next) {
        SubpathDump sd{{s->start[0], s->start[1]}, s->closed, {}};
        for (const PathSegment* g = s->paintFirstSegment; g != nullptr; g = g->next) {
            SegmentDump gd{};
            gd.type = g->type;
            std::memcpy(gd.body, &g->poly, sizeof(PowerCubic));
            sd.segments.push_back(gd);
        }
        d.subpaths.push_back(sd);
    }
    d.hasCurrent = path.last != nullptr;
    d.current[0] = path.currentPoint[0];
    d.current[1] = path.currentPoint[1];
    return d;
}

inline GraphicsState& topOf(Engine* e) {
    return *e->pageSlot->gstateTop;
}

using PathCall = std::function<ResultCode(Engine*)>;

std::vector<PathCall> pathCalls() {
    static int32_t zigzag[60];
    for (int i = 0; i < 30; ++i) {
        zigzag[2 * i] = 10 + i * 7;
        zigzag[2 * i + 1] = (i % 2) * 50;
    }
    static const int32_t curves[] = {5,  5,  9,  40, 30, 30, 60, 0,  70,
                                     70, 80, 10, 90, 5,  95, 90, 99, 99};
    static const int16_t curves16[] = {1, 2, 3, 4, 5, 6};
    return {
        [](Engine* e) { return KRYNMoveTo(0, 0, e); },
        [](Engine* e) { return KRYNLinesTo(zigzag, 30, e); },
        [](Engine* e) { return KRYNGroupBezier3To(curves, 9, e); },
        [](Engine* e) { return KRYNPushGState(e); },
        [](Engine* e) { return KRYNLinesTo(zigzag, 12, e); },
        [](Engine* e) { return KRYNBezier3To16(curves16, e); },
        [](Engine* e) { return KRYNEllipsePath(0, 0, 300, 300, e); },
        [](Engine* e) { return KRYNArcTo(0, 0, 100, 60, 100, 30, 0, 30, e); },
        [](Engine* e) { return KRYNPopGState(e); },
        [](Engine* e) { return KRYNClosePath(e); },
        [](Engine* e) { return KRYNLinesTo(zigzag, 5, e); },
        [](Engine* e) { return KRYNSetScale(1.25f, e); },
        [](Engine* e) { return KRYNRoundRectPath(10, 10, 200, -100, 30, 20, e); },
        [](Engine* e) { return KRYNFanPath(0, 0, 80, 80, 80, 40, 40, 80, e); },
        [](Engine* e) { return KRYNBowPath(0, 0, 80, 50, 80, 25, 0, 25, e); },
        [](Engine* e) { return KRYNRectPath(1, 2, 3, 4, e); },
        [](Engine* e) { return KRYNPushGState(e); },
        [](Engine* e) { return KRYNMoveTo16(7, 7, e); },
        [](Engine* e) { return KRYNNewPath(e); },
        [](Engine* e) { return KRYNPushGState(e); },
        [](Engine* e) { return KRYNArcTo(0, 0, 50, 50, 50, 25, 25, 0, e); },
    };
}

void buildPaths(bool injected) {
    Engine* e = KRYNInit(499, 499, 32, 600, 0x8009);
    if (e == nullptr) {
        EXPECT_TRUE(injected);
        return;
    }
    const ResultCode page = KRYNNewPage(3, e);
    if (page != KRYN_OK) {
        EXPECT_TRUE(injected && page == KRYN_ERR_NO_MEMORY);
        KRYNEnd(e);
        return;
    }
    int step = 0;
    for (const PathCall& call : pathCalls()) {
        const GraphicsState* before = e->pageSlot->gstateTop;
        const PathDump dump = dumpPath(before->path);
        const ResultCode r = call(e);
        if (r == KRYN_ERR_NO_MEMORY) {
            EXPECT_TRUE(injected) << "step " << step;
            EXPECT_EQ(e->pageSlot->gstateTop, before) << "step " << step;
            EXPECT_TRUE(dumpPath(before->path) == dump) << "path changed by failed step " << step;
            // The path stays usable: with memory back, the same call succeeds.
            KRYNPlatformFailAfter(-1);
            EXPECT_EQ(call(e), KRYN_OK) << "retry of step " << step;
        } else {
            EXPECT_EQ(r, KRYN_OK) << "step " << step;
        }
        ++step;
    }
    EXPECT_EQ(KRYNDisposePage(e), KRYN_OK);
    KRYNEnd(e);
}

TEST(PathAllocationSweep, EveryFailureLeavesThePathAsItWas) {
    const SweepReport report = sweepAllocationFailures(buildPaths);
    EXPECT_GT(report.allocations, 20u); // several pool blocks and state copies were taken
    EXPECT_EQ(report.failedRuns, report.allocations);
}

// NewPath returns the pool's blocks but its first, and counts records anew.
TEST(PathPool, NewPathReturnsAllButTheFirstBlock) {
    EnginePtr engine = makeEngine(999, 999, 64);
    Engine* e = engine.get();
    ASSERT_EQ(KRYNNewPage(3, e), KRYN_OK);
    const uint64_t live = KRYNPlatformLiveBlocks();
    ASSERT_EQ(KRYNMoveTo(0, 0, e), KRYN_OK);
    int32_t pts[80];
    for (int i = 0; i < 40; ++i) {
        pts[2 * i] = i;
        pts[2 * i + 1] = i * 2;
    }
    ASSERT_EQ(KRYNLinesTo(pts, 40, e), KRYN_OK);
    EXPECT_EQ(pageOf(e)->pathPool.recordCount, 41u);
    EXPECT_GT(KRYNPlatformLiveBlocks(), live + 1); // several blocks
    ASSERT_EQ(KRYNNewPath(e), KRYN_OK);
    EXPECT_EQ(topOf(e).path.last, nullptr);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live + 1); // the first block is kept
    EXPECT_EQ(pageOf(e)->pathPool.recordCount, 0u);
}

} // namespace
} // namespace kryn::test
