// Binding written values to C parameters: counts, ranges, hex for signed
// types, padding of short arrays, output arguments.
#include "argument_binding.h"
#include "line_parser.h"
#include "script_error.h"

#include "kryn/platform.h"

#include <gtest/gtest.h>

using namespace kryn::script;

namespace {

CallFrame bind(const OperationEntry& op, const std::string& text) {
    auto line = parseLine(text, 1);
    return bindArguments(op, *line);
}

const OperationEntry SCALARS{"S",
                             {{ParamType::I16},
                              {ParamType::U16},
                              {ParamType::I32},
                              {ParamType::U32},
                              {ParamType::U8},
                              {ParamType::UPtr},
                              {ParamType::F32}},
                             nullptr};

// LinesTo-like: an array of count (x, y) pairs, then the count.
const OperationEntry PAIRS{"P", {{ParamType::ArrayI32, {0, 1, 2}}, {ParamType::I16}}, nullptr};

} // namespace

// Each type takes its whole range; hexadecimal fills signed types by bit
// width; anything outside the type is refused.
TEST(ArgumentBinding, ScalarsTakeTheirTypesRange) {
    CallFrame f =
        bind(SCALARS, "S -32768 65535 -2147483648 0xFFFFFFFF 255 0xFFFFFFFFFFFFFFFF -2.5");
    EXPECT_EQ(f.scalar<int16_t>(0), -32768);
    EXPECT_EQ(f.scalar<uint16_t>(1), 65535);
    EXPECT_EQ(f.scalar<int32_t>(2), INT32_MIN);
    EXPECT_EQ(f.scalar<uint32_t>(3), 0xFFFFFFFFu);
    EXPECT_EQ(f.scalar<uint8_t>(4), 255);
    EXPECT_EQ(f.scalar<uintptr_t>(5), UINTPTR_MAX);
    EXPECT_FLOAT_EQ(f.scalar<float>(6), -2.5f);
    f = bind(SCALARS, "S 0xFFFF 0 0x80000000 0 0 0 1");
    EXPECT_EQ(f.scalar<int16_t>(0), -1);
    EXPECT_EQ(f.scalar<int32_t>(2), INT32_MIN);
    EXPECT_EQ(bind(SCALARS, "S -0x10 0 0 0 0 0 1").scalar<int16_t>(0), -16);
    for (const char* text : {"S 32768 0 0 0 0 0 1", "S -32769 0 0 0 0 0 1", "S 0x10000 0 0 0 0 0 1",
                             "S 0 -1 0 0 0 0 1", "S 0 65536 0 0 0 0 1", "S 0 0 2147483648 0 0 0 1",
                             "S 0 0 0 0x100000000 0 0 1", "S 0 0 0 0 256 0 1", "S 0 0 0 0 0 -1 1",
                             "S 0 0 0 0 0 0 1e39", "S 1.5 0 0 0 0 0 1", "S null 0 0 0 0 0 1",
                             "S [1] 0 0 0 0 0 1", "S 1 2 3", "P [1 2] 1 9"}) {
        EXPECT_THROW(bind(text[0] == 'S' ? SCALARS : PAIRS, text), ScriptError) << text;
    }
}

TEST(ArgumentBinding, ShortArraysArePaddedToWhatTheCallReads) {
    CallFrame f = bind(PAIRS, "P [1 2 3] 4");
    ASSERT_NE(f.i32(0), nullptr);
    EXPECT_EQ(f.args[0].i32, (std::vector<int32_t>{1, 2, 3, 0, 0, 0, 0, 0}));
    // A longer array is passed whole; a negative count reads nothing.
    EXPECT_EQ(bind(PAIRS, "P [1 2 3 4] 1").args[0].i32.size(), 4u);
    EXPECT_EQ(bind(PAIRS, "P [] -5").args[0].i32.size(), 0u);
    EXPECT_EQ(bind(PAIRS, "P null 3").i32(0), nullptr);
    EXPECT_THROW(bind(PAIRS, "P [1 0x100000000] 1"), ScriptError);
}

TEST(ArgumentBinding, OutputsAreOmittedOrWrittenAsNull) {
    const OperationEntry op{"O", {{ParamType::Output}, {ParamType::Output}}, nullptr};
    EXPECT_FALSE(bind(op, "O").args[0].isNull);
    CallFrame f = bind(op, "O null null");
    EXPECT_TRUE(f.args[0].isNull && f.args[1].isNull);
    EXPECT_THROW(bind(op, "O 1 2"), ScriptError);
    EXPECT_THROW(bind(op, "O null"), ScriptError);
}

TEST(ArgumentBinding, ImageSamplesComeFromTheHeapAndKeptOnesAreFreed) {
    const OperationEntry kept{"I", {{ParamType::Image}}, nullptr};
    const OperationEntry passed{
        "I", {{ParamType::Image, {}, ImageOwnership::PassesToEngine}}, nullptr};
    uint64_t live = KRYNPlatformLiveBlocks();
    CallFrame f = bind(kept, "I {2 3 4 8 hex:0102}");
    ASSERT_NE(f.image(0), nullptr);
    const auto* samples = static_cast<const uint8_t*>(f.image(0)->samples);
    EXPECT_EQ(samples[0], 1);
    EXPECT_EQ(samples[11], 0) << "padded to rowStride x height";
    EXPECT_EQ(f.keptBuffers.size(), 1u);
    releaseKeptBuffers(f, KRYN_OK);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);

    CallFrame g = bind(passed, "I {1 1 1 8 hex:FF}");
    EXPECT_TRUE(g.keptBuffers.empty());
    releaseKeptBuffers(g, KRYN_OK);
    GlobalFree(g.image(0)->samples); // stands in for the engine taking it
    CallFrame refused = bind(passed, "I {1 1 1 8 hex:FF}");
    releaseKeptBuffers(refused, KRYN_ERR_INVALID); // a refused call leaves it with the player
    EXPECT_THROW(bind(kept, "I {1 1 1 8}"), ScriptError);
    EXPECT_THROW(bind(kept, "I {1 0x7FFFFFFF 0x7FFFFFFF 8 hex:}"), ScriptError);
    EXPECT_EQ(KRYNPlatformLiveBlocks(), live);
}
