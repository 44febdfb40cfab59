// Opening, playing, flushing and releasing pages.
#pragma once

#include "engine/engine.h"
#include "engine/result_codes.h"
#include "kryn/kryn.h"

namespace kryn {

// Each expects an engine; those that need an open page check for it.
ResultCode newPage(Engine* e, int32_t mode);
ResultCode closePage(Engine* e, OutputCallback callback, uintptr_t context);
ResultCode disposePage(Engine* e);
ResultCode nextBand(Engine* e, uint32_t bandsPerGroup, OutputCallback callback, uintptr_t context);
ResultCode setReverseSide(Engine* e);
ResultCode getPageInfo(const Engine* e, uint16_t out[6]);

// Plays the page's recorded bands on the host (page close), including the
// one replay the driver may ask for.
void playPage(Engine* e, PageRecord* page, OutputCallback callback, uintptr_t context);

} // namespace kryn
