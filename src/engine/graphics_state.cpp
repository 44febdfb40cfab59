#include "engine/graphics_state.h"

#include "engine/engine.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "geometry/path_build.h"
#include "paint/screen_list.h"

namespace kryn {
namespace {

inline constexpr uint16_t NO_SCREEN_ID = 0xFFFF;

void freeClipPools(GraphicsState* state) {
    for (ClipPool& pool : state->clipPools) {
        freeAndClear(pool.buffer);
        pool.count = 0;
    }
}

// Gives a state three fresh clip pool buffers; on failure frees those taken.
bool takeClipPools(GraphicsState* state) {
    for (ClipPool& pool : state->clipPools) {
        pool.buffer = nullptr;
        pool.count = 0;
    }
    for (ClipPool& pool : state->clipPools) {
        auto* buffer = static_cast<ClipPoolBuffer*>(allocBytes(sizeof(ClipPoolBuffer)));
        if (buffer == nullptr) {
            freeClipPools(state);
            return false;
        }
        buffer->nextFree = buffer;
        buffer->previous = nullptr;
        buffer->count = 0;
        pool.buffer = buffer;
    }
    return true;
}

// Releases the clip data a state built itself. The clip module fills this in
// when clip regions exist; until then a state owns no clip data.
void releaseStateClip(GraphicsState* state) {
    state->clip.ownRegion = nullptr;
    state->clip.ownPieces = nullptr;
}

uint16_t screenIdOf(const Engine* e, const ScreenTile& screen) {
    for (const ScreenNode* node = e->screenList; node != nullptr; node = node->next) {
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
    if (!takeClipPools(state)) {
        destroyRecord(state);
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
    copy->clip.ownRegion = nullptr;
    copy->clip.ownPieces = nullptr;
    copy->clipPoolState[0] = 0;
    copy->clipPoolState[1] = 0;
    if (!takeClipPools(copy)) {
        destroyRecord(copy);
        return KRYN_ERR_NO_MEMORY;
    }
    if (failed(continuePath(source->path, copy->path, slot->page->pathPool))) {
        freeClipPools(copy);
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
    releaseStateClip(state);
    freePath(state->path, page->pathPool);
    if (state->depth == state->dashOwnerDepth) {
        freeAndClear(state->dashArray);
        freeAndClear(state->dashArrayFixed);
    }
    freeClipPools(state);
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
