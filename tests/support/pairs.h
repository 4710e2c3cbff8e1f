#ifndef SURVEYDATA_TESTS_SUPPORT_PAIRS_H_
#define SURVEYDATA_TESTS_SUPPORT_PAIRS_H_

#include <cstdint>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <surveydata/surveydata.h>

#include "tests/support/pair_list.h"
#include "tests/support/record_fields.h"

/// \file
/// For tests of rules that hold for every pair: the pairs as type lists, and functions that mark
/// their data.

namespace Pairs {

using AllPairs = AllPairList::As<testing::Types>;
using UnreadPairs = UnreadPairList::As<testing::Types>;

/// Whether points can be set: not for a dome.
template <class Impl>
inline constexpr bool kHasData = !std::is_base_of_v<SDI::ScanDomeAreaImplC, Impl>;

/// The field that marks a record; listing all fields would be slow.
template <class Impl>
const Records::Field<Impl>& LastField() {
  static const Records::Field<Impl> field = Records::FieldsOf<Impl>().back();
  return field;
}

/// Sets the data, if any, to a value other than the default.
template <class Impl>
void Mark(Impl& impl) {
  if constexpr (requires { impl.SetHz(7.0); }) {
    impl.SetHz(7.0);
  } else if constexpr (std::is_base_of_v<SDI::ScanImplC, Impl>) {
    impl.SetText1(u"marked");
  } else if constexpr (std::is_base_of_v<SDI::ScanAreaImplC, Impl>) {
    impl.AddPoint(SDI::ScanDefPointC(1.0, 1.0, 1.0));
  } else if constexpr (requires { impl.SetWord16(std::uint16_t{7}); }) {
    impl.SetWord16(7);
  } else if constexpr (requires { impl.GetHDOPTenths(); }) {
    impl = Impl(7, 8, 9);
  } else if constexpr (requires { impl.SetHorizontalOffset(7.0F); }) {
    impl.SetHorizontalOffset(7.0F);
  } else {
    LastField<Impl>().Fill(impl, 17);
  }
}

template <class Impl>
std::string Shown(const Impl& impl) {
  if constexpr (requires { impl.GetHz(); }) {
    return std::to_string(impl.GetHz());
  } else if constexpr (std::is_base_of_v<SDI::ScanImplC, Impl>) {
    return Records::Show(std::u16string(impl.GetText1()));
  } else if constexpr (std::is_base_of_v<SDI::ScanAreaImplC, Impl>) {
    return std::to_string(impl.GetPointCount());
  } else if constexpr (requires(std::uint16_t & word) { impl.GetWord16(word); }) {
    std::uint16_t word = 0;
    return impl.GetWord16(word) ? std::to_string(word) : "none";
  } else if constexpr (requires { impl.GetHDOPTenths(); }) {
    return std::to_string(impl.GetHDOPTenths());
  } else if constexpr (requires { impl.GetHorizontalOffset(); }) {
    return std::to_string(impl.GetHorizontalOffset());
  } else {
    return LastField<Impl>().Show(impl);
  }
}

/// Whether the data is as set by `Mark`.
template <class Impl>
bool IsMarked(const Impl& impl) {
  Impl marked;
  Mark(marked);
  EXPECT_EQ(Shown(marked) != Shown(Impl()), kHasData<Impl>);
  return Shown(impl) == Shown(marked);
}

}  // namespace Pairs

#endif  // SURVEYDATA_TESTS_SUPPORT_PAIRS_H_
