// seed:N:LEN data against the xorshift32 stream taken one step at a time:
// long streams are made in blocks from states computed ahead, and must not
// differ from the stream's definition in any byte.
#include "byte_data.h"

#include <gtest/gtest.h>

namespace kryn::script {
namespace {

TEST(SeedStream, BlocksMadeAheadMatchTheStreamByteForByte) {
    for (uint32_t seed : {0u, 1u, 0x5EED1240u, 0xFFFFFFFFu}) {
        for (size_t length : {size_t{0}, size_t{1}, size_t{4095}, size_t{4096}, size_t{4097},
                              size_t{10001}, size_t{10002}, size_t{10003}, size_t{65539}}) {
            const std::vector<uint8_t> made = xorshiftBytes(seed, length);
            ASSERT_EQ(made.size(), length);
            uint32_t state = seed == 0 ? 1 : seed;
            for (size_t i = 0; i < length; ++i) {
                state ^= state << 13;
                state ^= state >> 17;
                state ^= state << 5;
                ASSERT_EQ(made[i], state & 0xFF) << "seed " << seed << " length " << length
                                                 << " byte " << i;
            }
        }
    }
}

} // namespace
} // namespace kryn::script
