#include <string>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/vectors.h>

namespace GMAT {
namespace {

template <class Vector>
class Vectors : public testing::Test {};
using AllVectors = testing::Types<cVec2, cVec3, cVec4>;
TYPED_TEST_SUITE(Vectors, AllVectors);

template <class Vector>
constexpr int kSize = static_cast<int>(sizeof(Vector) / sizeof(double));

TYPED_TEST(Vectors, AreZeroAtFirstAndContiguous) {
  TypeParam v;
  for (int i = 0; i < kSize<TypeParam>; ++i) {
    EXPECT_EQ(v[i], 0.0);
    EXPECT_EQ(&v[i], &v[0] + i);
    v[i] = i + 0.5;
  }
  const TypeParam copy = v;
  for (int i = 0; i < kSize<TypeParam>; ++i) EXPECT_EQ(copy[i], i + 0.5);
}

TYPED_TEST(Vectors, AValidIndexIsNotReported) {
  TypeParam v;
  testing::internal::CaptureStdout();
  v[0] = v[kSize<TypeParam> - 1];
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TYPED_TEST(Vectors, AnInvalidIndexIsReportedAndUsed) {
  const std::string line =
      "VERROR cVec" + std::to_string(kSize<TypeParam>) + " [] operator: illegal access\n";
  struct {
    double before = -1.0;
    TypeParam vector;
    double after[2] = {7.0, 8.0};
  } memory;
  for (const int index : {kSize<TypeParam>, kSize<TypeParam> + 1, -1}) {
    SCOPED_TRACE(index);
    testing::internal::CaptureStdout();
    const double* const at = &memory.vector[index];
    EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
    EXPECT_EQ(at, index < 0 ? &memory.before : &memory.after[index - kSize<TypeParam>]);
  }
  const TypeParam& constant = memory.vector;
  testing::internal::CaptureStdout();
  EXPECT_EQ(&constant[kSize<TypeParam>], &memory.after[0]);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), line);
}

TEST(Vec2And3And4, AreMadeOfTheirComponentsInOrder) {
  const cVec2 two(1.0, 2.0);
  const cVec3 three(1.0, 2.0, 3.0);
  const cVec4 four(1.0, 2.0, 3.0, 4.0);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(two[i], i + 1.0);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(three[i], i + 1.0);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(four[i], i + 1.0);
  EXPECT_EQ(three.X(), 1.0);
  EXPECT_EQ(three.Y(), 2.0);
  EXPECT_EQ(three.Z(), 3.0);
}

TEST(Vec3, ScaleMultipliesByTheReciprocal) {
  cVec3 v(1.0, 2.0, -5.0);
  v.Scale(3.0);
  const double reciprocal = 1.0 / 3.0;
  EXPECT_EQ(v[0], 1.0 * reciprocal);
  EXPECT_EQ(v[1], 2.0 * reciprocal);
  EXPECT_EQ(v[2], -5.0 * reciprocal) << "a division would round differently";
  EXPECT_NE(-5.0 * reciprocal, -5.0 / 3.0);
}

}  // namespace
}  // namespace GMAT
