// KRYNSetImageTable: the colours of 1-bit images (two entries) and the
// colour tables of indexed images (16 or 256 entries).
#pragma once

#include "engine/engine.h"
#include "kryn/kryn.h"

#include <cstdint>

namespace kryn {

struct PageRecord;
struct RendererColourTable;

// Two entries: the current graphics state's image colour := table[1] and
// image back colour := table[0]. 16 or 256 entries: the page's paintIndex
// becomes the id of an equal table kept by the page, or of a copy kept
// from now on (ids count up from 0 within the page). KRYN_ERR_INVALID
// without an open page, for a null table, another count, or past 32768
// distinct tables; KRYN_ERR_NO_MEMORY when the copy cannot be made.
// Nothing changes on an error.
ResultCode setImageTable(Engine* e, uint32_t count, const ColourValue* table);

// The page's tables, newest first, for the renderer to search at playback.
const RendererColourTable* pageColourTables(const PageRecord& page);

// Frees the page's tables.
void releasePageColourTables(PageRecord* page);

} // namespace kryn
