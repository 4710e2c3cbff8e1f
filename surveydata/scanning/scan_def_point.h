#ifndef SURVEYDATA_SCANNING_SCAN_DEF_POINT_H_
#define SURVEYDATA_SCANNING_SCAN_DEF_POINT_H_

#include <limits>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API ScanDefPointC;

/// The data of a `ScanDefPointC`.
class SURVEYDATA_API ScanDefPointImplC : public API::ImplC<ScanDefPointImplC, ScanDefPointC> {
 public:
  ScanDefPointImplC();
  explicit ScanDefPointImplC(API::BaseC* owner);
  ScanDefPointImplC(const ScanDefPointImplC& other);
  ScanDefPointImplC& operator=(const ScanDefPointImplC& other);
  ~ScanDefPointImplC() override;
  API::BaseC* GetBase() override;
  ScanDefPointImplC(double hz, double v, double distance);

  double GetHz() const;
  void SetHz(double hz);
  double GetV() const;
  void SetV(double v);
  double GetDistance() const;
  void SetDistance(double distance);

  void ClearDistance();
  bool HasDistance() const;

  /// Whether both angles are set. The distance does not matter.
  bool IsValid() const;

  bool IsEqual(const ScanDefPointImplC& other) const;
  bool operator==(const ScanDefPointImplC& other) const;
  bool operator!=(const ScanDefPointImplC& other) const;

 private:
  double hz_ = std::numeric_limits<double>::max();
  double v_ = std::numeric_limits<double>::max();
  double distance_ = -1.0;
};

/// A direction of the instrument, with a distance if one is known: the point by which scan areas
/// are defined.
///
/// Angles are in radians, V is measured from the zenith. An angle that is not set is the largest
/// finite double; in a new point neither is set. Distances are in metres. A point whose distance is
/// not above 0 has none; a new point has the distance -1. Every value is stored as given.
class SURVEYDATA_API ScanDefPointC : public API::HandleC<ScanDefPointImplC> {
 public:
  ScanDefPointC();
  explicit ScanDefPointC(ScanDefPointImplC* impl);
  ScanDefPointC(const ScanDefPointC& other);
  ScanDefPointC& operator=(const ScanDefPointC& other);
  ~ScanDefPointC() override;
  ScanDefPointC(double hz, double v, double distance);

  double GetHz() const;
  void SetHz(double hz);
  double GetV() const;
  void SetV(double v);
  double GetDistance() const;
  void SetDistance(double distance);

  /// Sets the distance to -1.
  void ClearDistance();
  /// Whether the distance is above 0.
  bool HasDistance() const;

  /// Whether both angles differ by less than the smallest normal double, so in effect not at all.
  /// The distance is not compared.
  bool IsEqual(const ScanDefPointC& other) const;
  /// The same as `IsEqual`, and its negation.
  /// @{
  bool operator==(const ScanDefPointC& other) const;
  bool operator!=(const ScanDefPointC& other) const;
  /// @}
};

static_assert(API::kHasSize<ScanDefPointC, 16> && API::kHasSize<ScanDefPointImplC, 40>);

}  // namespace SDI

extern template SURVEYDATA_API SDI::ScanDefPointImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_SCANNING_SCAN_DEF_POINT_H_
