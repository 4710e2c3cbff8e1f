#ifndef SURVEYDATA_GEODETIC_RECTANGLE_H_
#define SURVEYDATA_GEODETIC_RECTANGLE_H_

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/geodetic/coordinate_reference_system.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API RectangleC;
}

namespace ODM {

/// The data of an `SDI::RectangleC`.
class SURVEYDATA_API RectangleC : public API::ImplC<RectangleC, SDI::RectangleC> {
 public:
  RectangleC();
  explicit RectangleC(API::BaseC* owner);
  RectangleC(const RectangleC& other);
  RectangleC& operator=(const RectangleC& other);
  ~RectangleC() override;
  API::BaseC* GetBase() override;
  RectangleC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& bottomLeft,
             const CoordinatePointC& topRight);

  const CoordinateReferenceSystemC& GetCRS() const;
  CoordinateReferenceSystemC& GetCRS();
  void SetCRS(const CoordinateReferenceSystemC& crs);
  const CoordinatePointC& GetBottomLeft() const;
  CoordinatePointC& GetBottomLeft();
  void SetBottomLeft(const CoordinatePointC& bottomLeft);
  const CoordinatePointC& GetTopRight() const;
  CoordinatePointC& GetTopRight();
  void SetTopRight(const CoordinatePointC& topRight);

 private:
  CoordinateReferenceSystemC crs_;
  CoordinatePointC bottomLeft_;
  CoordinatePointC topRight_;
};

}  // namespace ODM

namespace SDI {

/// An area between two corners in a reference system. The corners are neither ordered nor checked,
/// and there is no equality. By default both corners are the origin of a default system.
///
/// The getters return the rectangle's own parts: repeated calls give the same object, which
/// changes with the rectangle and is destroyed with its implementation.
class SURVEYDATA_API RectangleC : public API::HandleC<ODM::RectangleC> {
 public:
  RectangleC();
  explicit RectangleC(ODM::RectangleC* impl);
  RectangleC(const RectangleC& other);
  RectangleC& operator=(const RectangleC& other);
  ~RectangleC() override;
  /// Copies the three parts.
  RectangleC(const CoordinateReferenceSystemC& crs, const CoordinatePointC& bottomLeft,
             const CoordinatePointC& topRight);

  const CoordinateReferenceSystemC& GetCRS() const;
  CoordinateReferenceSystemC& GetCRS();
  void SetCRS(const CoordinateReferenceSystemC& crs);
  const CoordinatePointC& GetBottomLeft() const;
  CoordinatePointC& GetBottomLeft();
  void SetBottomLeft(const CoordinatePointC& bottomLeft);
  const CoordinatePointC& GetTopRight() const;
  CoordinatePointC& GetTopRight();
  void SetTopRight(const CoordinatePointC& topRight);
};

static_assert(API::kHasSize<RectangleC, 16> && API::kHasSize<ODM::RectangleC, 128>);

}  // namespace SDI

extern template SURVEYDATA_API ODM::RectangleC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GEODETIC_RECTANGLE_H_
