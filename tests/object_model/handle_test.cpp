#include <cstdint>

#include <gtest/gtest.h>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/position.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/object_model/lent_object.h>

namespace {

using API::CheckedCast;

class DerivedPointC : public ODM::CoordinatePointC {};
class FartherPointC : public DerivedPointC {};
class ForeignC : public API::ImplObjectC {};

TEST(CheckedCast, AnswersAsDynamicCastDoes) {
  ODM::CoordinatePointC point;
  DerivedPointC derived;
  FartherPointC farther;
  ODM::PositionC position;
  ForeignC foreign;
  API::ImplObjectC base;
  const auto expect = [](API::ImplObjectC* impl, bool isPoint, bool isDerived) {
    EXPECT_EQ(CheckedCast<ODM::CoordinatePointC>(impl), dynamic_cast<ODM::CoordinatePointC*>(impl));
    EXPECT_EQ(CheckedCast<DerivedPointC>(impl), dynamic_cast<DerivedPointC*>(impl));
    EXPECT_EQ(CheckedCast<API::ImplObjectC>(impl), impl);
    EXPECT_EQ(CheckedCast<ODM::CoordinatePointC>(impl) != nullptr, isPoint);
    EXPECT_EQ(CheckedCast<DerivedPointC>(impl) != nullptr, isDerived);
  };
  expect(nullptr, false, false);
  expect(&point, true, false);
  expect(&derived, true, true);
  expect(&farther, true, true);
  expect(&position, false, false);
  expect(&foreign, false, false);
  expect(&base, false, false);
}

TEST(Handle, MakesThePublicObjectOfAPartOnce) {
  ODM::CoordinatePointC part(1.0, 2.0, 3.0);
  auto& object = API::PublicOf<SDI::CoordinatePointC>(part);
  EXPECT_EQ(&API::PublicOf<SDI::CoordinatePointC>(part), &object);
  EXPECT_EQ(object.GetImpl(), &part);
  EXPECT_EQ(object.GetY(), 2.0);
}

TEST(Handle, ChangesFlagsBySettingThenClearing) {
  EXPECT_EQ(API::ChangedFlags(0x0F, 0x30, 0x05), 0x3AU);
  EXPECT_EQ(API::ChangedFlags(0, 0x3, 0x1), 0x2U);  // clears after setting
  EXPECT_EQ(API::ChangedFlags(0xFFFFFFFF, 0, 0), 0xFFFFFFFFU);
}

}  // namespace
