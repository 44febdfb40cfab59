// Records written through the writers and the state synchronisation, sent
// by KRYNNextBand, and read back from the callback stream: every rectangle
// and run batch a writer accepted reaches the device, in order, with its
// fields, also when memory runs out on the way (the state records' bytes
// are pinned by serialiser_layout_test and the golden streams).
#include "support/alloc_sweep.h"
#include "support/page_fixture.h"

#include "displaylist/band_state_sync.h"
#include "displaylist/record_writers.h"
#include "engine/memory.h"

#include <map>

namespace kryn::test {
namespace {

inline constexpr int BANDS_USED = 3;

// A painting record: its opcode and fields (rectangle: row, x, width,
// height; runs: row, x, width of each entry).
using RecordFields = std::pair<uint8_t, std::vector<uint32_t>>;

uint32_t byteAt(const std::vector<uint32_t>& w, size_t i) {
    return (w[i / 4] >> (24 - 8 * (i % 4))) & 0xFF;
}

// The rectangles and run batches among serialised records.
std::vector<RecordFields> paintingRecords(const std::vector<StreamRecord>& records) {
    std::vector<RecordFields> out;
    for (const StreamRecord& s : records) {
        const std::vector<uint32_t>& w = s.words;
        if (s.head == 0x85) {
            out.push_back({DL_OP_RECT, {byteAt(w, 1), w[0] & 0xFFFF, w[1] >> 16, byteAt(w, 6)}});
        } else if (s.head == 0x84) {
            out.push_back({DL_OP_RUNS, {}});
            for (uint32_t i = 0; i < (w[0] & 0xFFFF); ++i) {
                const size_t at = 4 + i * 6;
                out.back().second.insert(out.back().second.end(),
                                         {byteAt(w, at + 2), byteAt(w, at) << 8 | byteAt(w, at + 1),
                                          byteAt(w, at + 4) << 8 | byteAt(w, at + 5)});
            }
        }
    }
    return out;
}

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
            uint8_t* buffer =
                runBuffer(0, {{row, 0, x, 3}, {row, 0, uint16_t(x + 5), 0x102}}, {1, 1, 2, 2});
            if (buffer == nullptr) {
                continue;
            }
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

// Paints, sends the bands, and compares what arrived with what the
// writers accepted.
void roundTrip(Engine* e, int count, bool injected) {
    const std::map<uint32_t, std::vector<RecordFields>> painted = paint(e, count);
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
        const std::vector<RecordFields> records = paintingRecords(decodeRecords(chunk.data));
        std::vector<RecordFields>& into = received[chunk.band];
        into.insert(into.end(), records.begin(), records.end());
    }
    for (uint32_t band = 0; band < BANDS_USED; ++band) {
        EXPECT_EQ(received[band],
                  painted.count(band) ? painted.at(band) : std::vector<RecordFields>{})
            << "band " << band;
    }
    EXPECT_TRUE(injected || painted.size() == 3u);
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
