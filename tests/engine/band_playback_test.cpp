// A monochrome band is played by the shared renderer under the grey layout:
// afterwards the renderer has its colour layout back and nothing it keeps
// points into memory that is gone (the interpreter once left the paint
// state pointing into a stack copy of the renderer).
#include "support/engine_fixture.h"

#include "render/band_renderer.h"
#include "render/paint_state.h"
#include "transfer/raster_delivery.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

TEST(MonochromePlayback, LeavesTheRendererWholeForTheNextBand) {
    EnginePtr e = makeEngine(99, 47, 16, 0x8009);
    ASSERT_EQ(KRYNNewPage(9, e.get()), KRYN_OK);
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(identity, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNRectPath(2, 2, 20, 10, e.get()), KRYN_OK);
    ASSERT_EQ(KRYNFill(1, e.get()), KRYN_OK);
    CallbackLog log;
    ASSERT_EQ(KRYNClosePage(CallbackLog::callback, log.context(), e.get()), KRYN_OK);
    ASSERT_EQ(log.calls.size(), 1u);
    EXPECT_EQ(log.calls[0].code, CB_RASTER_DIRECT);
    const BandRenderer* renderer = e->resources->renderer;
    EXPECT_EQ(renderer->paintState->box, &renderer->box);
    EXPECT_EQ(renderer->strideWords, rasterStrideBytes(renderer->width, false) / 4);
}

} // namespace
} // namespace kryn::test
