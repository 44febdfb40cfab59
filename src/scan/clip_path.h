// The clip calls on the open page: clip to the current path, reset, and the
// one-level save of the region.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"

#include <cstdint>

namespace kryn {

// The current path's interior within the page replaces the clip region.
ResultCode clipToPath(Engine* e, uint32_t rule);
// The whole page (or band group) becomes the clip region; the path is lost.
ResultCode clearClip(Engine* e);
ResultCode pushClipRegion(Engine* e);
ResultCode popClipRegion(Engine* e);
ResultCode voidPushClipRegion(Engine* e);

} // namespace kryn
