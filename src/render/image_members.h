// The image families of the two raster formats: what records 130 and 146
// paint, by image kind. Each entry point is a family's dispatcher: it picks
// the member for the band's screen and for the record's scale (one sample a
// pixel, or replicated samples), and for 1-bit images also by the image
// background flag, so that no per-pixel loop tests any of them.
//
// Every member paints the pixel rule of the image families: the sample
// (after the colour-table lookup; for 1-bit images the image colour for 1
// bits and, with the background flag set, the image back colour for 0
// bits, 0 bits leaving the band alone otherwise) is the source S of the
// raster operation: 0xCC copies it (with the image tag on 32-bit rasters),
// 0x66 XORs it into the band (tag kept), any other operation runs
// op(S, P, D, T) with P the paint colour or the screen.
#pragma once

#include "render/image_operand.h"

namespace kryn {

// 8-bit rasters.
void paintBitImageGrey(PaintState& state, const ImageOperand& op);     // kind 0x00
void paintGreyImageGrey(PaintState& state, const ImageOperand& op);    // kinds 0x20, 0x30
void paintIndexedImageGrey(PaintState& state, const ImageOperand& op); // kind 0x80

// 32-bit rasters.
void paintBitImageColour(PaintState& state, const ImageOperand& op);     // kind 0x00
void paintColourImageColour(PaintState& state, const ImageOperand& op);  // kinds 0x40, 0x50
void paintIndexedImageColour(PaintState& state, const ImageOperand& op); // kind 0x80

// The direct scaled renderer (146 without screen or blending, expand buffer
// present): each replicated row is made once in the expand buffer, runs of
// equal samples filled at once, and copied to every device row it covers.
void paintDirectScaledGrey(PaintState& state, const ImageOperand& op);   // kinds 0x20, 0x30
void paintDirectScaledColour(PaintState& state, const ImageOperand& op); // kinds 0x40, 0x50

// The blend families, asked first while a band's blending is on: false when
// no sample of the record can have an alpha source (the plain member then
// paints it). Kinds 0x90 (indexed, alpha in the table), 0xB0 (32-bit
// samples with alpha) and 0xD0 (grey and alpha) paint only here.
bool blendBitImageGrey(PaintState& state, const ImageOperand& op);
bool blendGreyImageGrey(PaintState& state, const ImageOperand& op);
bool blendIndexedImageGrey(PaintState& state, const ImageOperand& op);
bool blendIndexedAlphaImageGrey(PaintState& state, const ImageOperand& op); // kind 0x90
bool blendGreyAlphaImageGrey(PaintState& state, const ImageOperand& op);    // kind 0xD0
bool blendBitImageColour(PaintState& state, const ImageOperand& op);
bool blendColourImageColour(PaintState& state, const ImageOperand& op);
bool blendIndexedImageColour(PaintState& state, const ImageOperand& op);
bool blendIndexedAlphaImageColour(PaintState& state, const ImageOperand& op); // kind 0x90
bool blendColourAlphaImageColour(PaintState& state, const ImageOperand& op);  // kind 0xB0

} // namespace kryn
