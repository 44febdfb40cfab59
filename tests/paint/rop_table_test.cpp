// Every raster-operation routine against the truth-table definition of its
// code, colour bits and tag byte; the code sets against what the routines
// do.
#include "paint/rop_codes.h"
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
    std::set<RopFn8> distinct; // renderers compare entries, so each code has its own
    for (uint32_t code = 0; code < 256; ++code) {
        const RopFn8 fn = ropFn8(code);
        ASSERT_NE(fn, nullptr);
        distinct.insert(fn);
        ASSERT_EQ(fn, ROP_TABLE[code].fn8);
        for (Operands o : operands) {
            // Bits above the low byte are noise the routine must ignore.
            const uint32_t s = o.s | 0xA5C30000, p = o.p | 0x3C5A0000, d = o.d | 0x96690000;
            ASSERT_EQ(fn(s, p, d), referenceRop(code, o.s, o.p, o.d, 8))
                << std::hex << "code " << code << " s " << o.s << " p " << o.p << " d " << o.d;
        }
    }
    EXPECT_EQ(distinct.size(), 256u);
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
    std::set<RopFn24> distinct;
    for (uint32_t code = 0; code < 256; ++code) {
        const RopFn24 fn = ropFn24(code);
        distinct.insert(fn);
        ASSERT_EQ(fn, ROP_TABLE[256 + code].fn24);
        for (Operands o : operands) {
            const uint32_t expected = referenceRop(code, o.s, o.p, o.d, 24) |
                                      (keepsDestinationTag(code, o.s, o.p) ? dTag : t & TAG);
            ASSERT_EQ(fn(o.s | sTag, o.p | pTag, o.d | dTag, t), expected)
                << std::hex << "code " << code << " s " << o.s << " p " << o.p << " d " << o.d;
        }
    }
    EXPECT_EQ(distinct.size(), 256u);
}

// The byte routine of the code never changes when only S changes.
bool routineIgnoresSource(uint32_t code) {
    const RopFn8 fn = ropFn8(code);
    for (Operands o : everyBitCombination(1)) {
        if (fn(o.s, o.p, o.d) != fn(0x00, o.p, o.d) || fn(o.s, o.p, o.d) != fn(0xFF, o.p, o.d)) {
            return false;
        }
    }
    return true;
}

// Painting a byte twice with the same pattern differs from painting it once.
bool paintingTwiceDiffers(uint32_t code) {
    const RopFn8 fn = ropFn8(code);
    for (Operands o : everyBitCombination(1)) {
        const uint32_t once = fn(0, o.p, o.d);
        if (fn(0, o.p, once) != once) {
            return true;
        }
    }
    return false;
}

TEST(RopCodes, SourceIndependentCodesAreThoseWhoseRoutinesIgnoreS) {
    for (uint32_t code = 0; code < 256; ++code) {
        EXPECT_EQ(S_INDEPENDENT_ROPS.contains(code), routineIgnoresSource(code)) << code;
    }
    EXPECT_FALSE(S_INDEPENDENT_ROPS.contains(0x1FF)); // no code above 255
}

TEST(RopCodes, NonIdempotentCodesAreSourceFreeCodesThatChangeOnASecondCoat) {
    for (uint32_t code = 0; code < 256; ++code) {
        const bool expected = routineIgnoresSource(code) && paintingTwiceDiffers(code);
        EXPECT_EQ(NON_IDEMPOTENT_ROPS.contains(code), expected) << code;
    }
}

} // namespace
} // namespace kryn::test
