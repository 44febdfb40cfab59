// Hostile input through every exported operation: a null engine, no open
// page, null pointers, extreme counts, coordinates and matrices. Every call
// must answer one of the documented result codes, free everything, and
// leave an engine that still paints and delivers. The operations come from
// the player's table, which covers the public header (operation_table_test
// checks that), so a new operation is attacked too. Singular and enormous
// matrices under shapes and clips, absurd engine geometry and band groups
// moved far past the page: the golden job hostile_geometry.
#include "operation_table.h"

#include "support/engine_fixture.h"

#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

using namespace kryn::script;
using kryn::test::CallbackLog;
using kryn::test::documented;
using kryn::test::expectEnginePaints;

namespace {

constexpr int64_t I32_MIN = std::numeric_limits<int32_t>::min();
constexpr int64_t I32_MAX = std::numeric_limits<int32_t>::max();
constexpr int64_t PIXELS_2_27 = int64_t{1} << 27;

// The accepted no-operations: KRYN_OK even with a null engine.
bool ignoresEverything(std::string_view name) {
    return name == "GradientFill" || name == "FitImage";
}

// The operations that work without an open page.
bool needsNoPage(std::string_view name) {
    return name == "ColorAttribute" || name == "GetPageResource" || name == "NewPage" ||
           name == "End" || name == "SetQuantization" || name == "SetImageCacheInfo" ||
           name == "ClearImageCache" || ignoresEverything(name);
}

bool isArray(ParamType t) {
    return t == ParamType::ArrayI32 || t == ParamType::ArrayI16 || t == ParamType::ArrayU16 ||
           t == ParamType::ArrayU32;
}

std::vector<int64_t> hostileIntegers(ParamType t) {
    switch (t) {
    case ParamType::I16:
    case ParamType::ArrayI16:
        return {0, -1, 1, 32767, -32768, 3};
    case ParamType::U16:
    case ParamType::ArrayU16:
        return {0, 1, 3, 32767, 65535, 256};
    case ParamType::U32:
    case ParamType::OneU32:
    case ParamType::ArrayU32:
        return {0, 1, 32767, 0x80000000, 0xFFFFFFFF};
    default:
        return {0, -1, 32767, I32_MIN, I32_MAX, PIXELS_2_27, -PIXELS_2_27, PIXELS_2_27 - 1};
    }
}

constexpr double INF = std::numeric_limits<double>::infinity();
const std::vector<double> HOSTILE_REALS = {
    0.0, -1.0, 1e-30, 1e30, -1e30, INF, -INF, std::numeric_limits<double>::quiet_NaN(), 65536.0};

// Screen tiles read their pixels from this buffer, large enough for any
// tile that passes the checks with one field at an extreme and the others
// ordinary.
const std::vector<uint8_t>& tilePixels() {
    static const std::vector<uint8_t> pixels(4096 * 8 * 4, 0x5A);
    return pixels;
}

// A frame whose every argument is an ordinary value: scalars 1 (reals 1.0),
// arrays of 10s long enough for what the call reads, one-value pointers 0,
// screen tiles an 8 x 8 one-bit cell.
CallFrame ordinaryFrame(const OperationEntry& op) {
    CallFrame f;
    f.args.resize(op.params.size());
    for (size_t i = 0; i < op.params.size(); ++i) {
        f.args[i].integer = op.params[i].type == ParamType::OneU32 ? 0 : 1;
        f.args[i].real = 1.0;
        f.args[i].tile = ScreenTile{tilePixels().data(), 8, 8, 1, 1};
    }
    return f;
}

// Sizes every array to what the call will read, filled with `value`;
// one-value pointers point at `value` too.
void fillArrays(const OperationEntry& op, CallFrame& f, int64_t value) {
    for (size_t i = 0; i < op.params.size(); ++i) {
        const Parameter& p = op.params[i];
        BoundArg& a = f.args[i];
        size_t n = static_cast<size_t>(p.length.fixed);
        if (p.length.countArg >= 0) {
            const int64_t count = f.args[static_cast<size_t>(p.length.countArg)].integer;
            n = static_cast<size_t>(std::max<int64_t>(count, 0) * p.length.perCount);
        }
        a.i32.assign(std::max<size_t>(n, 1), static_cast<int32_t>(value));
        a.i16.assign(std::max<size_t>(n, 1), static_cast<int16_t>(value));
        a.u16.assign(std::max<size_t>(n, 1), static_cast<uint16_t>(value));
        a.u32.assign(std::max<size_t>(n, 1), static_cast<uint32_t>(value));
    }
}

struct Case {
    std::string what;
    CallFrame frame;
    bool nullPointer = false;
};

// Screen tiles with one field at a time at an extreme, and with null data.
void addScreenCases(const std::string& where, const OperationEntry& op, size_t p,
                    std::vector<Case>& cases) {
    const std::vector<int64_t> sizes = {0, -1, 1, 4096, 4097, I32_MIN, I32_MAX};
    const auto add = [&](const std::string& what, auto change) {
        Case c{where + " " + what, ordinaryFrame(op)};
        change(c.frame.args[p].tile);
        cases.push_back(std::move(c));
    };
    for (int64_t v : sizes) {
        const auto i = static_cast<int32_t>(v);
        add("width " + std::to_string(v), [i](ScreenTile& t) { t.width = i; });
        add("height " + std::to_string(v), [i](ScreenTile& t) { t.height = i; });
        add("bytesPerRow " + std::to_string(v), [i](ScreenTile& t) { t.bytesPerRow = i; });
    }
    for (int depth : {0, 1, 8, 24, 124, 254, 255}) {
        add("depth " + std::to_string(depth),
            [depth](ScreenTile& t) { t.depth = static_cast<uint8_t>(depth); });
        add("wide depth " + std::to_string(depth), [depth](ScreenTile& t) {
            t.depth = static_cast<uint8_t>(depth);
            t.width = 4096;
        });
    }
    add("null data", [](ScreenTile& t) { t.data = nullptr; });
    cases.back().nullPointer = true;                 // refused
    Case none{where + " = null", ordinaryFrame(op)}; // no tile: solid paint, KRYN_OK
    none.frame.args[p].isNull = true;
    cases.push_back(std::move(none));
}

// Each argument of op in turn made hostile while the others stay ordinary.
std::vector<Case> hostileCases(const OperationEntry& op) {
    std::vector<Case> cases;
    for (size_t p = 0; p < op.params.size(); ++p) {
        const ParamType t = op.params[p].type;
        const std::string where = std::string(op.name) + " arg " + std::to_string(p);
        if (t == ParamType::Screen) {
            addScreenCases(where, op, p, cases);
            continue;
        }
        if (t == ParamType::F32) {
            for (double v : HOSTILE_REALS) {
                Case c{where + " = " + std::to_string(v), ordinaryFrame(op)};
                c.frame.args[p].real = v;
                fillArrays(op, c.frame, 10);
                cases.push_back(std::move(c));
            }
            continue;
        }
        if (isArray(t) || t == ParamType::OneU32 || t == ParamType::Output) {
            Case c{where + " = null", ordinaryFrame(op), true};
            c.frame.args[p].isNull = true;
            fillArrays(op, c.frame, 10);
            cases.push_back(std::move(c));
        }
        if (t == ParamType::Output) {
            continue;
        }
        for (int64_t v : hostileIntegers(t)) {
            Case c{where + " = " + std::to_string(v), ordinaryFrame(op)};
            if (isArray(t) || t == ParamType::OneU32) {
                fillArrays(op, c.frame, v);
            } else {
                c.frame.args[p].integer = v;
                fillArrays(op, c.frame, 10);
            }
            cases.push_back(std::move(c));
        }
    }
    if (cases.empty()) {
        cases.push_back({std::string(op.name), ordinaryFrame(op)});
    }
    return cases;
}

const int32_t IDENTITY[6] = {1, 0, 0, 1, 0, 0};

// Plays one hostile call on a fresh engine with a page of `mode` open and a
// current point, paints whatever path it left, sends the page out, and checks
// that nothing leaked and the engine still works.
void attack(const OperationEntry& op, Case& c, int16_t mode) {
    const uint64_t live = KRYNPlatformLiveBlocks();
    const std::string what = c.what + " in mode " + std::to_string(mode);
    Engine* e = KRYNInit(199, 149, 32, 600, 0x8009);
    ASSERT_NE(e, nullptr);
    CallbackLog sink;
    c.frame.callback = &CallbackLog::callback;
    c.frame.context = sink.context();
    ASSERT_EQ(KRYNNewPage(mode, e), KRYN_OK);
    ASSERT_EQ(KRYNSetMatrix(IDENTITY, e), KRYN_OK);
    ASSERT_EQ(KRYNMoveTo(10, 10, e), KRYN_OK);
    const ResultCode r = op.invoke(e, c.frame);
    EXPECT_TRUE(documented(r)) << what << " answered 0x" << std::hex << r;
    // A null key table turns the key off.
    if (c.nullPointer && op.name != "Bezier3To" && op.name != "Bezier3To16" &&
        op.name != "SetAlphaBlendTable") {
        EXPECT_EQ(r, KRYN_ERR_INVALID) << what;
    }
    if (op.name == "End") {
        EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << what;
        return;
    }
    const ResultCode fill = KRYNFill(FILL_NONZERO, e);
    EXPECT_TRUE(documented(fill)) << what << ": the following fill answered 0x" << std::hex << fill;
    const ResultCode next = KRYNNextBand(1, &CallbackLog::callback, sink.context(), e);
    EXPECT_TRUE(next == KRYN_OK || next == KRYN_ERR_INVALID) << what;
    const ResultCode close = KRYNClosePage(&CallbackLog::callback, sink.context(), e);
    EXPECT_TRUE(close == KRYN_OK || close == KRYN_ERR_INVALID) << what;
    // Closed already unless the call under attack opened a page of its own.
    const ResultCode disposed = KRYNDisposePage(e);
    EXPECT_TRUE(disposed == KRYN_OK || disposed == KRYN_ERR_INVALID) << what;
    expectEnginePaints(e, what);
    EXPECT_EQ(KRYNEnd(e), KRYN_OK);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << what << " leaked";
}

} // namespace

TEST(HostileInput, EveryOperationRefusesANullEngine) {
    for (const OperationEntry* op = operationsBegin(); op != operationsEnd(); ++op) {
        CallFrame f = ordinaryFrame(*op);
        fillArrays(*op, f, 10);
        EXPECT_EQ(op->invoke(nullptr, f), ignoresEverything(op->name) ? KRYN_OK : KRYN_ERR_INVALID)
            << op->name;
    }
}

TEST(HostileInput, PageOperationsWithoutAnOpenPageAnswerInvalid) {
    for (const OperationEntry* op = operationsBegin(); op != operationsEnd(); ++op) {
        if (needsNoPage(op->name)) {
            continue;
        }
        const uint64_t live = KRYNPlatformLiveBlocks();
        Engine* e = KRYNInit(99, 99, 16, 300, 0x8009);
        ASSERT_NE(e, nullptr);
        // Once before any page and once after a page was closed.
        for (int round = 0; round < 2; ++round) {
            CallFrame f = ordinaryFrame(*op);
            fillArrays(*op, f, 10);
            EXPECT_EQ(op->invoke(e, f), KRYN_ERR_INVALID) << op->name << " round " << round;
            ASSERT_EQ(KRYNNewPage(3, e), KRYN_OK);
            ASSERT_EQ(KRYNClosePage(nullptr, 0, e), KRYN_OK);
        }
        expectEnginePaints(e, std::string(op->name));
        KRYNEnd(e);
        EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << op->name;
    }
}

TEST(HostileInput, EveryArgumentOfEveryOperationAtItsExtremes) {
    int attacks = 0;
    for (const OperationEntry* op = operationsBegin(); op != operationsEnd(); ++op) {
        for (Case& c : hostileCases(*op)) {
            for (int16_t mode : {3, 2, 0}) {
                Case copy = c;
                attack(*op, copy, mode);
                ++attacks;
            }
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
    RecordProperty("attacks", attacks);
    std::printf("%d hostile calls\n", attacks);
}

TEST(HostileInput, ScaleFactorsWithoutAFiniteInverseAreRefused) {
    Engine* e = KRYNInit(99, 99, 16, 600, 0x8009);
    ASSERT_EQ(KRYNNewPage(3, e), KRYN_OK);
    const int32_t big[6] = {INT32_MAX, 0, 0, INT32_MAX, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(big, e), KRYN_OK);
    for (float s :
         {0.0f, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN(), 1e30f}) {
        EXPECT_EQ(KRYNSetScale(s, e), KRYN_ERR_INVALID) << s;
    }
    EXPECT_EQ(KRYNSetScale(1e-9f, e), KRYN_OK);
    EXPECT_EQ(KRYNClosePage(nullptr, 0, e), KRYN_OK);
    KRYNEnd(e);
}
