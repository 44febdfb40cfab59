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

// Long seed:N:LEN streams are made in blocks from states computed ahead:
// no byte may differ from the stream taken one step at a time.
TEST(ByteData, SeedStreamsMatchTheirDefinitionByteForByte) {
    for (uint32_t seed : {0u, 1u, 0x5EED1240u, 0xFFFFFFFFu}) {
        for (size_t length : {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{4097},
                              size_t{10001}, size_t{10002}, size_t{10003}, size_t{65539}}) {
            const std::vector<uint8_t> made = xorshiftBytes(seed, length);
            ASSERT_EQ(made.size(), length);
            uint32_t state = seed == 0 ? 1 : seed; // seed 0 is taken as 1
            for (size_t i = 0; i < length; ++i) {
                state ^= state << 13;
                state ^= state >> 17;
                state ^= state << 5;
                ASSERT_EQ(made[i], state & 0xFF)
                    << "seed " << seed << " length " << length << " byte " << i;
            }
        }
    }
    EXPECT_EQ(decodeByteData("seed:7:3", ByteDataSource{}), xorshiftBytes(7, 3));
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
