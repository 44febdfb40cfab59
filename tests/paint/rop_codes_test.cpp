// The two code sets, checked against what the routines do and against the
// published lists.
#include "paint/rop_codes.h"
#include "paint/rop_table.h"

#include "paint/rop_test_support.h"

#include <gtest/gtest.h>
#include <vector>

namespace kryn::test {
namespace {

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

std::vector<uint32_t> members(const RopCodeSet& set) {
    std::vector<uint32_t> out;
    for (uint32_t code = 0; code < 256; ++code) {
        if (set.contains(code)) {
            out.push_back(code);
        }
    }
    return out;
}

TEST(RopCodes, SourceIndependentCodesAreThoseWhoseRoutinesIgnoreS) {
    for (uint32_t code = 0; code < 256; ++code) {
        EXPECT_EQ(S_INDEPENDENT_ROPS.contains(code), routineIgnoresSource(code)) << code;
    }
    const std::vector<uint32_t> published = {0x00, 0x05, 0x0A, 0x0F, 0x50, 0x55, 0x5A, 0x5F,
                                             0xA0, 0xA5, 0xAA, 0xAF, 0xF0, 0xF5, 0xFA, 0xFF};
    EXPECT_EQ(members(S_INDEPENDENT_ROPS), published);
    EXPECT_EQ(S_INDEPENDENT_ROPS.size(), 16);
}

TEST(RopCodes, NonIdempotentCodesAreSourceFreeCodesThatChangeOnASecondCoat) {
    for (uint32_t code = 0; code < 256; ++code) {
        const bool expected = routineIgnoresSource(code) && paintingTwiceDiffers(code);
        EXPECT_EQ(NON_IDEMPOTENT_ROPS.contains(code), expected) << code;
    }
    const std::vector<uint32_t> published = {0x05, 0x50, 0x55, 0x5A, 0x5F, 0xA5, 0xF5};
    EXPECT_EQ(members(NON_IDEMPOTENT_ROPS), published);
}

TEST(RopCodes, SetsHoldNoCodeAbove255) {
    EXPECT_FALSE(S_INDEPENDENT_ROPS.contains(0x100));
    EXPECT_FALSE(S_INDEPENDENT_ROPS.contains(0x1FF));
    EXPECT_FALSE(NON_IDEMPOTENT_ROPS.contains(0xFFFFFFFF));
}

} // namespace
} // namespace kryn::test
