#ifndef SURVEYDATA_GEODETIC_COORDINATE_POINT_H_
#define SURVEYDATA_GEODETIC_COORDINATE_POINT_H_

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API CoordinatePointC;
}

namespace ODM {

/// The data of an `SDI::CoordinatePointC`.
class SURVEYDATA_API CoordinatePointC : public API::ImplC<CoordinatePointC, SDI::CoordinatePointC> {
 public:
  CoordinatePointC();
  explicit CoordinatePointC(API::BaseC* owner);
  CoordinatePointC(const CoordinatePointC& other);
  CoordinatePointC& operator=(const CoordinatePointC& other);
  ~CoordinatePointC() override;
  API::BaseC* GetBase() override;
  CoordinatePointC(double x, double y, double z);

  double GetX() const;
  void SetX(double x);
  double GetY() const;
  void SetY(double y);
  double GetZ() const;
  void SetZ(double z);

  /// Whether X, Y and Z agree within the tolerance of `API::CompareWithTolerance`.
  bool isEqual(const CoordinatePointC& other) const;

 private:
  double x_ = 0.0;
  double y_ = 0.0;
  double z_ = 0.0;
};

}  // namespace ODM

namespace SDI {

/// A point with three coordinates, in the unit and axes of the reference system that accompanies it
/// (metres for Cartesian and grid systems). A new point is the origin. Any value is accepted.
class SURVEYDATA_API CoordinatePointC : public API::HandleC<ODM::CoordinatePointC> {
 public:
  CoordinatePointC();
  explicit CoordinatePointC(ODM::CoordinatePointC* impl);
  CoordinatePointC(const CoordinatePointC& other);
  CoordinatePointC& operator=(const CoordinatePointC& other);
  ~CoordinatePointC() override;
  CoordinatePointC(double x, double y, double z);

  double GetX() const;
  void SetX(double x);
  double GetY() const;
  void SetY(double y);
  double GetZ() const;
  void SetZ(double z);

  /// Whether each coordinate agrees within the tolerance of `API::CompareWithTolerance`: up to two
  /// units in the last place of the larger value. NaN equals anything.
  bool IsEqual(const CoordinatePointC& other) const;
};

static_assert(API::kHasSize<CoordinatePointC, 16> && API::kHasSize<ODM::CoordinatePointC, 40>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::CoordinatePointC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_COORDINATE_POINT_H_
