#include "geometry/transform_setters.h"

#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/orientation_clip.h"

#include <cmath>

namespace kryn {

ResultCode setMatrix(Engine* e, const int32_t m[6]) {
    GraphicsState* gs = currentState(e);
    PageRecord* page = openPage(e);
    if (gs == nullptr || page == nullptr || m == nullptr) {
        return KRYN_ERR_INVALID;
    }
    // The determinant is taken in wrapping 32-bit integer arithmetic.
    const auto ad = static_cast<uint32_t>(m[3]) * static_cast<uint32_t>(m[0]);
    const auto cb = static_cast<uint32_t>(m[2]) * static_cast<uint32_t>(m[1]);
    const auto det = static_cast<int32_t>(ad - cb);
    if (det == 0) {
        return KRYN_ERR_INVALID;
    }
    float fm[6];
    for (int i = 0; i < 6; ++i) {
        fm[i] = static_cast<float>(m[i]);
    }
    Transform& t = gs->transform;
    setTransformFromMatrix(t, fm, static_cast<float>(det), t.scale);

    ResultCode r = KRYN_OK;
    if (page->pageQuarterTurns == -1) {
        page->pageQuarterTurns = quarterTurnsOfKind(t.kind);
        if (page->pageQuarterTurns != -1) {
            r = establishOrientationClip(e);
        }
    }
    gs->integerCoords = isRightAngleKind(t.kind) ? uint16_t{1} : uint16_t{0};
    return r;
}

ResultCode setScale(Engine* e, float s) {
    GraphicsState* gs = currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    Transform& t = gs->transform;
    const float det = s * t.det * s;
    if (!(det != 0.0f) || !std::isfinite(det)) {
        // A factor of 0 (or NaN) would leave no inverse; an infinite one (or
        // one that overflows the determinant) no finite device point.
        return KRYN_ERR_INVALID;
    }
    gs->scale = s;
    t.a *= s;
    t.b *= s;
    t.c *= s;
    t.d *= s;
    t.det = det;
    t.scale = s;
    t.kind = classifyMatrix(t.a, t.b, t.c, t.d);
    refreshInverse(t);
    computeMetrics(t);
    selectTransformOps(t);
    gs->integerCoords = 0;
    return KRYN_OK;
}

ResultCode setTranslation(Engine* e, int32_t dx, int32_t dy) {
    GraphicsState* gs = currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    Transform& t = gs->transform;
    t.tx += static_cast<float>(dx);
    t.ty += static_cast<float>(dy);
    refreshInverse(t);
    return KRYN_OK;
}

ResultCode restoreTransform(Engine* e, const float m[6], float scale) {
    GraphicsState* gs = currentState(e);
    if (gs == nullptr) {
        return KRYN_ERR_INVALID;
    }
    const float det = m[3] * m[0] - m[2] * m[1];
    if (!setTransformFromMatrix(gs->transform, m, det, scale)) {
        return KRYN_ERR_INVALID;
    }
    gs->scale = scale;
    return KRYN_OK;
}

} // namespace kryn
