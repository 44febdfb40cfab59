#include "transfer/download_tables.h"

#include "engine/engine.h"
#include "engine/memory.h"

namespace kryn {

namespace {

void freeChain(DownloadNode*& head, uint32_t& bytes) {
    while (head != nullptr) {
        DownloadNode* next = head->next;
        freeBytes(head);
        head = next;
    }
    bytes = 0;
}

} // namespace

void freeDownloadTables(RenderResources* resources) {
    freeChain(resources->downloadA, resources->downloadABytes);
    freeChain(resources->downloadB, resources->downloadBBytes);
    freeChain(resources->downloadC, resources->downloadCBytes);
}

} // namespace kryn
