#ifndef SURVEYDATA_TESTS_GNSS_STORED_FIELDS_H_
#define SURVEYDATA_TESTS_GNSS_STORED_FIELDS_H_

#include <array>
#include <bit>
#include <cstdint>
#include <ostream>
#include <string>

#include <surveydata/gnss/gps_meas_data.h>

/// \file
/// Everything that a measurement stores, present or not, as plain values.

namespace TestSupport {

// An explicit instantiation may name private members. It gives access to values whose presence bit
// is clear, which no getter returns.
template <class Tag, auto Member>
struct Opener {
  friend constexpr auto Opened(Tag) { return Member; }
};
#define SURVEYDATA_TEST_OPEN(Tag, member) \
  struct Tag {                            \
    friend constexpr auto Opened(Tag);    \
  };                                      \
  template struct Opener<Tag, &SDI::GPSMeasDataImplC::member>
SURVEYDATA_TEST_OPEN(OpenExtraTime, extraTime_);
SURVEYDATA_TEST_OPEN(OpenValues, values_);
SURVEYDATA_TEST_OPEN(OpenWord16, word16_);
SURVEYDATA_TEST_OPEN(OpenTotalPair, totalPair_);
SURVEYDATA_TEST_OPEN(OpenSystem1Pair, system1Pair_);
SURVEYDATA_TEST_OPEN(OpenSystem2Pair, system2Pair_);
SURVEYDATA_TEST_OPEN(OpenSystem3Pair, system3Pair_);
SURVEYDATA_TEST_OPEN(OpenVector, vector_);
#undef SURVEYDATA_TEST_OPEN

struct StoredFields {
  Vorlin::TimeC timeA;
  Vorlin::TimeC timeB;
  unsigned extraTimeCount = 0;
  std::uint32_t extraWeek = 0;
  std::int32_t extraTimeOfWeek = 0;
  unsigned setMask = 0;
  unsigned statusMask = 0;
  std::uint32_t height = 0;  // floating-point numbers as their bits
  bool isVertical = true;
  std::uint32_t horizontalOffset = 0;
  unsigned valueCount = 0;
  std::array<std::uint16_t, 2> values = {};
  std::array<std::uint16_t, 3> dops = {0xFFFF, 0xFFFF, 0xFFFF};
  unsigned word16 = 0;
  SDI::GPSCounterPair totalPair;
  SDI::GPSCounterPair system1Pair;
  SDI::GPSCounterPair system2Pair;
  SDI::GPSCounterPair system3Pair;
  std::array<std::uint64_t, 3> vector = {};
  unsigned flagA = 0;
  std::uint32_t valueB = 0;
  std::uint32_t valueC = 0;
  std::u16string textA;
  std::u16string textB;
  std::int32_t valueD = 0;
  std::u16string textC;
  unsigned flagE = 0;
  std::u16string textD;
  unsigned valueF = 0;
  std::int32_t valueG = 0;
  unsigned valueH = 0;
  unsigned valueI = 0;
  unsigned listHead = 0;
  unsigned listCount = 0;
  std::array<std::uint16_t, 31> listEntries = {};

  bool operator==(const StoredFields&) const = default;
};

inline StoredFields StoredIn(const SDI::GPSMeasDataImplC& m) {
  StoredFields s;
  s.timeA = m.GetTimeA();
  s.timeB = m.GetTimeB();
  const auto& extraTime = m.*Opened(OpenExtraTime());
  s.extraTimeCount = extraTime.count;
  s.extraWeek = extraTime.week;
  s.extraTimeOfWeek = extraTime.timeOfWeek;
  s.setMask = m.GetSetMask();
  s.statusMask = m.GetStatusMask();
  float height = 0.0F;
  m.GetAntennaHeight().GetHeight(height, s.isVertical);
  s.height = std::bit_cast<std::uint32_t>(height);
  s.horizontalOffset = std::bit_cast<std::uint32_t>(m.GetAntennaHeight().GetHorizontalOffset());
  s.valueCount = m.GetValueCount();
  s.values = m.*Opened(OpenValues());
  s.dops = {m.GetDOPs().GetHDOPTenths(), m.GetDOPs().GetVDOPTenths(), m.GetDOPs().GetTDOPTenths()};
  s.word16 = m.*Opened(OpenWord16());
  s.totalPair = m.*Opened(OpenTotalPair());
  s.system1Pair = m.*Opened(OpenSystem1Pair());
  s.system2Pair = m.*Opened(OpenSystem2Pair());
  s.system3Pair = m.*Opened(OpenSystem3Pair());
  const auto& vector = m.*Opened(OpenVector());
  for (std::size_t i = 0; i < 3; ++i) s.vector[i] = std::bit_cast<std::uint64_t>(vector[i]);
  s.flagA = m.GetFlagA();
  s.valueB = m.GetValueB();
  s.valueC = m.GetValueC();
  s.textA = m.GetTextA();
  s.textB = m.GetTextB();
  s.valueD = m.GetValueD();
  s.textC = m.GetTextC();
  s.flagE = m.GetFlagE();
  s.textD = m.GetTextD();
  s.valueF = m.GetValueF();
  s.valueG = m.GetValueG();
  s.valueH = m.GetValueH();
  s.valueI = m.GetValueI();
  s.listHead = m.GetListBlock()->head;
  s.listCount = m.GetListBlock()->count;
  s.listEntries = std::to_array(m.GetListBlock()->entries);
  return s;
}

inline void PrintTo(const StoredFields& s, std::ostream* out) {
  const auto text = [&](const char* name, const std::u16string& units) {
    *out << "\n  " << name << " " << units.size() << " units";
    for (const unsigned unit : units) *out << ' ' << unit;
  };
  const auto pair = [&](const char* name, SDI::GPSCounterPair p) {
    *out << "\n  " << name << ' ' << +p.first << ' ' << +p.second;
  };
  *out << "\n  timeA " << s.timeA.week << ' ' << s.timeA.timeOfWeek << "\n  timeB " << s.timeB.week
       << ' ' << s.timeB.timeOfWeek << "\n  extraTime " << s.extraTimeCount << ' ' << s.extraWeek
       << ' ' << s.extraTimeOfWeek << std::hex << "\n  setMask " << s.setMask << "\n  statusMask "
       << s.statusMask << "\n  antennaHeight " << s.height << ' ' << s.isVertical << ' '
       << s.horizontalOffset << std::dec << "\n  values " << s.valueCount << ' ' << s.values[0]
       << ' ' << s.values[1] << "\n  dops " << s.dops[0] << ' ' << s.dops[1] << ' ' << s.dops[2]
       << "\n  word16 " << s.word16;
  pair("totalPair", s.totalPair);
  pair("system1Pair", s.system1Pair);
  pair("system2Pair", s.system2Pair);
  pair("system3Pair", s.system3Pair);
  *out << "\n  vector " << std::hex << s.vector[0] << ' ' << s.vector[1] << ' ' << s.vector[2]
       << std::dec << "\n  flagA " << s.flagA << " valueB " << s.valueB << " valueC " << s.valueC
       << " valueD " << s.valueD << " flagE " << s.flagE << " valueF " << s.valueF << " valueG "
       << s.valueG << " valueH " << s.valueH << " valueI " << s.valueI;
  text("textA", s.textA);
  text("textB", s.textB);
  text("textC", s.textC);
  text("textD", s.textD);
  *out << "\n  list " << s.listHead << ' ' << s.listCount << ':';
  for (const auto entry : s.listEntries) *out << ' ' << entry;
  *out << '\n';
}

/// A measurement in which every field differs from its default.
inline SDI::GPSMeasDataImplC FilledMeasurement() {
  SDI::GPSMeasDataImplC m;
  m.SetTimeA({1111, 222222});
  m.SetTimeB({3333, -444444});
  m.SetExtraTime(555, 666666);
  m.SetStatusBit2();
  m.SetAntennaHeight(SDI::GPSAntHeightImplC(1.75F, false, 0.25F));
  const std::uint16_t values[] = {0x1234, 0x5678};
  m.SetValues(values, 2);
  m.SetDOPs(SDI::GPSDOPsImplC(11, 22, 33));
  m.SetWord16(0xABCD);
  m.SetTotalPair(61, 62);
  m.SetSystem1Pair(63, 64);
  m.SetSystem2Pair(65, 66);
  m.SetSystem3Pair(67, 68);
  m.SetVector({1.5, -2.5, 3.5});
  m.SetFlagA(1);
  m.SetValueB(0x0102'0304);
  m.SetValueC(0x0506'0708);
  m.SetTextA(u"text A, old");
  m.SetTextB(u"text B, old");
  m.SetValueD(-1234567);
  m.SetTextC(u"text C, old");
  m.SetFlagE(1);
  m.SetTextD(u"text D, old");
  m.SetValueF(77);
  m.SetValueG(-7654321);
  m.SetValueH(888);
  m.SetValueI(999);
  SDI::GPSListBlock list{.head = 4321, .count = 31, .entries = {}};
  for (unsigned i = 0; i < 31; ++i) list.entries[i] = static_cast<std::uint16_t>(1000 + i);
  m.SetListBlock(list);
  return m;
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_GNSS_STORED_FIELDS_H_
