#include "render/renderer_lists.h"

#include "engine/memory.h"

namespace kryn {

namespace {

template <class Node>
void releaseNodes(Node*& head) {
    while (head != nullptr) {
        Node* next = head->next;
        freeBytes(head);
        head = next;
    }
}

} // namespace

void releaseTileList(RendererTile*& head) {
    releaseNodes(head);
}

void releaseColourTableList(RendererColourTable*& head) {
    releaseNodes(head);
}

void releaseImageBufferList(RendererImageBuffer*& head) {
    for (RendererImageBuffer* node = head; node != nullptr; node = node->next) {
        if (node->samples != nullptr) {
            freeBytes(node->samples);
        }
    }
    releaseNodes(head);
}

} // namespace kryn
