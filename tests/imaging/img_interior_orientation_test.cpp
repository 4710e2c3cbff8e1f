#include <gtest/gtest.h>

#include <surveydata/imaging/img_interior_orientation.h>

namespace {

using SDI::ImgInteriorOrientationC;

TEST(ImgInteriorOrientation, DiffersOnlyByTheModelCode) {
  ImgInteriorOrientationC a, b;
  EXPECT_TRUE(a == b);
  for (auto* orientation : {&a, &b}) {
    orientation->SetValue1(0.012);
    orientation->SetValue6(-3.5e-5);
  }
  a.SetModelCode(1);
  b.SetModelCode(2);
  EXPECT_FALSE(a == b);
  b.SetModelCode(1);
  EXPECT_TRUE(a == b);
}

}  // namespace
