#ifndef SURVEYDATA_SCANNING_SCAN_DOME_AREA_H_
#define SURVEYDATA_SCANNING_SCAN_DOME_AREA_H_

#include <vector>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/scan_area.h>

namespace SDI {
class SURVEYDATA_API ScanDomeAreaC;

/// The data of a `ScanDomeAreaC`.
class SURVEYDATA_API ScanDomeAreaImplC
    : public API::ImplC<ScanDomeAreaImplC, ScanDomeAreaC, ScanAreaImplC> {
 public:
  ScanDomeAreaImplC();
  explicit ScanDomeAreaImplC(API::BaseC* owner);
  ScanDomeAreaImplC(const ScanDomeAreaImplC& other);
  ScanDomeAreaImplC& operator=(const ScanDomeAreaImplC& other);
  ~ScanDomeAreaImplC() override;
  API::BaseC* GetBase() override;

  /// Whether V, wrapped into a full turn, is above the lowest usable direction. False if an angle
  /// is beyond 100 rad or NaN.
  static bool IsInDome(double hz, double v);

  bool IsEqual(const API::ImplObjectC& other) const override;
  bool AddPoint(const ScanDefPointC& point) override;
  void RemoveLastPoint() override;
  void Clear() override;
  bool IsAreaValid() const override;
  bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const override;
  void GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const override;
};

/// Every direction from the zenith down to the lowest usable one, V = 0.8 pi. A dome has no points:
/// operations on them do nothing.
class SURVEYDATA_API ScanDomeAreaC : public API::HandleC<ScanDomeAreaImplC, ScanAreaC> {
 public:
  ScanDomeAreaC();
  explicit ScanDomeAreaC(ScanDomeAreaImplC* impl);
  ~ScanDomeAreaC() override;
};

static_assert(API::kHasSize<ScanDomeAreaC, 16>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ScanDomeAreaImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_SCANNING_SCAN_DOME_AREA_H_
