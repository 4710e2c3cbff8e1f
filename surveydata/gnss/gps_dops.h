#ifndef SURVEYDATA_GNSS_GPS_DOPS_H_
#define SURVEYDATA_GNSS_GPS_DOPS_H_

#include <concepts>
#include <cstdint>

#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>

namespace SDI {
class SURVEYDATA_API GPSDOPsC;

/// The stored value of a dilution of precision that is not available.
inline constexpr std::uint16_t DOP_NOT_AVAILABLE = 0xFFFF;

/// What the two implementations of the dilutions of precision share: everything. Values are stored
/// in tenths, 0 to 65534; 23 stands for 2.3.
template <class Self>
class SURVEYDATA_VISIBLE GPSDOPsFieldsC : public API::ImplC<Self, GPSDOPsC> {
 public:
  using API::ImplC<Self, GPSDOPsC>::ImplC;
  GPSDOPsFieldsC() = default;
  GPSDOPsFieldsC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop);

  double GetHDOP() const;
  double GetVDOP() const;
  double GetTDOP() const;
  double GetPDOP() const;
  double GetGDOP() const;

  /// The stored value, in tenths.
  /// @{
  std::uint16_t GetHDOPTenths() const;
  std::uint16_t GetVDOPTenths() const;
  std::uint16_t GetTDOPTenths() const;
  /// @}

  bool isEqual(const Self& other) const;

 private:
  // The length of the vector of `dops`, or -1 when one of them is not available.
  template <class... Dops>
  static double Combined(Dops... dops);

  std::uint16_t hdop_ = DOP_NOT_AVAILABLE;
  std::uint16_t vdop_ = DOP_NOT_AVAILABLE;
  std::uint16_t tdop_ = DOP_NOT_AVAILABLE;
};
}  // namespace SDI

namespace ODM {
class SURVEYDATA_API GPSDOPsC;
}
namespace SDI {
class SURVEYDATA_API GPSDOPsImplC;
extern template class SURVEYDATA_API GPSDOPsFieldsC<GPSDOPsImplC>;
extern template class SURVEYDATA_API GPSDOPsFieldsC<ODM::GPSDOPsC>;

/// The data of a `GPSDOPsC`.
class SURVEYDATA_API GPSDOPsImplC : public GPSDOPsFieldsC<GPSDOPsImplC> {
 public:
  using GPSDOPsFieldsC::GPSDOPsFieldsC;
};
}  // namespace SDI

namespace ODM {
/// The dilutions of precision inside the compact measurement record. A public object made by its
/// `GetBase()` finds no implementation of its own class and answers accordingly.
class SURVEYDATA_API GPSDOPsC : public SDI::GPSDOPsFieldsC<GPSDOPsC> {
 public:
  using GPSDOPsFieldsC::GPSDOPsFieldsC;
};
}  // namespace ODM

namespace SDI {

/// The dilutions of precision of a position fix. They arrive with a measurement or by copying;
/// there are no setters. A new object has none.
///
/// Every getter answers -1 when a value that it needs is not available, and 0 without an
/// implementation of this class.
class SURVEYDATA_API GPSDOPsC : public API::HandleC<GPSDOPsImplC> {
 public:
  using HandleC::HandleC;
  GPSDOPsC() = default;
  /// Takes ownership of an implementation that this class does not read.
  template <std::same_as<ODM::GPSDOPsC> Compact>
  explicit GPSDOPsC(Compact* impl) : HandleC(nullptr) {
    SetImpl(impl);
  }

  /// The horizontal dilution of precision.
  double GetHDOP() const;
  /// The vertical dilution of precision.
  double GetVDOP() const;
  /// The dilution of precision of the time.
  double GetTDOP() const;
  /// The dilution of the position, sqrt(HDOP^2 + VDOP^2).
  double GetPDOP() const;
  /// The geometric dilution, sqrt(HDOP^2 + VDOP^2 + TDOP^2).
  double GetGDOP() const;

  /// Whether all three stored values are the same. False when either side has no implementation.
  bool IsEqual(const GPSDOPsC& other) const;
};

static_assert(sizeof(GPSDOPsC) == 16 && sizeof(GPSDOPsImplC) == 24);
static_assert(sizeof(ODM::GPSDOPsC) == sizeof(GPSDOPsImplC));

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_DOPS_H_
