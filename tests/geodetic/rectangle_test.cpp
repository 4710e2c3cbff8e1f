#include <gtest/gtest.h>

#include <surveydata/geodetic/rectangle.h>

#include "tests/support/counted_point.h"
#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::CoordinatePointC;
using SDI::CoordinateReferenceSystemC;
using SDI::RectangleC;

const CoordinateReferenceSystemC kCrs(1, 2, 3);
const CoordinatePointC kBottomLeft(4, 5, 6);
const CoordinatePointC kTopRight(7, 8, 9);

TEST(Rectangle, IsInADefaultSystemByDefault) { EXPECT_EQ(RectangleC().GetCRS().GetVariant(), 1); }

TEST(Rectangle, TakesSystemBottomLeftAndTopRight) {
  const Texts expected = {"1", "2", "3", "4", "5", "6", "7", "8", "9"};
  EXPECT_EQ(Values(RectangleC(kCrs, kBottomLeft, kTopRight)), expected);
  EXPECT_EQ(Values(ODM::RectangleC(*kCrs.GetImpl(), *kBottomLeft.GetImpl(), *kTopRight.GetImpl())),
            expected);
}

TEST(Rectangle, NeitherOrdersNorChecksItsCorners) {
  const RectangleC rectangle(kCrs, kTopRight, kBottomLeft);
  EXPECT_EQ(rectangle.GetBottomLeft().GetX(), 7.0);
  EXPECT_EQ(rectangle.GetTopRight().GetX(), 4.0);
}

TEST(Rectangle, GivesItsOwnParts) {
  RectangleC rectangle(kCrs, kBottomLeft, kTopRight);
  const RectangleC& same = rectangle;
  EXPECT_EQ(&rectangle.GetCRS(), &same.GetCRS());
  EXPECT_EQ(&rectangle.GetBottomLeft(), &same.GetBottomLeft());
  const CoordinatePointC& corner = same.GetTopRight();
  rectangle.SetTopRight(CoordinatePointC(70, 80, 90));
  EXPECT_EQ(corner.GetX(), 70.0);
  EXPECT_EQ(&rectangle.GetTopRight(), &corner);
  rectangle.GetTopRight().SetY(81.0);
  EXPECT_EQ(rectangle.GetImpl()->GetTopRight().GetY(), 81.0);
  EXPECT_EQ(corner.GetImpl(), &rectangle.GetImpl()->GetTopRight());
}

TEST(Rectangle, DestroysThePublicObjectsOfItsCorners) {
  int destroyed = 0;
  {
    RectangleC rectangle;
    auto* const low =
        new TestSupport::CountedPointC(&rectangle.GetImpl()->GetBottomLeft(), destroyed);
    auto* const high =
        new TestSupport::CountedPointC(&rectangle.GetImpl()->GetTopRight(), destroyed);
    EXPECT_EQ(&rectangle.GetBottomLeft(), low);
    EXPECT_EQ(&rectangle.GetTopRight(), high);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 2);
}

}  // namespace
