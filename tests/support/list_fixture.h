// A page with one band list to write records into, and the means to send
// that band and read back what reached the callback.
#pragma once

#include "support/engine_fixture.h"
#include "support/stream_decoder.h"

#include "displaylist/display_list.h"
#include "engine/memory.h"
#include "transfer/serialiser.h"

#include <cstring>
#include <gtest/gtest.h>

namespace kryn::test {

class ListTest : public ::testing::Test {
  protected:
    // A page of 10 bands of 16 rows, 100 pixels wide.
    void open(int16_t mode = 0, uint16_t level = 0x8009, uint32_t colourSpace = 0) {
        engine_ = makeEngine(99, 159, 16, level);
        ASSERT_NE(engine_, nullptr);
        ASSERT_EQ(KRYNNewPage(mode, engine_.get()), KRYN_OK);
        page_ = pageOf(engine_.get());
        res_ = engine_->resources;
        res_->colourSpace = colourSpace;
        page_->colourSpace = colourSpace;
        ASSERT_EQ(getBandList(page_, 0, &list_), KRYN_OK);
    }
    // A buffer from the engine heap holding the given bytes.
    static uint8_t* heapBytes(const std::vector<uint8_t>& bytes) {
        auto* p = static_cast<uint8_t*>(allocBytes(bytes.size()));
        std::memcpy(p, bytes.data(), bytes.size());
        return p;
    }
    // Ends, sends and frees band 0's list; answers the chunks sent so far.
    std::vector<StreamChunk> send() {
        appendEndRecord(list_);
        serialiseBand(CallbackLog::callback, log_.context(), 0, list_, res_);
        freeDisplayListBlocks(list_);
        page_->bands[0].list = nullptr;
        list_ = nullptr;
        return decodeChunks(log_.calls);
    }
    // Sends the list as one chunk and answers its bytes without the end record.
    std::vector<uint8_t> sentRecords() {
        const std::vector<StreamChunk> chunks = send();
        EXPECT_EQ(chunks.size(), 1u);
        if (chunks.empty() || chunks.back().data.size() < 4) {
            return {};
        }
        std::vector<uint8_t> data = chunks.back().data;
        EXPECT_EQ(std::vector<uint8_t>(data.end() - 4, data.end()), wordBytes({0x87000000}));
        data.resize(data.size() - 4);
        return data;
    }
    // Opcodes of the records in the list, in order, and the records' bytes.
    std::vector<uint8_t> ops() const;
    std::vector<std::vector<uint8_t>> records() const;

    EnginePtr engine_;
    PageRecord* page_ = nullptr;
    RenderResources* res_ = nullptr;
    DisplayList* list_ = nullptr;
    CallbackLog log_;
};

} // namespace kryn::test
