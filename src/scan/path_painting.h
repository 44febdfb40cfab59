// What painting and clipping calls share: the end of a path's life after a
// call, the white-paint test and the flattening tolerance of the state.
#pragma once

#include "engine/graphics_state.h"
#include "scan/path_edges.h"

namespace kryn {

struct PageRecord;

// The opening of fill and clip calls: *gs is the current state, or null
// with KRYN_ERR_INVALID when no page is open; an empty path answers KRYN_OK
// with *gs null (nothing to do, the rule unchecked); a rule other than
// FILL_EVEN_ODD and FILL_NONZERO answers KRYN_ERR_INVALID.
ResultCode pathCallState(Engine* e, uint32_t rule, GraphicsState** gs);

// After a painting or clip call: a sealed path is kept once more (and the
// seal cleared); otherwise, and always after an error, the path is freed.
void consumePath(GraphicsState& gs, PageRecord& page, bool afterError);

// Paint that can only whiten: the logical function 0xFF, or 0xF0 with white
// paint and no screen.
bool isWhitePaint(const GraphicsState& gs);

// The state's curve flattening tolerance.
FlattenTolerance flattenToleranceOf(const GraphicsState& gs);

} // namespace kryn
