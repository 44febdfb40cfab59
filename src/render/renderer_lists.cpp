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

} // namespace kryn
