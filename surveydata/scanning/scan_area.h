#ifndef SURVEYDATA_SCANNING_SCAN_AREA_H_
#define SURVEYDATA_SCANNING_SCAN_AREA_H_

#include <cstdint>
#include <vector>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/area_explanation.h>
#include <surveydata/scanning/scan_def_point.h>
#include <surveydata/scanning/scan_definition.h>
#include <surveydata/sphere_geometry/sphere_area.h>

namespace SDI {

/// What the data of all scan areas share: the defining points, mirrored into the sphere area that
/// computes the geometry, and the settings.
// NOLINTNEXTLINE(readability-identifier-naming): an implementation, though abstract
class SURVEYDATA_API ScanAreaImplC : public ScanDefinitionImplC {
 public:
  explicit ScanAreaImplC(std::uint32_t type);
  ScanAreaImplC(const ScanAreaImplC& other);
  ScanAreaImplC& operator=(const ScanAreaImplC& other);
  ~ScanAreaImplC() override;

  bool IsEqual(const API::ImplObjectC& other) const override;
  virtual bool IsValid() const;
  virtual bool AddPoint(const ScanDefPointC& point);
  virtual void RemoveLastPoint();
  virtual void Clear();
  virtual std::uint16_t GetPointCount() const;
  virtual void GetPoints(std::vector<ScanDefPointC>& points) const;
  virtual bool IsAreaValid() const;
  virtual bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const;
  virtual void GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const = 0;

  bool Contains(double hz, double v) const;
  AreaExplanation Explain(double hz, double v) const;

  double GetHzStep() const;
  void SetHzStep(double step);
  double GetVStep() const;
  void SetVStep(double step);
  std::uint32_t GetSettingA() const;
  void SetSettingA(std::uint32_t setting);
  double GetLimitLow() const;
  void SetLimitLow(double limit);
  double GetLimitHigh() const;
  void SetLimitHigh(double limit);
  std::uint32_t GetSettingB() const;
  void SetSettingB(std::uint32_t setting);
  std::uint32_t GetSettingC() const;
  void SetSettingC(std::uint32_t setting);
  double GetSettingD() const;
  void SetSettingD(double setting);
  std::uint16_t GetSettingE() const;
  void SetSettingE(std::uint16_t setting);

  const GMAT::SphereAreaC& GetSphereArea() const;

 protected:
  const std::vector<ScanDefPointC>& Points() const;

 private:
  double hzStep_ = 0.0;
  double vStep_ = 0.0;
  std::uint32_t settingA_ = 0;
  double limitLow_ = -1.0;
  double limitHigh_ = -1.0;
  std::uint32_t settingB_ = 4;
  std::uint32_t settingC_ = 0;
  double settingD_ = 0.0;
  std::uint16_t settingE_ = 1;
  GMAT::SphereAreaC sphereArea_;
  std::vector<ScanDefPointC> points_;
};

/// The directions around the instrument that a scan covers.
///
/// An area accepts any points and steps; `IsValid` checks them. The caller defines the meaning of
/// the settings A to E and of the limits: they are stored and copied, and some are compared.
class SURVEYDATA_API ScanAreaC : public ScanDefinitionC {
 public:
  /// Takes ownership of `impl`; a public object that owned it before is destroyed.
  explicit ScanAreaC(ScanAreaImplC* impl);
  ~ScanAreaC() override;

  /// The two corners of the bounds, their distances untouched.
  ///
  /// \param normalize  whether Hz and V of `high` are wrapped into [0, 2 pi]; `low` never is.
  /// \return false, with both points untouched, when the area is not valid.
  virtual bool GetBoundingPoints(ScanDefPointC& low, ScanDefPointC& high, bool normalize) const;

  /// The implementation, or null when it is missing or of another class.
  ScanAreaImplC* GetImpl() const;

  /// Whether kinds, steps, points, setting A and both limits are equal.
  bool IsEqual(const ScanAreaC& other) const;
  using ScanDefinitionC::IsEqual;

  /// Whether both steps are above 0 and the points make an area.
  bool IsValid() const;
  /// Appends a point with any values. False on a dome, which has none.
  bool AddPoint(const ScanDefPointC& point);
  /// Does nothing if the area is empty.
  void RemoveLastPoint();
  void Clear();
  /// The number of points, modulo 65536.
  std::uint16_t GetPointCount() const;
  void GetPoints(std::vector<ScanDefPointC>& points) const;
  /// Whether the points make an area, independently of the steps.
  bool IsAreaValid() const;
  /// The corners with their distances; a point without one takes it from the others, or
  /// `defaultDistance` (m) if none has one. A polygon replaces `out`. A rectangle appends its four
  /// corners, made from its first two points; with fewer points it does not change `out`, nor does
  /// a dome.
  void GetOutline(std::vector<ScanDefPointC>& out, double defaultDistance) const;

  /// Whether a direction is inside the area or in its boundary band; for a dome, whether its V is
  /// in [0, 0.8 pi]. The steps do not matter. False beyond 100 rad.
  ///
  /// The band is half of 0.001 gon wide on either side of an edge, but displaced from the boundary.
  /// It is measured at Hz + `hzOrigin`, the smallest Hz of the area, in a frame that is shifted by
  /// -`hzOrigin`: its Hz is that of the boundary less twice `hzOrigin`. It follows the straight
  /// chords of the (Hz, V) plane, and a polygon's closing edge has none. Only if the area begins at
  /// Hz 0 or pi is it along its own chords. docs/sphere_areas.md has a picture.
  /// \cost that of `IsAreaValid`; `PreparedAreaC` is faster for many queries.
  bool Contains(double hz, double v) const;

  /// The answer of `Contains` for the same direction, with its reasons.
  /// \cost that of `IsAreaValid`.
  AreaExplanation Explain(double hz, double v) const;

  /// A bound in rad; the largest finite double if the area is not valid. `GetHzMin` exceeds
  /// `GetHzMax` if the area crosses Hz 0. Around the zenith, `GetVMin` is the smallest V of the
  /// ring, not 0.
  /// @{
  double GetHzMin() const;
  double GetVMin() const;
  double GetHzMax() const;
  double GetVMax() const;
  /// @}

  double GetHzStep() const;
  void SetHzStep(double step);
  double GetVStep() const;
  void SetVStep(double step);
  void SetSteps(double hz, double v);
  std::uint32_t GetSettingA() const;
  void SetSettingA(std::uint32_t setting);
  double GetLimitLow() const;
  void SetLimitLow(double limit);
  double GetLimitHigh() const;
  void SetLimitHigh(double limit);
  std::uint32_t GetSettingB() const;
  void SetSettingB(std::uint32_t setting);
  std::uint32_t GetSettingC() const;
  void SetSettingC(std::uint32_t setting);
  double GetSettingD() const;
  void SetSettingD(double setting);
  std::uint16_t GetSettingE() const;
  void SetSettingE(std::uint16_t setting);

 private:
  struct Bounds;
  Bounds MeasureBounds() const;
};

}  // namespace SDI

#endif  // SURVEYDATA_SCANNING_SCAN_AREA_H_
