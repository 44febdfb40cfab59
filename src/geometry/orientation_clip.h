// What happens to the clip when a page's orientation is first established.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

namespace kryn {

// Builds the page's base clip region for the new orientation and resets the
// clip to the whole page. KRYN_ERR_NO_MEMORY when the region cannot be built.
ResultCode establishOrientationClip(Engine* e);

} // namespace kryn
