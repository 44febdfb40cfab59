#include "engine/graphics_state.h"

#include "engine/engine.h"
#include "engine/memory.h"

namespace kryn {

GraphicsState* createFirstGraphicsState(const Engine* e, PageRecord*) {
    GraphicsState* state = createRecord<GraphicsState>(true);
    if (state != nullptr) {
        state->pageWidth = e->pageWidth;
        state->pageHeight = e->pageHeight;
    }
    return state;
}

void releaseGraphicsState(GraphicsState* state, PageRecord*) {
    destroyRecord(state);
}

void releaseGraphicsStack(GraphicsState* top, PageRecord* page) {
    while (top != nullptr) {
        GraphicsState* below = top->below;
        releaseGraphicsState(top, page);
        top = below;
    }
}

} // namespace kryn
