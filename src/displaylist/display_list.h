// Block storage of one band's display list.
//
// A list is a chain of 4096-byte zero-filled blocks. Records are appended
// back to back; a record never straddles two blocks and every block's records
// end at byte BLOCK_FILL_LIMIT (counted from the block start) at the latest,
// so the bytes after them read as zero. Where a block continues in the next,
// the byte 255 follows its last record. Before the list is read it is ended
// with DL_OP_END and terminated with a four-byte DL_OP_TERMINATOR.
//
// Ending and terminating never fail and never allocate: each is written once
// and takes the zero tail of the last block beyond the fill limit, which no
// other record may use (a list without a block holds no record and gets
// neither). A list whose recording ran out of memory can therefore always
// be closed and read back, on every pass of a replayed page.
#pragma once

#include "displaylist/opcodes.h"
#include "engine/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kryn {

struct RenderResources;

inline constexpr uint32_t BLOCK_SIZE = 4096;
inline constexpr uint32_t BLOCK_FILL_LIMIT = 4072;
inline constexpr uint32_t CHUNK_LIMIT = 204796;

struct DisplayListBlock {
    DisplayListBlock* next;
    uint8_t* writePointer; // first free byte of the record area
    uint8_t area[BLOCK_SIZE - 2 * sizeof(void*)];
};
static_assert(sizeof(DisplayListBlock) == BLOCK_SIZE);
static_assert(offsetof(DisplayListBlock, area) + MAX_RECORD_SIZE <= BLOCK_FILL_LIMIT);
static_assert(BLOCK_SIZE - BLOCK_FILL_LIMIT >= 1 + 2 * TERMINATOR_SIZE);

struct DisplayList {
    DisplayListBlock* firstBlock = nullptr;
    DisplayListBlock* currentBlock = nullptr; // receives the next record
    uint32_t rasterWidth = 0;                 // pixels per band row
    uint16_t bandHeight = 0;
    uint16_t bandIndex = 0;      // playback overwrites it with the delivered index
    uint32_t serialBytes = 0;    // bytes the records will occupy in the stream
    uint32_t rasterHalfSize = 0; // size hint for the renderer
    uint32_t chunkLimit = CHUNK_LIMIT;
    uint32_t chunkStart = 0;            // serialBytes when the open chunk began
    uint8_t* pendingSizeSlot = nullptr; // size word of the open chunk record
    uint8_t* mergeCandidate = nullptr;  // last rectangle a following one may extend
    uint32_t hasDrawing = 0;            // a painting record was written
    uint8_t activeRop = 0xA8;           // code of the last 160 written (the default before)
    bool ended = false;                 // DL_OP_END is in place
    bool terminated = false;            // the closing DL_OP_TERMINATOR is in place
};

// Creates a list for a band (header, plus the opening chunk record in the
// modes that split chunks and the colour-space record in colour space 1).
// Null when memory runs out; nothing is left allocated then.
DisplayList* createDisplayList(uint32_t rasterWidth, uint16_t bandHeight, uint16_t bandIndex,
                               uint32_t rasterSize, RenderResources* resources);

// Slow path of reserveRecord: starts a new block.
uint8_t* reserveInNewBlock(DisplayList* list, uint32_t n);

// Returns room for an n-byte record (n <= MAX_RECORD_SIZE), or null when a
// new block was needed and could not be allocated; the list is unchanged then.
inline uint8_t* reserveRecord(DisplayList* list, uint32_t n) {
    DisplayListBlock* block = list->currentBlock;
    if (block != nullptr) {
        uint8_t* at = block->writePointer;
        if (static_cast<uint32_t>(at - reinterpret_cast<uint8_t*>(block)) + n <= BLOCK_FILL_LIMIT) {
            block->writePointer = at + n;
            return at;
        }
    }
    return reserveInNewBlock(list, n);
}

// Ends the record just written: starts a new chunk in serialised modes once
// the open one has reached its limit, and clears the merge candidate. Never
// loses the record: when the new chunk cannot be started, the next commit
// tries again.
ResultCode commitRecord(DisplayList* list, RenderResources* resources);

// Appends DL_OP_CHUNK and makes its size word the pending slot.
ResultCode appendChunkRecord(DisplayList* list);

// Appends DL_OP_END once; later calls do nothing.
void appendEndRecord(DisplayList* list);

// Appends the four-byte terminator once; later calls do nothing.
void appendTerminator(DisplayList* list);

// Frees the arrays that the list's records own (the pointers stay behind).
void releaseRecordArrays(DisplayList* list);

// Frees the list with the arrays its records own, its blocks and its header.
void freeDisplayList(DisplayList* list);

// Frees blocks and header only (after serialisation released the arrays).
void freeDisplayListBlocks(DisplayList* list);

// Little-endian field access inside records.
inline void storeU16(uint8_t* at, uint16_t v) {
    std::memcpy(at, &v, 2);
}
inline void storeU32(uint8_t* at, uint32_t v) {
    std::memcpy(at, &v, 4);
}
inline void storePointer(uint8_t* at, const void* p) {
    std::memcpy(at, &p, sizeof p);
}
inline uint16_t loadU16(const uint8_t* at) {
    uint16_t v;
    std::memcpy(&v, at, 2);
    return v;
}
inline uint32_t loadU32(const uint8_t* at) {
    uint32_t v;
    std::memcpy(&v, at, 4);
    return v;
}
inline void* loadPointer(const uint8_t* at) {
    void* p;
    std::memcpy(&p, at, sizeof p);
    return p;
}

} // namespace kryn
