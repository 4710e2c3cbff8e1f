#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

namespace {

using SDI::kDomeArea;
using SDI::kPolygonArea;
using SDI::ScanAreaC;
using SDI::ScanAreaImplC;
using SDI::ScanC;
using SDI::ScanDefinitionC;
using SDI::ScanDefinitionImplC;
using SDI::ScanDomeAreaC;
using SDI::ScanDomeAreaImplC;
using SDI::ScanImplC;
using SDI::ScanPolygonAreaC;
using SDI::ScanRectangularAreaC;

static_assert(sizeof(ScanC) == sizeof(API::BaseC));

// The results of both sides.
template <class Scan>
constexpr bool ReturnsItsTypes() {
  using std::is_same_v;
  Scan* scan = nullptr;
  const Scan* constant = nullptr;
  const ScanDefinitionC* area = nullptr;
  const char16_t* text = nullptr;
  static_assert(is_same_v<decltype(constant->GetText1()), const char16_t*>);
  static_assert(is_same_v<decltype(constant->GetText2()), const char16_t*>);
  static_assert(is_same_v<decltype(constant->GetText3()), const char16_t*>);
  static_assert(is_same_v<decltype(constant->GetText4()), const char16_t*>);
  static_assert(is_same_v<decltype(scan->SetText1(text)), bool>);
  static_assert(is_same_v<decltype(scan->SetText2(text)), bool>);
  static_assert(is_same_v<decltype(scan->SetText3(text)), bool>);
  static_assert(is_same_v<decltype(scan->SetText4(text)), void>);
  static_assert(is_same_v<decltype(constant->GetValue1()), double>);
  static_assert(is_same_v<decltype(constant->GetValue2()), double>);
  static_assert(is_same_v<decltype(constant->GetValue3()), double>);
  static_assert(is_same_v<decltype(constant->GetValue4()), double>);
  static_assert(is_same_v<decltype(constant->GetWord1()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetWord2()), std::uint32_t>);
  static_assert(is_same_v<decltype(constant->GetArea()), ScanDefinitionC*>);
  static_assert(is_same_v<decltype(scan->CreateArea(1)), ScanDefinitionC*>);
  static_assert(is_same_v<decltype(scan->SetArea(area)), ScanDefinitionC*>);
  static_assert(is_same_v<decltype(constant->IsEqual(*constant)), bool>);
  return true;
}
static_assert(ReturnsItsTypes<ScanC>() && ReturnsItsTypes<ScanImplC>());
static_assert(std::is_same_v<decltype(std::declval<const ScanC&>().GetImpl()), ScanImplC*>);
static_assert(std::is_same_v<decltype(std::declval<ScanImplC&>().SetArea(
                                 std::declval<const ScanDefinitionImplC*>())),
                             ScanDefinitionC*>);

std::u16string Units(std::size_t n) { return std::u16string(n, u'x'); }

TEST(Scan, IsEmptyAtFirst) {
  const ScanC scan;
  EXPECT_EQ(scan.GetText1(), std::u16string());
  EXPECT_EQ(scan.GetText2(), std::u16string());
  EXPECT_EQ(scan.GetText3(), std::u16string());
  EXPECT_EQ(scan.GetText4(), std::u16string());
  EXPECT_EQ(scan.GetValue1(), 0.0);
  EXPECT_EQ(scan.GetValue2(), 0.0);
  EXPECT_EQ(scan.GetValue3(), 0.0);
  EXPECT_EQ(scan.GetValue4(), 0.0);
  EXPECT_EQ(scan.GetWord1(), 0u);
  EXPECT_EQ(scan.GetWord2(), 0u);
  EXPECT_EQ(scan.GetArea(), nullptr);
}

TEST(Scan, TextsHaveTheirLimits) {
  ScanC scan;
  EXPECT_TRUE(scan.SetText1(Units(32).c_str()));
  EXPECT_FALSE(scan.SetText1(Units(33).c_str()));
  EXPECT_EQ(scan.GetText1(), Units(32));
  EXPECT_TRUE(scan.SetText2(Units(32).c_str()));
  EXPECT_FALSE(scan.SetText2(Units(33).c_str())) << "although the field holds 64";
  EXPECT_EQ(scan.GetText2(), Units(32));
  EXPECT_TRUE(scan.SetText3(Units(255).c_str()));
  EXPECT_FALSE(scan.SetText3(Units(256).c_str()));
  EXPECT_EQ(scan.GetText3(), Units(255));
  scan.SetText4(Units(64).c_str());
  EXPECT_EQ(scan.GetText4(), Units(64));
  scan.SetText4(Units(65).c_str());
  EXPECT_EQ(scan.GetText4(), std::u16string());
}

TEST(Scan, NullTextsAreRefusedOrEmptyTheField) {
  ScanC scan;
  scan.SetText1(u"a");
  scan.SetText2(u"b");
  scan.SetText3(u"c");
  scan.SetText4(u"d");
  EXPECT_FALSE(scan.SetText1(nullptr));
  EXPECT_FALSE(scan.SetText2(nullptr));
  EXPECT_FALSE(scan.SetText3(nullptr));
  scan.SetText4(nullptr);
  EXPECT_EQ(scan.GetText1(), std::u16string(u"a"));
  EXPECT_EQ(scan.GetText2(), std::u16string(u"b"));
  EXPECT_EQ(scan.GetText3(), std::u16string(u"c"));
  EXPECT_EQ(scan.GetText4(), std::u16string());
}

TEST(Scan, TextPointersShowLaterChanges) {
  ScanC scan;
  const char16_t* const text = scan.GetText1();
  scan.SetText1(u"later");
  EXPECT_EQ(text, std::u16string(u"later"));
}

TEST(Scan, CreateAreaReplacesTheAreaEvenWithNone) {
  ScanC scan;
  EXPECT_NE(dynamic_cast<ScanRectangularAreaC*>(scan.CreateArea(1)), nullptr);
  EXPECT_NE(dynamic_cast<ScanPolygonAreaC*>(scan.CreateArea(2)), nullptr);
  ScanDefinitionC* const dome = scan.CreateArea(3);
  EXPECT_NE(dynamic_cast<ScanDomeAreaC*>(dome), nullptr);
  EXPECT_EQ(scan.GetArea(), dome);
  EXPECT_EQ(scan.CreateArea(7), nullptr);
  EXPECT_EQ(scan.GetArea(), nullptr);
  EXPECT_EQ(scan.CreateArea(0), nullptr);
}

TEST(Scan, SetAreaStoresACopy) {
  ScanPolygonAreaC polygon;
  polygon.SetSteps(0.1, 0.2);
  polygon.AddPoint({1.0, 1.0, 3.0});
  ScanC scan;
  auto* const stored = dynamic_cast<ScanPolygonAreaC*>(scan.SetArea(&polygon));
  ASSERT_NE(stored, nullptr);
  EXPECT_NE(stored, &polygon);
  EXPECT_EQ(scan.GetArea(), stored);
  EXPECT_TRUE(stored->IsEqual(polygon));
  polygon.Clear();
  EXPECT_EQ(stored->GetPointCount(), 1u);
  ScanDomeAreaC dome;
  EXPECT_NE(dynamic_cast<ScanDomeAreaC*>(scan.SetArea(&dome)), nullptr);
  ScanRectangularAreaC rectangle;
  EXPECT_NE(dynamic_cast<ScanRectangularAreaC*>(scan.SetArea(&rectangle)), nullptr);
}

// An area that counts its destruction. A scan does not create such areas, so it replaces the one
// that the scan created.
class CountedAreaC : public ScanDomeAreaImplC {
 public:
  explicit CountedAreaC(int& ends) : ends_(ends) {}
  ~CountedAreaC() override { ++ends_; }

 private:
  int& ends_;
};

void CountTheEndOfItsArea(ScanC& scan, int& ends) {
  auto* const area = static_cast<ScanAreaC*>(scan.CreateArea(kDomeArea));
  ScanAreaImplC* const old = area->GetImpl();
  old->DetachBase();
  area->SetImpl(new CountedAreaC(ends));
  delete old;
}

TEST(Scan, SetAreaReplacesTheExistingArea) {
  ScanRectangularAreaC rectangle;
  ScanPolygonAreaC polygon;
  ScanDomeAreaC dome;
  for (ScanAreaC* const area :
       {static_cast<ScanAreaC*>(&rectangle), static_cast<ScanAreaC*>(&polygon),
        static_cast<ScanAreaC*>(&dome)}) {
    SCOPED_TRACE(area->GetType());
    area->SetSteps(0.1, 0.2);
    area->AddPoint({1.0, 1.0, 3.0});
    int ends = 0;
    ScanC scan;
    CountTheEndOfItsArea(scan, ends);
    ASSERT_EQ(ends, 0);
    ScanDefinitionC* const made = scan.SetArea(area);
    EXPECT_EQ(ends, 1) << "the previous area was destroyed";
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(scan.GetArea(), made);
    EXPECT_NE(made, area);
    EXPECT_TRUE(made->IsEqual(*area));

    CountTheEndOfItsArea(scan, ends);
    EXPECT_TRUE(scan.GetImpl()->SetArea(area->GetImpl())->IsEqual(*area));
    EXPECT_EQ(ends, 2);
    EXPECT_EQ(area->GetPointCount(), area == &dome ? 0u : 1u) << "the source is unchanged";
  }
}

TEST(Scan, TheAreaIsDestroyedWhenItIsReplaced) {
  int ends = 0;
  {
    ScanC scan;
    CountTheEndOfItsArea(scan, ends);
    EXPECT_EQ(scan.SetArea(nullptr), nullptr);
    EXPECT_EQ(ends, 0) << "a null area changes nothing";
    EXPECT_EQ(scan.GetImpl()->SetArea(static_cast<const ScanDefinitionImplC*>(nullptr)), nullptr);
    EXPECT_EQ(ends, 1);

    CountTheEndOfItsArea(scan, ends);
    const ScanDefinitionC unknown(new ScanDefinitionImplC(7));
    EXPECT_EQ(scan.SetArea(&unknown), nullptr);
    EXPECT_EQ(ends, 2);

    CountTheEndOfItsArea(scan, ends);
    EXPECT_EQ(scan.CreateArea(7), nullptr);
    EXPECT_EQ(ends, 3);

    CountTheEndOfItsArea(scan, ends);
    ScanC other;
    other.CreateArea(kPolygonArea);
    scan = other;
    EXPECT_EQ(ends, 4);
    EXPECT_EQ(scan.GetArea()->GetType(), kPolygonArea);

    CountTheEndOfItsArea(scan, ends);
  }
  EXPECT_EQ(ends, 5) << "with the scan";
}

TEST(Scan, SetAreaTakesItsOwnArea) {
  ScanC scan;
  static_cast<ScanAreaC*>(scan.CreateArea(2))->AddPoint({1.0, 1.0, 3.0});
  auto* const again = static_cast<ScanAreaC*>(scan.SetArea(scan.GetArea()));
  ASSERT_NE(again, nullptr);
  EXPECT_EQ(again->GetPointCount(), 1u);
  auto* const third = static_cast<ScanAreaC*>(scan.GetImpl()->SetArea(again->GetImpl()));
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(third->GetPointCount(), 1u);
}

TEST(Scan, OnlyTheImplementationFormRemovesTheAreaForNull) {
  ScanC scan;
  ScanDefinitionC* const area = scan.CreateArea(3);
  EXPECT_EQ(scan.SetArea(nullptr), nullptr);
  EXPECT_EQ(scan.GetArea(), area);
  EXPECT_EQ(scan.GetImpl()->SetArea(static_cast<const ScanDefinitionC*>(nullptr)), nullptr);
  EXPECT_EQ(scan.GetArea(), area);
  EXPECT_EQ(scan.GetImpl()->SetArea(static_cast<const ScanDefinitionImplC*>(nullptr)), nullptr);
  EXPECT_EQ(scan.GetArea(), nullptr);
}

TEST(Scan, AnAreaOfAnUnknownKindLeavesNone) {
  ScanC scan;
  scan.CreateArea(3);
  const ScanDefinitionC unknown(new ScanDefinitionImplC(7));
  EXPECT_EQ(scan.SetArea(&unknown), nullptr);
  EXPECT_EQ(scan.GetArea(), nullptr);
  // An area whose type code does not match its class is refused, too.
  scan.CreateArea(3);
  ScanDefinitionImplC liar(1);
  EXPECT_EQ(scan.GetImpl()->SetArea(&liar), nullptr);
  EXPECT_EQ(scan.GetArea(), nullptr);
}

ScanC* MakeScan() {
  auto* const scan = new ScanC;
  scan->SetText1(u"one");
  scan->SetText2(u"two");
  scan->SetText3(u"three");
  scan->SetText4(u"four");
  scan->SetValue1(1.0);
  scan->SetValue2(2.0);
  scan->SetValue3(3.0);
  scan->SetValue4(4.0);
  scan->SetWord1(5);
  scan->SetWord2(6);
  return scan;
}

TEST(Scan, EveryFieldTakesPartInEquality) {
  const std::unique_ptr<ScanC> scan(MakeScan());
  const auto differs = [&scan](auto change) {
    const std::unique_ptr<ScanC> other(MakeScan());
    EXPECT_TRUE(scan->IsEqual(*other));
    change(*other);
    EXPECT_FALSE(scan->IsEqual(*other));
    EXPECT_FALSE(other->IsEqual(*scan));
  };
  differs([](ScanC& s) { s.SetText1(u""); });
  differs([](ScanC& s) { s.SetText2(u""); });
  differs([](ScanC& s) { s.SetText3(u""); });
  differs([](ScanC& s) { s.SetText4(u""); });
  differs([](ScanC& s) { s.SetValue1(1.0 + 3e-16); });
  differs([](ScanC& s) { s.SetValue2(std::nan("")); });
  differs([](ScanC& s) { s.SetValue3(0.0); });
  differs([](ScanC& s) { s.SetValue4(0.0); });
  differs([](ScanC& s) { s.SetValue4(std::nextafter(4.0, 5.0)); });
  differs([](ScanC& s) { s.SetWord1(0); });
  differs([](ScanC& s) { s.SetWord2(0); });
}

TEST(Scan, ValuesAreComparedExactlyIncludingSubnormalOnes) {
  constexpr double kUnit = std::numeric_limits<double>::denorm_min();
  for (const auto set :
       {&ScanC::SetValue1, &ScanC::SetValue2, &ScanC::SetValue3, &ScanC::SetValue4}) {
    ScanC a;
    ScanC b;
    (a.*set)(kUnit);
    EXPECT_FALSE(a.IsEqual(b));
    EXPECT_FALSE(b.IsEqual(a));
    (b.*set)(kUnit);
    EXPECT_TRUE(a.IsEqual(b));
    (a.*set)(0.0);
    (b.*set)(-0.0);
    EXPECT_TRUE(a.IsEqual(b));
  }
}

TEST(Scan, AreasAreComparedWhenBothHaveOne) {
  const std::unique_ptr<ScanC> a(MakeScan());
  const std::unique_ptr<ScanC> b(MakeScan());
  a->CreateArea(3);
  EXPECT_TRUE(a->IsEqual(*b));
  EXPECT_TRUE(b->IsEqual(*a));
  b->CreateArea(3);
  EXPECT_TRUE(a->IsEqual(*b));
  static_cast<ScanAreaC*>(b->GetArea())->SetHzStep(1.0);
  EXPECT_FALSE(a->IsEqual(*b));
  b->CreateArea(2);
  EXPECT_FALSE(a->IsEqual(*b));
}

TEST(Scan, CopiesAreDeep) {
  const std::unique_ptr<ScanC> scan(MakeScan());
  auto* const area = static_cast<ScanAreaC*>(scan->CreateArea(2));
  area->AddPoint({1.0, 1.0, 3.0});
  ScanC copy(*scan);
  EXPECT_TRUE(copy.IsEqual(*scan));
  EXPECT_EQ(copy.GetText3(), std::u16string(u"three"));
  EXPECT_EQ(copy.GetValue4(), 4.0);
  EXPECT_EQ(copy.GetWord2(), 6u);
  ASSERT_NE(copy.GetArea(), scan->GetArea());
  static_cast<ScanAreaC*>(copy.GetArea())->Clear();
  EXPECT_EQ(area->GetPointCount(), 1u);
  ScanC assigned;
  assigned = *scan;
  EXPECT_TRUE(assigned.IsEqual(*scan));
  assigned.SetText1(u"");
  static_cast<ScanAreaC*>(assigned.GetArea())->Clear();
  EXPECT_EQ(scan->GetText1(), std::u16string(u"one"));
  EXPECT_EQ(area->GetPointCount(), 1u);
}

TEST(Scan, AssigningAScanWithoutAnAreaKeepsTheArea) {
  ScanC scan;
  ScanDefinitionC* const area = scan.CreateArea(3);
  scan = ScanC();
  EXPECT_EQ(scan.GetArea(), area);
  EXPECT_EQ(ScanC(ScanC()).GetArea(), nullptr);
}

TEST(Scan, AssigningToItselfChangesNothing) {
  const std::unique_ptr<ScanC> scan(MakeScan());
  ScanDefinitionC* const area = scan->CreateArea(3);
  const ScanC& same = *scan;
  *scan = same;
  EXPECT_EQ(scan->GetArea(), area);
  *scan->GetImpl() = *same.GetImpl();
  EXPECT_EQ(scan->GetArea(), area);
}

}  // namespace
