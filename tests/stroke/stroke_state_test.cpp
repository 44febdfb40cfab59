// Line attributes and dash patterns in the graphics state: validation, the
// 16.16 forms (-1 above 16383), phase reduction, and who owns the dash
// arrays across pushes and pops.
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace kryn;
using namespace kryn::test;

namespace {

EnginePtr openPageEngine() {
    EnginePtr e = makeEngine(99, 99, 16);
    EXPECT_EQ(KRYNNewPage(0, e.get()), KRYN_OK);
    return e;
}

} // namespace

TEST(StrokeState, WidthAndMiterLimitKeepTheirFixedForms) {
    struct Case {
        bool width; // else the miter limit
        int32_t value;
        ResultCode result;
        int32_t widthFixed, limitFixed, lengthFixed; // from the defaults 0.5 and 10
    };
    const Case cases[] = {
        {true, -1, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {true, 6, KRYN_OK, 0x30000, 0xA0000, 0x1E0000},
        {true, 32766, KRYN_OK, 16383 << 16, 0xA0000, -1}, // miter length 163830
        {true, 32767, KRYN_OK, -1, 0xA0000, -1},
        {false, 0, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {false, 1, KRYN_OK, 0x8000, 0x10000, 0x8000},
        {false, 16384, KRYN_OK, 0x8000, -1, 0x20000000},
    };
    for (const Case& c : cases) {
        EnginePtr e = openPageEngine();
        const ResultCode r =
            c.width ? KRYNSetLineWidth(c.value, e.get()) : KRYNSetMiterLimit(c.value, e.get());
        const GraphicsState* gs = currentState(e.get());
        EXPECT_EQ(r, c.result) << c.width << " " << c.value;
        EXPECT_EQ(gs->lineWidthFixed, c.widthFixed) << c.width << " " << c.value;
        EXPECT_EQ(gs->miterLimitFixed, c.limitFixed) << c.width << " " << c.value;
        EXPECT_EQ(gs->miterLengthFixed, c.lengthFixed) << c.width << " " << c.value;
    }
    EnginePtr e = openPageEngine();
    EXPECT_EQ(KRYNSetLineCap(3, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetLineJoin(4, e.get()), KRYN_ERR_INVALID);
    // Join 0 reads 3 once a stroke drew a join; the saved state keeps 0.
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(identity, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNSetLineWidth(6, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNSetLineJoin(0, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNPushGState(e.get()), KRYN_OK);
    ASSERT_EQ(KRYNMoveTo(10, 10, e.get()), KRYN_OK);
    const int32_t corner[4] = {50, 10, 50, 50};
    ASSERT_EQ(KRYNLinesTo(corner, 2, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNStroke(e.get()), KRYN_OK);
    EXPECT_EQ(currentState(e.get())->lineJoin, 3u);
    ASSERT_EQ(KRYNPopGState(e.get()), KRYN_OK);
    EXPECT_EQ(currentState(e.get())->lineJoin, 0u);
}

TEST(StrokeState, DashPatternsReduceTheirPhase) {
    struct Case {
        std::vector<int32_t> entries;
        uint32_t phase;
        ResultCode result;
        uint16_t index, on;
        float remaining;
        uint16_t fixedOk;
    };
    const Case cases[] = {
        {{3, 2}, 0, KRYN_OK, 0, 1, 0, 1},
        {{3, 2}, 4, KRYN_OK, 0, 0, 1, 1}, // in the gap, 1 left, entry 0 next
        {{3, 2}, 5, KRYN_OK, 1, 1, 3, 1}, // a whole period: entry 0 from its start
        {{3, 2}, 1, KRYN_OK, 1, 1, 2, 1},
        {{4}, 2, KRYN_OK, 0, 1, 2, 1},
        {{0, 2}, 1, KRYN_OK, 0, 0, 1, 1},
        {{-1, 3}, 1, KRYN_OK, 0, 0, 1, 1},          // p = 1 >= -1: p becomes 2, in the gap
        {{-1, 0}, 0, KRYN_ERR_INVALID, 0, 1, 0, 1}, // no entry above 0
        {{-3, 3}, 7, KRYN_ERR_INVALID, 0, 1, 0, 1}, // sums to 0: never moves on
        {{-9, 3}, 0, KRYN_ERR_INVALID, 0, 1, 0, 1},
        {{16384, 1}, 16385, KRYN_OK, 1, 1, 16384, 0}, // no 16.16 copy: the float route
        {{-16384, 16390}, 0, KRYN_OK, 0, 1, 0, 0},
        // The sum (2^32 - 2) does not fit 32 bits: 0xFFFFFFFF is 1 into the pattern.
        {{INT32_MAX, INT32_MAX}, 0xFFFFFFFF, KRYN_OK, 1, 1, float(INT32_MAX - 1), 0},
    };
    for (const Case& c : cases) {
        EnginePtr e = openPageEngine();
        const ResultCode r =
            KRYNSetLineDash(c.entries.data(), uint16_t(c.entries.size()), c.phase, e.get());
        const GraphicsState* gs = currentState(e.get());
        const std::string what =
            std::to_string(c.entries[0]) + "... phase " + std::to_string(c.phase);
        EXPECT_EQ(r, c.result) << what;
        EXPECT_EQ(gs->dashCount, r == KRYN_OK ? c.entries.size() : 0u) << what;
        EXPECT_EQ(gs->dashIndex, c.index) << what;
        EXPECT_EQ(gs->dashOn, c.on) << what;
        EXPECT_FLOAT_EQ(gs->dashRemaining, c.remaining) << what;
        EXPECT_EQ(gs->dashFixedOk, c.fixedOk) << what;
        EXPECT_EQ(gs->dashArrayFixed != nullptr, r == KRYN_OK && c.fixedOk == 1) << what;
        EXPECT_EQ(gs->dashRemainingFixed, c.fixedOk == 1 ? int32_t(c.remaining * 65536) : 0)
            << what;
    }
}

TEST(StrokeState, DashArraysAreReusedSharedAndFreedByTheirOwner) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        EnginePtr engine = openPageEngine();
        Engine* e = engine.get();
        EXPECT_EQ(KRYNSetLineDash(nullptr, 2, 0, e), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetLineDash(nullptr, 0, 0, e), KRYN_OK); // already solid
        const uint64_t solid = KRYNPlatformLiveBlocks();
        const int32_t a[2] = {6, 4};
        const int32_t b[3] = {1, 2, 3};
        ASSERT_EQ(KRYNSetLineDash(a, 2, 0, e), KRYN_OK);
        const float* arrays = currentState(e)->dashArray;
        ASSERT_EQ(KRYNSetLineDash(a, 2, 7, e), KRYN_OK);
        EXPECT_EQ(currentState(e)->dashArray, arrays) << "the same entries keep the arrays";
        EXPECT_EQ(currentState(e)->dashOn, 0);
        ASSERT_EQ(KRYNPushGState(e), KRYN_OK);
        EXPECT_EQ(currentState(e)->dashArray, arrays) << "a pushed state shares them";
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, e), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(nullptr, 0, 0, e), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, e), KRYN_OK);
        ASSERT_EQ(KRYNPopGState(e), KRYN_OK);
        EXPECT_EQ(currentState(e)->dashArray, arrays) << "popping leaves the parent's arrays";
        EXPECT_EQ(currentState(e)->dashArray[0], 6.0f);
        ASSERT_EQ(KRYNSetLineDash(nullptr, 0, 0, e), KRYN_OK);
        EXPECT_EQ(KRYNPlatformLiveBlocks(), solid);
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, e), KRYN_OK); // freed with the page
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}
