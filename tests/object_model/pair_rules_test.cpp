#include <utility>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

namespace {

// A public class and an implementation that it reads.
template <class Public, class Impl>
struct Pair {
  using PublicT = Public;
  using ImplT = Impl;
};

// A pair that is not listed here is not finished.
using AllPairs =
    testing::Types<Pair<SDI::CoordinatePointC, ODM::CoordinatePointC>,
                   Pair<SDI::GPSAntHeightC, SDI::GPSAntHeightImplC>,
                   Pair<SDI::GPSDOPsC, SDI::GPSDOPsImplC>,
                   Pair<SDI::GPSMeasDataC, SDI::GPSMeasDataImplC>, Pair<SDI::ScanC, SDI::ScanImplC>,
                   Pair<SDI::ScanDefPointC, SDI::ScanDefPointImplC>,
                   Pair<SDI::ScanDomeAreaC, SDI::ScanDomeAreaImplC>,
                   Pair<SDI::ScanPolygonAreaC, SDI::ScanPolygonAreaImplC>,
                   Pair<SDI::ScanRectangularAreaC, SDI::ScanRectangularAreaImplC>>;

template <class P>
class PairRules : public testing::Test {};
TYPED_TEST_SUITE(PairRules, AllPairs);

TYPED_TEST(PairRules, EitherSideDestroysTheOther) {  // the leak checker is the judge
  delete new typename TypeParam::PublicT;
  delete (new typename TypeParam::PublicT)->GetImpl();
}

TYPED_TEST(PairRules, BothSidesAreLinked) {
  typename TypeParam::PublicT object;
  ASSERT_NE(object.GetImpl(), nullptr);
  EXPECT_EQ(object.GetImpl()->GetBase(), &object);
}

}  // namespace
