#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/record_fields.h"

// The rules that hold for the fields of every record, checked on the list of its fields.

namespace {

using Records::Compared;
using Records::DifferingFields;
using Records::Field;
using Records::FieldsOf;
using Records::FillAll;

template <class Public, class Impl>
struct Pair {
  using PublicT = Public;
  using ImplT = Impl;
  const char* name;
  std::size_t fields;  // how many the record has, its parts' fields counted one by one
};

// Calls `check` with each record. A record that is not listed here is not finished.
template <class Check>
void ForEachPair(Check check) {
  const auto run = [&](const auto& pair) {
    SCOPED_TRACE(pair.name);
    check(pair);
  };
  run(Pair<SDI::CoordinatePointC, ODM::CoordinatePointC>{"CoordinatePoint", 3});
  run(Pair<SDI::QMatrixC, ODM::QMatrixC>{"QMatrix", 6});
  run(Pair<SDI::CoordinateQualityC, ODM::CoordinateQualityC>{"CoordinateQuality", 8});
  run(Pair<SDI::CoordinateReferenceSystemC, ODM::CoordinateReferenceSystemC>{
      "CoordinateReferenceSystem", 3});
  run(Pair<SDI::UndulationMementoC, ODM::UndulationMementoC>{"UndulationMemento", 3});
  run(Pair<SDI::PositionC, ODM::PositionC>{"Position", 22});
  run(Pair<SDI::RectangleC, ODM::RectangleC>{"Rectangle", 9});
  run(Pair<SDI::DisplayAttributesC, ODM::DisplayAttributesC>{"DisplayAttributes", 8});
  run(Pair<SDI::InstrumentInfoDataC, ODM::InstrumentInfoDataC>{"InstrumentInfoData", 11});
  run(Pair<SDI::GPSAntHeightC, SDI::GPSAntHeightImplC>{"GPSAntHeight", 3});
  run(Pair<SDI::GPSRefStationDataC, SDI::GPSRefStationDataImplC>{"GPSRefStationData", 15});
  run(Pair<SDI::TPSSetupDataC, ODM::TPSSetupDataC>{"TPSSetupData", 13});
  run(Pair<SDI::TPSMeasDataC, ODM::TPSMeasDataC>{"TPSMeasData", 28});
  run(Pair<SDI::TPSCorrectionDataC, ODM::TPSCorrectionDataC>{"TPSCorrectionData", 13});
  run(Pair<SDI::TPSCalibrationDataC, ODM::TPSCalibrationDataC>{"TPSCalibrationData", 8});
  run(Pair<SDI::ImgCameraInfoC, SDI::ImgCameraInfoImplC>{"ImgCameraInfo", 11});
  run(Pair<SDI::ImgChipWindowInfoC, SDI::ImgChipWindowInfoImplC>{"ImgChipWindowInfo", 4});
  run(Pair<SDI::ImgExteriorOrientationC, SDI::ImgExteriorOrientationImplC>{"ImgExteriorOrientation",
                                                                           6});
  run(Pair<SDI::ImgInteriorOrientationC, SDI::ImgInteriorOrientationImplC>{"ImgInteriorOrientation",
                                                                           7});
}

template <class Record>
concept HasOperator = requires(const Record& a, const Record& b) {
  a == b;
};
template <class Record>
concept HasMethod = requires(const Record& a, const Record& b) {
  a.isEqual(b);
}
|| requires(const Record& a, const Record& b) { a.IsEqual(b); };
template <class Record>
concept HasEquality = HasOperator<Record> || HasMethod<Record>;

template <HasEquality Record>
bool AreEqual(const Record& a, const Record& b) {
  if constexpr (HasOperator<Record>) {
    return a == b;
  } else if constexpr (requires { a.isEqual(b); }) {
    return a.isEqual(b);
  } else {
    return a.IsEqual(b);
  }
}

// What both sides of two pairs answer, whichever way they are asked.
template <class Public>
void ExpectEquality(const Public& a, const Public& b, bool expected) {
  SCOPED_TRACE("fields that differ: " + DifferingFields(*a.GetImpl(), *b.GetImpl()));
  EXPECT_EQ(AreEqual(a, b), expected);
  EXPECT_EQ(AreEqual(b, a), expected);
  EXPECT_EQ(AreEqual(*a.GetImpl(), *b.GetImpl()), expected);
  EXPECT_EQ(AreEqual(*b.GetImpl(), *a.GetImpl()), expected);
}

TEST(Records, HaveTheirFieldsListed) {
  ForEachPair([]<class P>(const P& pair) {
    const auto fields = FieldsOf<typename P::ImplT>();
    EXPECT_EQ(fields.size(), pair.fields);
    typename P::ImplT filled;
    FillAll(filled);
    std::string all;
    for (const auto& field : fields) all += (all.empty() ? "" : ", ") + field.name;
    EXPECT_EQ(DifferingFields(filled, typename P::ImplT()), all);
  });
}

// The bytes that `change` changes in `record`, from the first to the one behind the last.
template <class Record, class Change>
std::pair<std::size_t, std::size_t> ChangedBytes(Record& record, Change change) {
  const auto bytes = [&record] {
    const auto* const first = reinterpret_cast<const unsigned char*>(&record);
    return std::vector<unsigned char>(first, first + sizeof(record));
  };
  const std::vector<unsigned char> before = bytes();
  change();
  const std::vector<unsigned char> after = bytes();
  const auto first = std::ranges::mismatch(before, after).in1 - before.begin();
  const auto last = std::mismatch(before.rbegin(), before.rend(), after.rbegin()).first;
  return {first, before.rend() - last};
}

TEST(Records, HoldTheirFieldsInOrderAndTheirPublicObjectsNone) {
  ForEachPair([]<class P>(const P&) {
    static_assert(sizeof(typename P::PublicT) == sizeof(API::BaseC));
    std::size_t end = sizeof(API::ImplObjectC);
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      SCOPED_TRACE(field.name);
      typename P::ImplT record;
      const auto [first, behind] = ChangedBytes(record, [&] { field.fill(record, 17); });
      EXPECT_LT(first, behind);
      EXPECT_LE(end, first);
      end = behind;
    }
  });
}

TEST(Records, AreZeroByDefaultButForTheseFields) {
  const std::map<std::string, std::string> others = {
      {"CoordinateReferenceSystem.Variant", "1"},
      {"Position.CRS.Variant", "1"},
      {"Position.Attribute1", "50"},
      {"Rectangle.CRS.Variant", "1"},
      {"GPSAntHeight.IsVertical", "1"},
      {"GPSRefStationData.referenceSystem.Variant", "1"},
      {"GPSRefStationData.antennaHeight.IsVertical", "1"},
      {"TPSCorrectionData.ScaleFactor", "1"},
  };
  std::size_t found = 0;
  ForEachPair([&]<class P>(const P& pair) {
    const typename P::PublicT object;
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      SCOPED_TRACE(field.name);
      const std::string shown = field.show(*object.GetImpl());
      const auto other = others.find(std::string(pair.name) + "." + field.name);
      if (other == others.end()) {
        EXPECT_TRUE(shown.empty() || shown == "0") << shown;
      } else {
        EXPECT_EQ(shown, other->second);
        ++found;
      }
    }
  });
  EXPECT_EQ(found, others.size());
}

TEST(Records, WriteOneFieldWithOneSetter) {
  ForEachPair([]<class P>(const P&) {
    for (const auto& field : FieldsOf<typename P::ImplT>()) {
      typename P::ImplT record;
      field.fill(record, 17);
      EXPECT_EQ(DifferingFields(record, typename P::ImplT()), field.name);
    }
  });
}

TEST(Records, ReadAndWriteTheSameFieldOnBothSides) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    using Impl = typename P::ImplT;
    if constexpr (requires { FieldsOf<Public>(); }) {
      for (const auto& field : FieldsOf<Public>()) {
        Public object;
        field.fill(object, 17);
        EXPECT_EQ(DifferingFields(*object.GetImpl(), Impl()), field.name);
      }
      Public object;
      FillAll(*object.GetImpl());
      const auto fieldsOfImpl = FieldsOf<Impl>();
      for (const auto& field : FieldsOf<Public>()) {
        SCOPED_TRACE(field.name);
        for (const auto& same : fieldsOfImpl) {
          if (same.name != field.name) continue;
          EXPECT_EQ(field.show(object), same.show(*object.GetImpl()));
        }
      }
    }
  });
}

TEST(Records, AreCopiedAndAssignedWithEveryField) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    using Impl = typename P::ImplT;
    Public source;
    FillAll(*source.GetImpl());
    const Impl reference(*source.GetImpl());
    EXPECT_EQ(DifferingFields(reference, *source.GetImpl()), "");

    Public copy(source);
    Public assigned;
    EXPECT_EQ(&(assigned = source), &assigned);
    Impl assignedImpl;
    EXPECT_EQ(&(assignedImpl = *source.GetImpl()), &assignedImpl);
    EXPECT_EQ(DifferingFields(*copy.GetImpl(), reference), "");
    EXPECT_EQ(DifferingFields(*assigned.GetImpl(), reference), "");
    EXPECT_EQ(DifferingFields(assignedImpl, reference), "");
    EXPECT_NE(copy.GetImpl(), source.GetImpl());

    for (const auto& field : FieldsOf<Impl>()) {
      field.move(*copy.GetImpl(), 5);
      field.move(*assigned.GetImpl(), 5);
    }
    EXPECT_EQ(DifferingFields(*source.GetImpl(), reference), "") << "changed through a copy";

    const Public& same = source;
    source = same;
    *source.GetImpl() = *same.GetImpl();
    EXPECT_EQ(DifferingFields(*source.GetImpl(), reference), "") << "by self-assignment";
  });
}

// The tolerance is two units in the last place of the larger number.
TEST(Records, AreEqualWhenEveryFieldIsEqualByItsOwnTolerance) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    if constexpr (HasEquality<Public>) {
      Public a;
      FillAll(*a.GetImpl());
      ExpectEquality(Public(), Public(), true);
      ExpectEquality(a, Public(a), true);
      ExpectEquality(a, Public(), false);
      for (const auto& field : FieldsOf<typename P::ImplT>()) {
        for (const int units : {1, -1, 2, -2, 3, -3, 1001}) {
          SCOPED_TRACE(field.name + " off by " + std::to_string(units));
          const bool within = field.compared == Compared::kWithTolerance && std::abs(units) <= 2;
          Public b(a);
          field.move(*b.GetImpl(), units);
          EXPECT_EQ(DifferingFields(*a.GetImpl(), *b.GetImpl()), field.name);
          ExpectEquality(a, b, within);
        }
      }
    }
  });
}

TEST(Records, TakeNaNForAnythingWithToleranceAndForNothingWithout) {
  ForEachPair([]<class P>(const P&) {
    using Public = typename P::PublicT;
    if constexpr (HasEquality<Public>) {
      Public a;
      FillAll(*a.GetImpl());
      for (const auto& field : FieldsOf<typename P::ImplT>()) {
        if (!field.spoil) continue;
        SCOPED_TRACE(field.name);
        Public b(a);
        field.spoil(*b.GetImpl());
        ExpectEquality(a, b, field.compared == Compared::kWithTolerance);
        ExpectEquality(b, b, field.compared == Compared::kWithTolerance);
      }
    }
  });
}

// Callers find equality under the name of the subsystem: a method, or an operator in imaging.
static_assert(HasMethod<SDI::PositionC> && !HasOperator<SDI::PositionC>);
static_assert(HasMethod<ODM::TPSMeasDataC> && !HasOperator<ODM::TPSMeasDataC>);
static_assert(HasOperator<SDI::ImgCameraInfoC> && !HasMethod<SDI::ImgCameraInfoC>);
static_assert(HasOperator<SDI::ImgCameraInfoImplC> && !HasMethod<SDI::ImgCameraInfoImplC>);
static_assert(!HasEquality<SDI::RectangleC> && !HasEquality<ODM::RectangleC>);
static_assert(!HasEquality<SDI::DisplayAttributesC> && !HasEquality<ODM::DisplayAttributesC>);

}  // namespace
