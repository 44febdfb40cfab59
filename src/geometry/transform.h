// The user-to-device transformation of a graphics state, with everything
// derived from it once so that per-point work stays cheap: the inverse, the
// classification of the linear part, stroking metrics and the two point
// operations chosen for the classification.
#pragma once

#include <cstdint>

namespace kryn {

// Classification of the linear part (a, b, c, d), by exact float equality.
enum TransformKind : int32_t {
    TK_TURN_1 = -3,   // a = d = 0, b = 1, c = -1: one quarter turn
    TK_TURN_3 = -2,   // a = d = 0, b = -1, c = 1: three quarter turns
    TK_SWAP = -1,     // a = d = 0, other b and c
    TK_GENERAL = 0,   // b or c non-zero, a or d non-zero
    TK_SCALE = 1,     // b = c = 0, other a and d
    TK_TURN_2 = 2,    // b = c = 0, a = d = -1: half turn
    TK_TRANSLATE = 3, // b = c = 0, a = d = 1
};

struct Transform;

// Maps (x, y) through a Transform into out[0], out[1].
using PointOp = void (*)(float x, float y, float out[2], const Transform& m);

// Matrix elements in the order a, b, c, d, tx, ty. Points are row vectors:
// x' = a*x + c*y + tx, y' = b*x + d*y + ty.
struct Transform {
    float a = 1.0f;
    float b = 0.0f;
    float c = 0.0f;
    float d = 1.0f;
    float tx = 0.0f;
    float ty = 0.0f;
    float inverse[6] = {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f};
    int32_t kind = TK_TRANSLATE;
    float det = 1.0f;
    float metricYY = 1.0f;     // b*b + d*d
    float metricXY = 0.0f;     // a*b + c*d
    float metricXX = 1.0f;     // a*a + c*c
    int16_t orientation = 1;   // -1 when det < 0
    int16_t isQuarterTurn = 1; // kind is one of the four right-angle kinds
    float scale = 1.0f;        // factor of the last KRYNSetScale
    int16_t reserved = 0;      // carried over by every setter
    PointOp transformPoint;    // with translation
    PointOp transformVector;   // without translation

    Transform();
};

TransformKind classifyMatrix(float a, float b, float c, float d);

// Fills out (six floats) with the inverse of m for its determinant and kind.
void invertMatrix(const float m[6], float det, int32_t kind, float out[6]);

// Product applying m0 first and m1 second.
void concatMatrix(const float m0[6], const float m1[6], float out[6]);

void computeMetrics(Transform& t);
void selectTransformOps(Transform& t);

// Quarter turns (0..3) the page takes from a matrix of this kind, or -1.
int32_t quarterTurnsOfKind(int32_t kind);

// True for the four right-angle kinds, whose points stay on whole pixels.
bool isRightAngleKind(int32_t kind);

// Recomputes the inverse from the stored elements, det and kind.
void refreshInverse(Transform& t);

// Sets a Transform from a float matrix, keeping orientation from det and
// the given scale; false when the determinant is 0.
bool setTransformFromMatrix(Transform& t, const float m[6], float det, float scale);

} // namespace kryn
