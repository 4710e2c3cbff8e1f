#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include "virtual_slot.h"

namespace SDI {
namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kNotSet = 1.7976931348623157e308;

static_assert(sizeof(ScanDefinitionC) == sizeof(API::BaseC));
static_assert(sizeof(ScanDomeAreaC) == sizeof(API::BaseC));
static_assert(sizeof(ScanDefinitionImplC) == 24);
static_assert(sizeof(ScanAreaImplC) == 24 + 64 + 72 + 24);
static_assert(sizeof(ScanRectangularAreaImplC) == sizeof(ScanAreaImplC));
static_assert(sizeof(ScanPolygonAreaImplC) == sizeof(ScanAreaImplC));
static_assert(sizeof(ScanDomeAreaImplC) == sizeof(ScanAreaImplC));
static_assert(std::is_base_of_v<boost::noncopyable, ScanDefinitionC>);

ScanRectangularAreaC* MakeRectangle() {
  auto* const area = new ScanRectangularAreaC;
  area->SetSteps(0.1, 0.2);
  area->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  return area;
}

using Calls = std::vector<std::string>;

const std::vector<ScanDefPointC> kTriangle = {{1.0, 1.0, -1.0}, {2.0, 1.0, -1.0}, {1.5, 1.5, -1.0}};

ScanPolygonAreaC* MakePolygon(const std::vector<ScanDefPointC>& points = kTriangle) {
  auto* const area = new ScanPolygonAreaC;
  area->SetSteps(0.1, 0.2);
  area->SetPoints(points);
  return area;
}

// What the getters of an area return; both sides of every kind have them.
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

TYPED_TEST(ScanAreas, EitherSideDestroysTheOther) {  // the leak checker is the judge
  delete new TypeParam;
  delete (new TypeParam)->GetImpl();
}

// Steps that differ by less than the smallest normal double are equal, limits only when they are.
TYPED_TEST(ScanAreas, EqualityToleratesSubnormalDifferencesOfTheStepsAlone) {
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
  EXPECT_FALSE(rectangle.GetImpl()->IsEqual(*point.GetImpl())) << "no scan definition";
}

// An area of no kind that the library has, under any code.
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

TEST(ScanDefinition, ComparesTypesAlone) {
  static_assert(!std::is_default_constructible_v<ScanDefinitionImplC>);
  static_assert(!std::is_default_constructible_v<ScanDefinitionC>);
  const ScanDefinitionC seven(new ScanDefinitionImplC(7));
  EXPECT_EQ(seven.GetType(), 7u);
  EXPECT_TRUE(seven.IsEqual(ScanDefinitionC(new ScanDefinitionImplC(7))));
  EXPECT_FALSE(seven.IsEqual(ScanDefinitionC(new ScanDefinitionImplC(8))));
  EXPECT_FALSE(ScanDefinitionImplC(7).IsEqual(API::ImplObjectC())) << "another class";
  ScanDefinitionImplC impl(7);
  EXPECT_EQ(static_cast<ScanDefinitionC*>(impl.GetBase())->GetImpl(), &impl);
}

#if !defined(_WIN32)
TEST(ScanArea, VirtualFunctionsStandInTheirOrder) {
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
  EXPECT_EQ(points[0].GetV(), 3.5) << "the point itself stays as given";
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

TEST(ScanRectangularArea, IsValidWithStepsAndTwoCornersThatDiffer) {
  ScanRectangularAreaC area;
  EXPECT_FALSE(area.IsValid());
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_TRUE(area.IsAreaValid());
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, 0.1);
  EXPECT_TRUE(area.IsValid());
  area.SetSteps(0.0, 0.1);
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, -0.1);
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, std::nan(""));
  EXPECT_FALSE(area.IsValid());
  area.SetSteps(0.1, 0.1);
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 0.5, -1.0});
  EXPECT_FALSE(area.IsValid()) << "equal V";
  area.SetCorners({1.0, 0.5, -1.0}, {1.0, 0.6, -1.0});
  EXPECT_FALSE(area.IsValid()) << "equal Hz";
  area.SetCorners({1.0, 0.5, -1.0}, {1.0, 0.5, -1.0});
  EXPECT_FALSE(area.IsValid());
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  area.AddPoint({1.5, 2.0, -1.0});
  EXPECT_FALSE(area.IsValid()) << "three points";
  area.SetCorners({7.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_FALSE(area.IsValid()) << "out of range";
  // Hz and V must differ exactly, but the corners by more than a denormal.
  area.SetCorners({1.0, 0.5, -1.0}, {std::nextafter(1.0, 2.0), std::nextafter(0.5, 1.0), -1.0});
  EXPECT_TRUE(area.IsValid());
  area.SetCorners({0.0, 0.0, -1.0}, {1e-310, 1.0, -1.0});
  EXPECT_TRUE(area.IsValid());
  area.SetCorners({0.0, 0.0, -1.0}, {1e-310, 1e-310, -1.0});
  EXPECT_FALSE(area.IsValid());
}

TEST(ScanArea, EachStepMustBeAboveZeroBeItEverSoLittle) {
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

// An implementation that says which of its virtual functions run, in their order.
template <class Impl>
class LoggedC : public Impl {
 public:
  bool IsValid() const override { return Log("IsValid"), Impl::IsValid(); }
  bool AddPoint(const ScanDefPointC& point) override {
    Log("AddPoint " + std::to_string(point.GetHz()).substr(0, 3));
    return Impl::AddPoint(point);
  }
  void RemoveLastPoint() override { Log("RemoveLastPoint"), Impl::RemoveLastPoint(); }
  void Clear() override { Log("Clear"), Impl::Clear(); }
  std::uint16_t GetPointCount() const override {
    return Log("GetPointCount"), Impl::GetPointCount();
  }
  void GetPoints(std::vector<ScanDefPointC>& points) const override {
    Log("GetPoints"), Impl::GetPoints(points);
  }
  bool IsAreaValid() const override { return Log("IsAreaValid"), Impl::IsAreaValid(); }
  bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const override {
    return Log("GetBoundingPoints"), Impl::GetBoundingPoints(low, high, normalize);
  }

  Calls TakeCalls() { return std::exchange(calls_, {}); }

 private:
  void Log(std::string call) const { calls_.push_back(std::move(call)); }

  mutable Calls calls_;
};

TEST(ScanRectangularArea, SettingCornersClearsAndAddsThemByTheVirtualFunctions) {
  auto* const impl = new LoggedC<ScanRectangularAreaImplC>;
  ScanRectangularAreaC area(impl);
  const Calls expected = {"Clear", "AddPoint 1.0", "AddPoint 2.0"};
  area.SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_EQ(impl->TakeCalls(), expected);
  impl->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, -1.0});
  EXPECT_EQ(impl->TakeCalls(), expected);
  ScanDefPointC a;
  ScanDefPointC b;
  area.SetSteps(0.1, 0.1);
  EXPECT_TRUE(area.GetCorners(a, b));
  EXPECT_EQ(impl->TakeCalls(), (Calls{"IsValid", "IsAreaValid"}));
}

TEST(ScanPolygonArea, SettingPointsCallsNoVirtualFunction) {
  auto* const impl = new LoggedC<ScanPolygonAreaImplC>;
  ScanPolygonAreaC area(impl);
  area.SetPoints(kTriangle);
  impl->SetPoints({{1.2, 1.4, -1.0}});
  EXPECT_EQ(impl->TakeCalls(), Calls());
  std::vector<ScanDefPointC> points;
  area.GetPoints(points);
  EXPECT_EQ(points.size(), 4u);
  EXPECT_EQ(area.GetPointCount(), 4u) << "the geometry has them too";
  EXPECT_EQ(impl->TakeCalls(), (Calls{"GetPoints", "GetPointCount"}));
}

TEST(ScanArea, ValidityAndBoundsAskByTheVirtualFunctions) {
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

TEST(ScanRectangularArea, CornersAreSetAndRead) {
  const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
  area->SetCorners({3.0, 0.6, 7.0}, {4.0, 1.1, 8.0});
  EXPECT_EQ(area->GetPointCount(), 2u);
  ScanDefPointC a;
  ScanDefPointC b;
  ASSERT_TRUE(area->GetCorners(a, b));
  EXPECT_EQ(a.GetHz(), 3.0);
  EXPECT_EQ(a.GetDistance(), 7.0);
  EXPECT_EQ(b.GetV(), 1.1);
  EXPECT_EQ(b.GetDistance(), 8.0);
  area->SetSteps(0.0, 0.0);
  a = ScanDefPointC();
  EXPECT_FALSE(area->GetCorners(a, b));
  EXPECT_EQ(a.GetHz(), kNotSet);
}

TEST(ScanRectangularArea, OutlineFillsTheDistances) {
  const struct {
    double first, second, filledFirst, filledSecond;
  } cases[] = {
      {12.5, -1.0, 12.5, 12.5}, {-1.0, 9.0, 9.0, 9.0}, {-1.0, -1.0, 3.0, 3.0}, {1.0, 2.0, 1.0, 2.0},
      {0.0, -1.0, 0.0, 0.0},    {-1.0, 0.0, 0.0, 0.0}, {1.0, 0.0, 1.0, 0.0},   {0.0, 1.0, 0.0, 1.0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.first << ", " << c.second);
    const std::unique_ptr<ScanRectangularAreaC> area(MakeRectangle());
    area->SetCorners({1.0, 0.5, c.first}, {2.0, 1.0, c.second});
    std::vector<ScanDefPointC> out(1);
    area->GetOutline(out, 3.0);
    ASSERT_EQ(out.size(), 5u) << "corners are appended";
    const ScanDefPointC expected[] = {{1.0, 0.5, c.filledFirst},
                                      {2.0, 0.5, c.filledSecond},
                                      {2.0, 1.0, c.filledSecond},
                                      {1.0, 1.0, c.filledFirst}};
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_TRUE(out[i + 1] == expected[i]);
      EXPECT_EQ(out[i + 1].GetDistance(), expected[i].GetDistance());
    }
  }
  const std::unique_ptr<ScanRectangularAreaC> unknown(MakeRectangle());
  unknown->SetCorners({1.0, 0.5, -1.0}, {2.0, 1.0, std::nan("")});
  std::vector<ScanDefPointC> out;
  unknown->GetOutline(out, 3.0);
  EXPECT_EQ(out[0].GetDistance(), -1.0) << "NaN is no distance to fill in";
  EXPECT_TRUE(std::isnan(out[2].GetDistance()));
}

TEST(ScanRectangularArea, OutlineNeedsTwoCornersAndTakesTheFirstTwo) {
  ScanRectangularAreaC area;
  std::vector<ScanDefPointC> out(1);
  area.GetOutline(out, 3.0);
  EXPECT_EQ(out.size(), 1u) << "no corner";
  area.AddPoint({1.0, 0.5, -1.0});
  area.GetOutline(out, 3.0);
  ASSERT_EQ(out.size(), 1u) << "one corner";
  EXPECT_EQ(out[0].GetHz(), kNotSet) << "what was there stays";
  area.AddPoint({2.0, 1.0, 5.0});
  area.AddPoint({3.0, 1.5, 7.0});
  area.AddPoint({4.0, 2.0, 9.0});
  area.GetOutline(out, 3.0);
  ASSERT_EQ(out.size(), 5u) << "four corners";
  const ScanDefPointC expected[] = {
      {1.0, 0.5, 5.0}, {2.0, 0.5, 5.0}, {2.0, 1.0, 5.0}, {1.0, 1.0, 5.0}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(out[i + 1] == expected[i]) << i;
    EXPECT_EQ(out[i + 1].GetDistance(), expected[i].GetDistance()) << i;
  }
}

TEST(ScanPolygonArea, SetPointsAppends) {
  const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon());
  area->SetPoints({{1.2, 1.4, -1.0}});
  EXPECT_EQ(area->GetPointCount(), 4u);
}

TEST(ScanPolygonArea, NeedsThreePointsWithoutRepeats) {
  EXPECT_TRUE(std::unique_ptr<ScanPolygonAreaC>(MakePolygon())->IsValid());
  std::unique_ptr<ScanPolygonAreaC> area(MakePolygon());
  area->RemoveLastPoint();
  EXPECT_TRUE(area->IsAreaValid()) << "two points are a rectangle to the geometry";
  EXPECT_FALSE(area->IsValid());
  area.reset(MakePolygon({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {1.0, 1.0, 2.0}}));
  EXPECT_FALSE(area->IsValid()) << "the last equals the first";
  area.reset(MakePolygon({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {2.0, 1.0, 2.0}, {1.5, 1.5, 1.0}}));
  EXPECT_FALSE(area->IsValid()) << "a point repeats its predecessor";
  // Points that differ by a denormal are equal here, though not to the geometry.
  area.reset(MakePolygon({{0.0, 1.0, 1.0}, {1e-310, 1.0, 1.0}, {1.0, 1.5, 1.0}}));
  EXPECT_TRUE(area->IsAreaValid());
  EXPECT_FALSE(area->IsValid());
  area.reset(MakePolygon({{0.0, 1.0, 1.0}, {1.0, 1.5, 1.0}, {1e-310, 1.0, 1.0}}));
  EXPECT_TRUE(area->IsAreaValid());
  EXPECT_FALSE(area->IsValid());
  // Around the zenith a ring of the kind is refused by these rules too.
  area.reset(MakePolygon({{0.0, 0.3, 1.0}, {2.0, 0.3, 1.0}, {4.0, 0.3, 1.0}}));
  EXPECT_TRUE(area->IsValid());
  area->SetSteps(0.0, 1.0);
  EXPECT_FALSE(area->IsValid());
}

TEST(ScanPolygonArea, OutlineFillsTheDistancesFromTheNeighbours) {
  const auto distances = [](const std::vector<double>& given) {
    std::vector<ScanDefPointC> points;
    for (const double distance : given) {
      points.emplace_back(static_cast<double>(points.size()), 1.0, distance);
    }
    const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon(points));
    std::vector<ScanDefPointC> out(7);
    area->GetOutline(out, 99.0);
    std::vector<double> filled;
    for (const ScanDefPointC& point : out) filled.push_back(point.GetDistance());
    return filled;
  };
  using Distances = std::vector<double>;
  EXPECT_EQ(distances({-1, -1, -1}), (Distances{99, 99, 99}));
  EXPECT_EQ(distances({1, 2, 3}), (Distances{1, 2, 3}));
  EXPECT_EQ(distances({}), (Distances{}));
  // Five points: the neighbour before the first is the first itself, for 2^64 - 1 is a multiple
  // of 5.
  EXPECT_EQ(distances({-1, -1, 10, -1, -1}), (Distances{10, 10, 10, 10, 10}));
  EXPECT_EQ(distances({-1, 4, 10, 20, 30}), (Distances{(16 + 4) / 2.0, 4, 10, 20, 30}));
  // Six points: 2^64 - 1 is 3 modulo 6.
  EXPECT_EQ(distances({-1, 4, 10, 20, 30, 40}), (Distances{(20 + 4) / 2.0, 4, 10, 20, 30, 40}));
  // Four points: it is the last one.
  EXPECT_EQ(distances({-1, 4, 10, 20}), (Distances{(20 + 4) / 2.0, 4, 10, 20}));
  // Filled values do not feed their neighbours: the mean is 10.
  EXPECT_EQ(distances({4, -1, -1, 16}), (Distances{4, 7, 13, 16}));
  // The one behind the last is the first.
  EXPECT_EQ(distances({4, 8, -1}), (Distances{4, 8, 6}));
  // 0 is no distance for the mean, and is not filled.
  EXPECT_EQ(distances({0, 8, -1, 8}), (Distances{0, 8, 8, 8}));
  EXPECT_EQ(distances({0, -1, 8, 8}), (Distances{0, 4, 8, 8})) << "nor does the mean stand for it";
  EXPECT_EQ(distances({0, 0, 0}), (Distances{99, 99, 99}));
}

TEST(ScanDomeArea, CoversEverythingDownToTheLimit) {
  ScanDomeAreaC dome;
  EXPECT_TRUE(dome.IsAreaValid());
  EXPECT_FALSE(dome.IsValid());
  dome.SetSteps(0.1, 0.1);
  EXPECT_TRUE(dome.IsValid());
  EXPECT_EQ(dome.GetHzMin(), 0.0);
  EXPECT_EQ(dome.GetHzMax(), 6.283184307179586);
  EXPECT_EQ(dome.GetVMin(), 0.0);
  EXPECT_EQ(dome.GetVMax(), 2.5132741228718345);
  EXPECT_FALSE(dome.AddPoint({1.0, 1.0, 1.0}));
  dome.RemoveLastPoint();
  dome.Clear();
  EXPECT_EQ(dome.GetPointCount(), 0u);
  std::vector<ScanDefPointC> out(2);
  dome.GetOutline(out, 1.0);
  EXPECT_EQ(out.size(), 2u);
  ScanDefPointC low;
  ScanDefPointC high;
  EXPECT_TRUE(dome.GetBoundingPoints(low, high, false));
  EXPECT_EQ(high.GetHz(), 6.283184307179586);
}

TEST(ScanDomeArea, ContainsWhatLiesAboveTheLimit) {
  const ScanDomeAreaC dome;
  EXPECT_TRUE(dome.Contains(1.0, 0.0));
  EXPECT_TRUE(dome.Contains(-5.0, 2.5132741228718345));
  EXPECT_FALSE(dome.Contains(1.0, std::nextafter(2.5132741228718345, 3.0)));
  EXPECT_FALSE(dome.Contains(1.0, -0.1));
  EXPECT_TRUE(dome.Contains(1.0, kTwoPi + 1.0));
  EXPECT_FALSE(dome.Contains(std::nan(""), 1.0));
  EXPECT_FALSE(dome.Contains(1.0, std::nan("")));
  EXPECT_FALSE(dome.Contains(101.0, 1.0));
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
  EXPECT_EQ(low.GetDistance(), 5.0) << "distances stay";
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

// Its bounding points stand upside down.
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
  // The rule of validity holds for a ring around the zenith too, though its extents do without.
  std::vector<ScanDefPointC> ring;
  for (const double hz : {0.0, 1.0, 2.0, 3.0, 4.0, 5.0}) ring.emplace_back(hz, 0.5, -1.0);
  const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon(ring));
  EXPECT_EQ(area->GetHzMin(), 1e-6);
  EXPECT_NEAR(area->GetHzMax(), 1e-6, 1e-14) << "normalised, the full turn is gone";
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
  EXPECT_TRUE(crossing->Contains(4.5, 0.2)) << "what is inside does not ask for it";
}

TEST(ScanArea, ContainsAsksTheGeometryWhateverTheSteps) {
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
}  // namespace SDI
