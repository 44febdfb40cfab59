// Circular and elliptical arcs as cubic segments: whole quarter circles plus
// one remainder. Under a right-angle transformation the cubics are stored in
// power form with their radius and angle, so that flattening can take its
// step count from a table.
#pragma once

#include "engine/result_codes.h"
#include "geometry/path.h"
#include "geometry/path_pool.h"
#include "geometry/transform.h"

#include <cstdint>

namespace kryn {

inline constexpr float ARC_KAPPA = 0.5522847771644592f;
inline constexpr float ARC_KAPPA_RECIPROCAL = 1.8106601f;
inline constexpr float DEGREES_PER_RADIAN = 57.295776f;
inline constexpr float RADIANS_PER_DEGREE = 0.017453292f;

// An arc in user units; direction 1 runs through increasing angles.
struct ArcDesc {
    float cx, cy;
    float rx, ry;
    float startAngle, endAngle; // degrees
    int32_t direction;
};

// Angle in degrees (0 <= a < 360) of the ray through v from the centre of an
// ellipse with radii rx, ry: the parametric angle of the ellipse point on it.
float arcAngle(float rx, float ry, float vx, float vy);

// The arc descriptor of an arc box (ellipse box, start and end rays).
ArcDesc arcFromBox(int32_t left, int32_t top, int32_t right, int32_t bottom, int32_t xStart,
                   int32_t yStart, int32_t xEnd, int32_t yEnd);

// First point of an arc, user units.
void arcFirstPoint(const ArcDesc& arc, float out[2]);

// Appends the arc of a circle (rx = ry) starting at user point s to sub and
// stores its last device point in end.
ResultCode buildCircleArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                          const Transform& m, float end[2]);

// An elliptical arc drawn as a circular arc through a scaled transformation.
ResultCode buildEllipseArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                           const Transform& m, float end[2]);

// The circle or ellipse routine, as the radii decide.
ResultCode buildArc(PathPool& pool, Subpath* sub, const ArcDesc& arc, const float s[2],
                    const Transform& m, float end[2]);

} // namespace kryn
