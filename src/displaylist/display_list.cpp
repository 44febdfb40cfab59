#include "displaylist/display_list.h"

#include "displaylist/record_walk.h"
#include "engine/engine.h"
#include "engine/memory.h"
#include "engine/page_mode.h"

namespace kryn {

namespace {

// Room for the end record or the terminator in the zero tail of the last
// block: records end by BLOCK_FILL_LIMIT, and the tail holds both.
static_assert(BLOCK_SIZE - BLOCK_FILL_LIMIT >= 1 + TERMINATOR_SIZE);

uint8_t* reserveTail(DisplayList* list, uint32_t n) {
    DisplayListBlock* block = list->currentBlock;
    uint8_t* at = block->writePointer;
    block->writePointer = at + n;
    return at;
}

ResultCode appendColourSpaceRecord(DisplayList* list) {
    uint8_t* at = reserveRecord(list, 4);
    if (at == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    at[0] = DL_OP_COLOUR_SPACE_1;
    list->serialBytes += 4;
    return KRYN_OK;
}

} // namespace

DisplayList* createDisplayList(uint32_t rasterWidth, uint16_t bandHeight, uint16_t bandIndex,
                               uint32_t rasterSize, RenderResources* resources) {
    DisplayList* list = createRecord<DisplayList>();
    if (list == nullptr) {
        return nullptr;
    }
    list->rasterWidth = rasterWidth;
    list->bandHeight = bandHeight;
    list->bandIndex = bandIndex;
    list->rasterHalfSize = rasterSize / 2;
    if (isValidPageMode(resources->mode) && pageMode(resources->mode).chunkRecords) {
        if (failed(appendChunkRecord(list)) ||
            (resources->colourSpace == 1 && failed(appendColourSpaceRecord(list)))) {
            freeDisplayList(list);
            return nullptr;
        }
    }
    resources->rendered = 0;
    return list;
}

uint8_t* reserveInNewBlock(DisplayList* list, uint32_t n) {
    auto* block = static_cast<DisplayListBlock*>(allocBytes(sizeof(DisplayListBlock), true));
    if (block == nullptr) {
        return nullptr;
    }
    block->next = nullptr;
    block->writePointer = block->area + n;
    if (list->currentBlock == nullptr) {
        list->firstBlock = block;
    } else {
        *list->currentBlock->writePointer = DL_OP_TERMINATOR;
        list->currentBlock->next = block;
    }
    list->currentBlock = block;
    return block->area;
}

ResultCode commitRecord(DisplayList* list, RenderResources* resources) {
    list->mergeCandidate = nullptr;
    const uint32_t delta = list->serialBytes - list->chunkStart;
    if (delta < list->chunkLimit || !isSerialisedMode(resources->mode)) {
        return KRYN_OK;
    }
    // Start the next chunk. The size word of the closing chunk is written
    // only once the new chunk record exists. When it cannot be allocated the
    // record just written stays where it is, the open chunk grows past its
    // limit and the next record tries again: nothing is lost, every announced
    // size stays exact, and the caller is not told to retry a record that
    // was in fact recorded.
    uint8_t* closing = list->pendingSizeSlot;
    if (failed(appendChunkRecord(list))) {
        list->pendingSizeSlot = closing;
        return KRYN_OK;
    }
    if (closing != nullptr) {
        storeU32(closing, delta);
    }
    list->chunkStart = list->serialBytes;
    return KRYN_OK;
}

ResultCode appendChunkRecord(DisplayList* list) {
    uint8_t* at = reserveRecord(list, 8);
    if (at == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    at[0] = DL_OP_CHUNK;
    list->pendingSizeSlot = at + 4;
    return KRYN_OK;
}

void appendEndRecord(DisplayList* list) {
    if (list->ended || list->currentBlock == nullptr) {
        return;
    }
    reserveTail(list, 1)[0] = DL_OP_END;
    list->serialBytes += 4;
    list->ended = true;
}

void appendTerminator(DisplayList* list) {
    if (list->terminated || list->currentBlock == nullptr) {
        return;
    }
    reserveTail(list, TERMINATOR_SIZE)[0] = DL_OP_TERMINATOR; // the rest is already zero
    list->terminated = true;
}

void releaseRecordArrays(DisplayList* list) {
    walkRecords(list, [](uint8_t op, const uint8_t* record) {
        if (ownsArray(op)) {
            freeBytes(loadPointer(record + ARRAY_POINTER_OFFSET));
        }
        return true;
    });
}

void freeDisplayList(DisplayList* list) {
    releaseRecordArrays(list);
    freeDisplayListBlocks(list);
}

void freeDisplayListBlocks(DisplayList* list) {
    DisplayListBlock* block = list->firstBlock;
    while (block != nullptr) {
        DisplayListBlock* next = block->next;
        freeBytes(block);
        block = next;
    }
    destroyRecord(list);
}

} // namespace kryn
