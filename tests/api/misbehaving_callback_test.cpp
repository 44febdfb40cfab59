// A driver callback that misbehaves never breaks the engine: answers that
// are not the restart request count as "go on", stream calls ignore the
// answer, and the engine stays usable afterwards. Every delivered byte is
// read, so the sanitizer build also checks that each delivery is as long as
// it says. Restart requests on every delivery and in both passes: the
// golden job callback_restarts.
#include "kryn/kryn.h"
#include "kryn/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

struct Call {
    uint32_t code;
    uint32_t band;
    uint32_t bytes;
    uint64_t sum; // of every delivered byte
    bool operator==(const Call&) const = default;
};

// Records every call and answers from `answers` in turn (0 when empty).
struct Driver {
    std::vector<uint32_t> answers;
    size_t next = 0;
    std::vector<Call> calls;

    static uint32_t callback(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                             uintptr_t context, const RasterRect*) {
        auto* d = reinterpret_cast<Driver*>(context);
        uint64_t sum = 0;
        const auto* p = static_cast<const uint8_t*>(data);
        for (uint32_t i = 0; p != nullptr && i < bytes; ++i) {
            sum = sum * 31 + p[i];
        }
        d->calls.push_back({code, band, bytes, sum});
        if (d->answers.empty()) {
            return 0;
        }
        return d->answers[d->next++ % d->answers.size()];
    }
    uintptr_t context() { return reinterpret_cast<uintptr_t>(this); }
};

const int32_t IDENTITY[6] = {1, 0, 0, 1, 0, 0};

// A page of `mode` with a rectangle across four of its five bands, sent out
// through `driver` (band groups of two in the band-group modes, where the
// first NextBand opens the first group). Grey paint is delivered with the
// painted box (0x200), black as typed rasters that may ask for a restart.
void playPage(Engine* e, int16_t mode, Driver& driver, ColourValue colour = 0x808080) {
    ASSERT_EQ(KRYNNewPage(mode, e), KRYN_OK);
    ASSERT_EQ(KRYNSetMatrix(IDENTITY, e), KRYN_OK);
    ASSERT_EQ(KRYNSetColor(&colour, 0, e), KRYN_OK);
    const bool groups = mode == 1 || mode == 2 || mode == 4 || mode == 6 || mode == 8;
    if (groups) {
        EXPECT_EQ(KRYNNextBand(2, &Driver::callback, driver.context(), e), KRYN_OK);
    }
    ASSERT_EQ(KRYNRectPath(5, 5, 60, groups ? 30 : 120, e), KRYN_OK);
    ASSERT_EQ(KRYNFill(FILL_NONZERO, e), KRYN_OK);
    if (groups) {
        EXPECT_EQ(KRYNNextBand(2, &Driver::callback, driver.context(), e), KRYN_OK);
        ASSERT_EQ(KRYNRectPath(5, 70, 60, 30, e), KRYN_OK);
        ASSERT_EQ(KRYNFill(FILL_NONZERO, e), KRYN_OK);
    } else if (mode == 0) {
        // Serialised whole page: the finished bands go out as stream calls.
        EXPECT_EQ(KRYNNextBand(1, &Driver::callback, driver.context(), e), KRYN_OK);
    }
    EXPECT_EQ(KRYNClosePage(&Driver::callback, driver.context(), e), KRYN_OK);
}

// What a well-behaved driver receives for the same page on a fresh engine.
std::vector<Call> politeCalls(int16_t mode, uint16_t level, ColourValue colour = 0x808080) {
    Engine* e = KRYNInit(99, 149, 32, 600, level);
    Driver polite;
    playPage(e, mode, polite, colour);
    KRYNEnd(e);
    return polite.calls;
}

const int16_t MODES[] = {0, 1, 2, 3, 5, 9};
const uint16_t LEVELS[] = {0, 0x8009};

} // namespace

// Garbage answers are taken as "go on": every mode delivers exactly what a
// polite driver receives, and the engine frees everything.
TEST(MisbehavingCallback, GarbageAnswersChangeNothing) {
    for (uint16_t level : LEVELS) {
        for (int16_t mode : MODES) {
            const std::string what =
                "mode " + std::to_string(mode) + " level " + std::to_string(level);
            const uint64_t live = KRYNPlatformLiveBlocks();
            const std::vector<Call> polite = politeCalls(mode, level);
            ASSERT_FALSE(polite.empty()) << what;
            Engine* e = KRYNInit(99, 149, 32, 600, level);
            ASSERT_NE(e, nullptr);
            Driver garbage;
            garbage.answers = {
                0xDEADBEEF,          1,     0xFFFFFFFF, KRYN_CB_RESTART | 1, 0x7FFFFFFF,
                KRYN_CB_RESTART - 1, 0xFF02};
            playPage(e, mode, garbage);
            EXPECT_EQ(garbage.calls, polite) << what;
            Driver black; // typed rasters, whose answers are examined
            black.answers = garbage.answers;
            playPage(e, mode, black, 0);
            EXPECT_EQ(black.calls, politeCalls(mode, level, 0)) << what;
            KRYNEnd(e);
            EXPECT_EQ(KRYNPlatformLiveBlocks(), live) << what;
        }
    }
}
