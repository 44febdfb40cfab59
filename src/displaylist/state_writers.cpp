// Writers of the state records: logical function, screen, opacity, colours,
// pattern, image phases and blending.
#include "displaylist/record_commit.h"
#include "displaylist/record_writers.h"
#include "engine/engine.h"

namespace kryn {

namespace {

inline constexpr uint32_t LONG_PHASE_FROM = 256;

// Reserves an n-byte record with its opcode in place.
uint8_t* reserveOp(DisplayList* list, uint32_t n, uint8_t op) {
    uint8_t* r = reserveRecord(list, n);
    if (r != nullptr) {
        r[0] = op;
    }
    return r;
}

// Colour records: three colour bytes (4-byte record, one stream word), or
// with the alpha byte while an alpha mode is set (5 bytes, two words).
ResultCode writeColour(DisplayList* list, uint8_t op, uint8_t alphaOp, uint32_t colour,
                       RenderResources* resources) {
    const bool alpha = resources->alphaMode != 0;
    uint8_t* r = reserveOp(list, alpha ? 5 : 4, alpha ? alphaOp : op);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[1] = static_cast<uint8_t>(colour);
    r[2] = static_cast<uint8_t>(colour >> 8);
    r[3] = static_cast<uint8_t>(colour >> 16);
    if (alpha) {
        r[4] = static_cast<uint8_t>(colour >> 24);
    }
    return finishRecord(list, alpha ? 8 : 4, false, resources);
}

} // namespace

ResultCode writeRop(DisplayList* list, uint32_t code, RenderResources* resources) {
    uint8_t* r = reserveOp(list, 2, DL_OP_SET_ROP);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[1] = static_cast<uint8_t>(code);
    list->activeRop = r[1];
    return finishRecord(list, 4, false, resources);
}

ResultCode writeScreen(DisplayList* list, uint32_t screenId, uint32_t phase,
                       RenderResources* resources) {
    uint8_t* r = reserveOp(list, 6, DL_OP_SET_SCREEN);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU16(r + 2, static_cast<uint16_t>(phase));
    storeU16(r + 4, static_cast<uint16_t>(screenId));
    const bool longPhase = static_cast<uint16_t>(phase) >= LONG_PHASE_FROM;
    return finishRecord(list, longPhase ? 8 : 4, false, resources);
}

ResultCode writeOpaque(DisplayList* list, uint32_t value, uint32_t target,
                       RenderResources* resources) {
    uint8_t* r = reserveOp(list, 4, DL_OP_SET_OPAQUE);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[1] = target != 0 ? 255 : 0;
    storeU16(r + 2, value != 0 ? 0xFFFF : 0);
    return finishRecord(list, 4, false, resources);
}

ResultCode writeImageColour(DisplayList* list, uint32_t colour, ColourWhich which,
                            RenderResources* resources) {
    return which == COLOUR_FORE
               ? writeColour(list, DL_OP_IMAGE_COLOUR, DL_OP_IMAGE_COLOUR_A, colour, resources)
               : writeColour(list, DL_OP_IMAGE_BACK_COLOUR, DL_OP_IMAGE_BACK_COLOUR_A, colour,
                             resources);
}

ResultCode writePaintColour(DisplayList* list, uint32_t colour, ColourWhich which,
                            RenderResources* resources) {
    return which == COLOUR_FORE
               ? writeColour(list, DL_OP_PAINT_COLOUR, DL_OP_PAINT_COLOUR_A, colour, resources)
               : writeColour(list, DL_OP_PAINT_BACK_COLOUR, DL_OP_PAINT_BACK_COLOUR_A, colour,
                             resources);
}

ResultCode writePattern(DisplayList* list, uint32_t index, RenderResources* resources) {
    uint8_t* r = reserveOp(list, 4, DL_OP_SELECT_PATTERN);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU16(r + 2, static_cast<uint16_t>(index));
    return finishRecord(list, 4, false, resources);
}

ResultCode writeImageMode(DisplayList* list, uint32_t bitOffset, RenderResources* resources) {
    uint8_t* r = reserveOp(list, 4, DL_OP_IMAGE_MODE);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU16(r + 2, static_cast<uint16_t>(bitOffset));
    return finishRecord(list, 4, false, resources);
}

ResultCode writeImageOrigin(DisplayList* list, uint32_t rowOffset, uint32_t columnOffset,
                            RenderResources* resources) {
    uint8_t* r = reserveOp(list, 12, DL_OP_IMAGE_ORIGIN);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU32(r + 4, rowOffset);
    storeU32(r + 8, columnOffset);
    return finishRecord(list, 12, false, resources);
}

ResultCode writeBlend(DisplayList* list, uint32_t on, RenderResources* resources) {
    uint8_t* r = reserveOp(list, 4, DL_OP_BLEND);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    storeU16(r + 2, on != 0 ? 1 : 0);
    return finishRecord(list, 4, false, resources);
}

ResultCode writeBlendSelect(DisplayList* list, uint8_t value, RenderResources* resources) {
    uint8_t* r = reserveOp(list, 3, DL_OP_BLEND_SELECT);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[2] = value;
    return finishRecord(list, 4, false, resources);
}

ResultCode writeBlendData(DisplayList* list, const uint16_t values[3], uint8_t selector,
                          BlendDataWhich which, RenderResources* resources) {
    uint8_t* r =
        reserveOp(list, 8, which == BLEND_DATA_A ? DL_OP_BLEND_DATA_A : DL_OP_BLEND_DATA_B);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    r[1] = selector;
    storeU16(r + 2, values[0]);
    storeU16(r + 4, values[1]);
    storeU16(r + 6, values[2]);
    return finishRecord(list, 8, false, resources);
}

ResultCode writeMark(DisplayList* list) {
    uint8_t* r = reserveOp(list, 1, DL_OP_MARK);
    if (r == nullptr) {
        return KRYN_ERR_NO_MEMORY;
    }
    list->serialBytes += 4;
    return KRYN_OK;
}

} // namespace kryn
