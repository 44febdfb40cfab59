// Reading script lines: comments, the malformed text that must be refused,
// and byte data. The values well-formed lines carry reach the engine in
// every golden job, whose traces pin them.
#include "byte_data.h"
#include "line_parser.h"
#include "script_error.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

using namespace kryn::script;

TEST(LineParser, SkipsBlankAndCommentLines) {
    EXPECT_FALSE(parseLine("", 1));
    EXPECT_FALSE(parseLine("   \t\r", 1));
    EXPECT_FALSE(parseLine("  # SetColor 1 0", 1));
}

TEST(LineParser, RefusesMalformedText) {
    for (const char* text :
         {"1Init", "X [1 2", "X 1]", "X [[1]]", "X [hex:00]", "X 12abc", "X 0x", "X nan", "X inf",
          "X hex:0", "X hex:zz", "X seed:1", "X fill:0x100:2", "X 99999999999999999999999",
          "X {1 2", "X [{1 2 3 4 hex:}]", "Init,1"}) {
        EXPECT_THROW(parseLine(text, 1), ScriptError) << text;
    }
}

TEST(ByteData, XorshiftStreamMatchesItsDefinition) {
    // Seed 1: 1 -> 0x00042021 -> ... ; the first byte is the low byte of the first state.
    uint32_t state = 1;
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    std::vector<uint8_t> bytes = xorshiftBytes(1, 3);
    EXPECT_EQ(bytes[0], state & 0xFF);
    EXPECT_EQ(state, 0x00042021u);
    EXPECT_EQ(xorshiftBytes(0, 16), xorshiftBytes(1, 16)) << "seed 0 is taken as 1";
    EXPECT_EQ(decodeByteData("seed:1:3", ByteDataSource{}), bytes);
}

TEST(ByteData, ReadsFilesRelativeToTheScript) {
    const std::string dir = ::testing::TempDir();
    {
        std::ofstream out(dir + "/bytes.bin", std::ios::binary);
        out << "\x01\x02\x03";
    }
    EXPECT_EQ(decodeByteData("file:bytes.bin", ByteDataSource{dir}),
              (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_THROW(decodeByteData("file:missing.bin", ByteDataSource{dir}), ScriptError);
    EXPECT_THROW(decodeByteData("file:bytes.bin", ByteDataSource{dir, false}), ScriptError);
    // Directories and devices are script errors, not stream exceptions or
    // endless reads; a file over the limit is refused before it is read.
    EXPECT_THROW(decodeByteData("file:.", ByteDataSource{dir}), ScriptError);
    EXPECT_THROW(decodeByteData("file:/dev/zero", ByteDataSource{dir}), ScriptError);
    EXPECT_THROW(decodeByteData("file:bytes.bin", ByteDataSource{dir, true, 2}), ScriptError);
    std::remove((dir + "/bytes.bin").c_str());
}

TEST(ByteData, RefusesDataOverTheLimit) {
    const ByteDataSource small{".", true, 4};
    EXPECT_EQ(decodeByteData("fill:0x7:4", small).size(), 4u);
    for (const char* token : {"fill:0x7:5", "seed:3:5", "hex:0102030405"}) {
        EXPECT_THROW(decodeByteData(token, small), ScriptError) << token;
    }
}
