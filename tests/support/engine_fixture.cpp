#include "support/engine_fixture.h"

#include "displaylist/display_list.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

namespace kryn::test {

uint32_t CallbackLog::callback(uint32_t code, uint32_t band, const void* data, uint32_t bytes,
                               uintptr_t context, const RasterRect* rect) {
    auto* log = reinterpret_cast<CallbackLog*>(context);
    Delivery d{code, band, bytes, {}, rect != nullptr, rect ? *rect : RasterRect{}};
    if (data != nullptr && bytes != 0) {
        const auto* p = static_cast<const uint8_t*>(data);
        d.data.assign(p, p + bytes);
    }
    log->calls.push_back(std::move(d));
    if (code >= CB_RASTER_BOX) {
        const int index = log->rasterCalls++;
        if (std::find(log->restartAt.begin(), log->restartAt.end(), index) !=
            log->restartAt.end()) {
            return KRYN_CB_RESTART;
        }
    }
    return 0;
}

std::vector<uint8_t> CallbackLog::streamBytes() const {
    std::vector<uint8_t> out;
    for (const Delivery& d : calls) {
        if (d.code == CB_STREAM_DATA || d.code == CB_STREAM_END) {
            out.insert(out.end(), d.data.begin(), d.data.end());
        }
    }
    return out;
}

void expectEnginePaints(Engine* e, const std::string& after) {
    CallbackLog log;
    uint16_t info[6];
    if (KRYNGetPageInfo(info, e) == KRYN_OK) {
        EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e), KRYN_OK) << after;
    }
    uint32_t width = 0, height = 0;
    ASSERT_EQ(KRYNGetPageResource(&width, &height, e), KRYN_OK) << after;
    ASSERT_EQ(KRYNNewPage(3, e), KRYN_OK) << after;
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    const ColourValue black = 0;
    EXPECT_EQ(KRYNSetMatrix(identity, e), KRYN_OK) << after;
    EXPECT_EQ(KRYNSetColor(&black, 0, e), KRYN_OK) << after;
    EXPECT_EQ(KRYNSetLogicalFunc(0xF0, e), KRYN_OK) << after;
    const auto side = [](uint32_t n) { return static_cast<int32_t>(std::min<uint32_t>(n, 8)); };
    EXPECT_EQ(KRYNRectPath(0, 0, side(width), side(height), e), KRYN_OK) << after;
    EXPECT_EQ(KRYNFill(FILL_NONZERO, e), KRYN_OK) << after;
    log.rasterCalls = 0;
    EXPECT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e), KRYN_OK) << after;
    EXPECT_GT(log.rasterCalls, 0) << after << ": the engine no longer delivers a fill";
}

void recordBytes(Engine* e, int32_t band, const std::vector<uint8_t>& record,
                 uint32_t serialBytes) {
    PageRecord* page = openPage(e);
    ASSERT_NE(page, nullptr);
    DisplayList* list = nullptr;
    ASSERT_EQ(getBandList(page, band, &list), KRYN_OK);
    uint8_t* at = reserveRecord(list, static_cast<uint32_t>(record.size()));
    ASSERT_NE(at, nullptr);
    std::memcpy(at, record.data(), record.size());
    list->serialBytes += serialBytes;
    ASSERT_EQ(commitRecord(list, e->resources), KRYN_OK);
}

} // namespace kryn::test
