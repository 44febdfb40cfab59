// Download tables: per-engine chains of entries (glyph bitmaps, screens,
// patterns) sent to the device ahead of the bands that use them.
#pragma once

#include <cstdint>

namespace kryn {

struct RenderResources;

// One node of a table chain; `count` entries follow the header in the same
// allocation.
struct DownloadNode {
    DownloadNode* next;
    int32_t count;
};

// Frees every node of the three tables and clears their byte counts.
void freeDownloadTables(RenderResources* resources);

} // namespace kryn
