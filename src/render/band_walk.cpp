#include "render/band_walk.h"

#include "displaylist/display_list.h"
#include "engine/device_level.h"
#include "engine/engine.h"
#include "engine/memory.h"
#include "paint/rop_codes.h"
#include "render/band_clear.h"
#include "render/band_delivery.h"
#include "render/band_renderer.h"
#include "render/render_families.h"
#include "render/state_records.h"

namespace kryn {

namespace {

constexpr uint32_t IDENTITY_SCALE = 0x10000;

// One band being played.
struct BandPlay {
    BandRenderer& renderer;
    RenderResources& resources;
    PaintState& state;
    const RenderFamilies& families;
    uint16_t band;
    BandVariant variant;
    bool painted = false;
    uint32_t contentFlags = 0;

    void drew(uint32_t content) {
        painted = true;
        contentFlags |= content;
    }
};

// Area records whose array pointer is missing paint nothing.
bool readList(const uint8_t* r, AreaOperand& op) {
    const auto* buffer = static_cast<const uint8_t*>(loadPointer(r + ARRAY_POINTER_OFFSET));
    op.count = loadU16(r + 2);
    op.entries = buffer;
    return buffer != nullptr;
}

// White paint copied without a screen onto a band: lists are skipped while
// nothing has been painted, rectangles unless they meet what was painted.
bool whiteCopy(const PaintState& s) {
    return s.tileKind == 0 && s.ropCode == ROP_PATTERN && paintIsWhite(s);
}

void playArea(BandPlay& play, const uint8_t* r) {
    PaintState& s = play.state;
    AreaOperand op{};
    AreaGeometry geometry = AREA_RECT;
    switch (r[0]) {
    case DL_OP_RECT:
    case DL_OP_COLUMN:
        if (r[0] == DL_OP_RECT) {
            op.top = r[1];
            op.left = loadU16(r + 2);
            op.right = op.left + loadU16(r + 4) - 1;
            op.bottom = op.top + r[6] - 1;
        } else {
            op.top = 0;
            op.left = loadU16(r + 2);
            op.right = op.left + r[1] - 1;
            op.bottom = s.height - 1;
        }
        if (whiteCopy(s) && s.blendOn == 0 &&
            !dirtyBoxIntersects(*s.box, op.left, op.top, op.right, op.bottom) &&
            !dirtyBoxIntersects(s.secondBox, op.left, op.top, op.right, op.bottom)) {
            return;
        }
        break;
    default:
        if (whiteCopy(s) && s.blendOn == 0 && !play.painted) {
            return;
        }
        if (!readList(r, op)) {
            play.drew(CONTENT_AREA);
            return;
        }
        if (r[0] == DL_OP_RECTS) {
            geometry = AREA_RECT_LIST;
            op.entries += 4;
        } else if (r[0] == DL_OP_RUNS || r[0] == DL_OP_RUNS_SHORT) {
            geometry = AREA_SPAN_LIST;
            op.entries += 4;
        } else if (r[0] == DL_OP_COLUMN_RUNS) {
            geometry = AREA_COLUMN_RUNS;
            op.entries += 4;
        } else {
            geometry = AREA_ROW_SPANS;
            op.top = r[1];
        }
        break;
    }
    paintArea(s, play.families, geometry, op);
    play.drew(CONTENT_AREA);
}

ImageOperand readImage(const uint8_t* r) {
    ImageOperand op{};
    op.top = r[1];
    op.left = loadU16(r + 2);
    if (r[0] == DL_OP_SCALED_IMAGE) {
        op.sourceColumn = loadU32(r + 4);
        op.width = loadU32(r + 8);
        op.sourceRow = loadU32(r + 12);
        op.rows = loadU32(r + 16);
        op.kind = r[20];
        op.scaleX = loadU32(r + 24);
        op.scaleY = loadU32(r + 28);
        op.sourceColumns = loadU32(r + 32);
        op.sourceRows = loadU32(r + 36);
        op.sourceStride = loadU32(r + 40);
        op.data = static_cast<const uint8_t*>(loadPointer(r + SCALED_IMAGE_POINTER_OFFSET));
        op.scaled = 1;
        return op;
    }
    op.width = loadU16(r + 4);
    op.sourceColumns = loadU16(r + 6);
    op.rows = r[8];
    op.sourceRows = r[9];
    op.kind = r[10];
    op.sourceStride = loadU16(r + 12);
    op.scaleX = IDENTITY_SCALE;
    op.scaleY = IDENTITY_SCALE;
    op.data = static_cast<const uint8_t*>(loadPointer(r + IMAGE_POINTER_OFFSET));
    return op;
}

// The direct scaled-image renderer takes 24-bit (colour) or 8-bit (grey)
// samples when it has its work area and nothing else needs the general path.
bool useDirectScaled(const BandPlay& play, const ImageOperand& op) {
    const PaintState& s = play.state;
    const uint32_t kind = op.kind & 0xF0u;
    const uint32_t level = play.resources.deviceLevel;
    if (!op.scaled || play.renderer.expandBuffer == nullptr || play.resources.quantization != 0 ||
        s.tileKind != 0) {
        return false;
    }
    if (play.variant == BAND_COLOUR) {
        return (kind == 0x40 || kind == 0x50) && s.blendOn == 0 && level >= LEVEL_ALPHA_BLEND;
    }
    return (kind == 0x20 || kind == 0x30) && level > LEVEL_TYPED_RASTERS;
}

// Block flattening follows the 8-bit (kind 0x20) and 24-bit (kind 0x40)
// images of quantised pages drawn with a copying raster operation.
bool flattensAfter(const BandPlay& play, const ImageOperand& op) {
    const uint32_t kind = op.kind & 0xF0u;
    const uint8_t rop = play.state.ropCode;
    if (play.resources.quantization == 0 || op.width < 2 || op.rows < 2 ||
        (rop != 0xCC && rop != 0xEE && rop != 0x88)) {
        return false;
    }
    if (play.variant == BAND_COLOUR) {
        return kind == 0x40 && (!op.scaled || (op.scaleX < 0x20000 && op.scaleY < 0x20000));
    }
    return kind == 0x20;
}

void playImage(BandPlay& play, const uint8_t* r) {
    PaintState& s = play.state;
    const ImageOperand op = readImage(r);
    const uint32_t nibble = op.kind >> 4;
    s.scaleX = op.scaleX;
    s.scaleY = op.scaleY;
    const ImageBlendPainter blend = s.blendOn != 0 ? play.families.imageBlend[nibble] : nullptr;
    ImagePainter painter = nullptr;
    if (useDirectScaled(play, op) && play.families.directScaled != nullptr) {
        painter = play.families.directScaled;
    } else {
        painter = play.families.image[nibble];
    }
    const bool blended = op.data != nullptr && blend != nullptr && blend(s, op);
    if (!blended && painter != nullptr && op.data != nullptr) {
        painter(s, op);
        ImagePainter after = play.families.afterImage[nibble];
        if (s.blendOn == 0 && after != nullptr && flattensAfter(play, op)) {
            after(s, op);
        }
    }
    s.scaleX = IDENTITY_SCALE;
    s.scaleY = IDENTITY_SCALE;
    play.drew(nibble == 0 ? CONTENT_AREA : CONTENT_IMAGE);
}

void playMask(BandPlay& play, const uint8_t* r) {
    PaintState& s = play.state;
    const ImageOperand op = readImage(r);
    const ImageBlendPainter blend = s.blendOn != 0 ? play.families.maskBlend : nullptr;
    const ImagePainter painter = play.families.mask;
    if (op.data != nullptr && !(blend != nullptr && blend(s, op)) && painter != nullptr) {
        painter(s, op);
    }
    const bool inked = play.variant == BAND_COLOUR && s.colour[SLOT_IMAGE] != 0;
    play.drew(inked ? CONTENT_BITMAP : CONTENT_AREA);
}

bool isAreaRecord(uint8_t op) {
    switch (op) {
    case DL_OP_RUNS:
    case DL_OP_RECT:
    case DL_OP_COLUMN_RUNS:
    case DL_OP_RUNS_SHORT:
    case DL_OP_RECTS:
    case DL_OP_ROW_SPANS:
    case DL_OP_COLUMN:
    case DL_OP_ROW_SPANS_SHORT:
        return true;
    default:
        return false;
    }
}

// Plays one block's records; answers false when the walk must stop (an
// error from delivery, left in `result`).
bool playBlock(BandPlay& play, const DisplayListBlock* block, ResultCode& result) {
    const uint8_t* at = block->area;
    const uint8_t* end = reinterpret_cast<const uint8_t*>(block) + BLOCK_SIZE;
    while (at < end) {
        const uint8_t op = *at;
        const size_t size = recordSize(op);
        if (op < DL_OP_IMAGE || op > DL_OP_CHUNK || size == 0 ||
            size > static_cast<size_t>(end - at)) {
            return true; // the rest of the block holds no records
        }
        if (op == DL_OP_END) {
            if (play.painted) {
                result = deliverBand(play.renderer, play.state, play.resources, play.band,
                                     play.variant, play.contentFlags);
            }
            return !failed(result);
        }
        if (isAreaRecord(op)) {
            playArea(play, at);
        } else if (op == DL_OP_IMAGE || op == DL_OP_SCALED_IMAGE) {
            if (play.variant != BAND_MONO) {
                playImage(play, at);
            }
        } else if (op == DL_OP_MASK_IMAGE) {
            playMask(play, at);
        } else if (applyStateRecord(play.state, play.renderer, at, play.variant) == 0) {
            return true;
        }
        at += size;
    }
    return true;
}

} // namespace

ResultCode walkBand(BandRenderer& renderer, RenderResources& resources, uint16_t band,
                    DisplayList& list, BandVariant variant) {
    uint8_t* scratch = nullptr;
    if (renderer.expandBuffer == nullptr) {
        scratch = static_cast<uint8_t*>(allocBytes(BAND_SCRATCH_BYTES));
        if (scratch == nullptr) {
            return KRYN_ERR_NO_MEMORY;
        }
    }
    const bool grey = variant != BAND_COLOUR;
    PaintState& state = *renderer.paintState;
    if (list.hasDrawing != 0 || variant == BAND_MONO) {
        clearBandRaster(renderer, grey);
        resetDirtyBox(renderer.box, renderer.width, renderer.height);
    }
    initPaintState(state, renderer, grey);
    state.scratch = scratch;
    state.quantization = resources.quantization;
    BandPlay play{renderer, resources, state, grey ? greyFamilies() : colourFamilies(),
                  band,     variant};
    ResultCode result = KRYN_OK;
    for (const DisplayListBlock* block = list.firstBlock; block != nullptr; block = block->next) {
        if (!playBlock(play, block, result)) {
            break;
        }
    }
    state.scratch = nullptr;
    if (scratch != nullptr) {
        freeBytes(scratch);
    }
    return result;
}

} // namespace kryn
