// Matrix kinds, the per-kind point operations, inverses and the setters.
#include "engine/graphics_state.h"
#include "geometry/transform.h"
#include "geometry/transform_setters.h"
#include "support/engine_fixture.h"

#include <gtest/gtest.h>

namespace kryn::test {
namespace {

struct KindCase {
    int32_t m[6];
    int32_t kind;
};

const KindCase KIND_CASES[] = {
    {{1, 0, 0, 1, 5, 7}, TK_TRANSLATE}, {{-1, 0, 0, -1, 5, 7}, TK_TURN_2},
    {{2, 0, 0, 3, 0, 0}, TK_SCALE},     {{1, 0, 0, -1, 0, 0}, TK_SCALE},
    {{2, 1, 1, 3, 4, 5}, TK_GENERAL},   {{0, 2, 3, 0, 1, 1}, TK_SWAP},
    {{0, -1, 1, 0, 9, 9}, TK_TURN_3},   {{0, 1, -1, 0, 100, 0}, TK_TURN_1},
};

Transform transformOf(const int32_t m[6]) {
    Transform t;
    float fm[6];
    for (int i = 0; i < 6; ++i) {
        fm[i] = static_cast<float>(m[i]);
    }
    setTransformFromMatrix(t, fm, fm[0] * fm[3] - fm[1] * fm[2], 1.0f);
    return t;
}

TEST(TransformKinds, EachMatrixFamilyIsClassified) {
    for (const KindCase& k : KIND_CASES) {
        EXPECT_EQ(classifyMatrix(static_cast<float>(k.m[0]), static_cast<float>(k.m[1]),
                                 static_cast<float>(k.m[2]), static_cast<float>(k.m[3])),
                  k.kind)
            << k.m[0] << " " << k.m[1] << " " << k.m[2] << " " << k.m[3];
    }
}

TEST(TransformKinds, SpecialisedOperationsAgreeWithTheGeneralOne) {
    const float samples[][2] = {{0, 0}, {3, -4}, {-120.5f, 77.25f}, {1000, 2000}};
    for (const KindCase& k : KIND_CASES) {
        const Transform special = transformOf(k.m);
        Transform general = special;
        general.kind = TK_GENERAL;
        selectTransformOps(general);
        for (const auto& s : samples) {
            float p1[2], p2[2], v1[2], v2[2];
            special.transformPoint(s[0], s[1], p1, special);
            general.transformPoint(s[0], s[1], p2, general);
            special.transformVector(s[0], s[1], v1, special);
            general.transformVector(s[0], s[1], v2, general);
            EXPECT_EQ(p1[0], p2[0]) << "kind " << k.kind;
            EXPECT_EQ(p1[1], p2[1]) << "kind " << k.kind;
            EXPECT_EQ(v1[0], v2[0]) << "kind " << k.kind;
            EXPECT_EQ(v1[1], v2[1]) << "kind " << k.kind;
        }
    }
}

TEST(TransformKinds, InverseTimesMatrixIsIdentity) {
    for (const KindCase& k : KIND_CASES) {
        const Transform t = transformOf(k.m);
        float product[6];
        const float m[6] = {t.a, t.b, t.c, t.d, t.tx, t.ty};
        concatMatrix(m, t.inverse, product);
        const float identity[6] = {1, 0, 0, 1, 0, 0};
        for (int i = 0; i < 6; ++i) {
            EXPECT_NEAR(product[i], identity[i], 1e-5) << "kind " << k.kind << " element " << i;
        }
    }
}

TEST(TransformKinds, MetricsFollowTheKind) {
    const int32_t general[6] = {2, 1, 1, 3, 0, 0};
    const Transform t = transformOf(general);
    EXPECT_EQ(t.metricXX, 5.0f);
    EXPECT_EQ(t.metricYY, 10.0f);
    EXPECT_EQ(t.metricXY, 5.0f);
    EXPECT_EQ(t.isQuarterTurn, 0);
    const int32_t turn[6] = {0, 1, -1, 0, 0, 0};
    EXPECT_EQ(transformOf(turn).isQuarterTurn, 1);
}

class TransformSetters : public ::testing::Test {
  protected:
    void SetUp() override {
        engine = makeEngine(999, 999, 64);
        ASSERT_EQ(KRYNNewPage(3, e()), KRYN_OK);
    }
    Engine* e() { return engine.get(); }
    GraphicsState& gs() { return *e()->pageSlot->gstateTop; }
    EnginePtr engine;
};

TEST_F(TransformSetters, ScaleMatrixLeavesOrientationOpen) {
    const int32_t m[6] = {2, 0, 0, 2, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(m, e()), KRYN_OK);
    EXPECT_EQ(gs().transform.kind, TK_SCALE);
    EXPECT_EQ(gs().integerCoords, 0);
    EXPECT_EQ(gs().transform.inverse[0], 0.5f);
    EXPECT_EQ(gs().transform.inverse[3], 0.5f);
    EXPECT_EQ(pageOf(e())->pageQuarterTurns, -1);
}

TEST_F(TransformSetters, OrientationIsEstablishedOncePerPage) {
    const int32_t turn[6] = {0, 1, -1, 0, 100, 0};
    ASSERT_EQ(KRYNSetMatrix(turn, e()), KRYN_OK);
    EXPECT_EQ(gs().transform.kind, TK_TURN_1);
    EXPECT_EQ(gs().integerCoords, 1);
    EXPECT_EQ(pageOf(e())->pageQuarterTurns, 1);
    const int32_t identity[6] = {1, 0, 0, 1, 0, 0};
    ASSERT_EQ(KRYNSetMatrix(identity, e()), KRYN_OK);
    EXPECT_EQ(gs().transform.kind, TK_TRANSLATE);
    EXPECT_EQ(pageOf(e())->pageQuarterTurns, 1);
    ASSERT_EQ(KRYNDisposePage(e()), KRYN_OK);
    ASSERT_EQ(KRYNNewPage(3, e()), KRYN_OK);
    EXPECT_EQ(pageOf(e())->pageQuarterTurns, -1);
}

TEST_F(TransformSetters, SingularMatricesAndFactorsAreRefused) {
    const int32_t singular[6] = {1, 2, 2, 4, 0, 0};
    EXPECT_EQ(KRYNSetMatrix(singular, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(gs().transform.kind, TK_TRANSLATE);
    EXPECT_EQ(KRYNSetScale(0.0f, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(gs().transform.a, 1.0f);
    EXPECT_EQ(KRYNSetMatrix(nullptr, e()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetScale(2.0f, nullptr), KRYN_ERR_INVALID);
}

TEST_F(TransformSetters, ScaleMultipliesTheMatrixButReplacesTheFactor) {
    ASSERT_EQ(KRYNSetScale(2.0f, e()), KRYN_OK);
    EXPECT_EQ(gs().transform.a, 2.0f);
    EXPECT_EQ(gs().transform.kind, TK_SCALE);
    EXPECT_EQ(gs().transform.det, 4.0f);
    EXPECT_EQ(gs().integerCoords, 0);
    ASSERT_EQ(KRYNSetScale(2.0f, e()), KRYN_OK);
    EXPECT_EQ(gs().transform.d, 4.0f);
    EXPECT_EQ(gs().transform.scale, 2.0f);
    EXPECT_EQ(gs().scale, 2.0f);
}

TEST_F(TransformSetters, TranslationMovesDevicePointsWhateverTheLinearPart) {
    const int32_t general[6] = {2, 1, 1, 3, 4, 5};
    ASSERT_EQ(KRYNSetMatrix(general, e()), KRYN_OK);
    const Transform before = gs().transform;
    ASSERT_EQ(KRYNSetTranslation(10, -5, e()), KRYN_OK);
    const Transform& after = gs().transform;
    float p0[2], p1[2];
    before.transformPoint(7, 11, p0, before);
    after.transformPoint(7, 11, p1, after);
    EXPECT_EQ(p1[0] - p0[0], 10.0f);
    EXPECT_EQ(p1[1] - p0[1], -5.0f);
    const float inv[6] = {after.inverse[0], after.inverse[1], after.inverse[2],
                          after.inverse[3], after.inverse[4], after.inverse[5]};
    EXPECT_NEAR(inv[0] * p1[0] + inv[2] * p1[1] + inv[4], 7.0f, 1e-4);
    EXPECT_NEAR(inv[1] * p1[0] + inv[3] * p1[1] + inv[5], 11.0f, 1e-4);
}

TEST_F(TransformSetters, RestoreTransformKeepsFlagsAndOrientation) {
    ASSERT_EQ(KRYNSetScale(1.5f, e()), KRYN_OK);
    const float m[6] = {0, 1, -1, 0, 3, 4};
    ASSERT_EQ(restoreTransform(e(), m, 1.5f), KRYN_OK);
    EXPECT_EQ(gs().transform.kind, TK_TURN_1);
    EXPECT_EQ(gs().integerCoords, 0);
    EXPECT_EQ(pageOf(e())->pageQuarterTurns, -1);
    const float singular[6] = {1, 1, 1, 1, 0, 0};
    EXPECT_EQ(restoreTransform(e(), singular, 1.0f), KRYN_ERR_INVALID);
}

TEST(TransformSettersNoPage, AnswerInvalidWithoutAPage) {
    EnginePtr engine = makeEngine(99, 99, 16);
    const int32_t m[6] = {1, 0, 0, 1, 0, 0};
    EXPECT_EQ(KRYNSetMatrix(m, engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetScale(2.0f, engine.get()), KRYN_ERR_INVALID);
    EXPECT_EQ(KRYNSetTranslation(1, 1, engine.get()), KRYN_ERR_INVALID);
}

} // namespace
} // namespace kryn::test
