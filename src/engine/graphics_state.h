// The graphics state: current drawing parameters, kept as a stack per page.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"
#include "geometry/path.h"
#include "geometry/transform.h"
#include "kryn/kryn.h"
#include "paint/paint_descriptor.h"
#include "scan/clip_stack.h"

#include <cstddef>
#include <cstdint>

namespace kryn {

struct PageRecord;

struct GraphicsState {
    GraphicsState* below = nullptr; // previous state; null for the page's first
    uint16_t depth = 0;
    int32_t pageWidth = 0;
    int32_t pageHeight = 0;
    Transform transform;
    Path path;
    uint16_t pathSealed = 0; // keep the path for one more painting call
    ClipStack clip;          // the clip region in force, the saved one, their edge pools
    float lineWidth = 0.5f;  // half the line width
    // Dash pattern; the arrays belong to the state whose depth is dashOwnerDepth.
    uint16_t dashCount = 0;
    float* dashArray = nullptr;
    uint16_t dashIndex = 0;
    uint16_t dashOn = 1;
    float dashRemaining = 0.0f;
    uint16_t dashOwnerDepth = 0;
    uint16_t dashFixedOk = 1;
    uint32_t lineCap = 0;
    uint32_t lineJoin = 2;
    float miterLimit = 10.0f;
    float strokeFlatness = 1.0f; // curve flattening tolerance, device pixels
    float miterLength = 5.0f;    // lineWidth x miterLimit
    uint16_t tileOpaque = 1;
    ScreenTile screen = {}; // no tile
    uint32_t colour = 0;
    uint32_t backColour = WHITE;
    uint32_t tileKind = 2;
    uint16_t backgroundMode = 1;
    uint32_t imageColour = 0;
    uint32_t imageBackColour = WHITE;
    uint32_t logicalFunction = DEFAULT_ROP;
    uint32_t logicalFunction2 = DEFAULT_ROP;
    float scale = 1.0f;              // factor of the last KRYNSetScale, as the transform's
    int32_t lineWidthFixed = 0x8000; // 16.16; -1 when too large
    int32_t* dashArrayFixed = nullptr;
    int32_t dashRemainingFixed = 0;
    int32_t miterLimitFixed = 0xA0000;
    int32_t strokeFlatnessFixed = 0x10000; // -1: every curve becomes its chord
    int32_t miterLengthFixed = 0x50000;
    uint16_t integerCoords = 1; // path points truncated to whole pixels
    uint16_t integerFlags[2] = {1, 1};
};

// Creates the first state of a page. Null when memory runs out.
GraphicsState* createFirstGraphicsState(const Engine* e, PageRecord* page);

// Copies the top state onto the stack. On failure the stack is unchanged.
ResultCode pushGraphicsState(PageSlot* slot);

// Releases the top state. KRYN_ERR_GSTATE_UNDERFLOW for the page's first.
ResultCode popGraphicsState(Engine* e);

// Releases one state and everything it owns.
void releaseGraphicsState(GraphicsState* state, PageRecord* page);

// Releases the whole stack from the top down.
void releaseGraphicsStack(GraphicsState* top, PageRecord* page);

// The current state of the open page, or null.
inline GraphicsState* currentState(const Engine* e) {
    return e->pageSlot == nullptr ? nullptr : e->pageSlot->gstateTop;
}

} // namespace kryn
