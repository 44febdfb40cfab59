#include "geometry/transform.h"

namespace kryn {
namespace {

void pointTranslate(float x, float y, float out[2], const Transform& m) {
    out[0] = x + m.tx;
    out[1] = y + m.ty;
}
void vectorTranslate(float x, float y, float out[2], const Transform&) {
    out[0] = x;
    out[1] = y;
}
void pointTurn2(float x, float y, float out[2], const Transform& m) {
    out[0] = m.tx - x;
    out[1] = m.ty - y;
}
void vectorTurn2(float x, float y, float out[2], const Transform&) {
    out[0] = -x;
    out[1] = -y;
}
void pointScale(float x, float y, float out[2], const Transform& m) {
    out[0] = m.a * x + m.tx;
    out[1] = m.d * y + m.ty;
}
void vectorScale(float x, float y, float out[2], const Transform& m) {
    out[0] = m.a * x;
    out[1] = m.d * y;
}
void pointGeneral(float x, float y, float out[2], const Transform& m) {
    out[0] = m.a * x + m.c * y + m.tx;
    out[1] = m.b * x + m.d * y + m.ty;
}
void vectorGeneral(float x, float y, float out[2], const Transform& m) {
    out[0] = m.a * x + m.c * y;
    out[1] = m.b * x + m.d * y;
}
void pointSwap(float x, float y, float out[2], const Transform& m) {
    out[0] = m.c * y + m.tx;
    out[1] = m.b * x + m.ty;
}
void vectorSwap(float x, float y, float out[2], const Transform& m) {
    out[0] = m.c * y;
    out[1] = m.b * x;
}
void pointTurn3(float x, float y, float out[2], const Transform& m) {
    out[0] = y + m.tx;
    out[1] = m.ty - x;
}
void vectorTurn3(float x, float y, float out[2], const Transform&) {
    out[0] = y;
    out[1] = -x;
}
void pointTurn1(float x, float y, float out[2], const Transform& m) {
    out[0] = m.tx - y;
    out[1] = m.ty + x;
}
void vectorTurn1(float x, float y, float out[2], const Transform&) {
    out[0] = -y;
    out[1] = x;
}

} // namespace

Transform::Transform() : transformPoint(pointTranslate), transformVector(vectorTranslate) {}

TransformKind classifyMatrix(float a, float b, float c, float d) {
    if (b == 0.0f && c == 0.0f) {
        if (a == 1.0f && d == 1.0f) {
            return TK_TRANSLATE;
        }
        if (a == -1.0f && d == -1.0f) {
            return TK_TURN_2;
        }
        return TK_SCALE;
    }
    if (a == 0.0f && d == 0.0f) {
        if (b == -1.0f && c == 1.0f) {
            return TK_TURN_3;
        }
        if (b == 1.0f && c == -1.0f) {
            return TK_TURN_1;
        }
        return TK_SWAP;
    }
    return TK_GENERAL;
}

void invertMatrix(const float m[6], float det, int32_t kind, float out[6]) {
    for (int i = 0; i < 6; ++i) {
        out[i] = 0.0f;
    }
    if (kind >= 0) {
        out[0] = m[3] / det;
        out[3] = m[0] / det;
    }
    if (kind <= 0) {
        out[1] = -m[1] / det;
        out[2] = -m[2] / det;
    }
    const float tx = m[4];
    const float ty = m[5];
    if (tx != 0.0f || ty != 0.0f) {
        out[4] = -(tx * out[0] + ty * out[2]);
        out[5] = -(ty * out[3] + tx * out[1]);
    }
}

void concatMatrix(const float m0[6], const float m1[6], float out[6]) {
    const float a = m0[0] * m1[0] + m0[1] * m1[2];
    const float b = m0[0] * m1[1] + m0[1] * m1[3];
    const float c = m0[2] * m1[0] + m0[3] * m1[2];
    const float d = m0[2] * m1[1] + m0[3] * m1[3];
    const float tx = m0[4] * m1[0] + m0[5] * m1[2] + m1[4];
    const float ty = m0[4] * m1[1] + m0[5] * m1[3] + m1[5];
    out[0] = a;
    out[1] = b;
    out[2] = c;
    out[3] = d;
    out[4] = tx;
    out[5] = ty;
}

bool isRightAngleKind(int32_t kind) {
    return kind == TK_TRANSLATE || kind == TK_TURN_2 || kind == TK_TURN_3 || kind == TK_TURN_1;
}

int32_t quarterTurnsOfKind(int32_t kind) {
    switch (kind) {
    case TK_TRANSLATE:
        return 0;
    case TK_TURN_1:
        return 1;
    case TK_TURN_2:
        return 2;
    case TK_TURN_3:
        return 3;
    default:
        return -1;
    }
}

void computeMetrics(Transform& t) {
    if (isRightAngleKind(t.kind)) {
        t.metricYY = 1.0f;
        t.metricXX = 1.0f;
        t.metricXY = 0.0f;
        t.isQuarterTurn = 1;
        return;
    }
    t.isQuarterTurn = 0;
    t.metricXY = 0.0f;
    if (t.kind == TK_SCALE) {
        t.metricYY = t.d * t.d;
        t.metricXX = t.a * t.a;
    } else if (t.kind == TK_SWAP) {
        t.metricYY = t.b * t.b;
        t.metricXX = t.c * t.c;
    } else {
        t.metricYY = t.b * t.b + t.d * t.d;
        t.metricXY = t.a * t.b + t.c * t.d;
        t.metricXX = t.a * t.a + t.c * t.c;
    }
}

void selectTransformOps(Transform& t) {
    switch (t.kind) {
    case TK_TRANSLATE:
        t.transformPoint = pointTranslate;
        t.transformVector = vectorTranslate;
        break;
    case TK_TURN_2:
        t.transformPoint = pointTurn2;
        t.transformVector = vectorTurn2;
        break;
    case TK_SCALE:
        t.transformPoint = pointScale;
        t.transformVector = vectorScale;
        break;
    case TK_SWAP:
        t.transformPoint = pointSwap;
        t.transformVector = vectorSwap;
        break;
    case TK_TURN_3:
        t.transformPoint = pointTurn3;
        t.transformVector = vectorTurn3;
        break;
    case TK_TURN_1:
        t.transformPoint = pointTurn1;
        t.transformVector = vectorTurn1;
        break;
    default:
        t.transformPoint = pointGeneral;
        t.transformVector = vectorGeneral;
        break;
    }
}

void refreshInverse(Transform& t) {
    const float m[6] = {t.a, t.b, t.c, t.d, t.tx, t.ty};
    invertMatrix(m, t.det, t.kind, t.inverse);
}

bool setTransformFromMatrix(Transform& t, const float m[6], float det, float scale) {
    if (det == 0.0f) {
        return false;
    }
    t.a = m[0];
    t.b = m[1];
    t.c = m[2];
    t.d = m[3];
    t.tx = m[4];
    t.ty = m[5];
    t.det = det;
    t.orientation = det < 0.0f ? int16_t{-1} : int16_t{1};
    t.kind = classifyMatrix(t.a, t.b, t.c, t.d);
    t.scale = scale;
    refreshInverse(t);
    computeMetrics(t);
    selectTransformOps(t);
    return true;
}

} // namespace kryn
