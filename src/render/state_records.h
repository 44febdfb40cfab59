// The state records of a band list and their effect on the paint state.
#pragma once

#include "render/band_variant.h"

#include <cstddef>
#include <cstdint>

namespace kryn {

struct BandRenderer;
struct PaintState;

// Applies the state record at `record` (opcode first) and answers its size,
// or 0 when the variant has no handler for the opcode (the walk of the block
// ends there). Drawing records also answer 0: they are the caller's.
size_t applyStateRecord(PaintState& state, const BandRenderer& renderer, const uint8_t* record,
                        BandVariant variant);

} // namespace kryn
