#include "stroke/dash_pattern.h"

#include "engine/memory.h"
#include "geometry/saturate.h"

namespace kryn {

namespace {

// Entries whose 16.16 form fits 32 bits.
constexpr int32_t FIXED_ENTRY_LIMIT = 16383;

bool ownsDashArrays(const GraphicsState& gs) {
    return gs.depth == gs.dashOwnerDepth;
}

void releaseOwnedArrays(GraphicsState& gs) {
    if (ownsDashArrays(gs)) {
        freeAndClear(gs.dashArray);
        freeAndClear(gs.dashArrayFixed);
    }
}

bool sameEntries(const GraphicsState& gs, const int32_t* entries, uint16_t count) {
    if (count != gs.dashCount || gs.dashArray == nullptr) {
        return false;
    }
    for (uint16_t i = 0; i < count; ++i) {
        if (entries[i] != saturateToInt32(static_cast<double>(gs.dashArray[i]))) {
            return false;
        }
    }
    return true;
}

// Position `phase` inside the pattern: which entry, pen up or down, and how
// much of the entry is left. sum > 0.
void reducePhase(GraphicsState& gs, const int32_t* entries, uint16_t count, int64_t sum,
                 uint32_t phase) {
    if (phase == 0) {
        gs.dashIndex = 0;
        gs.dashOn = 1;
        gs.dashRemaining = 0.0f;
        return;
    }
    // p < sum, so the walk below stops inside the pattern.
    int64_t p = static_cast<int64_t>(static_cast<uint64_t>(phase) % static_cast<uint64_t>(sum));
    uint16_t i = 0;
    while (i + 1 < count && p >= entries[i]) {
        p -= entries[i];
        ++i;
    }
    gs.dashIndex = static_cast<uint16_t>(i + 1 == count ? 0 : i + 1);
    gs.dashOn = (i % 2 == 0) ? 1 : 0;
    gs.dashRemaining = static_cast<float>(entries[i] - p);
}

void makeSolid(GraphicsState& gs) {
    releaseOwnedArrays(gs);
    gs.dashArray = nullptr;
    gs.dashArrayFixed = nullptr;
    gs.dashCount = 0;
    gs.dashIndex = 0;
    gs.dashOn = 1;
    gs.dashRemaining = 0.0f;
    gs.dashFixedOk = 1;
    gs.dashRemainingFixed = 0;
    gs.dashOwnerDepth = gs.depth;
}

} // namespace

ResultCode setLineDash(GraphicsState& gs, const int32_t* entries, uint16_t count, uint32_t phase) {
    if (count > 0 && entries == nullptr) {
        return KRYN_ERR_INVALID;
    }
    if (count == 0) {
        if (gs.dashCount != 0) {
            makeSolid(gs);
        }
        return KRYN_OK;
    }
    bool positive = false;
    bool fitsFixed = true;
    int64_t sum = 0;
    for (uint16_t i = 0; i < count; ++i) {
        positive = positive || entries[i] > 0;
        fitsFixed =
            fitsFixed && entries[i] <= FIXED_ENTRY_LIMIT && entries[i] >= -FIXED_ENTRY_LIMIT;
        sum += entries[i];
    }
    if (!positive || sum <= 0) {
        return KRYN_ERR_INVALID;
    }
    if (!sameEntries(gs, entries, count)) {
        auto* floats = static_cast<float*>(allocBytes(sizeof(float) * count));
        int32_t* fixed = nullptr;
        if (floats != nullptr && fitsFixed) {
            fixed = static_cast<int32_t*>(allocBytes(sizeof(int32_t) * count));
        }
        if (floats == nullptr || (fitsFixed && fixed == nullptr)) {
            freeBytes(floats);
            return KRYN_ERR_NO_MEMORY;
        }
        for (uint16_t i = 0; i < count; ++i) {
            floats[i] = static_cast<float>(entries[i]);
            if (fixed != nullptr) {
                fixed[i] = entries[i] * 65536;
            }
        }
        releaseOwnedArrays(gs);
        gs.dashArray = floats;
        gs.dashArrayFixed = fixed;
        gs.dashCount = count;
        gs.dashFixedOk = fitsFixed ? 1 : 0;
        gs.dashOwnerDepth = gs.depth;
    }
    reducePhase(gs, entries, count, sum, phase);
    gs.dashRemainingFixed =
        gs.dashFixedOk != 0 ? static_cast<int32_t>(static_cast<double>(gs.dashRemaining) * 65536.0)
                            : 0;
    return KRYN_OK;
}

} // namespace kryn
