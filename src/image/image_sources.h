// The page's image sources: one entry per placed image or mask whose
// samples the page's records point into, newest first. The page owns every
// entry and its sample buffer, and releases them when it ends (after its
// bands have been played, or when it is disposed): records never free image
// data, and a band list may be serialised or played any time before that.
#pragma once

#include "engine/result_codes.h"
#include "image/sample_buffer.h"

#include <cstdint>

namespace kryn {

struct PageRecord;

struct ImageSourceEntry {
    ImageSourceEntry* next = nullptr;
    int32_t width = 0;         // samples a row, in device orientation
    int32_t height = 0;        // rows
    int64_t stride = 0;        // bytes from one row to the next
    uint32_t scaleX = 0x10000; // 16.16 device pixels a sample
    uint32_t scaleY = 0x10000;
    int64_t deviceX = 0; // device pixel of sample (0, 0)
    int64_t deviceY = 0;
    void* samples = nullptr; // owned
};

// Takes `buffer` over into a new entry with the given fields at the head of
// the page's list and answers the entry in *entry. KRYN_ERR_NO_MEMORY when
// the entry cannot be allocated: the buffer is released then. Either way
// `buffer` is empty afterwards.
ResultCode keepImageSource(PageRecord* page, SampleBuffer& buffer, const ImageSourceEntry& fields,
                           const ImageSourceEntry** entry);

// Frees every entry and its samples.
void releaseImageSources(PageRecord* page);

} // namespace kryn
