// Exported path construction: moves, lines, closing and sealing.
#include "engine/graphics_state.h"
#include "engine/page_record.h"
#include "geometry/path_build.h"
#include "kryn/kryn.h"

namespace {

// The open page's current state and path pool, or false without a page.
bool pathTarget(Engine* e, kryn::GraphicsState** gs, kryn::PathPool** pool) {
    if (e == nullptr) {
        return false;
    }
    kryn::PageRecord* page = kryn::openPage(e);
    *gs = kryn::currentState(e);
    if (page == nullptr || *gs == nullptr) {
        return false;
    }
    *pool = &page->pathPool;
    return true;
}

} // namespace

extern "C" {

KRYN_EXPORT ResultCode KRYNNewPath(Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    kryn::freePath(gs->path, *pool);
    return KRYN_OK;
}

KRYN_EXPORT ResultCode KRYNMoveTo(int32_t x, int32_t y, Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    return kryn::moveTo(*gs, *pool, static_cast<float>(x), static_cast<float>(y));
}

KRYN_EXPORT ResultCode KRYNMoveTo16(int16_t x, int16_t y, Engine* e) {
    return KRYNMoveTo(x, y, e);
}

KRYN_EXPORT ResultCode KRYNLinesTo(const int32_t* points, int16_t count, Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    return kryn::linesTo(*gs, *pool, points, count, true);
}

KRYN_EXPORT ResultCode KRYNLinesTo16(const int16_t* points, int16_t count, Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    return kryn::linesTo(*gs, *pool, points, count, false);
}

KRYN_EXPORT ResultCode KRYNClosePath(Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    kryn::closePath(*gs);
    return KRYN_OK;
}

KRYN_EXPORT ResultCode KRYNSealedPath(Engine* e) {
    kryn::GraphicsState* gs = nullptr;
    kryn::PathPool* pool = nullptr;
    if (!pathTarget(e, &gs, &pool)) {
        return KRYN_ERR_INVALID;
    }
    gs->pathSealed = 1;
    return KRYN_OK;
}

} // extern "C"
