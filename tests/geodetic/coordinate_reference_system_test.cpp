#include <gtest/gtest.h>

#include <surveydata/geodetic/coordinate_reference_system.h>

#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;

TEST(CoordinateReferenceSystem, HasVariantOneByDefault) {
  EXPECT_EQ(Values(SDI::CoordinateReferenceSystemC()), (Texts{"0", "1", "0"}));
}

TEST(CoordinateReferenceSystem, TakesKindVariantAndHeight) {
  EXPECT_EQ(Values(SDI::CoordinateReferenceSystemC(3, -7, 1)), (Texts{"3", "-7", "1"}));
  EXPECT_EQ(Values(ODM::CoordinateReferenceSystemC(3, -7, 1)), (Texts{"3", "-7", "1"}));
}

}  // namespace
