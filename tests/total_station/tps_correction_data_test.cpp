#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <surveydata/total_station/tps_correction_data.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::TPSCorrectionDataC;

TEST(TPSCorrectionData, TakesEveryFieldInOrder) {
  const Texts expected = {"1.5", "2.5", "3.5",  "4.5",  "5.5",  "6.5", "7.5",
                          "8.5", "9.5", "10.5", "11.5", "12.5", "13"};
  EXPECT_EQ(Values(TPSCorrectionDataC(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5F, 10.5F, 11.5F,
                                      12.5F, 13)),
            expected);
  EXPECT_EQ(Values(ODM::TPSCorrectionDataC(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5, 9.5F, 10.5F,
                                           11.5F, 12.5F, 13)),
            expected);
}

TEST(TPSCorrectionData, RaisesFlagsBeforeItLowersThem) {
  TPSCorrectionDataC correction;
  correction.SetFlags(0x5, 0x4);
  EXPECT_EQ(correction.GetFlags(), 0x1U);
}

// The expected values are the formulas evaluated step by step in double precision.
TEST(TPSCorrectionData, ConvertsBetweenPpmAndScale) {
  const TPSCorrectionDataC correction;
  EXPECT_EQ(correction.ScaleFromPpm(0.0), 1.0);
  EXPECT_EQ(correction.ScaleFromPpm(10.0), 1.00001);
  EXPECT_EQ(correction.ScaleFromPpm(-1e6), 0.0);
  EXPECT_EQ(correction.PpmFromScale(1.0), 0.0);
  EXPECT_EQ(correction.PpmFromScale(0.0), -1e6);
  EXPECT_EQ(correction.PpmFromScale(1.5), 500000.0);
  // For these values, multiplying by 1e-6 and dividing by 1e6 round differently; so do the
  // inverses.
  EXPECT_EQ(correction.ScaleFromPpm(367.75), 1.00036775);
  EXPECT_EQ(correction.ScaleFromPpm(-44.4), 0.9999556000000001);
  EXPECT_EQ(correction.PpmFromScale(1.9341), 934099.9999999999);
  EXPECT_EQ(correction.PpmFromScale(0.8743), -125700.00000000003);
  // 0.999 - 1 is off by half a unit in the last place of 0.999, times a million.
  EXPECT_NEAR(correction.PpmFromScale(0.999), -1000.0, 1e-9);
}

TEST(TPSCorrectionData, ConvertsInTheOrderOfTheFormulas) {
  for (const double ppm : {0.1, 0.3, 3.3, 12.7, -41.9, 273.15, 1e-9, 1e9}) {
    SCOPED_TRACE(ppm);
    const double product = ppm * 1e-6;
    EXPECT_EQ(TPSCorrectionDataC::ScaleFromPpm(ppm), product + 1.0);
    EXPECT_EQ(ODM::TPSCorrectionDataC::ScaleFromPpm(ppm), product + 1.0);
    const double scale = 1.0 + product;
    const double difference = scale - 1.0;
    EXPECT_EQ(TPSCorrectionDataC::PpmFromScale(scale), difference * 1e6);
    EXPECT_EQ(ODM::TPSCorrectionDataC::PpmFromScale(scale), difference * 1e6);
  }
}

TEST(TPSCorrectionData, ConvertsWithoutTouchingTheRecord) {
  TPSCorrectionDataC correction;
  correction.SetScaleFactor(1.0001);
  EXPECT_EQ(correction.ScaleFromPpm(10.0), 1.00001);
  EXPECT_EQ(correction.PpmFromScale(1.0), 0.0);
  EXPECT_EQ(correction.GetScaleFactor(), 1.0001);
  EXPECT_EQ(Records::DifferingFields(correction, TPSCorrectionDataC()), "ScaleFactor");
}

TEST(TPSCorrectionData, ComparesItsScaleFactorWithTolerance) {
  const TPSCorrectionDataC correction;
  TPSCorrectionDataC other;
  other.SetScaleFactor(1.0 - 1e-16);
  EXPECT_TRUE(correction.IsEqual(other));
  other.SetScaleFactor(1.0 + 1e-16);
  EXPECT_TRUE(correction.IsEqual(other));
  other.SetScaleFactor(1.0 + 1e-14);
  EXPECT_FALSE(correction.IsEqual(other));
}

}  // namespace
