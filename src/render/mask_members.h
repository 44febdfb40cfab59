// The mask family (record 131): a 1-bit stencil painted in the image
// colour (colour slot 0, which the recorders set to the paint colour). A
// 1 bit paints, a 0 bit leaves the pixel alone; the raster operation is
// not applied. 32-bit pixels take the bitmap tag.
//
// Two members, chosen by the screen: a 1-bit screen with transparent zeros
// (pixels under its 0 bits stay), and every other case, which picks its
// pixel once per record: slot 0 without a screen; slot 0 under the 1 bits
// and the paint back colour (slot 3) under the 0 bits of an opaque 1-bit
// screen; the tile's own pixels for tiles of samples.
//
// The blend members take the same screens while blending is on (false:
// no alpha source is in play, the plain member paints). The mask's colour
// is the paint colour, so its alpha comes as for solid paint: the constant
// alpha, key 0 or the colour's own alpha; under a 1-bit screen the 0 bits
// of an opaque cell take the back colour's, and tiles their pixels' rules.
#pragma once

#include "render/image_operand.h"

namespace kryn {

void paintMaskGrey(PaintState& state, const ImageOperand& operand);
void paintMaskColour(PaintState& state, const ImageOperand& operand);

bool blendMaskGrey(PaintState& state, const ImageOperand& operand);
bool blendMaskColour(PaintState& state, const ImageOperand& operand);

} // namespace kryn
