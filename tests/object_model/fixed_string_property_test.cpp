#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <surveydata/object_model/fixed_string.h>

#include "tests/object_model/fixed_string_model.h"

// Compares random texts with the model; failing cases are shrunk.

namespace {

// Bytes that begin, continue and break sequences, each kind equally often.
std::string AnyBytes() {
  const auto kinds = rc::gen::oneOf(rc::gen::inRange(0x00, 0x80), rc::gen::inRange(0x80, 0xC0),
                                    rc::gen::inRange(0xC0, 0xE0), rc::gen::inRange(0xE0, 0xF0),
                                    rc::gen::inRange(0xF0, 0x100));
  const std::vector<int> bytes = *rc::gen::container<std::vector<int>>(kinds);
  std::string text;
  for (const int byte : bytes) text += static_cast<char>(byte);
  return text;
}

// Units of one, two and three bytes of UTF-8, and zeros.
std::u16string AnyUnits() {
  const auto kinds = rc::gen::oneOf(rc::gen::inRange(0x00, 0x80), rc::gen::inRange(0x80, 0x800),
                                    rc::gen::inRange(0x800, 0x10000));
  const std::vector<int> units = *rc::gen::container<std::vector<int>>(kinds);
  std::u16string text;
  for (const int unit : units) text += static_cast<char16_t>(unit);
  return text;
}

RC_GTEST_PROP(FixedStringProperty, FromUtf8DecodesAnyBytesLikeTheModel, ()) {
  const std::string bytes = AnyBytes();
  const auto limit = *rc::gen::inRange<std::size_t>(0, bytes.size() + 1);
  const Model::Decoded expected = Model::FromUtf8(bytes.c_str(), limit, 24);
  API::FixedStringC<24> text;
  std::size_t length = limit;
  RC_ASSERT(text.FromUtf8(bytes.c_str(), &length) == expected.result);
  RC_ASSERT(length == expected.consumed);
  RC_ASSERT(Model::Units(text) == std::u16string(expected.units, expected.length));
}

RC_GTEST_PROP(FixedStringProperty, ToUtf8FillsAnySpaceLikeTheModel, ()) {
  const std::u16string units = AnyUnits();
  const auto text = Model::Text<60>(units);
  const auto space = *rc::gen::inRange<std::size_t>(0, 3 * 60 + 2);
  const Model::Encoded expected = Model::ToUtf8(Model::Units(text), space);
  std::string written(space, '?');
  RC_ASSERT(text.ToUtf8(written.data(), space) == static_cast<int>(expected.needed));
  RC_ASSERT(written.starts_with(expected.written));
  RC_ASSERT(std::all_of(written.begin() + static_cast<std::ptrdiff_t>(expected.written.size()),
                        written.end(), [](char c) { return c == '?'; }));
}

RC_GTEST_PROP(FixedStringProperty, ATextWithoutZerosComesBackFromUtf8, ()) {
  std::u16string units = AnyUnits();
  std::erase(units, u'\0');
  const auto text = Model::Text<255>(units);
  char utf8[3 * 255 + 1];
  text.ToUtf8(utf8, sizeof(utf8));
  API::FixedStringC<255> back;
  RC_ASSERT(back.FromUtf8(utf8, nullptr) == 0);
  RC_ASSERT(back == text);
}

}  // namespace
