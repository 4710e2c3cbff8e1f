#ifndef SURVEYDATA_GNSS_GPS_MEAS_DATA_H_
#define SURVEYDATA_GNSS_GPS_MEAS_DATA_H_

#include <array>
#include <concepts>
#include <cstdint>
#include <type_traits>

#include <surveydata/gnss/gps_ant_height.h>
#include <surveydata/gnss/gps_dops.h>
#include <surveydata/object_model/export.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/platform/vorlin_time.h>

namespace ODM {
class SURVEYDATA_API GPSMeasDataC;
}
namespace SDI {
class SURVEYDATA_API GPSMeasDataC;
class SURVEYDATA_API GPSMeasDataImplC;
namespace RecordColumns {
struct Renewal;
}

/// Two counters of one kind of satellites. The producer defines what they count; receivers store
/// the satellites in view and those used.
struct GPSCounterPair {
  std::uint8_t first = 0;
  std::uint8_t second = 0;

  bool operator==(const GPSCounterPair&) const = default;
};

/// An optional third time of a measurement.
struct GPSExtraTime {
  std::uint8_t count = 0;
  std::uint32_t week = 0;  ///< Holds a 16-bit value.
  std::int32_t timeOfWeek = 0;

  bool operator==(const GPSExtraTime&) const = default;
};

/// Replaces `GPSExtraTime` in a measurement without room for a third time.
struct GPSNoExtraTime {
  bool operator==(const GPSNoExtraTime&) const = default;
};

/// A list of up to 31 entries with a head value. Entries after the count have no meaning.
struct SURVEYDATA_API GPSListBlock {
  static constexpr std::uint8_t kCapacity = 31;

  std::uint16_t head = 0;
  std::uint8_t count = 0;
  std::uint16_t entries[kCapacity] = {};

  /// Whether head, count and the entries up to the count are equal.
  bool isEqual(const GPSListBlock& other) const;
};
static_assert(sizeof(GPSListBlock) == 66);

/// The parts for which the two implementations of a measurement have different classes.
template <class Self>
struct GPSMeasParts;

template <>
struct GPSMeasParts<GPSMeasDataImplC> {
  using AntHeight = GPSAntHeightImplC;
  using DOPs = GPSDOPsImplC;
  using ExtraTime = GPSExtraTime;
};

template <>
struct GPSMeasParts<ODM::GPSMeasDataC> {
  using AntHeight = ODM::GPSAntHeightC;
  using DOPs = ODM::GPSDOPsC;
  using ExtraTime = GPSNoExtraTime;
};

/// The fields that the full and the compact implementation of a measurement share, and the rules
/// for their presence. Each class declares its own accessors.
template <class Self>
class SURVEYDATA_VISIBLE GPSMeasFieldsC : public API::ImplC<Self, GPSMeasDataC> {
 public:
  // Bits of the set mask.
  static constexpr std::uint16_t kHasAntennaHeight = 0x0002;
  static constexpr std::uint16_t kHasDOPs = 0x0004;
  static constexpr std::uint16_t kHasTotalPair = 0x0008;
  static constexpr std::uint16_t kHasVector = 0x0010;
  static constexpr std::uint16_t kHasWord16 = 0x0020;
  static constexpr std::uint16_t kHasSystems = 0x0040;
  static constexpr std::uint16_t kHasValueC = 0x0080;
  static constexpr std::uint16_t kHasValueH = 0x0100;
  static constexpr std::uint16_t kHasValueI = 0x0200;
  static constexpr std::uint16_t kHasListBlock = 0x0400;
  // Bits of the status mask.
  static constexpr std::uint16_t kStatusBit0 = 0x0001;
  static constexpr std::uint16_t kStatusBit1 = 0x0002;
  static constexpr std::uint16_t kStatusBit2 = 0x0004;
  static constexpr std::uint16_t kStatusBit3 = 0x0008;
  static constexpr std::uint16_t kSystem1 = 0x0010;
  static constexpr std::uint16_t kSystem2 = 0x0020;
  static constexpr std::uint16_t kSystem3 = 0x0040;

 protected:
  using AntHeight = typename GPSMeasParts<Self>::AntHeight;
  using DOPs = typename GPSMeasParts<Self>::DOPs;
  using ExtraTime = typename GPSMeasParts<Self>::ExtraTime;

  using API::ImplC<Self, GPSMeasDataC>::ImplC;
  GPSMeasFieldsC() = default;

  bool HasSet(std::uint16_t bit) const { return (setMask_ & bit) != 0; }
  bool HasStatus(std::uint16_t bit) const { return (statusMask_ & bit) != 0; }
  bool HasSystem(std::uint16_t system) const { return HasSet(kHasSystems) && HasStatus(system); }
  void Raise(std::uint16_t setBits, std::uint16_t statusBits = 0);
  void Clear(std::uint16_t setBits);
  /// Clears the masks, the values, word16 and the pairs, and keeps the other fields.
  void ResetFields();

  bool CopyAntennaHeight(GPSAntHeightC& antennaHeight) const;
  void StoreAntennaHeight(const GPSAntHeightC& antennaHeight);
  void StoreValues(const std::uint16_t* values, std::uint8_t count);
  bool CopyDOPs(GPSDOPsC& dops) const;
  bool CopyVector(double (&vector)[3]) const;
  /// Stores the pair of system 2 or 3 and makes it present, unless its second value is 0 and
  /// `Self::kRaisesForZero` is false.
  void StoreLaterSystem(GPSCounterPair& pair, std::uint16_t system, GPSCounterPair value);

  bool AreFieldsEqual(const Self& other) const;

  Vorlin::TimeC timeA_;
  Vorlin::TimeC timeB_;
  [[no_unique_address]] ExtraTime extraTime_;
  std::uint16_t setMask_ = 0;
  std::uint16_t statusMask_ = 0;
  AntHeight antennaHeight_;
  std::uint8_t valueCount_ = 0;
  std::array<std::uint16_t, 2> values_ = {};
  DOPs dops_;
  std::uint16_t word16_ = 0;
  GPSCounterPair totalPair_;
  GPSCounterPair system1Pair_;
  GPSCounterPair system2Pair_;
  GPSCounterPair system3Pair_;
  std::array<double, 3> vector_ = {};
};

/// The data of a `GPSMeasDataC`. Frames of record files are read into it.
///
/// An optional field has a bit in the set mask, which its setter sets. While the bit is clear, the
/// getter returns false and does not change its outputs.
///
/// The texts are bounded arrays of 16-bit units. A setter takes texts of up to 79 units (text D:
/// 29). A longer or null text empties the field and is reported through the C runtime: `errno` is
/// ERANGE or EINVAL, and the invalid-parameter handler, if the runtime has one, is called.
class SURVEYDATA_API GPSMeasDataImplC : public GPSMeasFieldsC<GPSMeasDataImplC> {
 public:
  /// A pair of system 2 or 3 whose second value is 0 is stored but not present.
  static constexpr bool kRaisesForZero = false;
  /// Units of a text, including the terminator.
  static constexpr std::size_t kTextUnits = 80;
  static constexpr std::size_t kTextDUnits = 30;

  GPSMeasDataImplC();
  explicit GPSMeasDataImplC(API::BaseC* owner);
  GPSMeasDataImplC(const GPSMeasDataImplC& other);
  GPSMeasDataImplC& operator=(const GPSMeasDataImplC& other);
  ~GPSMeasDataImplC() override;
  API::BaseC* GetBase() override;

  /// One of the two times, which are always present. 0 by default.
  /// @{
  Vorlin::TimeC GetTimeA() const;
  void SetTimeA(const Vorlin::TimeC& time);
  Vorlin::TimeC GetTimeB() const;
  void SetTimeB(const Vorlin::TimeC& time);
  /// @}

  std::uint16_t GetSetMask() const;
  std::uint16_t GetStatusMask() const;
  bool IsStatusBit0() const;
  bool IsStatusBit1() const;
  bool IsStatusBit2() const;
  bool IsStatusBit3() const;
  /// Sets the status bit. Only `Reset` clears it.
  /// @{
  void SetStatusBit0();
  void SetStatusBit1();
  void SetStatusBit2();
  void SetStatusBit3();
  /// @}

  /// Without information per system, system 1 counts as used and the others do not.
  /// @{
  bool IsSystem1Used() const;
  bool IsSystem2Used() const;
  bool IsSystem3Used() const;
  /// @}

  /// The stored antenna height, whether set or not.
  /// @{
  const GPSAntHeightImplC& GetAntennaHeight() const;
  GPSAntHeightImplC& GetAntennaHeight();
  /// @}
  bool GetAntennaHeight(GPSAntHeightC& antennaHeight) const;
  void SetAntennaHeight(const GPSAntHeightImplC& antennaHeight);
  /// Does nothing if `antennaHeight` has no implementation of its class.
  void SetAntennaHeight(const GPSAntHeightC& antennaHeight);

  std::uint8_t GetValueCount() const;
  /// 0 after the count.
  std::uint16_t GetValue(std::uint8_t index) const;
  /// Stores the first two of `count` values, none if `values` is null.
  void SetValues(const std::uint16_t* values, std::uint8_t count);

  /// The stored dilutions of precision, whether set or not.
  /// @{
  const GPSDOPsImplC& GetDOPs() const;
  GPSDOPsImplC& GetDOPs();
  /// @}
  bool GetDOPs(GPSDOPsC& dops) const;
  /// -1 for a value that is not available.
  /// @{
  bool GetHDOP(double& hdop) const;
  bool GetPDOP(double& pdop) const;
  /// @}
  void SetDOPs(const GPSDOPsImplC& dops);

  bool GetWord16(std::uint16_t& word) const;
  void SetWord16(std::uint16_t word);

  /// The stored pair, whether set or not.
  /// @{
  GPSCounterPair GetStoredTotalPair() const;
  GPSCounterPair GetStoredSystem1Pair() const;
  GPSCounterPair GetStoredSystem2Pair() const;
  GPSCounterPair GetStoredSystem3Pair() const;
  /// @}
  bool GetTotalPair(std::uint8_t& first, std::uint8_t& second) const;
  void SetTotalPair(std::uint8_t first, std::uint8_t second);
  /// The pair of system 1, or the total pair if there is no information per system.
  bool GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const;
  void SetSystem1Pair(std::uint8_t first, std::uint8_t second);
  bool GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const;
  bool GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const;
  /// Stores the pair. It counts as present unless its second value is 0.
  /// @{
  void SetSystem2Pair(std::uint8_t first, std::uint8_t second);
  void SetSystem3Pair(std::uint8_t first, std::uint8_t second);
  /// @}

  /// The three components, in the unit and axes of the producer (metres, earth-centred, from frames
  /// of record files).
  bool GetVector(double (&vector)[3]) const;
  void SetVector(const double (&vector)[3]);

  /// 1 if there is a third time, else 0.
  std::uint8_t GetExtraTimeCount() const;
  /// False, without changing the outputs, if there is no third time.
  bool GetExtraTime(std::uint16_t& week, std::int32_t& timeOfWeek) const;
  void SetExtraTime(std::uint16_t week, std::int32_t timeOfWeek);

  // The producer defines the meaning of the lettered fields; all are 0 by default.

  std::uint8_t GetFlagA() const;
  void SetFlagA(std::uint8_t flag);
  std::uint32_t GetValueB() const;
  void SetValueB(std::uint32_t value);
  /// Whether value C is not 0.
  bool IsValueCSet() const;
  std::uint32_t GetValueC() const;
  void SetValueC(std::uint32_t value);
  const char16_t* GetTextA() const;
  void SetTextA(const char16_t* text);
  bool HasTextA() const;
  const char16_t* GetTextB() const;
  void SetTextB(const char16_t* text);
  bool HasTextB() const;
  std::int32_t GetValueD() const;
  void SetValueD(std::int32_t value);
  const char16_t* GetTextC() const;
  void SetTextC(const char16_t* text);
  bool HasTextC() const;
  std::uint8_t GetFlagE() const;
  void SetFlagE(std::uint8_t flag);
  const char16_t* GetTextD() const;
  void SetTextD(const char16_t* text);
  bool HasTextD() const;
  std::uint8_t GetValueF() const;
  void SetValueF(std::uint8_t value);
  std::int32_t GetValueG() const;
  void SetValueG(std::int32_t value);
  bool HasValueH() const;
  std::uint16_t GetValueH() const;
  void SetValueH(std::uint16_t value);
  bool HasValueI() const;
  std::uint16_t GetValueI() const;
  void SetValueI(std::uint16_t value);
  bool HasListBlock() const;
  const GPSListBlock* GetListBlock() const;
  void SetListBlock(const GPSListBlock& list);

  /// Clears every field except the times A and B, the vector, the antenna height and the dilutions
  /// of precision. The last three keep their values but become absent.
  void Reset();

  /// Whether all stored fields are equal: floating-point numbers within tolerance, texts up to
  /// their terminator, the values and the list up to their counts.
  bool isEqual(const GPSMeasDataImplC& other) const;

 private:
  friend struct RecordColumns::Renewal;

  std::uint8_t flagA_ = 0;
  std::uint32_t valueB_ = 0;
  std::uint32_t valueC_ = 0;
  char16_t textA_[kTextUnits] = {};
  char16_t textB_[kTextUnits] = {};
  std::int32_t valueD_ = 0;
  char16_t textC_[kTextUnits] = {};
  std::uint8_t flagE_ = 0;
  char16_t textD_[kTextDUnits] = {};
  std::uint8_t valueF_ = 0;
  std::int32_t valueG_ = 0;
  std::uint16_t valueH_ = 0;
  std::uint16_t valueI_ = 0;
  GPSListBlock listBlock_;
};
}  // namespace SDI

namespace ODM {
/// The compact record of a measurement: times, masks, antenna height, values, dilutions of
/// precision, counters and vector. A public object made by its `GetBase()` finds no implementation
/// of its own class, so its getters return 0 and false.
class SURVEYDATA_API GPSMeasDataC : public SDI::GPSMeasFieldsC<GPSMeasDataC> {
 public:
  /// A pair of system 2 or 3 is present once it is stored.
  static constexpr bool kRaisesForZero = true;

  GPSMeasDataC();
  explicit GPSMeasDataC(API::BaseC* owner);
  GPSMeasDataC(const GPSMeasDataC& other);
  GPSMeasDataC& operator=(const GPSMeasDataC& other);
  ~GPSMeasDataC() override;
  API::BaseC* GetBase() override;

  /// One of the two times, which are always present. 0 by default.
  /// @{
  Vorlin::TimeC GetTimeA() const;
  void SetTimeA(const Vorlin::TimeC& time);
  Vorlin::TimeC GetTimeB() const;
  void SetTimeB(const Vorlin::TimeC& time);
  /// @}

  std::uint16_t GetSetMask() const;
  std::uint16_t GetStatusMask() const;
  bool IsStatusBit0() const;
  bool IsStatusBit1() const;
  bool IsStatusBit2() const;
  bool IsStatusBit3() const;
  /// Sets the status bit. Nothing clears it.
  /// @{
  void SetStatusBit0();
  void SetStatusBit1();
  void SetStatusBit2();
  void SetStatusBit3();
  /// @}

  /// Without information per system, system 1 counts as used and the others do not.
  /// @{
  bool IsSystem1Used() const;
  bool IsSystem2Used() const;
  bool IsSystem3Used() const;
  /// @}

  /// The stored antenna height, whether set or not.
  /// @{
  const GPSAntHeightC& GetAntennaHeight() const;
  GPSAntHeightC& GetAntennaHeight();
  /// @}
  bool GetAntennaHeight(SDI::GPSAntHeightC& antennaHeight) const;
  void SetAntennaHeight(const GPSAntHeightC& antennaHeight);
  /// Does nothing if `antennaHeight` has no implementation of its class.
  void SetAntennaHeight(const SDI::GPSAntHeightC& antennaHeight);

  std::uint8_t GetValueCount() const;
  /// 0 after the count.
  std::uint16_t GetValue(std::uint8_t index) const;
  /// Stores the first two of `count` values, none if `values` is null.
  void SetValues(const std::uint16_t* values, std::uint8_t count);

  /// The stored dilutions of precision, whether set or not.
  /// @{
  const GPSDOPsC& GetDOPs() const;
  GPSDOPsC& GetDOPs();
  /// @}
  bool GetDOPs(SDI::GPSDOPsC& dops) const;
  /// -1 for a value that is not available.
  /// @{
  bool GetHDOP(double& hdop) const;
  bool GetPDOP(double& pdop) const;
  /// @}
  void SetDOPs(const GPSDOPsC& dops);

  bool GetWord16(std::uint16_t& word) const;
  void SetWord16(std::uint16_t word);

  /// The stored pair, whether set or not.
  /// @{
  SDI::GPSCounterPair GetStoredTotalPair() const;
  SDI::GPSCounterPair GetStoredSystem1Pair() const;
  SDI::GPSCounterPair GetStoredSystem2Pair() const;
  SDI::GPSCounterPair GetStoredSystem3Pair() const;
  /// @}
  bool GetTotalPair(std::uint8_t& first, std::uint8_t& second) const;
  void SetTotalPair(std::uint8_t first, std::uint8_t second);
  /// The pair of system 1, or the total pair if there is no information per system.
  bool GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const;
  void SetSystem1Pair(std::uint8_t first, std::uint8_t second);
  bool GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const;
  bool GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const;
  /// Stores the pair, which counts as present.
  /// @{
  void SetSystem2Pair(std::uint8_t first, std::uint8_t second);
  void SetSystem3Pair(std::uint8_t first, std::uint8_t second);
  /// @}

  /// The three components, in the unit and axes of the producer (metres, earth-centred, from frames
  /// of record files).
  bool GetVector(double (&vector)[3]) const;
  void SetVector(const double (&vector)[3]);

  /// Whether all stored fields are equal: floating-point numbers within tolerance, the values up to
  /// their count.
  bool isEqual(const GPSMeasDataC& other) const;
};
}  // namespace ODM

namespace SDI {

/// One GNSS measurement: times, status, antenna height, dilutions of precision, satellite counters
/// and a vector. Most fields are optional: while a field is not set, its getter returns false and
/// does not change its outputs.
///
/// Without an implementation of its class, getters return 0 and false and setters do nothing.
class SURVEYDATA_API GPSMeasDataC : public API::HandleC<GPSMeasDataImplC> {
 public:
  GPSMeasDataC();
  explicit GPSMeasDataC(GPSMeasDataImplC* impl);
  /// Takes ownership of an implementation that this class does not read.
  template <std::same_as<ODM::GPSMeasDataC> Compact>
  explicit GPSMeasDataC(Compact* impl);
  GPSMeasDataC(const GPSMeasDataC& other);
  GPSMeasDataC& operator=(const GPSMeasDataC& other);
  ~GPSMeasDataC() override;

  /// One of the two times, which are always present. 0 by default.
  /// @{
  Vorlin::TimeC GetTimeA() const;
  Vorlin::TimeC GetTimeB() const;
  /// @}

  bool IsStatusBit0() const;
  bool IsStatusBit1() const;
  bool IsStatusBit2() const;
  bool IsStatusBit3() const;
  /// Without information per system, system 1 counts as used and system 2 does not.
  /// @{
  bool IsSystem1Used() const;
  bool IsSystem2Used() const;
  /// @}

  bool GetAntennaHeight(GPSAntHeightC& antennaHeight) const;
  /// Does nothing if `antennaHeight` has no implementation of its class.
  void SetAntennaHeight(const GPSAntHeightC& antennaHeight);

  std::uint8_t GetValueCount() const;
  /// 0 after the count.
  std::uint16_t GetValue(std::uint8_t index) const;
  /// Stores the first two of `count` values, none if `values` is null.
  void SetValues(const std::uint16_t* values, std::uint8_t count);

  bool GetDOPs(GPSDOPsC& dops) const;
  bool GetWord16(std::uint16_t& word) const;

  bool GetTotalPair(std::uint8_t& first, std::uint8_t& second) const;
  /// The pair of system 1, or the total pair if there is no information per system.
  bool GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const;
  bool GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const;
  bool GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const;

  bool GetVector(double (&vector)[3]) const;

  std::uint8_t GetFlagA() const;
  std::uint32_t GetValueB() const;
  /// Whether value C is not 0.
  bool IsValueCSet() const;
  std::uint32_t GetValueC() const;
  std::uint8_t GetFlagE() const;

  /// Whether all stored fields are equal: floating-point numbers within tolerance, texts up to
  /// their terminator, the values and the list up to their counts. False if either side has no
  /// implementation.
  bool IsEqual(const GPSMeasDataC& other) const;
};

static_assert(API::kHasSize<GPSMeasDataC, 16> && API::kHasSize<GPSMeasDataImplC, 792>);
static_assert(API::kHasSize<ODM::GPSMeasDataC, 144>);

extern template SURVEYDATA_API GPSMeasDataC::GPSMeasDataC(ODM::GPSMeasDataC* impl);

}  // namespace SDI

extern template SURVEYDATA_API SDI::GPSMeasDataImplC* API::CastFromAny(API::ImplObjectC*);

#endif  // SURVEYDATA_GNSS_GPS_MEAS_DATA_H_
