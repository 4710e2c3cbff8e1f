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

/// The data of a `GPSDOPsC`. Values are stored in tenths, 0 to 65534; 23 means 2.3.
class SURVEYDATA_API GPSDOPsImplC : public API::ImplC<GPSDOPsImplC, GPSDOPsC> {
 public:
  GPSDOPsImplC();
  explicit GPSDOPsImplC(API::BaseC* owner);
  GPSDOPsImplC(const GPSDOPsImplC& other);
  GPSDOPsImplC& operator=(const GPSDOPsImplC& other);
  ~GPSDOPsImplC() override;
  API::BaseC* GetBase() override;
  GPSDOPsImplC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop);

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

  bool isEqual(const GPSDOPsImplC& other) const;

 private:
  std::uint16_t hdop_ = DOP_NOT_AVAILABLE;
  std::uint16_t vdop_ = DOP_NOT_AVAILABLE;
  std::uint16_t tdop_ = DOP_NOT_AVAILABLE;
};

}  // namespace SDI

namespace ODM {
/// The dilutions of precision inside the compact measurement record, also in tenths. A public
/// object made by its `GetBase()` finds no implementation of its own class, so its
/// getters return 0 and false.
class SURVEYDATA_API GPSDOPsC : public API::ImplC<GPSDOPsC, SDI::GPSDOPsC> {
 public:
  GPSDOPsC();
  explicit GPSDOPsC(API::BaseC* owner);
  GPSDOPsC(const GPSDOPsC& other);
  GPSDOPsC& operator=(const GPSDOPsC& other);
  ~GPSDOPsC() override;
  API::BaseC* GetBase() override;
  GPSDOPsC(std::uint16_t hdop, std::uint16_t vdop, std::uint16_t tdop);

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

  bool isEqual(const GPSDOPsC& other) const;

 private:
  std::uint16_t hdop_ = SDI::DOP_NOT_AVAILABLE;
  std::uint16_t vdop_ = SDI::DOP_NOT_AVAILABLE;
  std::uint16_t tdop_ = SDI::DOP_NOT_AVAILABLE;
};

}  // namespace ODM

namespace SDI {

/// The dilutions of precision of a position fix. They come with a measurement or by copying; there
/// are no setters. In a new object none is available.
///
/// Every getter returns -1 if a value that it needs is not available, and 0 without an
/// implementation of this class.
class SURVEYDATA_API GPSDOPsC : public API::HandleC<GPSDOPsImplC> {
 public:
  GPSDOPsC();
  explicit GPSDOPsC(GPSDOPsImplC* impl);
  /// Takes ownership of an implementation that this class does not read.
  template <std::same_as<ODM::GPSDOPsC> Compact>
  explicit GPSDOPsC(Compact* impl);
  GPSDOPsC(const GPSDOPsC& other);
  GPSDOPsC& operator=(const GPSDOPsC& other);
  ~GPSDOPsC() override;

  /// The horizontal dilution of precision.
  double GetHDOP() const;
  /// The vertical dilution of precision.
  double GetVDOP() const;
  /// The dilution of precision of the time.
  double GetTDOP() const;
  /// The dilution of precision of the position, sqrt(HDOP^2 + VDOP^2).
  double GetPDOP() const;
  /// The geometric dilution of precision, sqrt(HDOP^2 + VDOP^2 + TDOP^2).
  double GetGDOP() const;

  /// Whether all three stored values are equal. False if either side has no implementation.
  bool IsEqual(const GPSDOPsC& other) const;
};

static_assert(API::kHasSize<GPSDOPsC, 16> && API::kHasSize<GPSDOPsImplC, 24>);
static_assert(API::kHasSize<ODM::GPSDOPsC, 24>);

extern template SURVEYDATA_API GPSDOPsC::GPSDOPsC(ODM::GPSDOPsC* impl);

}  // namespace SDI

extern template SURVEYDATA_API SDI::GPSDOPsImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GNSS_GPS_DOPS_H_
