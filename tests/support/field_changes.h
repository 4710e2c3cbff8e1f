#ifndef SURVEYDATA_TESTS_SUPPORT_FIELD_CHANGES_H_
#define SURVEYDATA_TESTS_SUPPORT_FIELD_CHANGES_H_

#include <concepts>
#include <cstdint>
#include <functional>
#include <vector>

#include <surveydata/surveydata.h>

#include "tests/support/record_fields.h"

/// \file
/// For each implementation, a change of each field, in the order of the layout.

namespace Layouts {

/// A list of functions, each of which changes one field.
template <class Impl>
using Changes = std::vector<std::function<void(Impl&)>>;

template <class Impl>
Changes<Impl> ChangesOf() {
  Changes<Impl> changes;
  for (const auto& field : Records::FieldsOf<Impl>()) {
    changes.push_back([field](Impl& impl) { field.Fill(impl, 17); });
  }
  return changes;
}

template <std::same_as<SDI::GPSDOPsImplC> Impl>
Changes<Impl> ChangesOf() {
  return {[](Impl& impl) { impl = Impl(1, impl.GetVDOPTenths(), impl.GetTDOPTenths()); },
          [](Impl& impl) { impl = Impl(impl.GetHDOPTenths(), 2, impl.GetTDOPTenths()); },
          [](Impl& impl) { impl = Impl(impl.GetHDOPTenths(), impl.GetVDOPTenths(), 3); }};
}

template <std::same_as<SDI::ScanDefPointImplC> Impl>
Changes<Impl> ChangesOf() {
  return {[](Impl& p) { p.SetHz(1.5); }, [](Impl& p) { p.SetV(1.5); },
          [](Impl& p) { p.SetDistance(1.5); }};
}

// The first fields of both implementations of a measurement, after the times.
template <class Impl>
Changes<Impl> SharedChanges() {
  return {
      [](Impl& m) { m.GetAntennaHeight().SetHeight(1.5F, true); },
      [](Impl& m) { m.GetAntennaHeight().SetHeight(0.0F, false); },
      [](Impl& m) { m.GetAntennaHeight().SetHorizontalOffset(1.5F); },
      [](Impl& m) { m.SetValues(nullptr, 0); },
      [](Impl& m) {
        const std::uint16_t values[2] = {0x101, 0x202};
        m.SetValues(values, 2);
      },
      [](Impl& m) {
        m.GetDOPs() = {1, 0xFFFF, 0xFFFF};
      },
      [](Impl& m) {
        m.GetDOPs() = {0xFFFF, 1, 0xFFFF};
      },
      [](Impl& m) {
        m.GetDOPs() = {0xFFFF, 0xFFFF, 1};
      },
      [](Impl& m) { m.SetWord16(0x101); },
      [](Impl& m) { m.SetTotalPair(1, 2); },
      [](Impl& m) { m.SetSystem1Pair(1, 2); },
      [](Impl& m) { m.SetSystem2Pair(1, 2); },
      [](Impl& m) { m.SetSystem3Pair(1, 2); },
      [](Impl& m) {
        m.SetVector({1.5, 2.5, 3.5});
      },
  };
}

/// Makes the optional fields present, so that their setters do not change the mask. Omits the DOPs:
/// setting them to their current values changes only the mask.
template <class Impl>
void Prepare(Impl& /*impl*/) {}

template <class Impl>
void PrepareShared(Impl& m) {
  m.SetAntennaHeight(m.GetAntennaHeight());
  const std::uint16_t zeros[2] = {};
  m.SetValues(zeros, 2);
  m.SetWord16(0);
  m.SetTotalPair(0, 0);
  m.SetSystem1Pair(0, 0);
  m.SetSystem2Pair(0, 1);
  m.SetSystem3Pair(0, 1);
  m.SetVector({0.0, 0.0, 0.0});
}

template <class Impl>
Changes<Impl> TimeChanges() {
  return {[](Impl& m) {
            m.SetTimeA({0x101, 0x1010101});
          },
          [](Impl& m) {
            m.SetTimeB({0x101, 0x1010101});
          }};
}

template <class Impl>
Changes<Impl> Joined(Changes<Impl> changes, const Changes<Impl>& more) {
  changes.insert(changes.end(), more.begin(), more.end());
  return changes;
}

template <std::same_as<ODM::GPSMeasDataC> Impl>
Changes<Impl> ChangesOf() {
  return Joined(Joined(TimeChanges<Impl>(), {[](Impl& m) { m.SetDOPs(m.GetDOPs()); },
                                             [](Impl& m) { m.SetStatusBit0(); }}),
                SharedChanges<Impl>());
}
inline void Prepare(ODM::GPSMeasDataC& m) { PrepareShared(m); }

template <std::same_as<SDI::GPSMeasDataImplC> Impl>
Changes<Impl> ChangesOf() {
  return Joined(
      Joined(Joined(TimeChanges<Impl>(),
                    {[](Impl& m) { m.SetExtraTime(0x101, 0x1010101); },
                     [](Impl& m) { m.SetDOPs(m.GetDOPs()); }, [](Impl& m) { m.SetStatusBit0(); }}),
             SharedChanges<Impl>()),
      {
          [](Impl& m) { m.SetFlagA(1); },
          [](Impl& m) { m.SetValueB(0x1010101); },
          [](Impl& m) { m.SetValueC(0x1010101); },
          [](Impl& m) { m.SetTextA(u"text"); },
          [](Impl& m) { m.SetTextB(u"text"); },
          [](Impl& m) { m.SetValueD(0x1010101); },
          [](Impl& m) { m.SetTextC(u"text"); },
          [](Impl& m) { m.SetFlagE(1); },
          [](Impl& m) { m.SetTextD(u"text"); },
          [](Impl& m) { m.SetValueF(1); },
          [](Impl& m) { m.SetValueG(0x1010101); },
          [](Impl& m) { m.SetValueH(0x101); },
          [](Impl& m) { m.SetValueI(0x101); },
          [](Impl& m) {
            SDI::GPSListBlock list;
            list.head = 0x101;
            list.count = 31;
            for (auto& entry : list.entries) entry = 0x101;
            m.SetListBlock(list);
          },
      });
}
inline void Prepare(SDI::GPSMeasDataImplC& m) {
  PrepareShared(m);
  m.SetValueC(2);
  m.SetValueH(0);
  m.SetValueI(0);
  m.SetListBlock({});
}

}  // namespace Layouts

#endif  // SURVEYDATA_TESTS_SUPPORT_FIELD_CHANGES_H_
