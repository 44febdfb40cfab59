#include "image/image_table.h"

#include "engine/graphics_state.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "render/renderer_lists.h"

#include <algorithm>
#include <new>

namespace kryn {

namespace {

constexpr uint32_t TABLE_ENTRIES = 256;
constexpr uint32_t LAST_TABLE_ID = 32767;

bool sameTable(const RendererColourTable& t, uint32_t count, const ColourValue* table) {
    return t.lastIndex + 1u == count && std::equal(table, table + count, t.entries);
}

} // namespace

ResultCode setImageTable(Engine* e, uint32_t count, const ColourValue* table) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    if (gs == nullptr || page == nullptr || table == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (count == 2) {
        gs->imageColour = table[1];
        gs->imageBackColour = table[0];
        return KRYN_OK;
    }
    if (count != 16 && count != TABLE_ENTRIES) {
        return KRYN_ERR_INVALID;
    }
    for (const RendererColourTable* t = page->colourTables; t != nullptr; t = t->next) {
        if (sameTable(*t, count, table)) {
            page->paint.paintIndex = t->tableId;
            return KRYN_OK;
        }
    }
    const uint32_t id = page->colourTables == nullptr ? 0u : page->colourTables->tableId + 1u;
    if (id > LAST_TABLE_ID) {
        return KRYN_ERR_INVALID;
    }
    void* storage = allocBytes(sizeof(RendererColourTable) + TABLE_ENTRIES * sizeof(uint32_t));
    if (storage == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    auto* entries = reinterpret_cast<uint32_t*>(static_cast<RendererColourTable*>(storage) + 1);
    std::copy_n(table, count, entries);
    std::fill(entries + count, entries + TABLE_ENTRIES, table[count - 1]);
    auto* node = ::new (storage) RendererColourTable{page->colourTables, static_cast<uint16_t>(id),
                                                     static_cast<uint8_t>(count - 1), entries};
    page->colourTables = node;
    page->paint.paintIndex = id;
    return KRYN_OK;
}

const RendererColourTable* pageColourTables(const PageRecord& page) {
    return page.colourTables;
}

void releasePageColourTables(PageRecord* page) {
    while (page->colourTables != nullptr) {
        RendererColourTable* next = page->colourTables->next;
        freeBytes(page->colourTables);
        page->colourTables = next;
    }
}

} // namespace kryn
