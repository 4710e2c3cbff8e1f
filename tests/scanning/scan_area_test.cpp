#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/object_model/layout.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include "tests/scanning/area_samples.h"
#include "tests/support/virtual_slot.h"

namespace {

using SDI::kDomeArea;
using SDI::ScanAreaC;
using SDI::ScanAreaImplC;
using SDI::ScanDefinitionC;
using SDI::ScanDefinitionImplC;
using SDI::ScanDefPointC;
using SDI::ScanDefPointImplC;
using SDI::ScanDomeAreaC;
using SDI::ScanDomeAreaImplC;
using SDI::ScanPolygonAreaC;
using SDI::ScanPolygonAreaImplC;
using SDI::ScanRectangularAreaC;
using SDI::ScanRectangularAreaImplC;
using TestSupport::Calls;
using TestSupport::kNotSet;
using TestSupport::kTriangle;
using TestSupport::kTwoPi;
using TestSupport::LoggedC;
using TestSupport::MakePolygon;
using TestSupport::MakeRectangle;
#if !defined(_WIN32)
using TestSupport::VirtualSlot;
#endif

static_assert(sizeof(ScanDefinitionC) == sizeof(API::BaseC));
static_assert(sizeof(ScanDomeAreaC) == sizeof(API::BaseC));
static_assert(API::kHasSize<ScanDefinitionImplC, 24>);
static_assert(API::kHasSize<ScanAreaImplC, 24 + 64 + 72 + 24>);
static_assert(sizeof(ScanRectangularAreaImplC) == sizeof(ScanAreaImplC));
static_assert(sizeof(ScanPolygonAreaImplC) == sizeof(ScanAreaImplC));
static_assert(sizeof(ScanDomeAreaImplC) == sizeof(ScanAreaImplC));
static_assert(std::is_base_of_v<boost::noncopyable, ScanDefinitionC>);

// The results of the getters of an area, which both sides of every kind have.
template <class Area>
constexpr bool ReturnsItsTypes() {
  using Point = ScanDefPointC;
  using std::is_same_v;
  Area* area = nullptr;
  const Area* constant = nullptr;
  std::vector<Point>* points = nullptr;
  Point* point = nullptr;
  static_assert(is_same_v<decltype(constant->GetHzStep()), double>);
  static_assert(is_same_v<decltype(constant->GetVStep()), double>);
  static_assert(is_same_v<decltype(constant->GetSettingA()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetLimitLow()), double>);
  static_assert(is_same_v<decltype(constant->GetLimitHigh()), double>);
  static_assert(is_same_v<decltype(constant->GetSettingB()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetSettingC()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetSettingD()), double>);
  static_assert(is_same_v<decltype(constant->GetSettingE()), std::uint16_t>);
  static_assert(is_same_v<decltype(constant->GetType()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetPointCount()), std::uint16_t>);
  static_assert(is_same_v<decltype(constant->GetPoints(*points)), void>);
  static_assert(is_same_v<decltype(constant->GetOutline(*points, 1.0)), void>);
  static_assert(is_same_v<decltype(constant->GetBoundingPoints(*point, *point, true)), bool>);
  static_assert(is_same_v<decltype(constant->IsValid()), bool>);
  static_assert(is_same_v<decltype(constant->IsAreaValid()), bool>);
  static_assert(is_same_v<decltype(constant->IsEqual(*constant)), bool>);
  static_assert(is_same_v<decltype(constant->Contains(1.0, 1.0)), bool>);
  static_assert(is_same_v<decltype(area->AddPoint(*point)), bool>);
  static_assert(is_same_v<decltype(area->RemoveLastPoint()), void>);
  static_assert(is_same_v<decltype(area->Clear()), void>);
  return true;
}
static_assert(ReturnsItsTypes<ScanAreaC>() && ReturnsItsTypes<ScanAreaImplC>());
static_assert(ReturnsItsTypes<ScanRectangularAreaC>() && ReturnsItsTypes<ScanPolygonAreaC>() &&
              ReturnsItsTypes<ScanDomeAreaC>());
static_assert(ReturnsItsTypes<ScanRectangularAreaImplC>() &&
              ReturnsItsTypes<ScanPolygonAreaImplC>() && ReturnsItsTypes<ScanDomeAreaImplC>());

template <class Public>
using ImplOf = decltype(std::declval<const Public&>().GetImpl());
static_assert(std::is_same_v<ImplOf<ScanDefinitionC>, ScanDefinitionImplC*>);
static_assert(std::is_same_v<ImplOf<ScanAreaC>, ScanAreaImplC*>);
static_assert(std::is_same_v<ImplOf<ScanRectangularAreaC>, ScanRectangularAreaImplC*>);
static_assert(std::is_same_v<ImplOf<ScanPolygonAreaC>, ScanPolygonAreaImplC*>);
static_assert(std::is_same_v<ImplOf<ScanDomeAreaC>, ScanDomeAreaImplC*>);

template <class Bound>
constexpr bool kIsABound = std::is_same_v<Bound, double (ScanAreaC::*)() const>;
static_assert(kIsABound<decltype(&ScanAreaC::GetHzMin)> &&
              kIsABound<decltype(&ScanAreaC::GetVMin)>);
static_assert(kIsABound<decltype(&ScanAreaC::GetHzMax)> &&
              kIsABound<decltype(&ScanAreaC::GetVMax)>);

// Both sides of a rectangle answer for its corners; those of a polygon take points.
template <class Area>
using GottenCorners = decltype(std::declval<const Area&>().GetCorners(
    std::declval<ScanDefPointC&>(), std::declval<ScanDefPointC&>()));
static_assert(std::is_same_v<GottenCorners<ScanRectangularAreaC>, bool>);
static_assert(std::is_same_v<GottenCorners<ScanRectangularAreaImplC>, bool>);
static_assert(std::is_same_v<decltype(&ScanPolygonAreaC::SetPoints),
                             void (ScanPolygonAreaC::*)(const std::vector<ScanDefPointC>&)>);
static_assert(std::is_same_v<decltype(&ScanPolygonAreaImplC::SetPoints),
                             void (ScanPolygonAreaImplC::*)(const std::vector<ScanDefPointC>&)>);

template <class Area>
class ScanAreas : public testing::Test {};
using AllAreas = testing::Types<ScanRectangularAreaC, ScanPolygonAreaC, ScanDomeAreaC>;
TYPED_TEST_SUITE(ScanAreas, AllAreas);

TYPED_TEST(ScanAreas, CannotBeCopied) {
  static_assert(!std::is_copy_constructible_v<TypeParam>);
  static_assert(!std::is_copy_assignable_v<TypeParam>);
  static_assert(!std::is_move_constructible_v<TypeParam>);
  static_assert(!std::is_move_assignable_v<TypeParam>);
}

TYPED_TEST(ScanAreas, DefaultsOfTheSettings) {
  const TypeParam area;
  EXPECT_EQ(area.GetHzStep(), 0.0);
  EXPECT_EQ(area.GetVStep(), 0.0);
  EXPECT_EQ(area.GetSettingA(), 0u);
  EXPECT_EQ(area.GetLimitLow(), -1.0);
  EXPECT_EQ(area.GetLimitHigh(), -1.0);
  EXPECT_EQ(area.GetSettingB(), 4u);
  EXPECT_EQ(area.GetSettingC(), 0u);
  EXPECT_EQ(area.GetSettingD(), 0.0);
  EXPECT_EQ(area.GetSettingE(), 1u);
  EXPECT_EQ(area.GetPointCount(), 0u);
  EXPECT_FALSE(area.IsValid()) << "the steps are 0";
}

TYPED_TEST(ScanAreas, SettingsAreStoredAndCopied) {
  TypeParam area;
  area.SetHzStep(1.0);
  area.SetVStep(2.0);
  area.SetSettingA(3);
  area.SetLimitLow(4.0);
  area.SetLimitHigh(5.0);
  area.SetSettingB(6);
  area.SetSettingC(7);
  area.SetSettingD(8.0);
  area.SetSettingE(9);
  area.AddPoint({1.0, 1.0, 1.0});
  using Impl = std::remove_pointer_t<decltype(area.GetImpl())>;
  const TypeParam copy(new Impl(*area.GetImpl()));
  Impl assigned;
  assigned = *area.GetImpl();
  area.SetSteps(-1.0, -2.0);
  area.Clear();
  for (const ScanAreaImplC* impl :
       {static_cast<ScanAreaImplC*>(copy.GetImpl()), static_cast<ScanAreaImplC*>(&assigned)}) {
    EXPECT_EQ(impl->GetHzStep(), 1.0);
    EXPECT_EQ(impl->GetVStep(), 2.0);
    EXPECT_EQ(impl->GetSettingA(), 3u);
    EXPECT_EQ(impl->GetLimitLow(), 4.0);
    EXPECT_EQ(impl->GetLimitHigh(), 5.0);
    EXPECT_EQ(impl->GetSettingB(), 6u);
    EXPECT_EQ(impl->GetSettingC(), 7u);
    EXPECT_EQ(impl->GetSettingD(), 8.0);
    EXPECT_EQ(impl->GetSettingE(), 9u);
    std::vector<ScanDefPointC> points;
    impl->GetPoints(points);
    EXPECT_EQ(points.size(), impl->GetPointCount());
    EXPECT_EQ(impl->GetPointCount(), impl->GetType() == kDomeArea ? 0u : 1u);
  }
  EXPECT_EQ(area.GetHzStep(), -1.0);
  EXPECT_EQ(area.GetVStep(), -2.0);
}

TYPED_TEST(ScanAreas, TheImplementationMakesThePublicObjectOfItsKind) {
  using Impl = std::remove_pointer_t<decltype(TypeParam().GetImpl())>;
  Impl impl;
  auto* const object = dynamic_cast<TypeParam*>(impl.GetBase());
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->GetImpl(), &impl);
  EXPECT_EQ(impl.GetBase(), object);
  const ScanAreaC& asArea = *object;
  EXPECT_EQ(asArea.GetImpl(), &impl);
  const ScanDefinitionC& asDefinition = *object;
  EXPECT_EQ(asDefinition.GetImpl(), &impl);
}

TYPED_TEST(ScanAreas, EitherSideDestroysTheOther) {  // LeakSanitizer checks this
  delete new TypeParam;
  delete (new TypeParam)->GetImpl();
}

// Steps that differ by less than the smallest normal double are equal; limits must be equal
// exactly.
TYPED_TEST(ScanAreas, EqualityToleratesSubnormalDifferencesOnlyOfTheSteps) {
  constexpr double kMin = std::numeric_limits<double>::min();
  constexpr double kUnit = std::numeric_limits<double>::denorm_min();
  const auto areEqual = [](auto set, double first, double second) {
    TypeParam a;
    TypeParam b;
    set(a, first);
    set(b, second);
    const bool equal = a.IsEqual(b);
    EXPECT_EQ(b.IsEqual(a), equal);
    return equal;
  };
  const auto hzStep = [](TypeParam& area, double step) { area.SetHzStep(step); };
  const auto vStep = [](TypeParam& area, double step) { area.SetVStep(step); };
  for (const auto set : {+hzStep, +vStep}) {
    for (const double base : {0.0, -kMin, kMin}) {
      SCOPED_TRACE(base);
      EXPECT_TRUE(areEqual(set, base, base + (kMin - kUnit)));
      EXPECT_FALSE(areEqual(set, base, base + kMin));
      EXPECT_TRUE(areEqual(set, base, base - (kMin - kUnit)));
      EXPECT_FALSE(areEqual(set, base, base - kMin));
    }
    EXPECT_FALSE(areEqual(set, 0.1, std::nextafter(0.1, 1.0)));
    EXPECT_TRUE(areEqual(set, 0.1, 0.1));
    EXPECT_FALSE(areEqual(set, std::nan(""), std::nan("")));
  }
  const auto limitLow = [](TypeParam& area, double limit) { area.SetLimitLow(limit); };
  const auto limitHigh = [](TypeParam& area, double limit) { area.SetLimitHigh(limit); };
  for (const auto set : {+limitLow, +limitHigh}) {
    EXPECT_FALSE(areEqual(set, 0.0, kUnit));
    EXPECT_FALSE(areEqual(set, -kUnit, kUnit));
    EXPECT_FALSE(areEqual(set, kMin, kMin - kUnit));
    EXPECT_FALSE(areEqual(set, -1.0, std::nextafter(-1.0, 0.0)));
    EXPECT_TRUE(areEqual(set, kUnit, kUnit));
    EXPECT_TRUE(areEqual(set, 0.0, -0.0));
    EXPECT_FALSE(areEqual(set, std::nan(""), std::nan("")));
  }
}

TYPED_TEST(ScanAreas, EqualityComparesKindStepsPointsSettingAAndLimits) {
  const auto compare = [](auto change, bool equal) {
    TypeParam a;
    TypeParam b;
    for (TypeParam* const area : {&a, &b}) {
      area->AddPoint({1.0, 1.0, 5.0});
      area->AddPoint({2.0, 1.5, 5.0});
    }
    change(b);
    EXPECT_EQ(a.IsEqual(b), equal);
    EXPECT_EQ(b.IsEqual(a), equal);
    const ScanDefinitionC& base = a;
    EXPECT_EQ(base.IsEqual(static_cast<const ScanDefinitionC&>(b)), equal);
  };
  const bool isDome = std::is_same_v<TypeParam, ScanDomeAreaC>;
  compare([](TypeParam&) {}, true);
  compare([](TypeParam& b) { b.SetHzStep(1e-300); }, false);
  compare([](TypeParam& b) { b.SetHzStep(1e-310); }, true);
  compare([](TypeParam& b) { b.SetVStep(1e-300); }, false);
  compare([](TypeParam& b) { b.SetSettingA(1); }, false);
  compare([](TypeParam& b) { b.SetLimitLow(-1.0 + 1e-15); }, false);
  compare([](TypeParam& b) { b.SetLimitHigh(-1.0 + 1e-15); }, false);
  compare([](TypeParam& b) { b.SetSettingB(1); }, true);
  compare([](TypeParam& b) { b.SetSettingC(1); }, true);
  compare([](TypeParam& b) { b.SetSettingD(1.0); }, true);
  compare([](TypeParam& b) { b.SetSettingE(2); }, true);
  compare([](TypeParam& b) { b.RemoveLastPoint(); }, isDome);
  compare(
      [](TypeParam& b) {
        b.RemoveLastPoint();
        b.AddPoint({2.0, 1.5, -1.0});
      },
      true);
  compare(
      [](TypeParam& b) {
        b.RemoveLastPoint();
        b.AddPoint({2.0, 1.6, 5.0});
      },
      isDome);
}

TEST(ScanArea, KindsAreNeverEqual) {
  ScanRectangularAreaC rectangle;
  ScanPolygonAreaC polygon;
  ScanDomeAreaC dome;
  const ScanAreaC* const areas[] = {&rectangle, &polygon, &dome};
  for (const ScanAreaC* a : areas) {
    for (const ScanAreaC* b : areas) EXPECT_EQ(a->IsEqual(*b), a == b);
  }
  EXPECT_EQ(rectangle.GetType(), 1u);
  EXPECT_EQ(polygon.GetType(), 2u);
  EXPECT_EQ(dome.GetType(), 3u);
  const ScanDefPointC point;
  EXPECT_FALSE(rectangle.GetImpl()->IsEqual(*point.GetImpl())) << "not a scan definition";
}

// An area of a kind that the library does not know, with any type code.
class StrangeAreaC : public ScanAreaImplC {
 public:
  explicit StrangeAreaC(std::uint32_t type) : ScanAreaImplC(type) {}
  void GetOutline(std::vector<ScanDefPointC>&, double) const override {}
};

TEST(ScanArea, AnAreaOfAnotherClassWithTheCodeOfAKindIsNotEqual) {
  const ScanRectangularAreaImplC rectangle;
  const ScanPolygonAreaImplC polygon;
  const ScanDomeAreaImplC dome;
  for (const ScanAreaImplC* const area :
       {static_cast<const ScanAreaImplC*>(&rectangle), static_cast<const ScanAreaImplC*>(&polygon),
        static_cast<const ScanAreaImplC*>(&dome)}) {
    EXPECT_FALSE(area->IsEqual(StrangeAreaC(area->GetType())));
    EXPECT_FALSE(area->IsEqual(ScanDefinitionImplC(area->GetType())));
  }
  EXPECT_TRUE(StrangeAreaC(9).IsEqual(StrangeAreaC(9)));
  EXPECT_FALSE(StrangeAreaC(9).IsEqual(StrangeAreaC(8)));
  EXPECT_FALSE(StrangeAreaC(9).IsEqual(ScanDefinitionImplC(9)));
}

#if !defined(_WIN32)
TEST(ScanArea, VirtualFunctionsAreInTheirOrder) {
  EXPECT_EQ(VirtualSlot(&ScanDefPointImplC::GetBase), 1);
  EXPECT_EQ(VirtualSlot(&API::BaseC::SetImpl), 1);
  EXPECT_EQ(VirtualSlot(&ScanDefinitionImplC::GetBase), 1);
  EXPECT_EQ(VirtualSlot(&ScanDefinitionImplC::IsEqual), 2);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::IsEqual), 2);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::IsValid), 3);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::AddPoint), 4);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::RemoveLastPoint), 5);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::Clear), 6);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::GetPointCount), 7);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::GetPoints), 8);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::IsAreaValid), 9);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::GetBoundingPoints), 10);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::GetOutline), 11);
  EXPECT_EQ(VirtualSlot(&ScanAreaImplC::Contains), -1);
  EXPECT_EQ(VirtualSlot(&ScanAreaC::GetBoundingPoints), 2);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::Clear), 1);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::RemoveLastPoint), 2);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::GetPointCount), 3);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::AddPoint), 4);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::AddPoints), 5);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::IsValid), 6);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::GetExtents), 7);
  EXPECT_EQ(VirtualSlot(&GMAT::SphereAreaC::Contains), 8);
}
#endif

TEST(ScanArea, PointsAreMirroredIntoTheGeometry) {
  ScanPolygonAreaC area;
  area.RemoveLastPoint();
  EXPECT_EQ(area.GetPointCount(), 0u);
  EXPECT_TRUE(area.AddPoint({1.0, 3.5, 2.0}));
  EXPECT_TRUE(area.AddPoint({2.0, 1.0, 2.0}));
  EXPECT_EQ(area.GetPointCount(), 2u);
  EXPECT_EQ(area.GetImpl()->GetSphereArea().GetPoints()[0].V, kTwoPi - 3.5);
  std::vector<ScanDefPointC> points(5);
  area.GetPoints(points);
  ASSERT_EQ(points.size(), 2u);
  EXPECT_EQ(points[0].GetV(), 3.5) << "the point itself is unchanged";
  EXPECT_EQ(points[0].GetDistance(), 2.0);
  area.RemoveLastPoint();
  EXPECT_EQ(area.GetPointCount(), 1u);
  EXPECT_EQ(area.GetImpl()->GetSphereArea().GetPointCount(), 1u);
  area.Clear();
  EXPECT_EQ(area.GetPointCount(), 0u);
}

TEST(ScanArea, ThePointCountHasSixteenBits) {
  ScanPolygonAreaC area;
  const std::vector<ScanDefPointC> points(65536);
  area.SetPoints(points);
  EXPECT_EQ(area.GetPointCount(), 0u);
  area.RemoveLastPoint();
  EXPECT_EQ(area.GetPointCount(), 65535u);
}

TEST(ScanArea, EachStepMustBeAboveZeroHoweverSmall) {
  constexpr double kUnit = std::numeric_limits<double>::denorm_min();
  const struct {
    double step;
    bool isValid;
  } cases[] = {
      {0.0, false},
      {-0.0, false},
      {kUnit, true},
      {-kUnit, false},
      {std::numeric_limits<double>::min(), true},
      {std::numeric_limits<double>::infinity(), true},
      {-1.0, false},
      {std::nan(""), false},
  };
  const std::unique_ptr<ScanAreaC> areas[] = {std::unique_ptr<ScanAreaC>(MakeRectangle()),
                                              std::unique_ptr<ScanAreaC>(MakePolygon()),
                                              std::make_unique<ScanDomeAreaC>()};
  for (const std::unique_ptr<ScanAreaC>& area : areas) {
    for (const auto& [step, isValid] : cases) {
      SCOPED_TRACE(step);
      area->SetSteps(0.1, step);
      EXPECT_EQ(area->IsValid(), isValid) << "V";
      area->SetSteps(step, 0.1);
      EXPECT_EQ(area->IsValid(), isValid) << "Hz";
    }
  }
}

TEST(ScanArea, ValidityAndBoundsUseTheVirtualFunctions) {
  auto* const impl = new LoggedC<ScanPolygonAreaImplC>;
  ScanPolygonAreaC area(impl);
  area.SetPoints(kTriangle);
  area.SetSteps(0.1, 0.1);
  EXPECT_TRUE(area.IsValid());
  EXPECT_EQ(impl->TakeCalls(), (Calls{"IsValid", "IsAreaValid"}));
  ScanDefPointC low;
  ScanDefPointC high;
  EXPECT_TRUE(area.GetBoundingPoints(low, high, false));
  EXPECT_EQ(impl->TakeCalls(), (Calls{"GetBoundingPoints", "IsAreaValid"}));
  for (const auto bound :
       {&ScanAreaC::GetHzMin, &ScanAreaC::GetVMin, &ScanAreaC::GetHzMax, &ScanAreaC::GetVMax}) {
    EXPECT_NE((area.*bound)(), kNotSet);
    EXPECT_EQ(impl->TakeCalls(),
              (Calls{"IsValid", "IsAreaValid", "GetBoundingPoints", "IsAreaValid"}));
  }
}

// A user's class may override the bounding points. The four bounds are those of the implementation,
// like all other results of an area.
TEST(ScanArea, BoundsAreThoseOfTheImplementation) {
  class OverriddenC : public ScanPolygonAreaC {
   public:
    bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool) const override {
      low.SetHz(0.5);
      low.SetV(0.5);
      high.SetHz(0.75);
      high.SetV(0.75);
      return true;
    }
  };
  OverriddenC overridden;
  ScanPolygonAreaC plain;
  for (ScanPolygonAreaC* const area : {static_cast<ScanPolygonAreaC*>(&overridden), &plain}) {
    area->SetPoints(kTriangle);
    area->SetSteps(0.1, 0.1);
  }
  for (const auto bound :
       {&ScanAreaC::GetHzMin, &ScanAreaC::GetVMin, &ScanAreaC::GetHzMax, &ScanAreaC::GetVMax}) {
    EXPECT_EQ((overridden.*bound)(), (plain.*bound)());
  }
  ScanDefPointC low;
  ScanDefPointC high;
  const ScanAreaC& area = overridden;
  EXPECT_TRUE(area.GetBoundingPoints(low, high, true));
  EXPECT_EQ(high.GetHz(), 0.75);
}

TEST(ScanArea, BoundsOfAnInvalidAreaAreTheLargestDouble) {
  const ScanPolygonAreaC area;
  EXPECT_EQ(area.GetHzMin(), kNotSet);
  EXPECT_EQ(area.GetVMin(), kNotSet);
  EXPECT_EQ(area.GetHzMax(), kNotSet);
  EXPECT_EQ(area.GetVMax(), kNotSet);
  ScanDefPointC low;
  ScanDefPointC high;
  EXPECT_FALSE(area.GetBoundingPoints(low, high, true));
  EXPECT_EQ(low.GetHz(), kNotSet);
  // Valid corners without steps have bounding points, but no bounds.
  const std::unique_ptr<ScanRectangularAreaC> rectangle(MakeRectangle());
  rectangle->SetSteps(0.0, 0.0);
  EXPECT_EQ(rectangle->GetHzMin(), kNotSet);
  EXPECT_TRUE(rectangle->GetBoundingPoints(low, high, true));
}

TEST(ScanArea, BoundsAcrossTheSeam) {
  const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
  area->SetCorners({6.0, 1.0, -1.0}, {0.25, 0.5, -1.0});
  EXPECT_EQ(area->GetHzMin(), 6.0);
  EXPECT_NEAR(area->GetHzMax(), 0.25, 1e-14);
  EXPECT_EQ(area->GetVMin(), 0.5);
  EXPECT_EQ(area->GetVMax(), 1.0);
  ScanDefPointC low;
  ScanDefPointC high;
  low.SetDistance(5.0);
  ASSERT_TRUE(area->GetBoundingPoints(low, high, false));
  EXPECT_NEAR(high.GetHz(), 0.25 + kTwoPi, 1e-14);
  EXPECT_EQ(low.GetDistance(), 5.0) << "distances are unchanged";
}

TEST(ScanArea, BoundsAreClampedAndOnlyTheFarEndsAreWrapped) {
  const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
  area->SetCorners({0.0, 1.0, -1.0}, {kTwoPi, 2.6, -1.0});
  EXPECT_EQ(area->GetVMax(), 2.5132741228718345);
  EXPECT_EQ(area->GetHzMax(), kTwoPi) << "a full turn is in range";
  const std::unique_ptr<ScanPolygonAreaC> ring(
      MakePolygon({{kTwoPi, 0.3, -1.0}, {2.0, 0.3, -1.0}, {4.0, 0.3, -1.0}}));
  EXPECT_EQ(ring->GetHzMin(), kTwoPi + 1e-6);
}

// Its bounding points are in reverse order.
class TurnedAreaC : public ScanRectangularAreaImplC {
 public:
  bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const override {
    EXPECT_TRUE(normalize);
    low = {5.0, 2.0, -1.0};
    high = {4.0, 1.0, -1.0};
    return true;
  }
};

TEST(ScanArea, TheBoundsInVAreOrderedAndThoseInHzAreNot) {
  ScanRectangularAreaC area(new TurnedAreaC);
  area.SetSteps(0.1, 0.1);
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_EQ(area.GetHzMin(), 5.0);
  EXPECT_EQ(area.GetHzMax(), 4.0);
  EXPECT_EQ(area.GetVMin(), 1.0);
  EXPECT_EQ(area.GetVMax(), 2.0);
}

TEST(ScanArea, BoundsAroundTheZenithNeedAValidArea) {
  // A ring around the zenith must be valid, too, although its extents do not require it.
  std::vector<ScanDefPointC> ring;
  for (const double hz : {0.0, 1.0, 2.0, 3.0, 4.0, 5.0}) ring.emplace_back(hz, 0.5, -1.0);
  const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon(ring));
  EXPECT_EQ(area->GetHzMin(), 1e-6);
  EXPECT_NEAR(area->GetHzMax(), 1e-6, 1e-14) << "normalised, the full turn is 0";
  EXPECT_EQ(area->GetVMax(), 2.5132741228718345);
  EXPECT_LT(area->GetVMin(), 0.5);
  ring.clear();
  for (int i = 0; i < 12; ++i) ring.emplace_back(kTwoPi * i / 12, i % 2 == 0 ? 0.9 : 0.6, -1.0);
  std::swap(ring[3], ring[5]);
  const std::unique_ptr<ScanPolygonAreaC> crossing(MakePolygon(ring));
  ASSERT_FALSE(crossing->IsAreaValid());
  ScanDefPointC low;
  ScanDefPointC high;
  EXPECT_FALSE(crossing->GetBoundingPoints(low, high, true));
  EXPECT_EQ(high.GetV(), kNotSet);
  EXPECT_TRUE(crossing->Contains(4.5, 0.2)) << "inside directions do not need it";
}

TEST(ScanArea, ContainsUsesTheGeometryForAnySteps) {
  std::unique_ptr<ScanAreaC> area(MakeRectangle());
  area->SetSteps(0.0, 0.0);
  EXPECT_TRUE(area->Contains(1.5, 0.7));
  EXPECT_FALSE(area->Contains(1.5, 1.2));
  area.reset(MakePolygon());
  EXPECT_TRUE(area->Contains(1.5, 1.2));
  EXPECT_FALSE(area->Contains(1.1, 1.4));
  area->Clear();
  EXPECT_FALSE(area->Contains(1.5, 1.2));
}

}  // namespace
