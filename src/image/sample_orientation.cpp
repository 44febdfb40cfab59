#include "image/sample_orientation.h"

#include <cmath>

namespace kryn {

TilePick SampleOrientation::pick(int32_t width, int32_t height) const {
    TilePick p;
    p.swap = swap;
    p.flipX = flipX;
    p.flipY = flipY;
    p.width = swap ? height : width;
    p.height = swap ? width : height;
    return p;
}

SampleOrientation orientSamples(const SampleAxes& a) {
    SampleOrientation o;
    o.swap = std::fabs(a.ux * a.vy) < std::fabs(a.uy * a.vx);
    if (!o.swap) {
        o.flipX = a.ux < 0;
        o.flipY = a.vy < 0;
        o.scaleX = std::fabs(a.ux);
        o.scaleY = std::fabs(a.vy);
    } else {
        o.flipX = a.vx < 0;
        o.flipY = a.uy < 0;
        o.scaleX = std::fabs(a.vx);
        o.scaleY = std::fabs(a.uy);
    }
    return o;
}

} // namespace kryn
