// Intersection of a trapezoid with a clip region: a pixel is emitted exactly
// when its sample point lies inside both; the pieces never overlap.
#pragma once

#include "engine/result_codes.h"
#include "scan/emit_trapezoid.h"

namespace kryn {

ResultCode clipTrapezoid(ScanState* scan, const Trapezoid& t, const ClipRegion& region,
                         const ScanTarget& target);

} // namespace kryn
