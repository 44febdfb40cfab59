#include "render/state_records.h"

#include "displaylist/display_list.h"
#include "render/band_renderer.h"
#include "render/paint_state.h"
#include "render/renderer_lists.h"
#include "render/tile_definitions.h"

namespace kryn {

namespace {

// Screen record: a nonzero id selects the first matching tile (an unknown id
// changes nothing); zero returns to solid painting. Tiles are kept in the
// raster's format, so a sample tile of another pixel size (which no band
// of this renderer receives) is not selected either.
void selectScreen(PaintState& state, const BandRenderer& renderer, const uint8_t* r) {
    const uint16_t id = loadU16(r + 4);
    if (id == 0) {
        state.tileBase = nullptr;
        state.tileWidth = state.tileHeight = state.tileStride = state.tileKind = 0;
        state.tileRowBytes = 0;
        state.screenPhaseY = 0;
        state.tileAlpha = nullptr;
        updateScreenMember(state);
        return;
    }
    for (const RendererTile* tile = renderer.tileList; tile != nullptr; tile = tile->next) {
        if (tile->screenId != id) {
            continue;
        }
        const bool usable = tile->kind == RENDERER_TILE_BITS ||
                            (tile->kind == RENDERER_TILE_BYTES && state.bitsPerPixel == 8) ||
                            (tile->kind == RENDERER_TILE_WORDS && state.bitsPerPixel == 32);
        if (!usable || tile->base == nullptr || tile->width <= 0 || tile->height <= 0) {
            return; // an unusable tile selects nothing
        }
        state.tileBase = tile->base;
        state.tileWidth = tile->width;
        state.tileHeight = tile->height;
        state.tileKind = tile->kind;
        state.tileAlpha = tile->alpha;
        if (tile->kind == RENDERER_TILE_BITS) {
            // Rows of whole 32-bit words.
            state.tileRowBytes = (tile->width + 31) / 32 * 4;
            state.tileStride =
                state.bitsPerPixel == 8 ? state.tileRowBytes : state.tileRowBytes / 4;
        } else {
            state.tileStride = tile->width;
            state.tileRowBytes = tile->width * state.bytesPerPixel;
        }
        state.screenPhaseY = loadU16(r + 2);
        updateScreenMember(state);
        return;
    }
}

void selectColourTable(PaintState& state, const BandRenderer& renderer, uint16_t id) {
    for (const RendererColourTable* t = renderer.colourTableList; t != nullptr; t = t->next) {
        if (t->tableId == id) {
            state.colourTable = t;
            return;
        }
    }
}

// 166..169: one grey byte, or three colour bytes in stored order.
void setColour(PaintState& state, int slot, const uint8_t* r) {
    state.colour[slot] = state.bitsPerPixel == 8
                             ? r[1]
                             : uint32_t{r[1]} | uint32_t{r[2]} << 8 | uint32_t{r[3]} << 16;
}

// 183..186: the colour with its alpha. The plain renderers read the colour
// slot, so it takes the colour bytes too.
void setColourWithAlpha(PaintState& state, int slot, const uint8_t* r) {
    if (state.bitsPerPixel == 8) {
        state.colour[slot] = r[1];
        state.colourAlpha[slot] = r[4];
    } else {
        state.colourAlpha[slot] = loadU32(r + 1);
        state.colour[slot] = state.colourAlpha[slot] & 0xFFFFFF;
    }
}

void setBlendData(const uint8_t* r, uint8_t& select, uint16_t ranges[3]) {
    select = r[1];
    for (int i = 0; i < 3; ++i) {
        ranges[i] = loadU16(r + 2 + 2 * i);
    }
}

} // namespace

size_t applyStateRecord(PaintState& state, const BandRenderer& renderer, const uint8_t* r,
                        BandVariant variant) {
    const bool mono = variant == BAND_MONO;
    switch (r[0]) {
    case DL_OP_SET_ROP:
        setPaintRop(state, r[1]);
        return 2;
    case DL_OP_SET_ROP2:
        setPaintRop2(state, r[1]);
        return 2;
    case DL_OP_RESERVED_161:
        state.xPhase = uint32_t{loadU16(r + 2)} << 16;
        state.yPhase = 0;
        return 4;
    case DL_OP_RESERVED_177:
        state.xPhase = loadU32(r + 4);
        state.yPhase = state.bitsPerPixel == 8 ? loadU32(r + 4) : loadU16(r + 2);
        return 8;
    case DL_OP_IMAGE_ORIGIN:
        state.xPhase = loadU32(r + 8);
        state.yPhase = loadU32(r + 4);
        return 12;
    case DL_OP_IMAGE_MODE:
        state.bitPhase = loadU16(r + 2);
        return 4;
    case DL_OP_SET_SCREEN:
        selectScreen(state, renderer, r);
        return 6;
    case DL_OP_SET_OPAQUE:
        if (r[1] < 255) {
            state.imageOpaque = loadU16(r + 2) != 0 ? 1 : 0;
        } else {
            state.fillOpaque = loadU16(r + 2) != 0 ? 1 : 0;
            updateScreenMember(state);
        }
        return 4;
    case DL_OP_IMAGE_COLOUR:
    case DL_OP_IMAGE_BACK_COLOUR:
    case DL_OP_PAINT_COLOUR:
    case DL_OP_PAINT_BACK_COLOUR:
        setColour(state, r[0] - DL_OP_IMAGE_COLOUR, r);
        return 4;
    case DL_OP_SELECT_PATTERN:
        if (!mono) {
            selectColourTable(state, renderer, loadU16(r + 2));
        }
        return 4;
    case DL_OP_RESERVED_173:
        return 4;
    case DL_OP_COLOUR_SPACE_1:
        return variant == BAND_COLOUR ? 0 : 4;
    case DL_OP_RESERVED_194:
        return mono ? 4 : 0;
    case DL_OP_MARK:
    case DL_OP_RESERVED_172:
        return 1;
    case DL_OP_CHUNK:
        return 8;
    default:
        break;
    }
    if (mono) {
        return 0; // colour-with-alpha and blend records never reach such a band
    }
    switch (r[0]) {
    case DL_OP_IMAGE_COLOUR_A:
    case DL_OP_IMAGE_BACK_COLOUR_A:
    case DL_OP_PAINT_COLOUR_A:
    case DL_OP_PAINT_BACK_COLOUR_A:
        setColourWithAlpha(state, r[0] - DL_OP_IMAGE_COLOUR_A, r);
        return 5;
    case DL_OP_BLEND:
        state.blendOn = loadU16(r + 2);
        return 4;
    case DL_OP_BLEND_SELECT:
        state.blendSelect = r[2];
        return 3;
    case DL_OP_BLEND_DATA_A:
        setBlendData(r, state.blendSelectA, state.blendRangesA);
        return 8;
    case DL_OP_BLEND_DATA_B:
        setBlendData(r, state.blendSelectB, state.blendRangesB);
        return 8;
    default:
        return 0;
    }
}

} // namespace kryn
