#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/surveydata.h>

#include "tests/support/faults.h"
#include "tests/support/pairs.h"
#include "tests/support/test_each.h"

// Makes every allocation of every operation fail once. Nothing may leak or be deleted twice (the
// sanitizer checks that), links must be intact and sources unchanged; if an operation copies before
// it changes its target, the target must be unchanged. Afterwards the operation must succeed.

namespace {

using Faults::BalanceC;
using Faults::FailuresBeforeSuccess;
using Faults::FailuresOfAChange;
using Pairs::Mark;
using Pairs::Shown;

template <class P>
class PairMemory : public testing::Test {
 protected:
  static void ExpectLinked(const typename P::PublicT& object) {
    ASSERT_NE(object.GetImpl(), nullptr);
    EXPECT_EQ(object.GetImpl()->API::ImplObjectC::GetBase(), &object);
  }

  static std::unique_ptr<typename P::PublicT> Marked() {
    auto object = std::make_unique<typename P::PublicT>();
    Mark(*object->GetImpl());
    return object;
  }
};
TEST_EACH_SUITE(PairMemory, Pairs::AllPairs);

TEST_EACH(PairMemory, AssignmentFailsOrCopies) {
  using Public = typename TypeParam::PublicT;
  using Impl = typename TypeParam::ImplT;
  this->Marked();  // allocates everything that is created only once
  FailuresBeforeSuccess([] {});
  const BalanceC balance;
  const auto source = this->Marked();
  const std::string marked = Shown(*source->GetImpl());
  Public target;
  const auto check = [&] {
    this->ExpectLinked(*source);
    this->ExpectLinked(target);
    EXPECT_EQ(Shown(*source->GetImpl()), marked);
  };
  if constexpr (std::is_copy_assignable_v<Public>) {
    FailuresOfAChange([&] { target = *source; }, check);
  } else {
    FailuresOfAChange([&] { *target.GetImpl() = *source->GetImpl(); }, check);
  }
  check();
  EXPECT_EQ(Shown(*target.GetImpl()), marked);
  Impl* const impl = target.GetImpl();
  EXPECT_EQ(FailuresBeforeSuccess([&] { *impl = std::as_const(*impl); }), 0U);  // self-assignment
}

TEST_EACH(PairMemory, ACopyOfAnImplementationHasNoOwnerOrDoesNotExist) {
  using Impl = typename TypeParam::ImplT;
  const auto source = this->Marked();
  const std::string marked = Shown(*source->GetImpl());
  std::unique_ptr<Impl> copy;
  FailuresBeforeSuccess([&] { copy = std::make_unique<Impl>(std::as_const(*source->GetImpl())); },
                        [&] {
                          EXPECT_EQ(copy, nullptr);
                          this->ExpectLinked(*source);
                          EXPECT_EQ(Shown(*source->GetImpl()), marked);
                        });
  EXPECT_EQ(copy->API::ImplObjectC::GetBase(), nullptr);
  EXPECT_EQ(Shown(*copy), marked);
}

TEST_EACH(PairMemory, AnImplementationThatIsNotAdoptedKeepsItsOwner) {
  using Public = typename TypeParam::PublicT;
  auto* const first = this->Marked().release();
  auto* const impl = first->GetImpl();
  Public* second = nullptr;
  EXPECT_EQ(FailuresBeforeSuccess([&] { second = new Public(impl); },
                                  [&] {
                                    EXPECT_EQ(impl->API::ImplObjectC::GetBase(), first);
                                    this->ExpectLinked(*first);
                                  }),
            1U);
  this->ExpectLinked(*second);
  EXPECT_EQ(second->GetImpl(), impl);
  delete second;
}

TEST_EACH(PairMemory, LinkingAndDetachingAllocatesNothing) {
  using Public = typename TypeParam::PublicT;
  using Impl = typename TypeParam::ImplT;
  auto* const impl = new Impl;
  Public object;
  auto* const before = object.GetImpl();
  EXPECT_EQ(FailuresBeforeSuccess([&] {
              before->DetachBase();
              object.SetImpl(impl);
            }),
            0U);
  delete before;
  this->ExpectLinked(object);
  EXPECT_EQ(object.GetImpl(), impl);
}

TEST_EACH(PairMemory, DestroyingAllocatesNothing) {
  using Public = typename TypeParam::PublicT;
  auto* object = this->Marked().release();
  EXPECT_EQ(FailuresBeforeSuccess([&] { delete object; }), 0U);
  object = new Public;
  EXPECT_EQ(FailuresBeforeSuccess([&] { delete object->GetImpl(); }), 0U);
}

// --- Records with parts

TEST(PartsMemory, APartIsLentOrNotCreated) {
  ODM::PositionC position;
  position.GetCoordinatePoint().SetX(7.0);
  API::BaseC* part = nullptr;
  EXPECT_EQ(FailuresBeforeSuccess([&] { part = position.GetCoordinatePoint().GetBase(); },
                                  [&] { EXPECT_EQ(position.GetCoordinatePoint().GetX(), 7.0); }),
            1U);
  EXPECT_EQ(position.GetCoordinatePoint().GetBase(), part);
  EXPECT_EQ(static_cast<SDI::CoordinatePointC*>(part)->GetX(), 7.0);
}

// --- Scans and their areas

using SDI::ScanDefPointC;

std::vector<ScanDefPointC> Corners() {
  return {ScanDefPointC(0.5, 1.0, 1.0), ScanDefPointC(1.0, 0.9, 2.0), ScanDefPointC(1.2, 1.5, -1.0),
          ScanDefPointC(0.4, 1.6, -1.0)};
}

// Whether points and geometry are the same.
void ExpectMirrored(const SDI::ScanAreaImplC& area) {
  std::vector<ScanDefPointC> points;
  area.GetPoints(points);
  const auto& mirrored = area.GetSphereArea().GetPoints();
  ASSERT_EQ(points.size(), mirrored.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(points[i].GetHz(), mirrored[i].Hz);
    EXPECT_EQ(points[i].GetV(), mirrored[i].V);
  }
}

TEST(ScanAreaMemory, APointIsAddedWholeOrNotAtAll) {
  const BalanceC balance;
  SDI::ScanPolygonAreaC area;
  std::size_t failures = 0;
  for (std::uint16_t count = 0; count < 20; ++count) {
    const ScanDefPointC point(0.1 * count, 1.0, 2.0);
    failures += FailuresOfAChange([&] { area.AddPoint(point); },
                                  [&] {
                                    EXPECT_EQ(area.GetPointCount(), count);
                                    ExpectMirrored(*area.GetImpl());
                                  });
    EXPECT_EQ(area.GetPointCount(), count + 1);
    ExpectMirrored(*area.GetImpl());
  }
  EXPECT_GE(failures, 40U);  // at least two for each point
}

TEST(ScanAreaMemory, ManyPointsAreAddedUpToTheOneThatFails) {
  const BalanceC balance;
  const auto corners = Corners();
  SDI::ScanPolygonAreaC area;
  FailuresOfAChange(
      [&] {
        area.Clear();
        area.SetPoints(corners);
      },
      [&] { ExpectMirrored(*area.GetImpl()); });
  EXPECT_EQ(area.GetPointCount(), corners.size());
  SDI::ScanRectangularAreaC rectangle;
  FailuresOfAChange([&] { rectangle.SetCorners(corners[0], corners[2]); },
                    [&] { ExpectMirrored(*rectangle.GetImpl()); });
  EXPECT_EQ(rectangle.GetPointCount(), 2U);
}

TEST(ScanAreaMemory, AnAreaCanBeUsedAfterAnAssignmentThatFailed) {
  const BalanceC balance;
  SDI::ScanPolygonAreaC source;
  source.SetPoints(Corners());
  source.SetSteps(0.1, 0.2);
  for (const std::size_t points : {0U, 1U, 4U}) {
    SDI::ScanPolygonAreaC target;
    for (std::size_t i = 0; i < points; ++i) target.AddPoint(Corners()[i]);
    FailuresOfAChange([&] { *target.GetImpl() = *source.GetImpl(); },
                      [&] {
                        target.IsValid();
                        target.GetHzMin();
                        std::vector<ScanDefPointC> outline;
                        target.GetOutline(outline, 1.0);
                      });
    EXPECT_TRUE(target.IsEqual(source));
    ExpectMirrored(*target.GetImpl());
  }
}

TEST(ScanAreaMemory, QueriesLeaveNoMemoryAllocated) {
  SDI::ScanPolygonAreaC area;
  area.SetPoints(Corners());
  area.SetSteps(0.1, 0.2);
  ScanDefPointC low;
  ScanDefPointC high;
  const auto ask = [&](auto question) {
    const std::size_t failures = FailuresBeforeSuccess(question);
    EXPECT_GE(failures, 1U);
  };
  bool answer = false;
  ask([&] { answer = area.IsValid(); });
  EXPECT_TRUE(answer);
  ask([&] { answer = area.GetBoundingPoints(low, high, true); });
  EXPECT_TRUE(answer);
  ask([&] { answer = area.Contains(0.8, 1.2); });
  EXPECT_TRUE(answer);
  ask([&] { answer = area.GetHzMin() < area.GetHzMax(); });
  EXPECT_TRUE(answer);
  ask([&] {
    std::vector<ScanDefPointC> points;
    area.GetPoints(points);
    answer = points == Corners();
  });
  EXPECT_TRUE(answer);
  ask([&] {
    std::vector<ScanDefPointC> outline;
    area.GetOutline(outline, 1.0);
    answer = outline.size() == 4;
  });
  EXPECT_TRUE(answer);
  ask([&] {
    const SDI::PreparedAreaC prepared(area);
    const SDI::PreparedAreaC copy = prepared;
    answer = copy.Contains(0.8, 1.2);
  });
  EXPECT_TRUE(answer);
}

TEST(ScanAreaMemory, TheOutlineOfARectangleIsCompleteOrTruncated) {
  const BalanceC balance;
  SDI::ScanRectangularAreaC rectangle;
  rectangle.SetCorners(Corners()[0], Corners()[2]);
  std::vector<ScanDefPointC> outline;
  FailuresOfAChange(
      [&] {
        outline.clear();
        rectangle.GetOutline(outline, 1.0);
      },
      [&] { EXPECT_LT(outline.size(), 4U); });
  EXPECT_EQ(outline.size(), 4U);
}

// --- The geometry, on each of its code paths

struct Shape {
  const char* name;
  std::vector<GMAT::AnglePointC> corners;
  GMAT::AnglePointC inside;
  GMAT::AnglePointC outside;
};

std::vector<Shape> Shapes() {
  Shape ring{"around the zenith", {}, {2.0, 0.2}, {2.0, 0.5}};
  for (int i = 0; i < 12; ++i) ring.corners.push_back({0.5 * i + 0.1, 0.3});
  return {{"rectangle", {{0.5, 1.0}, {1.2, 1.5}}, {0.8, 1.2}, {2.0, 1.2}},
          {"star", {{0.5, 1.0}, {1.0, 0.9}, {1.2, 1.5}, {0.4, 1.6}}, {0.8, 1.2}, {0.6, 0.8}},
          // It is not star-shaped, so its edges are compared.
          {"comb",
           {{1.0, 1.0},
            {1.2, 1.5},
            {1.4, 1.0},
            {1.6, 1.5},
            {1.8, 1.0},
            {2.0, 1.5},
            {2.2, 1.0},
            {2.2, 2.0},
            {1.6, 1.9},
            {1.0, 2.0}},
           {1.6, 1.7},
           {1.6, 1.3}},
          ring,
          // A corner at the zenith, which prepared areas skip.
          {"wedge", {{0.0, 0.0}, {1.0, 1.0}, {2.0, 1.0}}, {1.5, 0.5}, {1.5, 1.6}},
          // Beyond the zenith by less than the tolerance: prepared areas apply the rules directly.
          {"tipped", {{0.5, -1e-11}, {0.2, 1.0}, {0.8, 1.0}}, {0.5, 0.7}, {0.5, 1.2}},
          {"bow tie", {{1.0, 1.0}, {2.0, 1.5}, {2.0, 1.0}, {1.0, 1.5}}, {9.9, 9.9}, {1.2, 1.25}}};
}

TEST(GeometryMemory, FailuresDoNotChangeLaterAnswers) {
  for (const Shape& shape : Shapes()) {
    SCOPED_TRACE(shape.name);
    const bool isValid = std::string(shape.name) != "bow tie";
    GMAT::SphereAreaC area;
    EXPECT_GE(FailuresOfAChange([&] { area.AddPoints(shape.corners); },
                                [&] { EXPECT_EQ(area.GetPointCount(), 0U); }),
              1U);
    const std::vector<GMAT::AnglePointC> points = area.GetPoints();
    ASSERT_EQ(points.size(), shape.corners.size());
    std::size_t failures = 0;
    // After failures, the successful call must give the same answer as one without failures.
    const auto expectSame = [&](auto question) {
      const auto expected = question();
      auto answer = expected;
      answer = {};
      failures += FailuresBeforeSuccess([&] { answer = question(); },
                                        [&] { EXPECT_EQ(area.GetPoints(), points); });
      EXPECT_EQ(answer, expected);
      return answer;
    };
    EXPECT_EQ(expectSame([&] { return area.IsValid(); }), isValid);
    EXPECT_EQ(expectSame([&] {
                double bounds[4];
                bool enclosesZenith = false;
                return area.GetExtents(bounds[0], bounds[1], bounds[2], bounds[3], enclosesZenith,
                                       false);
              }),
              isValid);
    EXPECT_FALSE(expectSame([&] { return area.Contains(shape.outside.Hz, shape.outside.V); }));
    EXPECT_EQ(expectSame([&] { return area.Contains(shape.inside.Hz, shape.inside.V); }), isValid);
    expectSame([&] { return area.DistanceToBoundary(shape.inside.Hz, shape.inside.V); });
    for (const bool isVertical : {true, false}) {
      expectSame([&] {
        std::vector<GMAT::AnglePointC> crossings;
        area.SearchLine(shape.inside, isVertical, crossings);
        return crossings.size();
      });
    }
    // At the seam of a prepared area, and at a corner, prepared areas apply the rules directly.
    expectSame([&] {
      const GMAT::PreparedSphereAreaC prepared(area);
      std::size_t inside = 0;
      for (const GMAT::AnglePointC& p : {shape.inside, shape.outside, points[0], points[1]}) {
        inside += prepared.Ask(p.Hz, p.V).isInside;
        inside += prepared.Ask(p.Hz, shape.inside.V).isInside;
      }
      return inside;
    });
    expectSame([&] { return GMAT::SphereAreaC(area).GetPointCount(); });
    EXPECT_GE(failures, 10U);
  }
}

// --- Texts of arbitrary length

TEST(TextMemory, ATextIsSetOrUnchanged) {
  const std::string text(100, 'x');
  const BalanceC balance;
  SDI::InstrumentInfoDataC info;
  const auto check = [&](auto set, auto get) {
    (info.*set)("before");
    EXPECT_EQ(FailuresOfAChange([&] { (info.*set)(text.c_str()); },
                                [&] { EXPECT_STREQ((info.*get)(), "before"); }),
              1U);
    EXPECT_EQ((info.*get)(), text);
  };
  using Info = SDI::InstrumentInfoDataC;
  check(&Info::SetText1, &Info::GetText1);
  check(&Info::SetText2, &Info::GetText2);
  check(&Info::SetText3, &Info::GetText3);
  check(&Info::SetText4, &Info::GetText4);
}

TEST(TextMemory, ARecordWithLongTextsIsCreatedAndCopiedOrDoesNotExist) {
  const std::string text(100, 'x');
  const char* const t = text.c_str();
  const BalanceC balance;
  std::unique_ptr<SDI::InstrumentInfoDataC> info;
  EXPECT_EQ(FailuresBeforeSuccess([&] {
              info = std::make_unique<SDI::InstrumentInfoDataC>(u"name", 1, t, t, t, t, 1.0F, 1, 2,
                                                                3, 4);
            }),
            6U);  // two objects, four texts
  std::unique_ptr<SDI::InstrumentInfoDataC> copy;
  EXPECT_EQ(FailuresBeforeSuccess([&] { copy = std::make_unique<SDI::InstrumentInfoDataC>(*info); },
                                  [&] { EXPECT_EQ(info->GetText4(), text); }),
            6U);
  EXPECT_TRUE(copy->IsEqual(*info));
  // An assignment may fail between two texts; the next one completes it.
  SDI::InstrumentInfoDataC target;
  EXPECT_GE(FailuresOfAChange([&] { target = *info; }, [&] { EXPECT_EQ(info->GetText4(), text); }),
            2U);
  EXPECT_TRUE(target.IsEqual(*info));
}

class ScanMemory : public testing::Test {
 protected:
  ScanMemory() {
    polygon_.SetPoints(Corners());
    scan_.SetText1(u"before");
    scan_.SetValue1(1.5);
    scan_.SetArea(&polygon_);
    other_.SetText1(u"other");
    other_.CreateArea(SDI::kRectangularArea);
  }

  // The scan has its default values.
  void ExpectUntouched() const {
    EXPECT_EQ(scan_.GetText1(), std::u16string(u"before"));
    EXPECT_EQ(scan_.GetValue1(), 1.5);
    EXPECT_EQ(scan_.GetArea(), area_);
    EXPECT_TRUE(scan_.GetArea()->IsEqual(polygon_));
  }

  BalanceC balance_;
  SDI::ScanPolygonAreaC polygon_;
  SDI::ScanC scan_;
  SDI::ScanC other_;
  const SDI::ScanDefinitionC* area_ = nullptr;
};

TEST_F(ScanMemory, AnAreaIsReplacedWholeOrNotAtAll) {
  area_ = scan_.GetArea();
  EXPECT_GE(
      FailuresBeforeSuccess([&] { scan_.SetArea(other_.GetArea()); }, [&] { ExpectUntouched(); }),
      2U);
  EXPECT_TRUE(scan_.GetArea()->IsEqual(*other_.GetArea()));
}

TEST_F(ScanMemory, ItsOwnAreaIsCopiedOrKept) {
  area_ = scan_.GetArea();
  EXPECT_GE(
      FailuresBeforeSuccess([&] { scan_.SetArea(scan_.GetArea()); }, [&] { ExpectUntouched(); }),
      2U);
  EXPECT_TRUE(scan_.GetArea()->IsEqual(polygon_));
}

TEST_F(ScanMemory, AScanIsAssignedWholeOrNotAtAll) {
  area_ = scan_.GetArea();
  EXPECT_GE(FailuresBeforeSuccess([&] { scan_ = other_; }, [&] { ExpectUntouched(); }), 2U);
  EXPECT_TRUE(scan_.IsEqual(other_));
  EXPECT_TRUE(scan_.GetArea()->IsEqual(*other_.GetArea()));
}

TEST_F(ScanMemory, AnAreaThatCannotBeCreatedDoesNotExist) {
  for (const std::uint32_t type : {1U, 2U, 3U}) {
    scan_.SetArea(&polygon_);
    EXPECT_EQ(FailuresOfAChange([&] { scan_.CreateArea(type); },
                                [&] { EXPECT_EQ(scan_.GetArea(), nullptr); }),
              2U);
    EXPECT_EQ(scan_.GetArea()->GetType(), type);
  }
}

TEST_F(ScanMemory, ACopyHasItsAreaOrDoesNotExist) {
  area_ = scan_.GetArea();
  std::unique_ptr<SDI::ScanC> copy;
  EXPECT_GE(FailuresBeforeSuccess([&] { copy = std::make_unique<SDI::ScanC>(scan_); },
                                  [&] {
                                    EXPECT_EQ(copy, nullptr);
                                    ExpectUntouched();
                                  }),
            4U);
  EXPECT_TRUE(copy->IsEqual(scan_));
  EXPECT_TRUE(copy->GetArea()->IsEqual(polygon_));
}

}  // namespace
