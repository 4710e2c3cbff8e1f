#ifndef SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_
#define SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_

#include <concepts>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API GPSAntHeightC;

/// The data of a `GPSAntHeightC`.
class SURVEYDATA_API GPSAntHeightImplC : public API::ImplC<GPSAntHeightImplC, GPSAntHeightC> {
 public:
  GPSAntHeightImplC();
  explicit GPSAntHeightImplC(API::BaseC* owner);
  GPSAntHeightImplC(const GPSAntHeightImplC& other);
  GPSAntHeightImplC& operator=(const GPSAntHeightImplC& other);
  ~GPSAntHeightImplC() override;
  API::BaseC* GetBase() override;
  GPSAntHeightImplC(float height, bool isVertical, float horizontalOffset);

  void GetHeight(float& height, bool& isVertical) const;
  void SetHeight(float height, bool isVertical);
  float GetHorizontalOffset() const;
  void SetHorizontalOffset(float horizontalOffset);
  /// A slant height that is shorter than its offset has the vertical height 0.
  float GetVerticalHeight() const;

  bool isEqual(const GPSAntHeightImplC& other) const;

 private:
  float height_ = 0.0F;
  bool isVertical_ = true;
  float horizontalOffset_ = 0.0F;
};

}  // namespace SDI

namespace ODM {
/// The antenna height inside the compact measurement record. A public object made by its
/// `GetBase()` finds no implementation of its own class, so its getters return 0 and
/// false.
class SURVEYDATA_API GPSAntHeightC : public API::ImplC<GPSAntHeightC, SDI::GPSAntHeightC> {
 public:
  GPSAntHeightC();
  explicit GPSAntHeightC(API::BaseC* owner);
  GPSAntHeightC(const GPSAntHeightC& other);
  GPSAntHeightC& operator=(const GPSAntHeightC& other);
  ~GPSAntHeightC() override;
  API::BaseC* GetBase() override;
  GPSAntHeightC(float height, bool isVertical, float horizontalOffset);

  void GetHeight(float& height, bool& isVertical) const;
  void SetHeight(float height, bool isVertical);
  float GetHorizontalOffset() const;
  void SetHorizontalOffset(float horizontalOffset);
  /// A slant height that is shorter than its offset is returned as measured.
  float GetVerticalHeight() const;

  bool isEqual(const GPSAntHeightC& other) const;

 private:
  float height_ = 0.0F;
  bool isVertical_ = true;
  float horizontalOffset_ = 0.0F;
};

}  // namespace ODM

namespace SDI {

/// The antenna height of a GNSS set-up as measured: vertical, or slant to a point at a horizontal
/// offset from the antenna axis. Heights and offsets are lengths in one unit (metres).
/// A new one is 0, vertical, without an offset.
///
/// Without an implementation of its class, getters return 0 and false and setters do nothing.
class SURVEYDATA_API GPSAntHeightC : public API::HandleC<GPSAntHeightImplC> {
 public:
  GPSAntHeightC();
  explicit GPSAntHeightC(GPSAntHeightImplC* impl);
  /// Takes ownership of an implementation that this class does not read.
  template <std::same_as<ODM::GPSAntHeightC> Compact>
  explicit GPSAntHeightC(Compact* impl);
  GPSAntHeightC(const GPSAntHeightC& other);
  GPSAntHeightC& operator=(const GPSAntHeightC& other);
  ~GPSAntHeightC() override;

  void GetHeight(float& height, bool& isVertical) const;
  void SetHeight(float height, bool isVertical);
  /// The distance from the antenna axis to the point where a slant height was measured.
  float GetHorizontalOffset() const;
  void SetHorizontalOffset(float horizontalOffset);
  /// The height above the mark: the measured height if it is vertical, else
  /// sqrt(height^2 - horizontalOffset^2) in single precision, or 0 if a slant height is shorter
  /// than its offset (or either is NaN).
  float GetVerticalHeight() const;

  /// Whether the kinds are equal, and height and offset are equal within the tolerance of
  /// `API::CompareWithTolerance`. False if either side has no implementation.
  bool IsEqual(const GPSAntHeightC& other) const;
};

static_assert(API::kHasSize<GPSAntHeightC, 16> && API::kHasSize<GPSAntHeightImplC, 32>);
static_assert(API::kHasSize<ODM::GPSAntHeightC, 32>);

extern template SURVEYDATA_API GPSAntHeightC::GPSAntHeightC(ODM::GPSAntHeightC* impl);

}  // namespace SDI

extern template SURVEYDATA_API SDI::GPSAntHeightImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_
