#include <gtest/gtest.h>

#include <surveydata/total_station/tps_calibration_data.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;

TEST(TPSCalibrationData, TakesEveryFieldInOrder) {
  const Texts expected = {"1.5", "2.5", "3.5", "4.5", "5.5", "6.5", "7.5", "8.5"};
  EXPECT_EQ(Values(SDI::TPSCalibrationDataC(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5)), expected);
  EXPECT_EQ(Values(ODM::TPSCalibrationDataC(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5, 8.5)), expected);
}

TEST(TPSCalibrationData, IsEqualToAnotherDefaultOne) {
  EXPECT_TRUE(SDI::TPSCalibrationDataC().IsEqual(SDI::TPSCalibrationDataC()));
}

TEST(TPSCalibrationData, MadeFromItsOwnerIsOwnedAndDefault) {
  auto* const owner = new SDI::TPSCalibrationDataC(static_cast<ODM::TPSCalibrationDataC*>(nullptr));
  ODM::TPSCalibrationDataC calibration(owner);
  EXPECT_EQ(calibration.GetBase(), owner);
  EXPECT_TRUE(calibration.isEqual(ODM::TPSCalibrationDataC()));
  owner->SetImpl(&calibration);
  EXPECT_EQ(owner->GetImpl(), &calibration);
}

}  // namespace
