#include <cmath>
#include <cstdint>
#include <initializer_list>

#include <gtest/gtest.h>

#include <surveydata/geodetic/position.h>

#include "tests/support/counted_point.h"
#include "tests/support/record_fields.h"

namespace {

using Records::Texts;
using Records::Values;
using SDI::CoordinatePointC;
using SDI::CoordinateQualityC;
using SDI::CoordinateReferenceSystemC;
using SDI::PositionC;
using SDI::QMatrixC;
using SDI::UndulationMementoC;

const CoordinateReferenceSystemC kCrs(1, 2, 3);
const CoordinatePointC kPoint(4, 5, 6);
const CoordinateQualityC kQuality(7, QMatrixC(8, 9, 10, 11, 12, 13), 14);
const UndulationMementoC kUndulation(15, 16, 17);

PositionC PositionOf(std::int32_t kind, std::int32_t hasHeight, std::uint32_t validAxes) {
  return {CoordinateReferenceSystemC(kind, 1, hasHeight), CoordinatePointC(),
          CoordinateQualityC(2.0F, QMatrixC(4, 0.5F, 0.25F, 5, 0.125F, 16), validAxes),
          UndulationMementoC()};
}

TEST(Position, TakesItsPartsAndKeepsTheDefaultAttributes) {
  EXPECT_EQ(Values(PositionC(kCrs, kPoint, kQuality, kUndulation)),
            (Texts{"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8", "9", "10", "11",
                   "12", "13", "14", "15", "16", "17", "50", "0", "0", "0",  "0"}));
}

TEST(Position, TakesTheThirdAttributeBeforeTheSecond) {
  const Texts expected = {"1",  "2",  "3",  "4",  "5",  "6",  "7",   "8",   "9",   "10",  "11",
                          "12", "13", "14", "15", "16", "17", "101", "103", "102", "104", "105"};
  EXPECT_EQ(Values(PositionC(kCrs, kPoint, kQuality, kUndulation, 101, 102, 103, 104, 105)),
            expected);
  EXPECT_EQ(Values(ODM::PositionC(*kCrs.GetImpl(), *kPoint.GetImpl(), *kQuality.GetImpl(),
                                  *kUndulation.GetImpl(), 101, 102, 103, 104, 105)),
            expected);
}

TEST(Position, GivesItsOwnParts) {
  PositionC position(kCrs, kPoint, kQuality, kUndulation);
  const PositionC& same = position;
  EXPECT_EQ(&position.GetCRS(), &same.GetCRS());
  EXPECT_EQ(&position.GetCoordinatePoint(), &same.GetCoordinatePoint());
  EXPECT_EQ(&position.GetCoordinateQuality(), &same.GetCoordinateQuality());
  EXPECT_EQ(&position.GetUndulationMemento(), &same.GetUndulationMemento());

  const CoordinatePointC& point = same.GetCoordinatePoint();
  position.GetCoordinatePoint().SetX(1.5);
  EXPECT_EQ(point.GetX(), 1.5);
  EXPECT_EQ(position.GetImpl()->GetCoordinatePoint().GetX(), 1.5);
  position.SetCoordinatePoint(CoordinatePointC(2.5, 0, 0));
  EXPECT_EQ(point.GetX(), 2.5);
  EXPECT_EQ(&position.GetCoordinatePoint(), &point) << "assignment keeps the objects";
  PositionC other;
  position = other;
  EXPECT_EQ(point.GetX(), 0.0);
  EXPECT_NE(&other.GetCoordinatePoint(), &point);
  EXPECT_EQ(kPoint.GetX(), 4.0) << "the arguments were copied";
}

TEST(Position, DestroysThePublicObjectsOfItsParts) {
  int destroyed = 0;
  {
    PositionC position;
    auto* const point =
        new TestSupport::CountedPointC(&position.GetImpl()->GetCoordinatePoint(), destroyed);
    EXPECT_EQ(&position.GetCoordinatePoint(), point);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(Position, HasTheDimensionOfItsKind) {
  const struct {
    std::int32_t kind;
    std::uint16_t withHeight, withoutHeight;
  } cases[] = {
      {INT32_MIN, 0, 0}, {-1, 0, 0}, {0, 0, 0}, {1, 3, 3},         {2, 3, 2},
      {3, 3, 2},         {4, 1, 0},  {5, 0, 0}, {INT32_MAX, 0, 0},
  };
  for (const auto& [kind, withHeight, withoutHeight] : cases) {
    SCOPED_TRACE(kind);
    EXPECT_EQ(PositionOf(kind, 0, 0).GetDimension(), withoutHeight);
    for (const std::int32_t height : {1, -1, 2, INT32_MIN}) {
      EXPECT_EQ(PositionOf(kind, height, 0).GetDimension(), withHeight);
      EXPECT_EQ(PositionOf(kind, height, 0).GetImpl()->GetDimension(), withHeight);
    }
  }
  EXPECT_EQ(PositionC().GetDimension(), 0);
}

// Checks the result of a query; if it is false, `result` must be 0.
void ExpectAnswer(bool answer, float result, bool expected, float stdDev) {
  EXPECT_EQ(answer, expected);
  EXPECT_EQ(result, expected ? stdDev : 0.0F);
}

TEST(Position, ReturnsStandardDeviationsForEveryKindAndSetOfAxes) {
  // For the scale factor 2 and the cofactors q11 = 4, q22 = 5, q33 = 16. The roots are exact or
  // correctly rounded.
  const float axis[] = {0.0F, 4.0F, 2 * std::sqrt(5.0F), 8.0F, 0.0F};
  const float combined[] = {0.0F, 8.0F, 6.0F, 10.0F, 0.0F};
  const unsigned axisNeeds[] = {0, 1, 2, 4, 0};
  const unsigned combinedNeeds[] = {0, 4, 3, 7, 0};
  for (std::int32_t kind = -1; kind <= 5; ++kind) {
    for (const std::int32_t hasHeight : {0, 1}) {
      for (unsigned axes = 0; axes < 16; ++axes) {
        const PositionC position = PositionOf(kind, hasHeight, axes | 0xF0);
        for (std::uint16_t selector = 0; selector < 5; ++selector) {
          SCOPED_TRACE(testing::Message() << "kind " << kind << ", height " << hasHeight
                                          << ", axes " << axes << ", selector " << selector);
          const bool known = selector >= 1 && selector <= 3;
          const auto holds = [axes](unsigned needs) { return (axes & needs) == needs; };
          float result = -1.0F;
          bool answer = position.GetStdDev(selector, &result);
          ExpectAnswer(answer, result, known && holds(axisNeeds[selector]), axis[selector]);
          result = -1.0F;
          answer = position.GetImpl()->GetStdDev(selector, &result);
          ExpectAnswer(answer, result, known && holds(axisNeeds[selector]), axis[selector]);
          const bool any = known && holds(combinedNeeds[selector]) && (kind != 1 || selector == 3);
          result = -1.0F;
          answer = position.GetCombinedStdDev(selector, &result);
          ExpectAnswer(answer, result, any, combined[selector]);
          result = -1.0F;
          answer = position.GetImpl()->GetCombinedStdDev(selector, &result);
          ExpectAnswer(answer, result, any, combined[selector]);
        }
      }
    }
  }
}

TEST(Position, ReturnsNoStandardDeviationForSelectorsAboveThree) {
  const PositionC position = PositionOf(2, 1, 0xFF);
  for (const std::uint16_t selector : std::initializer_list<std::uint16_t>{0, 4, 5, 257, 65535}) {
    SCOPED_TRACE(selector);
    float result = -1.0F;
    EXPECT_FALSE(position.GetStdDev(selector, &result));
    EXPECT_EQ(result, 0.0F);
    result = -1.0F;
    EXPECT_FALSE(position.GetCombinedStdDev(selector, &result));
    EXPECT_EQ(result, 0.0F);
  }
}

TEST(Position, ComputesStandardDeviationsInSinglePrecision) {
  // 2^24 + 1 is not a float: the sum of the cofactors rounds to 2^24.
  const PositionC position(CoordinateReferenceSystemC(2, 1, 0), CoordinatePointC(),
                           CoordinateQualityC(1.0F, QMatrixC(16777216, 0, 0, 1, 0, 0), 3),
                           UndulationMementoC());
  float result = 0.0F;
  EXPECT_TRUE(position.GetCombinedStdDev(2, &result));
  EXPECT_EQ(result, 4096.0F);

  // 5 sqrt(3) is 8.6602540...; sqrt(3) as a float is 1.7320508, and five times that lies between
  // two floats. Computed in double precision and rounded once, it would be 8.66025447845459.
  const PositionC other(CoordinateReferenceSystemC(2, 1, 0), CoordinatePointC(),
                        CoordinateQualityC(5.0F, QMatrixC(3, 0, 0, 0, 0, 0), 3),
                        UndulationMementoC());
  EXPECT_TRUE(other.GetStdDev(1, &result));
  EXPECT_EQ(result, 8.660253524780273F);
  EXPECT_TRUE(other.GetCombinedStdDev(2, &result));
  EXPECT_EQ(result, 8.660253524780273F);
}

TEST(Position, ReturnsNaNForANegativeCofactor) {
  const PositionC position(CoordinateReferenceSystemC(2, 1, 0), CoordinatePointC(),
                           CoordinateQualityC(1.0F, QMatrixC(-1, 0, 0, 1, 0, 0), 3),
                           UndulationMementoC());
  float result = 0.0F;
  EXPECT_TRUE(position.GetStdDev(1, &result));
  EXPECT_TRUE(std::isnan(result));
}

TEST(Position, ComparesItsPartsByTheirOwnEquality) {
  const PositionC position(kCrs, kPoint, kQuality, kUndulation);
  PositionC close(position);
  close.GetCoordinatePoint().SetX(std::nextafter(kPoint.GetX(), 5.0));
  close.GetCoordinateQuality().SetSigma(std::nextafter(kQuality.GetSigma(), 8.0F));
  EXPECT_TRUE(position.IsEqual(close));
  PositionC other(position);
  other.GetCoordinatePoint().SetX(kPoint.GetX() + 1e-11);
  EXPECT_FALSE(position.IsEqual(other));
}

}  // namespace
