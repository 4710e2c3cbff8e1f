#include <gtest/gtest.h>

#include <surveydata/imaging/img_camera_info.h>

#include "tests/support/record_fields.h"

namespace {

using SDI::ImgCameraInfoC;

// The public class has no accessors for the two 16-bit numbers.
template <class Camera>
concept HasShorts = requires(Camera& camera) {
  camera.GetShort1();
  camera.SetShort2(1);
};
static_assert(HasShorts<SDI::ImgCameraInfoImplC> && !HasShorts<ImgCameraInfoC>);

TEST(ImgCameraInfo, IsEqualToAnotherDefaultOne) {
  EXPECT_TRUE(ImgCameraInfoC() == ImgCameraInfoC());
}

TEST(ImgCameraInfo, ComparesAndCopiesTheNumbersThatOnlyTheImplementationReaches) {
  ImgCameraInfoC camera;
  camera.GetImpl()->SetShort2(7);
  EXPECT_FALSE(camera == ImgCameraInfoC());
  EXPECT_FALSE(camera == ImgCameraInfoC());
  const ImgCameraInfoC copy(camera);
  EXPECT_EQ(copy.GetImpl()->GetShort2(), 7);
  EXPECT_TRUE(camera == copy) << Records::DifferingFields(*camera.GetImpl(), *copy.GetImpl());
}

}  // namespace
