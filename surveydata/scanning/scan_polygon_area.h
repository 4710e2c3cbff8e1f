#ifndef SURVEYDATA_SCANNING_SCAN_POLYGON_AREA_H_
#define SURVEYDATA_SCANNING_SCAN_POLYGON_AREA_H_

#include <vector>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/scan_area.h>

namespace SDI {
class SURVEYDATA_API ScanPolygonAreaC;

/// The data of a `ScanPolygonAreaC`.
class SURVEYDATA_API ScanPolygonAreaImplC
    : public API::ImplC<ScanPolygonAreaImplC, ScanPolygonAreaC, ScanAreaImplC> {
 public:
  ScanPolygonAreaImplC();
  explicit ScanPolygonAreaImplC(API::BaseC* owner);
  ScanPolygonAreaImplC(const ScanPolygonAreaImplC& other);
  ScanPolygonAreaImplC& operator=(const ScanPolygonAreaImplC& other);
  ~ScanPolygonAreaImplC() override;
  API::BaseC* GetBase() override;

  bool IsEqual(const API::ImplObjectC& other) const override;
  bool IsValid() const override;
  void GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const override;

  void SetPoints(const std::vector<ScanDefPointC>& points);
};

/// A closed polygon of three or more corners whose edges are arcs of great circles. One that winds
/// around the vertical axis encloses the zenith.
class SURVEYDATA_API ScanPolygonAreaC : public API::HandleC<ScanPolygonAreaImplC, ScanAreaC> {
 public:
  ScanPolygonAreaC();
  explicit ScanPolygonAreaC(ScanPolygonAreaImplC* impl);
  ~ScanPolygonAreaC() override;

  /// Appends the points to the existing ones.
  void SetPoints(const std::vector<ScanDefPointC>& points);
};

static_assert(API::kHasSize<ScanPolygonAreaC, 16>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ScanPolygonAreaImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_SCANNING_SCAN_POLYGON_AREA_H_
