#include <gtest/gtest.h>

#include <surveydata/geodetic/coordinate_quality.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;

const SDI::QMatrixC kMatrix(11, 12, 13, 22, 23, 33);

TEST(CoordinateQuality, TakesScaleMatrixAndAxes) {
  const Texts expected = {"1.5", "11", "12", "13", "22", "23", "33", "5"};
  EXPECT_EQ(Values(SDI::CoordinateQualityC(1.5F, kMatrix, 5)), expected);
  EXPECT_EQ(Values(ODM::CoordinateQualityC(1.5F, *kMatrix.GetImpl(), 5)), expected);
}

TEST(CoordinateQuality, KeepsTheLowEightBitsOfTheAxes) {
  EXPECT_EQ(SDI::CoordinateQualityC(1.0F, kMatrix, 0x107).GetValidAxes(), 0x07);
  EXPECT_EQ(SDI::CoordinateQualityC(1.0F, kMatrix, 0xFFFFFF00).GetValidAxes(), 0x00);
}

TEST(CoordinateQuality, GivesAndTakesCopiesOfTheMatrix) {
  SDI::CoordinateQualityC quality(1.0F, kMatrix, 7);
  SDI::QMatrixC matrix = quality.GetMatrix();
  matrix.SetQ22(99.0F);
  EXPECT_EQ(quality.GetMatrix().GetQ22(), 22.0F);
  quality.SetMatrix(matrix);
  matrix.SetQ22(98.0F);
  EXPECT_EQ(quality.GetMatrix().GetQ22(), 99.0F);
  EXPECT_EQ(kMatrix.GetQ22(), 22.0F);
}

TEST(CoordinateQuality, OfTheImplementationGivesTheMatrixItself) {
  ODM::CoordinateQualityC quality;
  quality.GetMatrix().SetQ11(4.0F);
  const auto& same = quality;
  EXPECT_EQ(same.GetMatrix().GetQ11(), 4.0F);
}

}  // namespace
