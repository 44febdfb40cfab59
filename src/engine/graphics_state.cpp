#include "engine/graphics_state.h"

#include "engine/engine.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "geometry/path_build.h"
#include "paint/screen_list.h"

namespace kryn {
namespace {

inline constexpr uint16_t NO_SCREEN_ID = 0xFFFF;

// The identifier of the state's screen: 0 for a state without one (no tile
// is identifier 0, whatever screens the page has defined), the registered
// screen with the same data, or NO_SCREEN_ID when none matches.
uint16_t screenIdOf(const Engine* e, const ScreenTile& screen) {
    if (screen.data == nullptr) {
        return 0;
    }
    for (const TileEntry* node = e->screenList; node != nullptr; node = node->next) {
        if (node->data == screen.data) {
            return node->screenId;
        }
    }
    return NO_SCREEN_ID;
}

} // namespace

GraphicsState* createFirstGraphicsState(const Engine* e, PageRecord*) {
    GraphicsState* state = createRecord<GraphicsState>(true);
    if (state == nullptr) {
        return nullptr;
    }
    state->pageWidth = e->pageWidth;
    state->pageHeight = e->pageHeight;
    return state;
}

ResultCode pushGraphicsState(PageSlot* slot) {
    GraphicsState* source = slot->gstateTop;
    GraphicsState* copy = copyRecord(*source);
    if (copy == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    copy->path.first = nullptr;
    // The copy works inside the enclosing clip without owning any of it.
    copy->clip = ClipStack();
    inheritClip(source->clip, &copy->clip);
    if (failed(continuePath(source->path, copy->path, slot->page->pathPool))) {
        destroyRecord(copy);
        return KRYN_ERR_NO_MEMORY;
    }
    copy->depth = static_cast<uint16_t>(source->depth + 1);
    copy->below = source;
    slot->gstateTop = copy;
    return KRYN_OK;
}

ResultCode popGraphicsState(Engine* e) {
    PageSlot* slot = e->pageSlot;
    GraphicsState* top = slot->gstateTop;
    if (top->below == nullptr) {
        return KRYN_ERR_GSTATE_UNDERFLOW;
    }
    slot->gstateTop = top->below;
    releaseGraphicsState(top, slot->page);
    slot->page->paint.screenId = screenIdOf(e, slot->gstateTop->screen);
    return KRYN_OK;
}

void releaseGraphicsState(GraphicsState* state, PageRecord* page) {
    releaseClipStack(&state->clip);
    freePath(state->path, page->pathPool);
    if (state->depth == state->dashOwnerDepth) {
        freeAndClear(state->dashArray);
        freeAndClear(state->dashArrayFixed);
    }
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
