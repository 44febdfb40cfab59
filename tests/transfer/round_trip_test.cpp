// Records written through the writers and the state synchronisation, sent
// by KRYNNextBand, and read back from the callback stream: what the lists
// held is what the device receives, also when memory runs out on the way.
#include "support/alloc_sweep.h"
#include "support/record_fields.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/record_writers.h"
#include "engine/memory.h"

#include <cstring>
#include <map>

namespace kryn::test {
namespace {

inline constexpr int BANDS_USED = 3;

// Paints `count` small rectangles and some run batches over bands 0..2 with
// changing colours, logical functions and screens. Answers, per band, the
// painting records whose writers succeeded; stops at nothing.
std::map<uint32_t, std::vector<RecordFields>> paint(Engine* e, int count) {
    std::map<uint32_t, std::vector<RecordFields>> painted;
    PageRecord* page = openPage(e);
    for (int i = 0; i < count; ++i) {
        const int band = i % BANDS_USED;
        PaintDescriptor& p = page->paint;
        p.paintColour = (i / 40) % 2 != 0 ? 0x0000FF : 0;
        p.logicalFunction = (i / 60) % 2 != 0 ? 0x66 : 0xA8;
        p.screenId = (i / 90) % 2 != 0 ? 3 : 0;
        p.screenCellHeight = 12;
        DisplayList* list = nullptr;
        if (getBandList(page, band, &list) != KRYN_OK ||
            syncBandForSpans(page, &page->bands[band], list) != KRYN_OK) {
            continue;
        }
        const auto row = static_cast<uint8_t>(i % 16);
        const auto x = static_cast<uint16_t>((i * 7) % 90);
        if (i % 10 == 9) {
            auto* buffer = static_cast<uint8_t*>(allocBytes(16));
            if (buffer == nullptr) {
                continue;
            }
            const uint8_t runs[16] = {0,
                                      0,
                                      2,
                                      0,
                                      row,
                                      0,
                                      static_cast<uint8_t>(x),
                                      0,
                                      3,
                                      0,
                                      row,
                                      0,
                                      static_cast<uint8_t>(x + 5),
                                      0,
                                      2,
                                      1};
            std::memcpy(buffer, runs, sizeof runs);
            if (writeRuns(list, buffer, 2, e->resources) == KRYN_OK) {
                painted[band].push_back({DL_OP_RUNS, {row, x, 3, row, x + 5u, 0x102}});
            } else {
                freeBytes(buffer);
            }
        } else if (writeRect(list, {row, x}, 1, 1, e->resources) == KRYN_OK) {
            painted[band].push_back({DL_OP_RECT, {row, x, 1, 1}});
        }
    }
    return painted;
}

std::vector<RecordFields> paintingOnly(const std::vector<RecordFields>& records) {
    std::vector<RecordFields> out;
    for (const RecordFields& r : records) {
        if (r.op == DL_OP_RECT || r.op == DL_OP_RUNS) {
            out.push_back(r);
        }
    }
    return out;
}

// Paints, keeps what the lists hold, sends the bands, and compares.
void roundTrip(Engine* e, int count, bool injected) {
    const std::map<uint32_t, std::vector<RecordFields>> painted = paint(e, count);
    PageRecord* page = openPage(e);
    std::map<uint32_t, std::vector<RecordFields>> held;
    for (uint32_t band = 0; band < BANDS_USED; ++band) {
        if (page->bands[band].list != nullptr) {
            held[band] = fieldsOfList(page->bands[band].list);
            held[band].push_back({DL_OP_END, {}});
            const auto it = painted.find(band);
            EXPECT_EQ(paintingOnly(held[band]),
                      it == painted.end() ? std::vector<RecordFields>{} : it->second)
                << "band " << band;
        }
    }
    CallbackLog log;
    // The bands are sent before the clip is rebuilt, which may run out of
    // memory on its own.
    const ResultCode sent = KRYNNextBand(1, CallbackLog::callback, log.context(), e);
    ASSERT_TRUE(sent == KRYN_OK || (injected && sent == KRYN_ERR_NO_MEMORY)) << sent;
    std::map<uint32_t, std::vector<RecordFields>> received;
    for (const StreamChunk& chunk : decodeChunks(log.calls)) {
        if (chunk.data.size() == 4 && chunk.data[0] == 0x8C) {
            continue; // band header
        }
        const std::vector<RecordFields> records = fieldsOfStream(decodeRecords(chunk.data));
        std::vector<RecordFields>& into = received[chunk.band];
        into.insert(into.end(), records.begin(), records.end());
    }
    EXPECT_EQ(received, held);
    if (!injected) {
        EXPECT_EQ(held.size(), 3u);
    }
}

TEST(RoundTripTest, WhatTheListsHoldIsWhatTheDeviceReceives) {
    EnginePtr engine = makeEngine(99, 159, 16);
    ASSERT_EQ(KRYNNewPage(0, engine.get()), KRYN_OK);
    // Enough records to fill several blocks of every band's list.
    roundTrip(engine.get(), 3000, false);
    EXPECT_EQ(pageOf(engine.get())->dirty.empty(), true);
}

TEST(RoundTripTest, NothingRecordedIsLostAndNothingLeaksWhenMemoryRunsOut) {
    const SweepReport report = sweepAllocationFailures([](bool injected) {
        Engine* e = KRYNInit(99, 159, 16, 600, 0x8009);
        if (e == nullptr) {
            EXPECT_TRUE(injected);
            return;
        }
        const ResultCode r = KRYNNewPage(0, e);
        expectOkOrNoMemory(r, "KRYNNewPage");
        if (r == KRYN_OK) {
            roundTrip(e, 1200, injected);
            CallbackLog log;
            EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e), KRYN_OK);
            EXPECT_TRUE(log.calls.empty());
        }
        KRYNEnd(e);
    });
    EXPECT_GT(report.allocations, 100u);
}

} // namespace
} // namespace kryn::test
