// What each page mode changes: band entries, renderer, opening records,
// reverse side, and which calls need an open page.
#include "support/engine_fixture.h"

#include "displaylist/display_list.h"
#include "render/band_renderer.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

constexpr int32_t kWidth = 99; // pageWidth 100
constexpr int32_t kHeight = 63;

TEST(PageModes, BandEntriesRendererAndOpeningRecordsFollowTheMode) {
    struct Expect {
        int32_t bandEntries;
        int32_t rendererWidth; // 0: no renderer
        bool opensWithChunk;
    };
    // 64 rows in bands of 16: four bands.
    const Expect expect[10] = {
        {4, 0, true},   {4, 0, true},   {4, 99, false}, {5, 99, false}, {4, 99, false},
        {4, 99, false}, {4, 99, false}, {4, 99, false}, {4, 100, true}, {4, 100, true},
    };
    for (int16_t mode = 0; mode < 10; ++mode) {
        EnginePtr e = makeEngine(kWidth, kHeight, 16);
        ASSERT_EQ(KRYNNewPage(mode, e.get()), KRYN_OK) << "mode " << mode;
        PageRecord* page = pageOf(e.get());
        EXPECT_EQ(page->bandCount, expect[mode].bandEntries) << "mode " << mode;
        BandRenderer* renderer = e->resources->renderer;
        if (expect[mode].rendererWidth == 0) {
            EXPECT_EQ(renderer, nullptr) << "mode " << mode;
        } else {
            ASSERT_NE(renderer, nullptr) << "mode " << mode;
            EXPECT_EQ(renderer->width, expect[mode].rendererWidth) << "mode " << mode;
            EXPECT_EQ(renderer->height, 16);
        }
        DisplayList* list = nullptr;
        ASSERT_EQ(getBandList(page, 2, &list), KRYN_OK);
        const uint8_t* first = list->firstBlock ? list->firstBlock->area : nullptr;
        EXPECT_EQ(first != nullptr && first[0] == DL_OP_CHUNK, expect[mode].opensWithChunk)
            << "mode " << mode;
        EXPECT_EQ(page->bands[3].bandTop, 48);
        EXPECT_EQ(KRYNDisposePage(e.get()), KRYN_OK);
    }
}

TEST(PageModes, ARendererFromAnEarlierPageIsResizedForTheNextMode) {
    EnginePtr e = makeEngine(kWidth, kHeight, 16);
    ASSERT_EQ(KRYNNewPage(9, e.get()), KRYN_OK);
    BandRenderer* renderer = e->resources->renderer;
    EXPECT_EQ(renderer->width, 100);
    ASSERT_EQ(KRYNClosePage(nullptr, 0, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNNewPage(0, e.get()), KRYN_OK); // kept, and resized, even in a serialised mode
    EXPECT_EQ(e->resources->renderer, renderer);
    ASSERT_EQ(KRYNClosePage(nullptr, 0, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNNewPage(5, e.get()), KRYN_OK);
    EXPECT_EQ(e->resources->renderer->width, 99);
    EXPECT_EQ(e->resources->mode, 5);
}

TEST(PageModes, ColourSpaceOneListsOpenWithTheColourSpaceRecord) {
    EnginePtr e = makeEngine(kWidth, kHeight, 16);
    e->resources->colourSpace = 1;
    ASSERT_EQ(KRYNNewPage(1, e.get()), KRYN_OK);
    DisplayList* list = nullptr;
    ASSERT_EQ(getBandList(pageOf(e.get()), 0, &list), KRYN_OK);
    const uint8_t* area = list->firstBlock->area;
    EXPECT_EQ(area[0], DL_OP_CHUNK);
    EXPECT_EQ(area[8], DL_OP_COLOUR_SPACE_1);
    EXPECT_EQ(list->serialBytes, 4u);
}

TEST(PageModes, NewPageRejectsBadModesAndAPageAlreadyOpen) {
    EnginePtr e = makeEngine(kWidth, kHeight, 16);
    EXPECT_EQ(KRYNNewPage(-1, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNNewPage(10, e.get()), KRYN_ERR_INVALID);
    ASSERT_EQ(KRYNNewPage(3, e.get()), KRYN_OK);
    PageSlot* slot = e->pageSlot;
    EXPECT_EQ(KRYNNewPage(3, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(e->pageSlot, slot);
}

TEST(PageModes, OperationsNeedingAPageAnswerInvalidWithoutOne) {
    EnginePtr e = makeEngine(kWidth, kHeight, 16);
    uint16_t info[6];
    EXPECT_EQ(KRYNClosePage(nullptr, 0, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNDisposePage(e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNNextBand(1, nullptr, 0, e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetReverseSide(e.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNGetPageInfo(info, e.get()), KRYN_ERR_INVALID);
}

TEST(PageModes, ReverseSideOnlyInWholePageModes) {
    for (int16_t mode = 0; mode < 10; ++mode) {
        EnginePtr e = makeEngine(kWidth, kHeight, 16);
        ASSERT_EQ(KRYNNewPage(mode, e.get()), KRYN_OK);
        const bool wholePage = mode == 0 || mode == 3 || mode == 5 || mode == 7 || mode == 9;
        EXPECT_EQ(KRYNSetReverseSide(e.get()), wholePage ? KRYN_OK : KRYN_ERR_INVALID)
            << "mode " << mode;
        EXPECT_EQ(pageOf(e.get())->reverseOrder, wholePage ? 1 : 0);
    }
}

TEST(PageInfo, RowBytesAndReverseOffsets) {
    EnginePtr e = makeEngine(4959, 7015, 128);
    ASSERT_EQ(KRYNNewPage(5, e.get()), KRYN_OK);
    uint16_t info[6];
    ASSERT_EQ(KRYNGetPageInfo(info, e.get()), KRYN_OK);
    EXPECT_EQ(info[0], 19840);
    EXPECT_EQ(info[1], 55);
    EXPECT_EQ(info[2], 4960);
    EXPECT_EQ(info[3], 7016);
    EXPECT_EQ(info[4], 0);
    EXPECT_EQ(info[5], 0);

    ASSERT_EQ(KRYNSetReverseSide(e.get()), KRYN_OK);
    ASSERT_EQ(KRYNGetPageInfo(info, e.get()), KRYN_OK);
    EXPECT_EQ(info[4], 128 * 55 - 7016 + 1);
    EXPECT_EQ(info[5], 1); // 19840 / 4 - 4960 + 1

    pageOf(e.get())->colourSpace = 1;
    ASSERT_EQ(KRYNGetPageInfo(info, e.get()), KRYN_OK);
    EXPECT_EQ(info[0], 4960);
    EXPECT_EQ(info[5], 1);
}

TEST(PageInfo, RowBytesRoundDownToWholeWords) {
    EnginePtr e = makeEngine(100, 10, 8); // pageWidth 101
    ASSERT_EQ(KRYNNewPage(7, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNSetReverseSide(e.get()), KRYN_OK);
    uint16_t info[6];
    pageOf(e.get())->colourSpace = 1;
    ASSERT_EQ(KRYNGetPageInfo(info, e.get()), KRYN_OK);
    EXPECT_EQ(info[0], 104); // 101 + 7 rounded down to a multiple of 8
    EXPECT_EQ(info[5], 104 - 101 + 1);
    EXPECT_EQ(info[4], 8 * 2 - 11 + 1);
}

} // namespace
} // namespace kryn::test
