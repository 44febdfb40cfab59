// The screens defined on the current page, registered once each.
#pragma once

#include <cstdint>

struct Engine;

namespace kryn {

struct ScreenNode {
    ScreenNode* next;
    void* data; // the screen data the node owns
    uint16_t screenId;
};

// Frees every node with its data and clears the engine's list.
void releaseScreenList(Engine* e);

} // namespace kryn
