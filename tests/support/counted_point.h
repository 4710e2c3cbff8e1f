#ifndef SURVEYDATA_TESTS_SUPPORT_COUNTED_POINT_H_
#define SURVEYDATA_TESTS_SUPPORT_COUNTED_POINT_H_

#include <surveydata/geodetic/coordinate_point.h>

namespace TestSupport {

/// The public object of a point; counts destroyed objects.
class CountedPointC : public SDI::CoordinatePointC {
 public:
  CountedPointC(ODM::CoordinatePointC* impl, int& destroyed)
      : CoordinatePointC(impl), destroyed_(destroyed) {}
  CountedPointC(const CountedPointC&) = delete;
  CountedPointC& operator=(const CountedPointC&) = delete;
  ~CountedPointC() override { ++destroyed_; }

 private:
  int& destroyed_;
};

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_SUPPORT_COUNTED_POINT_H_
