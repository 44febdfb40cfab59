// The solid members of the area families (no screen selected): P is the
// paint colour, S the image colour.
#pragma once

#include "render/area_operand.h"

namespace kryn {

void paintSolidRectGrey(PaintState& state, const AreaOperand& operand);
void paintSolidRectListGrey(PaintState& state, const AreaOperand& operand);
void paintSolidSpanListGrey(PaintState& state, const AreaOperand& operand);
void paintSolidRowSpansGrey(PaintState& state, const AreaOperand& operand);
void paintSolidColumnRunsGrey(PaintState& state, const AreaOperand& operand);

void paintSolidRectColour(PaintState& state, const AreaOperand& operand);
void paintSolidRectListColour(PaintState& state, const AreaOperand& operand);
void paintSolidSpanListColour(PaintState& state, const AreaOperand& operand);
void paintSolidRowSpansColour(PaintState& state, const AreaOperand& operand);
void paintSolidColumnRunsColour(PaintState& state, const AreaOperand& operand);

} // namespace kryn
