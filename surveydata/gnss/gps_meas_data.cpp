#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/gnss/record_columns.h>
#include <surveydata/object_model/compare.h>

namespace {

using SDI::GPSCounterPair;

// Copies the fields of an antenna height between any two implementations.
template <class From, class To>
void CopyFields(const From& from, To& to) {
  float height = 0.0F;
  bool isVertical = true;
  from.GetHeight(height, isVertical);
  to.SetHeight(height, isVertical);
  to.SetHorizontalOffset(from.GetHorizontalOffset());
}

template <class Value>
bool CopyOut(bool present, Value value, Value& to) {
  if (present) to = value;
  return present;
}

bool CopyOut(bool present, GPSCounterPair pair, std::uint8_t& first, std::uint8_t& second) {
  if (!present) return false;
  first = pair.first;
  second = pair.second;
  return true;
}

// Reports as the checked copies of the C runtime do: through `errno`, and through the handler for
// invalid parameters if the runtime has one.
void ReportRefusal(int error) {
  errno = error;
#if defined(_WIN32)
  if (const _invalid_parameter_handler handler = _get_invalid_parameter_handler()) {
    handler(nullptr, nullptr, nullptr, 0, 0);
  }
#endif
}

/// Copies and looks for the terminator in one pass, because `text` may be the field itself.
template <std::size_t N>
void SetText(char16_t (&field)[N], const char16_t* text) {
  if (text != nullptr) {
    for (std::size_t i = 0; i < N; ++i) {
      const char16_t unit = text[i];
      field[i] = unit;
      if (unit == 0) return;
    }
  }
  field[0] = 0;
  ReportRefusal(text == nullptr ? EINVAL : ERANGE);
}

}  // namespace

namespace SDI {

bool GPSListBlock::isEqual(const GPSListBlock& other) const {
  const auto* const end = entries + std::min(count, kCapacity);
  return head == other.head && count == other.count && std::equal(entries, end, other.entries);
}

template <class Self>
void GPSMeasFieldsC<Self>::Raise(std::uint16_t setBits, std::uint16_t statusBits) {
  setMask_ = static_cast<std::uint16_t>(setMask_ | setBits);
  statusMask_ = static_cast<std::uint16_t>(statusMask_ | statusBits);
}

template <class Self>
void GPSMeasFieldsC<Self>::Clear(std::uint16_t setBits) {
  setMask_ = static_cast<std::uint16_t>(setMask_ & ~setBits);
}

template <class Self>
void GPSMeasFieldsC<Self>::ResetFields() {
  setMask_ = 0;
  statusMask_ = 0;
  valueCount_ = 0;
  values_ = {};
  word16_ = 0;
  totalPair_ = {};
  system1Pair_ = {};
  system2Pair_ = {};
  system3Pair_ = {};
}

template <class Self>
bool GPSMeasFieldsC<Self>::CopyAntennaHeight(GPSAntHeightC& antennaHeight) const {
  GPSAntHeightImplC* const to = antennaHeight.GetImpl();
  if (to == nullptr || !HasSet(kHasAntennaHeight)) return false;
  CopyFields(antennaHeight_, *to);
  return true;
}

template <class Self>
void GPSMeasFieldsC<Self>::StoreAntennaHeight(const GPSAntHeightC& antennaHeight) {
  const GPSAntHeightImplC* const from = antennaHeight.GetImpl();
  if (from == nullptr) return;
  CopyFields(*from, antennaHeight_);
  Raise(kHasAntennaHeight);
}

template <class Self>
void GPSMeasFieldsC<Self>::StoreValues(const std::uint16_t* values, std::uint8_t count) {
  const std::size_t kept = values != nullptr ? std::min<std::size_t>(count, values_.size()) : 0;
  std::copy_n(values, kept, values_.begin());
  valueCount_ = static_cast<std::uint8_t>(kept);
}

template <class Self>
bool GPSMeasFieldsC<Self>::CopyDOPs(GPSDOPsC& dops) const {
  GPSDOPsImplC* const to = dops.GetImpl();
  if (to == nullptr || !HasSet(kHasDOPs)) return false;
  *to = GPSDOPsImplC(dops_.GetHDOPTenths(), dops_.GetVDOPTenths(), dops_.GetTDOPTenths());
  return true;
}

template <class Self>
bool GPSMeasFieldsC<Self>::CopyVector(double (&vector)[3]) const {
  if (!HasSet(kHasVector)) return false;
  std::copy(vector_.begin(), vector_.end(), vector);
  return true;
}

template <class Self>
void GPSMeasFieldsC<Self>::StoreLaterSystem(GPSCounterPair& pair, std::uint16_t system,
                                            GPSCounterPair value) {
  pair = value;
  if (value.second != 0 || Self::kRaisesForZero) Raise(kHasSystems, system);
}

template <class Self>
bool GPSMeasFieldsC<Self>::AreFieldsEqual(const Self& other) const {
  return API::EqualFields<GPSMeasFieldsC>(
             *this, other, &GPSMeasFieldsC::timeA_, &GPSMeasFieldsC::timeB_,
             &GPSMeasFieldsC::extraTime_, &GPSMeasFieldsC::setMask_, &GPSMeasFieldsC::statusMask_,
             &GPSMeasFieldsC::antennaHeight_, &GPSMeasFieldsC::valueCount_) &&
         std::equal(values_.begin(), values_.begin() + valueCount_, other.values_.begin()) &&
         API::EqualFields<GPSMeasFieldsC>(*this, other, &GPSMeasFieldsC::dops_,
                                          &GPSMeasFieldsC::word16_, &GPSMeasFieldsC::totalPair_,
                                          &GPSMeasFieldsC::system1Pair_,
                                          &GPSMeasFieldsC::system2Pair_,
                                          &GPSMeasFieldsC::system3Pair_, &GPSMeasFieldsC::vector_);
}

GPSMeasDataImplC::GPSMeasDataImplC() = default;
GPSMeasDataImplC::GPSMeasDataImplC(API::BaseC* owner) : GPSMeasFieldsC(owner) {}
GPSMeasDataImplC::GPSMeasDataImplC(const GPSMeasDataImplC& other) = default;
GPSMeasDataImplC& GPSMeasDataImplC::operator=(const GPSMeasDataImplC& other) = default;
GPSMeasDataImplC::~GPSMeasDataImplC() = default;
API::BaseC* GPSMeasDataImplC::GetBase() { return ImplC::GetBase(); }

Vorlin::TimeC GPSMeasDataImplC::GetTimeA() const { return timeA_; }
void GPSMeasDataImplC::SetTimeA(const Vorlin::TimeC& time) { timeA_ = time; }
Vorlin::TimeC GPSMeasDataImplC::GetTimeB() const { return timeB_; }
void GPSMeasDataImplC::SetTimeB(const Vorlin::TimeC& time) { timeB_ = time; }
std::uint16_t GPSMeasDataImplC::GetSetMask() const { return setMask_; }
std::uint16_t GPSMeasDataImplC::GetStatusMask() const { return statusMask_; }
bool GPSMeasDataImplC::IsStatusBit0() const { return HasStatus(kStatusBit0); }
bool GPSMeasDataImplC::IsStatusBit1() const { return HasStatus(kStatusBit1); }
bool GPSMeasDataImplC::IsStatusBit2() const { return HasStatus(kStatusBit2); }
bool GPSMeasDataImplC::IsStatusBit3() const { return HasStatus(kStatusBit3); }
void GPSMeasDataImplC::SetStatusBit0() { Raise(0, kStatusBit0); }
void GPSMeasDataImplC::SetStatusBit1() { Raise(0, kStatusBit1); }
void GPSMeasDataImplC::SetStatusBit2() { Raise(0, kStatusBit2); }
void GPSMeasDataImplC::SetStatusBit3() { Raise(0, kStatusBit3); }
bool GPSMeasDataImplC::IsSystem1Used() const { return !HasSet(kHasSystems) || HasStatus(kSystem1); }
bool GPSMeasDataImplC::IsSystem2Used() const { return HasSystem(kSystem2); }
bool GPSMeasDataImplC::IsSystem3Used() const { return HasSystem(kSystem3); }
const GPSAntHeightImplC& GPSMeasDataImplC::GetAntennaHeight() const { return antennaHeight_; }
GPSAntHeightImplC& GPSMeasDataImplC::GetAntennaHeight() { return antennaHeight_; }
bool GPSMeasDataImplC::GetAntennaHeight(GPSAntHeightC& antennaHeight) const {
  return CopyAntennaHeight(antennaHeight);
}
void GPSMeasDataImplC::SetAntennaHeight(const GPSAntHeightImplC& antennaHeight) {
  antennaHeight_ = antennaHeight;
  Raise(kHasAntennaHeight);
}
void GPSMeasDataImplC::SetAntennaHeight(const GPSAntHeightC& antennaHeight) {
  StoreAntennaHeight(antennaHeight);
}
std::uint8_t GPSMeasDataImplC::GetValueCount() const { return valueCount_; }
std::uint16_t GPSMeasDataImplC::GetValue(std::uint8_t index) const {
  return index < valueCount_ ? values_[index] : std::uint16_t{0};
}
void GPSMeasDataImplC::SetValues(const std::uint16_t* values, std::uint8_t count) {
  StoreValues(values, count);
}
const GPSDOPsImplC& GPSMeasDataImplC::GetDOPs() const { return dops_; }
GPSDOPsImplC& GPSMeasDataImplC::GetDOPs() { return dops_; }
bool GPSMeasDataImplC::GetDOPs(GPSDOPsC& dops) const { return CopyDOPs(dops); }
bool GPSMeasDataImplC::GetHDOP(double& hdop) const {
  return CopyOut(HasSet(kHasDOPs), dops_.GetHDOP(), hdop);
}
bool GPSMeasDataImplC::GetPDOP(double& pdop) const {
  return CopyOut(HasSet(kHasDOPs), dops_.GetPDOP(), pdop);
}
void GPSMeasDataImplC::SetDOPs(const GPSDOPsImplC& dops) {
  dops_ = dops;
  Raise(kHasDOPs);
}
bool GPSMeasDataImplC::GetWord16(std::uint16_t& word) const {
  return CopyOut(HasSet(kHasWord16), word16_, word);
}
void GPSMeasDataImplC::SetWord16(std::uint16_t word) {
  word16_ = word;
  Raise(kHasWord16);
}
GPSCounterPair GPSMeasDataImplC::GetStoredTotalPair() const { return totalPair_; }
GPSCounterPair GPSMeasDataImplC::GetStoredSystem1Pair() const { return system1Pair_; }
GPSCounterPair GPSMeasDataImplC::GetStoredSystem2Pair() const { return system2Pair_; }
GPSCounterPair GPSMeasDataImplC::GetStoredSystem3Pair() const { return system3Pair_; }
bool GPSMeasDataImplC::GetTotalPair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(HasSet(kHasTotalPair), totalPair_, first, second);
}
void GPSMeasDataImplC::SetTotalPair(std::uint8_t first, std::uint8_t second) {
  totalPair_ = {first, second};
  Raise(kHasTotalPair);
}
bool GPSMeasDataImplC::GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const {
  if (!HasSet(kHasSystems)) return GetTotalPair(first, second);
  return CopyOut(HasStatus(kSystem1), system1Pair_, first, second);
}
void GPSMeasDataImplC::SetSystem1Pair(std::uint8_t first, std::uint8_t second) {
  system1Pair_ = {first, second};
  Raise(kHasSystems, kSystem1);
}
bool GPSMeasDataImplC::GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(IsSystem2Used(), system2Pair_, first, second);
}
void GPSMeasDataImplC::SetSystem2Pair(std::uint8_t first, std::uint8_t second) {
  StoreLaterSystem(system2Pair_, kSystem2, {first, second});
}
bool GPSMeasDataImplC::GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(IsSystem3Used(), system3Pair_, first, second);
}
void GPSMeasDataImplC::SetSystem3Pair(std::uint8_t first, std::uint8_t second) {
  StoreLaterSystem(system3Pair_, kSystem3, {first, second});
}
bool GPSMeasDataImplC::GetVector(double (&vector)[3]) const { return CopyVector(vector); }
void GPSMeasDataImplC::SetVector(const double (&vector)[3]) {
  std::copy_n(vector, vector_.size(), vector_.begin());
  Raise(kHasVector);
}

std::uint8_t GPSMeasDataImplC::GetExtraTimeCount() const { return extraTime_.count; }

bool GPSMeasDataImplC::GetExtraTime(std::uint16_t& week, std::int32_t& timeOfWeek) const {
  if (extraTime_.count == 0) return false;
  week = static_cast<std::uint16_t>(extraTime_.week);
  timeOfWeek = extraTime_.timeOfWeek;
  return true;
}

void GPSMeasDataImplC::SetExtraTime(std::uint16_t week, std::int32_t timeOfWeek) {
  extraTime_ = {1, week, timeOfWeek};
}

std::uint8_t GPSMeasDataImplC::GetFlagA() const { return flagA_; }
void GPSMeasDataImplC::SetFlagA(std::uint8_t flag) { flagA_ = flag; }
std::uint32_t GPSMeasDataImplC::GetValueB() const { return valueB_; }
void GPSMeasDataImplC::SetValueB(std::uint32_t value) { valueB_ = value; }
bool GPSMeasDataImplC::IsValueCSet() const { return HasSet(kHasValueC); }
std::uint32_t GPSMeasDataImplC::GetValueC() const { return valueC_; }
void GPSMeasDataImplC::SetValueC(std::uint32_t value) {
  valueC_ = value;
  if (value != 0) {
    Raise(kHasValueC);
  } else {
    Clear(kHasValueC);
  }
}
const char16_t* GPSMeasDataImplC::GetTextA() const { return textA_; }
void GPSMeasDataImplC::SetTextA(const char16_t* text) { SetText(textA_, text); }
bool GPSMeasDataImplC::HasTextA() const { return textA_[0] != 0; }
const char16_t* GPSMeasDataImplC::GetTextB() const { return textB_; }
void GPSMeasDataImplC::SetTextB(const char16_t* text) { SetText(textB_, text); }
bool GPSMeasDataImplC::HasTextB() const { return textB_[0] != 0; }
std::int32_t GPSMeasDataImplC::GetValueD() const { return valueD_; }
void GPSMeasDataImplC::SetValueD(std::int32_t value) { valueD_ = value; }
const char16_t* GPSMeasDataImplC::GetTextC() const { return textC_; }
void GPSMeasDataImplC::SetTextC(const char16_t* text) { SetText(textC_, text); }
bool GPSMeasDataImplC::HasTextC() const { return textC_[0] != 0; }
std::uint8_t GPSMeasDataImplC::GetFlagE() const { return flagE_; }
void GPSMeasDataImplC::SetFlagE(std::uint8_t flag) { flagE_ = flag; }
const char16_t* GPSMeasDataImplC::GetTextD() const { return textD_; }
void GPSMeasDataImplC::SetTextD(const char16_t* text) { SetText(textD_, text); }
bool GPSMeasDataImplC::HasTextD() const { return textD_[0] != 0; }
std::uint8_t GPSMeasDataImplC::GetValueF() const { return valueF_; }
void GPSMeasDataImplC::SetValueF(std::uint8_t value) { valueF_ = value; }
std::int32_t GPSMeasDataImplC::GetValueG() const { return valueG_; }
void GPSMeasDataImplC::SetValueG(std::int32_t value) { valueG_ = value; }
bool GPSMeasDataImplC::HasValueH() const { return HasSet(kHasValueH); }
std::uint16_t GPSMeasDataImplC::GetValueH() const { return valueH_; }
void GPSMeasDataImplC::SetValueH(std::uint16_t value) {
  valueH_ = value;
  Raise(kHasValueH);
}
bool GPSMeasDataImplC::HasValueI() const { return HasSet(kHasValueI); }
std::uint16_t GPSMeasDataImplC::GetValueI() const { return valueI_; }
void GPSMeasDataImplC::SetValueI(std::uint16_t value) {
  valueI_ = value;
  Raise(kHasValueI);
}
bool GPSMeasDataImplC::HasListBlock() const { return HasSet(kHasListBlock); }
const GPSListBlock* GPSMeasDataImplC::GetListBlock() const { return &listBlock_; }
void GPSMeasDataImplC::SetListBlock(const GPSListBlock& list) {
  listBlock_ = list;
  Raise(kHasListBlock);
}

void RecordColumns::Renewal::Renew(GPSMeasDataImplC& measurement) {
  measurement.ResetFields();
  measurement.extraTime_ = {};
  measurement.flagA_ = 0;
  measurement.valueB_ = 0;
  measurement.valueC_ = 0;
  measurement.textA_[0] = 0;
  measurement.textB_[0] = 0;
  measurement.valueD_ = 0;
  measurement.textC_[0] = 0;
  measurement.flagE_ = 0;
  measurement.textD_[0] = 0;
  measurement.valueF_ = 0;
  measurement.valueG_ = 0;
  measurement.valueH_ = 0;
  measurement.valueI_ = 0;
  measurement.listBlock_.head = 0;
  measurement.listBlock_.count = 0;
}

void GPSMeasDataImplC::Reset() {
  RecordColumns::Renewal::Renew(*this);
  std::ranges::fill(textA_, u'\0');
  std::ranges::fill(textB_, u'\0');
  std::ranges::fill(textC_, u'\0');
  std::ranges::fill(textD_, u'\0');
  listBlock_ = {};
}

bool GPSMeasDataImplC::isEqual(const GPSMeasDataImplC& other) const {
  return AreFieldsEqual(other) &&
         API::EqualFields(
             *this, other, &GPSMeasDataImplC::flagA_, &GPSMeasDataImplC::valueB_,
             &GPSMeasDataImplC::valueC_, &GPSMeasDataImplC::textA_, &GPSMeasDataImplC::textB_,
             &GPSMeasDataImplC::valueD_, &GPSMeasDataImplC::textC_, &GPSMeasDataImplC::flagE_,
             &GPSMeasDataImplC::textD_, &GPSMeasDataImplC::valueF_, &GPSMeasDataImplC::valueG_,
             &GPSMeasDataImplC::valueH_, &GPSMeasDataImplC::valueI_, &GPSMeasDataImplC::listBlock_);
}

GPSMeasDataC::GPSMeasDataC() = default;
GPSMeasDataC::GPSMeasDataC(GPSMeasDataImplC* impl) : HandleC(impl) {}
template <std::same_as<ODM::GPSMeasDataC> Compact>
GPSMeasDataC::GPSMeasDataC(Compact* impl) : HandleC(nullptr) {
  SetImpl(impl);
}
template GPSMeasDataC::GPSMeasDataC(ODM::GPSMeasDataC* impl);
GPSMeasDataC::GPSMeasDataC(const GPSMeasDataC& other) = default;
GPSMeasDataC& GPSMeasDataC::operator=(const GPSMeasDataC& other) = default;
GPSMeasDataC::~GPSMeasDataC() = default;

Vorlin::TimeC GPSMeasDataC::GetTimeA() const {
  return Ask(&GPSMeasDataImplC::GetTimeA, Vorlin::TimeC());
}
Vorlin::TimeC GPSMeasDataC::GetTimeB() const {
  return Ask(&GPSMeasDataImplC::GetTimeB, Vorlin::TimeC());
}
bool GPSMeasDataC::IsStatusBit0() const { return Ask(&GPSMeasDataImplC::IsStatusBit0, false); }
bool GPSMeasDataC::IsStatusBit1() const { return Ask(&GPSMeasDataImplC::IsStatusBit1, false); }
bool GPSMeasDataC::IsStatusBit2() const { return Ask(&GPSMeasDataImplC::IsStatusBit2, false); }
bool GPSMeasDataC::IsStatusBit3() const { return Ask(&GPSMeasDataImplC::IsStatusBit3, false); }
bool GPSMeasDataC::IsSystem1Used() const { return Ask(&GPSMeasDataImplC::IsSystem1Used, false); }
bool GPSMeasDataC::IsSystem2Used() const { return Ask(&GPSMeasDataImplC::IsSystem2Used, false); }

bool GPSMeasDataC::GetAntennaHeight(GPSAntHeightC& antennaHeight) const {
  const auto* const impl = GetImpl();
  return impl != nullptr && impl->GetAntennaHeight(antennaHeight);
}

void GPSMeasDataC::SetAntennaHeight(const GPSAntHeightC& antennaHeight) {
  if (auto* const impl = GetImpl()) impl->SetAntennaHeight(antennaHeight);
}

std::uint8_t GPSMeasDataC::GetValueCount() const {
  return Ask(&GPSMeasDataImplC::GetValueCount, 0);
}
std::uint16_t GPSMeasDataC::GetValue(std::uint8_t index) const {
  return Ask(&GPSMeasDataImplC::GetValue, 0, index);
}
void GPSMeasDataC::SetValues(const std::uint16_t* values, std::uint8_t count) {
  Tell(&GPSMeasDataImplC::SetValues, values, count);
}

bool GPSMeasDataC::GetDOPs(GPSDOPsC& dops) const {
  const auto* const impl = GetImpl();
  return impl != nullptr && impl->GetDOPs(dops);
}

bool GPSMeasDataC::GetWord16(std::uint16_t& word) const {
  return Ask(&GPSMeasDataImplC::GetWord16, false, word);
}

bool GPSMeasDataC::GetTotalPair(std::uint8_t& first, std::uint8_t& second) const {
  return Ask(&GPSMeasDataImplC::GetTotalPair, false, first, second);
}
bool GPSMeasDataC::GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const {
  return Ask(&GPSMeasDataImplC::GetSystem1Pair, false, first, second);
}
bool GPSMeasDataC::GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const {
  return Ask(&GPSMeasDataImplC::GetSystem2Pair, false, first, second);
}
bool GPSMeasDataC::GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const {
  return Ask(&GPSMeasDataImplC::GetSystem3Pair, false, first, second);
}
bool GPSMeasDataC::GetVector(double (&vector)[3]) const {
  return Ask(&GPSMeasDataImplC::GetVector, false, vector);
}

std::uint8_t GPSMeasDataC::GetFlagA() const { return Ask(&GPSMeasDataImplC::GetFlagA, 0); }
std::uint32_t GPSMeasDataC::GetValueB() const { return Ask(&GPSMeasDataImplC::GetValueB, 0); }
bool GPSMeasDataC::IsValueCSet() const { return Ask(&GPSMeasDataImplC::IsValueCSet, false); }
std::uint32_t GPSMeasDataC::GetValueC() const { return Ask(&GPSMeasDataImplC::GetValueC, 0); }
std::uint8_t GPSMeasDataC::GetFlagE() const { return Ask(&GPSMeasDataImplC::GetFlagE, 0); }

bool GPSMeasDataC::IsEqual(const GPSMeasDataC& other) const { return AreBothEqual(other); }

}  // namespace SDI

namespace ODM {

GPSMeasDataC::GPSMeasDataC() = default;
GPSMeasDataC::GPSMeasDataC(API::BaseC* owner) : GPSMeasFieldsC(owner) {}
GPSMeasDataC::GPSMeasDataC(const GPSMeasDataC& other) = default;
GPSMeasDataC& GPSMeasDataC::operator=(const GPSMeasDataC& other) = default;
GPSMeasDataC::~GPSMeasDataC() = default;
API::BaseC* GPSMeasDataC::GetBase() { return ImplC::GetBase(); }

Vorlin::TimeC GPSMeasDataC::GetTimeA() const { return timeA_; }
void GPSMeasDataC::SetTimeA(const Vorlin::TimeC& time) { timeA_ = time; }
Vorlin::TimeC GPSMeasDataC::GetTimeB() const { return timeB_; }
void GPSMeasDataC::SetTimeB(const Vorlin::TimeC& time) { timeB_ = time; }
std::uint16_t GPSMeasDataC::GetSetMask() const { return setMask_; }
std::uint16_t GPSMeasDataC::GetStatusMask() const { return statusMask_; }
bool GPSMeasDataC::IsStatusBit0() const { return HasStatus(kStatusBit0); }
bool GPSMeasDataC::IsStatusBit1() const { return HasStatus(kStatusBit1); }
bool GPSMeasDataC::IsStatusBit2() const { return HasStatus(kStatusBit2); }
bool GPSMeasDataC::IsStatusBit3() const { return HasStatus(kStatusBit3); }
void GPSMeasDataC::SetStatusBit0() { Raise(0, kStatusBit0); }
void GPSMeasDataC::SetStatusBit1() { Raise(0, kStatusBit1); }
void GPSMeasDataC::SetStatusBit2() { Raise(0, kStatusBit2); }
void GPSMeasDataC::SetStatusBit3() { Raise(0, kStatusBit3); }
bool GPSMeasDataC::IsSystem1Used() const { return !HasSet(kHasSystems) || HasStatus(kSystem1); }
bool GPSMeasDataC::IsSystem2Used() const { return HasSystem(kSystem2); }
bool GPSMeasDataC::IsSystem3Used() const { return HasSystem(kSystem3); }
const GPSAntHeightC& GPSMeasDataC::GetAntennaHeight() const { return antennaHeight_; }
GPSAntHeightC& GPSMeasDataC::GetAntennaHeight() { return antennaHeight_; }
bool GPSMeasDataC::GetAntennaHeight(SDI::GPSAntHeightC& antennaHeight) const {
  return CopyAntennaHeight(antennaHeight);
}
void GPSMeasDataC::SetAntennaHeight(const GPSAntHeightC& antennaHeight) {
  antennaHeight_ = antennaHeight;
  Raise(kHasAntennaHeight);
}
void GPSMeasDataC::SetAntennaHeight(const SDI::GPSAntHeightC& antennaHeight) {
  StoreAntennaHeight(antennaHeight);
}
std::uint8_t GPSMeasDataC::GetValueCount() const { return valueCount_; }
std::uint16_t GPSMeasDataC::GetValue(std::uint8_t index) const {
  return index < valueCount_ ? values_[index] : std::uint16_t{0};
}
void GPSMeasDataC::SetValues(const std::uint16_t* values, std::uint8_t count) {
  StoreValues(values, count);
}
const GPSDOPsC& GPSMeasDataC::GetDOPs() const { return dops_; }
GPSDOPsC& GPSMeasDataC::GetDOPs() { return dops_; }
bool GPSMeasDataC::GetDOPs(SDI::GPSDOPsC& dops) const { return CopyDOPs(dops); }
bool GPSMeasDataC::GetHDOP(double& hdop) const {
  return CopyOut(HasSet(kHasDOPs), dops_.GetHDOP(), hdop);
}
bool GPSMeasDataC::GetPDOP(double& pdop) const {
  return CopyOut(HasSet(kHasDOPs), dops_.GetPDOP(), pdop);
}
void GPSMeasDataC::SetDOPs(const GPSDOPsC& dops) {
  dops_ = dops;
  Raise(kHasDOPs);
}
bool GPSMeasDataC::GetWord16(std::uint16_t& word) const {
  return CopyOut(HasSet(kHasWord16), word16_, word);
}
void GPSMeasDataC::SetWord16(std::uint16_t word) {
  word16_ = word;
  Raise(kHasWord16);
}
SDI::GPSCounterPair GPSMeasDataC::GetStoredTotalPair() const { return totalPair_; }
SDI::GPSCounterPair GPSMeasDataC::GetStoredSystem1Pair() const { return system1Pair_; }
SDI::GPSCounterPair GPSMeasDataC::GetStoredSystem2Pair() const { return system2Pair_; }
SDI::GPSCounterPair GPSMeasDataC::GetStoredSystem3Pair() const { return system3Pair_; }
bool GPSMeasDataC::GetTotalPair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(HasSet(kHasTotalPair), totalPair_, first, second);
}
void GPSMeasDataC::SetTotalPair(std::uint8_t first, std::uint8_t second) {
  totalPair_ = {first, second};
  Raise(kHasTotalPair);
}
bool GPSMeasDataC::GetSystem1Pair(std::uint8_t& first, std::uint8_t& second) const {
  if (!HasSet(kHasSystems)) return GetTotalPair(first, second);
  return CopyOut(HasStatus(kSystem1), system1Pair_, first, second);
}
void GPSMeasDataC::SetSystem1Pair(std::uint8_t first, std::uint8_t second) {
  system1Pair_ = {first, second};
  Raise(kHasSystems, kSystem1);
}
bool GPSMeasDataC::GetSystem2Pair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(IsSystem2Used(), system2Pair_, first, second);
}
void GPSMeasDataC::SetSystem2Pair(std::uint8_t first, std::uint8_t second) {
  StoreLaterSystem(system2Pair_, kSystem2, {first, second});
}
bool GPSMeasDataC::GetSystem3Pair(std::uint8_t& first, std::uint8_t& second) const {
  return CopyOut(IsSystem3Used(), system3Pair_, first, second);
}
void GPSMeasDataC::SetSystem3Pair(std::uint8_t first, std::uint8_t second) {
  StoreLaterSystem(system3Pair_, kSystem3, {first, second});
}
bool GPSMeasDataC::GetVector(double (&vector)[3]) const { return CopyVector(vector); }
void GPSMeasDataC::SetVector(const double (&vector)[3]) {
  std::copy_n(vector, vector_.size(), vector_.begin());
  Raise(kHasVector);
}

bool GPSMeasDataC::isEqual(const GPSMeasDataC& other) const { return AreFieldsEqual(other); }

}  // namespace ODM

template SDI::GPSMeasDataImplC* API::CastFromAny(API::ImplObjectC*);
