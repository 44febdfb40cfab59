// How sampled images and masks are turned into device orientation: the
// sample grid's device axes decide which of the eight axis-aligned
// orientations the samples are copied into, and what is left of the
// placement is a scale on each device axis.
#pragma once

#include "paint/tile_turning.h"

namespace kryn {

// The device displacement of one sample step along a row (u) and of one row
// step down the image (v).
struct SampleAxes {
    double ux = 1, uy = 0;
    double vx = 0, vy = 1;
};

struct SampleOrientation {
    bool swap = false;  // device x follows the rows' step down (v), device y the row (u)
    bool flipX = false; // device x runs against its sample axis
    bool flipY = false;
    double scaleX = 1; // device pixels a device-oriented sample, on each axis (>= 0)
    double scaleY = 1;

    bool turned() const { return swap || flipX || flipY; }
    // The copy that turns samples of a width x height image this way, 1:1.
    TilePick pick(int32_t width, int32_t height) const;
};

// Axes whose grid is turned or mirrored by quarter turns are taken
// exactly. Any other grid (rotated by another angle, or sheared) takes the
// nearest such orientation: the device axis each sample axis runs closer
// to, by the sizes of the two diagonal products, and the scales are the
// components along those axes, as the renderers paint such images with
// upright samples.
SampleOrientation orientSamples(const SampleAxes& axes);

} // namespace kryn
