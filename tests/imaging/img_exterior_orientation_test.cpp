#include <gtest/gtest.h>

#include <surveydata/imaging/img_exterior_orientation.h>

namespace {

using SDI::ImgExteriorOrientationC;

TEST(ImgExteriorOrientation, IsEqualToAnotherDefaultOne) {
  EXPECT_TRUE(ImgExteriorOrientationC() == ImgExteriorOrientationC());
}

}  // namespace
