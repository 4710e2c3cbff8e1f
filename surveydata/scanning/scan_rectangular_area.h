#ifndef SURVEYDATA_SCANNING_SCAN_RECTANGULAR_AREA_H_
#define SURVEYDATA_SCANNING_SCAN_RECTANGULAR_AREA_H_

#include <vector>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/scan_area.h>

namespace SDI {
class SURVEYDATA_API ScanRectangularAreaC;

/// The data of a `ScanRectangularAreaC`.
class SURVEYDATA_API ScanRectangularAreaImplC
    : public API::ImplC<ScanRectangularAreaImplC, ScanRectangularAreaC, ScanAreaImplC> {
 public:
  ScanRectangularAreaImplC();
  explicit ScanRectangularAreaImplC(API::BaseC* owner);
  ScanRectangularAreaImplC(const ScanRectangularAreaImplC& other);
  ScanRectangularAreaImplC& operator=(const ScanRectangularAreaImplC& other);
  ~ScanRectangularAreaImplC() override;
  API::BaseC* GetBase() override;

  bool IsEqual(const API::ImplObjectC& other) const override;
  bool IsAreaValid() const override;
  void GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const override;

  void SetCorners(const ScanDefPointC& a, const ScanDefPointC& b);
  bool GetCorners(ScanDefPointC& a, ScanDefPointC& b) const;
};

/// The directions between two opposite corners, with straight edges in the (Hz, V) plane. If the
/// first corner has the larger Hz, the area crosses Hz 0.
class SURVEYDATA_API ScanRectangularAreaC
    : public API::HandleC<ScanRectangularAreaImplC, ScanAreaC> {
 public:
  ScanRectangularAreaC();
  explicit ScanRectangularAreaC(ScanRectangularAreaImplC* impl);
  ~ScanRectangularAreaC() override;

  /// Replaces all points by these two.
  void SetCorners(const ScanDefPointC& a, const ScanDefPointC& b);
  /// False, with both points unchanged, if the area is not valid.
  bool GetCorners(ScanDefPointC& a, ScanDefPointC& b) const;
};

static_assert(API::kHasSize<ScanRectangularAreaC, 16>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ScanRectangularAreaImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_SCANNING_SCAN_RECTANGULAR_AREA_H_
