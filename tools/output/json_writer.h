#ifndef SURVEYDATA_TOOLS_OUTPUT_JSON_WRITER_H_
#define SURVEYDATA_TOOLS_OUTPUT_JSON_WRITER_H_

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <surveydata/platform/vorlin_time.h>

#include <output/field_types.h>

namespace Tool {

/// Appends one JSON object without white space to a buffer that its owner reuses. Texts may have
/// any 16-bit units; lone surrogates become escapes. Real numbers have as many digits as are needed
/// to read them back exactly; NaN and infinities, which JSON lacks, are null.
class JsonWriterC {
 public:
  /// Begins the object.
  explicit JsonWriterC(fmt::memory_buffer& out) : out_(out) { Open('{'); }

  /// Ends the object and the line.
  void EndLine() { Raw("}\n"); }

  /// A member that is an object; null, without its members, if it is not present.
  void Begin(std::string_view key, bool isPresent = true) {
    Key(key);
    isSkipping_ = !isPresent;
    if (isPresent) {
      Open('{');
    } else {
      Raw("null");
    }
  }
  void End() {
    if (!isSkipping_) Close('}');
    isSkipping_ = false;
  }

  template <class Value>
  void Field(std::string_view key, const Value& value, bool /*isSet*/ = true) {
    if (isSkipping_) return;
    Key(key);
    Write(value);
  }

  /// A text whose key may be any UTF-8.
  void NamedField(std::string_view key, std::string_view utf8) {
    Comma();
    Write(key);
    out_.push_back(':');
    Write(utf8);
  }

  /// A member that is an array of objects: `BeginArray`, for each element `BeginElement` and
  /// `End`, then `EndArray`.
  void BeginArray(std::string_view key) {
    Key(key);
    Open('[');
  }
  void BeginElement() {
    Comma();
    Open('{');
  }
  void EndArray() { Close(']'); }

 private:
  void Raw(std::string_view text) { out_.append(text.data(), text.data() + text.size()); }
  void Open(char bracket) {
    out_.push_back(bracket);
    isFirst_ = true;
  }
  void Close(char bracket) {
    out_.push_back(bracket);
    isFirst_ = false;
  }
  void Comma() {
    if (!isFirst_) out_.push_back(',');
    isFirst_ = false;
  }
  void Key(std::string_view key) {
    Comma();
    out_.push_back('"');
    Raw(key);
    Raw("\":");
  }

  void Write(bool value) { Raw(value ? "true" : "false"); }
  template <std::integral Number>
  void Write(Number value) {
    const fmt::format_int digits(value);
    Raw({digits.data(), digits.size()});
  }
  void Write(double value);
  void Write(std::u16string_view text);
  void Write(std::string_view utf8);  // well-formed
  void Write(HexBytes value);
  void Write(TimeOfWeek value) { Write(value.milliseconds); }
  void Write(Mask value) { Write(value.bits); }
  void Write(Tenths value) { Write(value.value); }
  void Write(Dilution value) { Write(value.value); }
  void Write(Metres value) { Write(value.value); }
  void Write(const Vorlin::TimeC& time) {
    Write(std::array<std::int64_t, 2>{time.week, time.timeOfWeek});
  }
  template <class Value, std::size_t N>
  void Write(const std::array<Value, N>& values) {
    WriteAll(values);
  }
  void Write(std::span<const std::uint16_t> values) { WriteAll(values); }
  void Write(const std::vector<std::size_t>& values) { WriteAll(values); }
  template <class Value>
  void Write(const std::optional<Value>& value) {
    if (value.has_value()) {
      Write(*value);
    } else {
      Raw("null");
    }
  }
  template <class Range>
  void WriteAll(const Range& values) {
    Open('[');
    for (const auto& value : values) {
      Comma();
      Write(value);
    }
    Close(']');
  }

  fmt::memory_buffer& out_;
  bool isFirst_ = true;
  bool isSkipping_ = false;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_OUTPUT_JSON_WRITER_H_
