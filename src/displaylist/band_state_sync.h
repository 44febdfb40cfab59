// Per-band state synchronisation: before a painting record goes into a band,
// the page's paint state is brought into the band's list. A state record is
// written only when the page value differs from the band's mirror of what it
// last received, and the mirror follows only a successful write, so a failed
// write is retried by the next painting call.
#pragma once

#include "engine/result_codes.h"

namespace kryn {

struct BandEntry;
struct DisplayList;
struct PageRecord;

// Blending, logical function, screen, fill opacity, paint colours and (while
// blending) the selector and key-0 data, in that order.
ResultCode syncBandState(PageRecord* page, BandEntry* band, DisplayList* list);

// syncBandState for the run and rectangle recorders, followed by the
// monochrome rule: the band stops counting as black-and-white once a screen
// or a colour other than black or white reaches it.
ResultCode syncBandForSpans(PageRecord* page, BandEntry* band, DisplayList* list);

} // namespace kryn
