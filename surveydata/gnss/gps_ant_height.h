#ifndef SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_
#define SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_

#include <concepts>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API GPSAntHeightC;

/// What the two implementations of an antenna height share: everything but the answer for a slant
/// height that is shorter than its offset, `Self::TooShort`.
template <class Self>
class SURVEYDATA_VISIBLE GPSAntHeightFieldsC : public API::ImplC<Self, GPSAntHeightC> {
 public:
  using API::ImplC<Self, GPSAntHeightC>::ImplC;
  GPSAntHeightFieldsC() = default;
  GPSAntHeightFieldsC(float height, bool isVertical, float horizontalOffset);

  void GetHeight(float& height, bool& isVertical) const;
  void SetHeight(float height, bool isVertical);
  float GetHorizontalOffset() const;
  void SetHorizontalOffset(float horizontalOffset);
  float GetVerticalHeight() const;

  bool isEqual(const Self& other) const;

 private:
  float height_ = 0.0F;
  bool isVertical_ = true;
  float horizontalOffset_ = 0.0F;
};
}  // namespace SDI

namespace ODM {
class SURVEYDATA_API GPSAntHeightC;
}
namespace SDI {
class SURVEYDATA_API GPSAntHeightImplC;
extern template class SURVEYDATA_API GPSAntHeightFieldsC<GPSAntHeightImplC>;
extern template class SURVEYDATA_API GPSAntHeightFieldsC<ODM::GPSAntHeightC>;

/// The data of a `GPSAntHeightC`.
class SURVEYDATA_API GPSAntHeightImplC : public GPSAntHeightFieldsC<GPSAntHeightImplC> {
 public:
  using GPSAntHeightFieldsC::GPSAntHeightFieldsC;

  /// The vertical height of a slant height that is shorter than its offset: none.
  static float TooShort(float /*height*/) { return 0.0F; }
};
}  // namespace SDI

namespace ODM {
/// The antenna height inside the compact measurement record. A public object made by its
/// `GetBase()` finds no implementation of its own class and answers accordingly.
class SURVEYDATA_API GPSAntHeightC : public SDI::GPSAntHeightFieldsC<GPSAntHeightC> {
 public:
  using GPSAntHeightFieldsC::GPSAntHeightFieldsC;

  /// The vertical height of a slant height that is shorter than its offset: as measured.
  static float TooShort(float height) { return height; }
};
}  // namespace ODM

namespace SDI {

/// The antenna height of a GNSS set-up, as it was measured: vertical, or slant to a point at a
/// horizontal offset from the antenna axis. Heights and offsets are lengths in one unit (metres).
/// A new one is 0, vertical, without an offset.
///
/// Without an implementation of its class, getters answer 0 and false and setters do nothing.
class SURVEYDATA_API GPSAntHeightC : public API::HandleC<GPSAntHeightImplC> {
 public:
  using HandleC::HandleC;
  GPSAntHeightC() = default;
  /// Takes ownership of an implementation that this class does not read.
  template <std::same_as<ODM::GPSAntHeightC> Compact>
  explicit GPSAntHeightC(Compact* impl) : HandleC(nullptr) {
    SetImpl(impl);
  }

  void GetHeight(float& height, bool& isVertical) const;
  void SetHeight(float height, bool isVertical);
  /// The distance from the antenna axis to the point where a slant height was measured.
  float GetHorizontalOffset() const;
  void SetHorizontalOffset(float horizontalOffset);
  /// The height above the mark: the measured one when it is vertical, else
  /// sqrt(height^2 - horizontalOffset^2) in single precision, and 0 when a slant height is shorter
  /// than its offset (or either is NaN).
  float GetVerticalHeight() const;

  /// Whether the kinds are the same and height and offset agree within the tolerance of
  /// `API::CompareWithTolerance`. False when either side has no implementation.
  bool IsEqual(const GPSAntHeightC& other) const;
};

static_assert(sizeof(GPSAntHeightC) == 16 && sizeof(GPSAntHeightImplC) == 32);
static_assert(sizeof(ODM::GPSAntHeightC) == sizeof(GPSAntHeightImplC));

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_ANT_HEIGHT_H_
