// Device coordinates beyond int32 saturate instead of being undefined.
#include "geometry/saturate.h"

#include <gtest/gtest.h>

#include <limits>

TEST(SaturateToInt32, TruncatesInRangeAndSaturatesBeyond) {
    using kryn::saturateToInt32;
    EXPECT_EQ(saturateToInt32(1.9), 1);
    EXPECT_EQ(saturateToInt32(-1.9), -1);
    EXPECT_EQ(saturateToInt32(2147483646.0), 2147483646);
    EXPECT_EQ(saturateToInt32(2147483648.0), INT32_MAX);
    EXPECT_EQ(saturateToInt32(-2147483648.0), INT32_MIN);
    EXPECT_EQ(saturateToInt32(-1e30), INT32_MIN);
    EXPECT_EQ(saturateToInt32(std::numeric_limits<double>::infinity()), INT32_MAX);
    EXPECT_EQ(saturateToInt32(std::numeric_limits<double>::quiet_NaN()), 0);
}
