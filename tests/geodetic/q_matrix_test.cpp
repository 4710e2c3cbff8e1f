#include <limits>

#include <gtest/gtest.h>

#include <surveydata/geodetic/q_matrix.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;

TEST(QMatrix, TakesTheUpperTriangleRowByRow) {
  EXPECT_EQ(Values(SDI::QMatrixC(11, 12, 13, 22, 23, 33)),
            (Texts{"11", "12", "13", "22", "23", "33"}));
  EXPECT_EQ(Values(ODM::QMatrixC(11, 12, 13, 22, 23, 33)),
            (Texts{"11", "12", "13", "22", "23", "33"}));
}

TEST(QMatrix, EqualityToleratesTwoUnitsInTheLastPlaceOfAFloat) {
  constexpr float kUnit = std::numeric_limits<float>::epsilon();  // of 1.0F
  const struct {
    float a, b;
    bool equal;
  } cases[] = {
      {1.0F, 1.0F + kUnit, true}, {1.0F, 1.0F + 2 * kUnit, true}, {1.0F, 1.0F + 3 * kUnit, false},
      {0.0F, 1e-30F, false},  // the tolerance is relative to the larger value
      {0.0F, -0.0F, true},
  };
  for (const auto& [a, b, equal] : cases) {
    SCOPED_TRACE(testing::Message() << "a = " << a << ", b = " << b);
    EXPECT_EQ(SDI::QMatrixC(0, 0, 0, a, 0, 0).IsEqual(SDI::QMatrixC(0, 0, 0, b, 0, 0)), equal);
  }
}

}  // namespace
