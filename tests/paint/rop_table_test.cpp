// Every raster-operation routine against the truth-table definition of its
// code, colour bits and tag byte.
#include "paint/rop_table.h"

#include "paint/rop_test_support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>
#include <random>
#include <set>

namespace kryn::test {
namespace {

constexpr uint32_t TAG = 0xFF000000;

TEST(RopTable, EveryByteRoutineAppliesItsTruthTableBitByBitToTheLowBytes) {
    std::vector<Operands> operands = everyBitCombination(1);
    std::mt19937 random(7);
    const auto next = [&] { return static_cast<uint32_t>(random()); };
    for (int i = 0; i < 64; ++i) {
        operands.push_back({next(), next(), next()});
    }
    for (uint32_t code = 0; code < 256; ++code) {
        const RopFn8 fn = ropFn8(code);
        ASSERT_NE(fn, nullptr);
        ASSERT_EQ(fn, ROP_TABLE[code].fn8);
        for (Operands o : operands) {
            // Bits above the low byte are noise the routine must ignore.
            const uint32_t s = o.s | 0xA5C30000, p = o.p | 0x3C5A0000, d = o.d | 0x96690000;
            ASSERT_EQ(fn(s, p, d), referenceRop(code, o.s, o.p, o.d, 8))
                << std::hex << "code " << code << " s " << o.s << " p " << o.p << " d " << o.d;
        }
    }
}

TEST(RopTable, EveryRoutineIsItsOwnSoRenderersCanCompareEntries) {
    std::set<RopFn8> bytes;
    std::set<RopFn24> pixels;
    for (uint32_t code = 0; code < 256; ++code) {
        bytes.insert(ropFn8(code));
        pixels.insert(ropFn24(code));
    }
    EXPECT_EQ(bytes.size(), 256u);
    EXPECT_EQ(pixels.size(), 256u);
}

TEST(RopTable, PublishedCodesComputeTheirNamedFunctions) {
    const uint32_t s = 0x0F, p = 0x33, d = 0x55;
    EXPECT_EQ(ropFn8(0xA8)(s, p, d), 0x15); // D AND (P OR S)
    EXPECT_EQ(ropFn8(0xF0)(s, p, d), p);
    EXPECT_EQ(ropFn8(0xCC)(s, p, d), s);
    EXPECT_EQ(ropFn8(0xAA)(s, p, d), d);
    EXPECT_EQ(ropFn8(0x00)(s, p, d), 0x00);
    EXPECT_EQ(ropFn8(0xFF)(s, p, d), 0xFF);
    EXPECT_EQ(ropFn8(0x5A)(s, p, d), p ^ d);
    EXPECT_EQ(ropFn8(0x66)(s, p, d), s ^ d);
    EXPECT_EQ(ropFn8(0x88)(s, p, d), s & d);
    EXPECT_EQ(ropFn8(0xEE)(s, p, d), s | d);
    EXPECT_EQ(ropFn8(0xB8)(s, p, d), p ^ (s & (p ^ d)));
    EXPECT_EQ(ropFn8(0xE2)(s, p, d), d ^ (s & (p ^ d)));
}

// The tag-keeping table, stated independently of the engine's.
enum class Keep { Always, SourceZero, SourceOnes, PatternZero, PatternOnes };

struct TagRow {
    Keep when;
    std::initializer_list<uint8_t> codes;
};

const TagRow TAG_ROWS[] = {
    {Keep::Always, {0x55, 0x5A, 0x66, 0x99, 0xA5, 0xAA}},
    {Keep::SourceZero, {0x11, 0x15, 0x1D, 0x22, 0xDD, 0xE2, 0xEA, 0xEE}},
    {Keep::SourceOnes, {0x44, 0x47, 0x77, 0x88, 0xB8, 0xBB}},
    {Keep::PatternZero, {0x05, 0x0A, 0xF5, 0xFA}},
    {Keep::PatternOnes, {0x50, 0x5F, 0xA0, 0xAF}},
};

bool keepsDestinationTag(uint32_t code, uint32_t s, uint32_t p) {
    const uint32_t sColour = s & 0xFFFFFF, pColour = p & 0xFFFFFF;
    for (const TagRow& row : TAG_ROWS) {
        if (std::find(row.codes.begin(), row.codes.end(), code) == row.codes.end()) {
            continue;
        }
        switch (row.when) {
        case Keep::Always:
            return true;
        case Keep::SourceZero:
            return sColour == 0;
        case Keep::SourceOnes:
            return sColour == 0xFFFFFF;
        case Keep::PatternZero:
            return pColour == 0;
        case Keep::PatternOnes:
            return pColour == 0xFFFFFF;
        }
    }
    return false;
}

// Operand triples: every bit combination at every position, and every pair
// of S and P from the tag conditions and their near misses (one colour bit
// off), so every tag-keeping row is met and missed.
std::vector<Operands> pixelOperands() {
    std::vector<Operands> out = everyBitCombination(3);
    const uint32_t conditions[] = {0x000000, 0xFFFFFF, 0x000001, 0x800000,
                                   0xFFFFFE, 0x7FFFFF, 0x00FF00, 0xFF00FF};
    for (uint32_t s : conditions) {
        for (uint32_t p : conditions) {
            out.push_back({s, p, 0x3355AA});
            out.push_back({s, p, 0xCCCCCC});
        }
    }
    return out;
}

TEST(RopTable, EveryPixelRoutineComputesColourBitsAndTagByTheTable) {
    const std::vector<Operands> operands = pixelOperands();
    const uint32_t sTag = 0x5A000000, pTag = 0xC3000000, dTag = 0x81000000;
    const uint32_t t = 0x24000000 | 0x000F0F; // the colour bits of t are ignored
    for (uint32_t code = 0; code < 256; ++code) {
        const RopFn24 fn = ropFn24(code);
        ASSERT_EQ(fn, ROP_TABLE[256 + code].fn24);
        for (Operands o : operands) {
            const uint32_t expected = referenceRop(code, o.s, o.p, o.d, 24) |
                                      (keepsDestinationTag(code, o.s, o.p) ? dTag : t & TAG);
            ASSERT_EQ(fn(o.s | sTag, o.p | pTag, o.d | dTag, t), expected)
                << std::hex << "code " << code << " s " << o.s << " p " << o.p << " d " << o.d;
        }
    }
}

TEST(RopTable, CodesOutsideTheTableThatReduceToDStillPaintTheTag) {
    const uint32_t dTag = 0x81000000, t = 0x24000000;
    // 0x2A is D AND NOT (P AND S): with S zero it leaves D, yet paints T's tag.
    EXPECT_EQ(ropFn24(0x2A)(0x000000, 0x123456, 0x3355AA | dTag, t), 0x3355AA | t);
    // 0x8A is D AND (S OR NOT P): with P zero it leaves D.
    EXPECT_EQ(ropFn24(0x8A)(0x123456, 0x000000, 0x3355AA | dTag, t), 0x3355AA | t);
}

TEST(RopTable, PixelRoutineExamples) {
    const uint32_t d = 0x81123456, t = 0x24000000;
    // S AND D with S all ones: D unchanged, its own tag included.
    EXPECT_EQ(ropFn24(0x88)(0x77FFFFFF, 0x00ABCDEF, d, t), d);
    EXPECT_EQ(ropFn24(0x88)(0x77FFFFFE, 0x00ABCDEF, d, t), (0x123456 & 0xFFFFFE) | t);
    EXPECT_EQ(ropFn24(0x00)(0x11111111, 0x22222222, d, t), t);
    EXPECT_EQ(ropFn24(0xFF)(0x11111111, 0x22222222, d, t), t | 0xFFFFFF);
    for (uint32_t p : {0x000000u, 0xFFFFFFu, 0x00FF00u}) {
        EXPECT_EQ(ropFn24(0x5A)(0, p | 0x99000000, d, t), ((p ^ d) & 0xFFFFFF) | (d & TAG));
    }
}

} // namespace
} // namespace kryn::test
