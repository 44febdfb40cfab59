// Matrix kinds, the per-kind point operations and inverses. When a page's
// orientation is established, and what the setters do to paths, is pinned
// by the golden jobs orientation_rules and path_state.
#include "engine/graphics_state.h"
#include "geometry/transform.h"
#include "geometry/transform_setters.h"

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

} // namespace
} // namespace kryn::test
