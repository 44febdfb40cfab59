#include "paint/set_screen.h"

#include "engine/graphics_state.h"
#include "engine/memory.h"
#include "engine/page_record.h"
#include "paint/bit_tile.h"
#include "paint/paint_descriptor.h"
#include "paint/paint_setup.h"
#include "paint/screen_list.h"
#include "paint/tile_turning.h"

namespace kryn {

namespace {

inline constexpr int32_t MAX_TILE_SIDE = 4096;
// Widest stored 1-bit row: the device's screen definitions carry 16-bit
// widths.
inline constexpr int64_t MAX_WIDENED_BITS = 65535;

bool knownDepth(uint8_t depth) {
    return depth == TILE_DEPTH_1 || depth == TILE_DEPTH_8 || depth == TILE_DEPTH_24 ||
           depth == TILE_DEPTH_124 || depth == TILE_DEPTH_254;
}

// The checks every tile passes before anything changes.
ResultCode checkTile(const ScreenTile& tile, const PageRecord& page) {
    const bool blendOn = page.paint.blendOn != 0;
    if (tile.height < 1 || tile.height > MAX_TILE_SIDE || tile.width < 0 ||
        tile.width > MAX_TILE_SIDE || tile.bytesPerRow < 1) {
        return KRYN_ERR_INVALID;
    }
    if ((tile.depth == TILE_DEPTH_8 && page.colourSpace == 0) ||
        ((tile.depth == TILE_DEPTH_124 || tile.depth == TILE_DEPTH_254) && !blendOn) ||
        !knownDepth(tile.depth) || tile.data == nullptr) {
        return KRYN_ERR_INVALID;
    }
    return KRYN_OK;
}

// Registers the turned tile and makes it the state's screen; on failure the
// pixels are freed and nothing changes.
ResultCode adoptTile(Engine* e, GraphicsState& gs, PixelTile& tile) {
    const ResultCode r = registerTile(e, tile);
    if (failed(r)) {
        freeBytes(tile.data);
        return r;
    }
    gs.screen = ScreenTile{tile.data, tile.width, tile.height, tile.bytesPerRow, tile.depth};
    return KRYN_OK;
}

ResultCode setBitTile(Engine* e, GraphicsState& gs, const ScreenTile& given, int32_t turns,
                      uint16_t opaque, bool blendOn) {
    int32_t turnedW = 0;
    int32_t turnedH = 0;
    turnedSize(turns, given.width, given.height, turnedW, turnedH);
    if (widenedRowBits(turnedW) > MAX_WIDENED_BITS) {
        return KRYN_ERR_INVALID;
    }
    const TileSource source{static_cast<const uint8_t*>(given.data), given.width, given.height,
                            static_cast<int32_t>(bitRowBytes(given.width)), given.depth};
    PixelTile turned;
    ResultCode r = transformTile(source, turns, turned);
    if (failed(r)) {
        return r;
    }
    PixelTile wide;
    r = widenBitTile(turned, wide);
    freeBytes(turned.data);
    if (failed(r)) {
        return r;
    }
    if (failed(r = adoptTile(e, gs, wide))) {
        return r;
    }
    // Blending paints both colours of a cell, so the zero bits always count.
    // (Hook for blending: setupPaint makes the tone mixed while it is on.)
    gs.tileOpaque = blendOn ? uint16_t{1} : opaque;
    return KRYN_OK;
}

ResultCode setColourTile(Engine* e, GraphicsState& gs, const ScreenTile& given, int32_t turns,
                         bool blendOn) {
    const int32_t pixelBytes = given.depth == TILE_DEPTH_8     ? 1
                               : given.depth == TILE_DEPTH_254 ? 2
                                                               : 4;
    const TileSource source{static_cast<const uint8_t*>(given.data), given.width, given.height,
                            given.width * pixelBytes, given.depth};
    const TileTurn turn{turns, false, 1.0f};
    PixelTile tile;
    ResultCode r = pixelBytes == 1   ? turnTile8(source, turn, tile)
                   : pixelBytes == 2 ? turnTile16(source, turn, tile)
                                     : turnTile32(source, turn, tile);
    if (failed(r) || failed(r = adoptTile(e, gs, tile))) {
        return r;
    }
    gs.tileOpaque = 1; // the tile's pixels are the pattern everywhere
    gs.tileKind = blendOn ? TONE_MIXED : tileUniformity(tile);
    return KRYN_OK;
}

} // namespace

uint32_t tileUniformity(const PixelTile& tile) {
    const int64_t pixels = int64_t{tile.width} * tile.height;
    if (pixels <= 0 || tile.depth == TILE_DEPTH_254) {
        return TONE_MIXED;
    }
    const int64_t step = tile.depth == TILE_DEPTH_8 ? 1 : 4;
    const int64_t channels = tile.depth == TILE_DEPTH_8 ? 1 : 3;
    const uint8_t first = tile.data[0];
    if (first != 0x00 && first != 0xFF) {
        return TONE_MIXED;
    }
    for (int64_t i = 0; i < pixels * step; i += step) {
        for (int64_t c = 0; c < channels; ++c) {
            if (tile.data[i + c] != first) {
                return TONE_MIXED;
            }
        }
    }
    return first == 0 ? TONE_ZERO : TONE_ONE;
}

ResultCode setScreen(Engine* e, const ScreenTile* tile, uint16_t opaque) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    if (gs == nullptr || page == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (tile != nullptr) {
        const ResultCode r = checkTile(*tile, *page);
        if (failed(r)) {
            return r;
        }
    }
    if (tile == nullptr || tile->width == 0) {
        // No tile, or one without pixels: solid painting.
        PixelTile none;
        const ResultCode r = registerTile(e, none);
        if (failed(r)) {
            return r;
        }
        gs->screen = ScreenTile{};
        gs->tileKind = TONE_MIXED;
        gs->tileOpaque = opaque;
        return KRYN_OK;
    }
    // Quarter turns with any uniform scale; screens are never resampled.
    const int32_t turns = tileQuarterTurns(gs->transform);
    if (turns < 0) {
        return KRYN_ERR_NO_MEMORY;
    }
    const bool blendOn = page->paint.blendOn != 0;
    return tile->depth == TILE_DEPTH_1 ? setBitTile(e, *gs, *tile, turns, opaque, blendOn)
                                       : setColourTile(e, *gs, *tile, turns, blendOn);
}

} // namespace kryn
