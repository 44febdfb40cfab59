// Walking the records of a list in order.
#pragma once

#include "displaylist/display_list.h"

namespace kryn {

// Calls visit(op, record) for every record, block by block. The walk of a
// block ends at the first byte that is not a record opcode (the link marker,
// the terminator, zero); visit returns false to end the whole walk.
template <class Visit>
void walkRecords(const DisplayList* list, Visit&& visit) {
    for (const DisplayListBlock* block = list->firstBlock; block != nullptr; block = block->next) {
        const uint8_t* at = block->area;
        const uint8_t* end = reinterpret_cast<const uint8_t*>(block) + BLOCK_SIZE;
        while (at < end) {
            const size_t size = recordSize(*at);
            if (size == 0 || at + size > end) {
                break;
            }
            if (!visit(*at, at)) {
                return;
            }
            at += size;
        }
    }
}

} // namespace kryn
