// The common tail of every record writer.
#pragma once

#include "displaylist/display_list.h"

#include <cstdint>

namespace kryn {

// True when `bytes` more serialised bytes still fit the list's 32-bit count.
inline bool fitsSerialCount(const DisplayList* list, uint64_t bytes) {
    return bytes <= UINT32_MAX - list->serialBytes;
}

// Counts a filled record's serialised bytes, marks painting and commits.
inline ResultCode finishRecord(DisplayList* list, uint32_t serialBytes, bool painting,
                               RenderResources* resources) {
    list->serialBytes += serialBytes;
    if (painting) {
        list->hasDrawing = 1;
    }
    return commitRecord(list, resources);
}

} // namespace kryn
