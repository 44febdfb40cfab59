// Line attributes and dash patterns in the graphics state: validation, the
// 16.16 forms, the unchanged-value rule, phase reduction and who owns the
// dash arrays across pushes and pops.
#include "support/engine_fixture.h"

#include "engine/graphics_state.h"

#include <gtest/gtest.h>

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

TEST(StrokeState, LineAttributesValidateAndKeepTheirFixedForms) {
    struct Case {
        const char* call;
        int64_t value;
        ResultCode result;
        int32_t widthFixed, limitFixed, lengthFixed; // after the call
    };
    // Each case starts from the defaults: half-width 0.5, limit 10.
    const Case cases[] = {
        {"width", -1, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {"width", 0, KRYN_OK, 0, 0xA0000, 0},
        {"width", 6, KRYN_OK, 0x30000, 0xA0000, 0x1E0000},
        {"width", 32766, KRYN_OK, 16383 << 16, 0xA0000, -1}, // miter length 163830
        {"width", 32767, KRYN_OK, -1, 0xA0000, -1},          // half-width above 16383
        {"width", INT32_MAX, KRYN_OK, -1, 0xA0000, -1},
        {"limit", 0, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {"limit", -5, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {"limit", 1, KRYN_OK, 0x8000, 0x10000, 0x8000},
        {"limit", 16383, KRYN_OK, 0x8000, 16383 << 16, 0x1FFF8000},
        {"limit", 16384, KRYN_OK, 0x8000, -1, 0x20000000},
        {"limit", 32767, KRYN_OK, 0x8000, -1, -1},
        {"cap", 2, KRYN_OK, 0x8000, 0xA0000, 0x50000},
        {"cap", 3, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
        {"join", 0, KRYN_OK, 0x8000, 0xA0000, 0x50000},
        {"join", 4, KRYN_ERR_INVALID, 0x8000, 0xA0000, 0x50000},
    };
    for (const Case& c : cases) {
        EnginePtr e = openPageEngine();
        const std::string call = c.call;
        ResultCode r = 0;
        if (call == "width") {
            r = KRYNSetLineWidth(int32_t(c.value), e.get());
        } else if (call == "limit") {
            r = KRYNSetMiterLimit(int32_t(c.value), e.get());
        } else if (call == "cap") {
            r = KRYNSetLineCap(uint16_t(c.value), e.get());
        } else {
            r = KRYNSetLineJoin(uint16_t(c.value), e.get());
        }
        const GraphicsState* gs = currentState(e.get());
        EXPECT_EQ(r, c.result) << call << " " << c.value;
        EXPECT_EQ(gs->lineWidthFixed, c.widthFixed) << call << " " << c.value;
        EXPECT_EQ(gs->miterLimitFixed, c.limitFixed) << call << " " << c.value;
        EXPECT_EQ(gs->miterLengthFixed, c.lengthFixed) << call << " " << c.value;
    }
    EXPECT_EQ(KRYNSetLineWidth(1, nullptr), KRYN_ERR_INVALID);
}

TEST(StrokeState, JoinZeroBecomesRoundAtTheFirstJoinOfTheStateThatStrokes) {
    EnginePtr e = openPageEngine();
    Engine* eng = e.get();
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(identity, eng), KRYN_OK);
    ASSERT_EQ(KRYNSetLineWidth(6, eng), KRYN_OK);
    ASSERT_EQ(KRYNSetLineJoin(0, eng), KRYN_OK);
    ASSERT_EQ(KRYNPushGState(eng), KRYN_OK);
    ASSERT_EQ(KRYNMoveTo(10, 10, eng), KRYN_OK);
    const int32_t corner[4] = {50, 10, 50, 50};
    ASSERT_EQ(KRYNLinesTo(corner, 2, eng), KRYN_OK);
    ASSERT_EQ(KRYNStroke(eng), KRYN_OK);
    EXPECT_EQ(currentState(eng)->lineJoin, 3u);
    ASSERT_EQ(KRYNPopGState(eng), KRYN_OK);
    EXPECT_EQ(currentState(eng)->lineJoin, 0u) << "the saved state keeps its own value";
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
        {{3, 2}, 4, KRYN_OK, 0, 0, 1, 1}, // in the gap, 1 left; wraps to entry 0
        {{3, 2}, 5, KRYN_OK, 1, 1, 3, 1}, // a whole period: entry 0 from its start
        {{3, 2}, 10, KRYN_OK, 1, 1, 3, 1},
        {{3, 2}, 1, KRYN_OK, 1, 1, 2, 1},
        {{4}, 2, KRYN_OK, 0, 1, 2, 1},
        {{0, 2}, 1, KRYN_OK, 0, 0, 1, 1},
        {{-1, 3}, 1, KRYN_OK, 0, 0, 1, 1},          // p = 1 >= -1: p becomes 2, inside the gap of 3
        {{-1, 0}, 0, KRYN_ERR_INVALID, 0, 1, 0, 1}, // no entry above 0
        {{0, 0, 0}, 0, KRYN_ERR_INVALID, 0, 1, 0, 1},
        {{-3, 3}, 7, KRYN_ERR_INVALID, 0, 1, 0, 1}, // sums to 0: never moves on
        {{-9, 3}, 0, KRYN_ERR_INVALID, 0, 1, 0, 1}, // sums below 0
        {{16383, 1}, 0, KRYN_OK, 0, 1, 0, 1},
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
        if (c.fixedOk == 1) {
            EXPECT_EQ(gs->dashRemainingFixed, int32_t(c.remaining * 65536)) << what;
        }
    }
}

TEST(StrokeState, DashArraysAreReusedSharedAndFreedByTheirOwner) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    {
        EnginePtr e = openPageEngine();
        Engine* eng = e.get();
        EXPECT_EQ(KRYNSetLineDash(nullptr, 2, 0, eng), KRYN_ERR_INVALID);
        EXPECT_EQ(KRYNSetLineDash(nullptr, 0, 0, eng), KRYN_OK); // already solid
        const uint64_t solid = KRYNPlatformLiveBlocks();
        const int32_t a[2] = {6, 4};
        ASSERT_EQ(KRYNSetLineDash(a, 2, 0, eng), KRYN_OK);
        const float* arrays = currentState(eng)->dashArray;
        ASSERT_EQ(KRYNSetLineDash(a, 2, 7, eng), KRYN_OK);
        EXPECT_EQ(currentState(eng)->dashArray, arrays) << "the same entries keep the arrays";
        EXPECT_EQ(currentState(eng)->dashOn, 0);
        ASSERT_EQ(KRYNPushGState(eng), KRYN_OK);
        EXPECT_EQ(currentState(eng)->dashArray, arrays) << "a pushed state shares them";
        const int32_t b[3] = {1, 2, 3};
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, eng), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(nullptr, 0, 0, eng), KRYN_OK);
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, eng), KRYN_OK);
        ASSERT_EQ(KRYNPopGState(eng), KRYN_OK);
        EXPECT_EQ(currentState(eng)->dashArray, arrays) << "popping leaves the parent's arrays";
        EXPECT_EQ(currentState(eng)->dashArray[0], 6.0f);
        ASSERT_EQ(KRYNSetLineDash(nullptr, 0, 0, eng), KRYN_OK);
        EXPECT_EQ(KRYNPlatformLiveBlocks(), solid);
        ASSERT_EQ(KRYNSetLineDash(b, 3, 0, eng), KRYN_OK); // freed with the page
    }
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}
