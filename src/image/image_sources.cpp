#include "image/image_sources.h"

#include "engine/memory.h"
#include "engine/page_record.h"

namespace kryn {

ResultCode keepImageSource(PageRecord* page, SampleBuffer& buffer, const ImageSourceEntry& fields,
                           const ImageSourceEntry** entry) {
    ImageSourceEntry* node = copyRecord(fields);
    if (node == nullptr) {
        buffer.release();
        return KRYN_ERR_NO_MEMORY;
    }
    node->samples = buffer.take();
    node->next = page->imageSources;
    page->imageSources = node;
    *entry = node;
    return KRYN_OK;
}

void releaseImageSources(PageRecord* page) {
    while (page->imageSources != nullptr) {
        ImageSourceEntry* next = page->imageSources->next;
        freeBytes(page->imageSources->samples);
        destroyRecord(page->imageSources);
        page->imageSources = next;
    }
}

} // namespace kryn
