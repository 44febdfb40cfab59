// The clip as the open page sees it: the base region of the page (or of its
// current band group) and the reset of the current state's clip to it.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"
#include "scan/clip_stack.h"

namespace kryn {

struct PageRecord;

// The page geometry the base clip and a clip reset work from.
ClipPage clipPageOf(const Engine* e, const PageRecord* page);

// Rebuilds the base region for the page's orientation and current band
// group, then resets the current state's clip to it; the current path is
// lost, as with every clip reset. An orientation not yet established
// becomes 0 quarter turns, as the identity matrix of a reset makes it
// (KRYNNextBand before any KRYNSetMatrix).
ResultCode rebuildPageClip(Engine* e);

// KRYNClearClip: resets the current state's clip to the base region; the
// current path is lost. Establishes an unset orientation as rebuildPageClip
// does, and builds a base region that could not be built before.
ResultCode clearPageClip(Engine* e);

} // namespace kryn
