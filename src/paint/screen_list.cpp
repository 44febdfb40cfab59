#include "paint/screen_list.h"

#include "engine/engine.h"
#include "engine/memory.h"

namespace kryn {

void releaseScreenList(Engine* e) {
    ScreenNode* node = e->screenList;
    while (node != nullptr) {
        ScreenNode* next = node->next;
        freeBytes(node->data);
        destroyRecord(node);
        node = next;
    }
    e->screenList = nullptr;
}

} // namespace kryn
