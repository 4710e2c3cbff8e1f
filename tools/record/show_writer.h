#ifndef SURVEYDATA_TOOLS_RECORD_SHOW_WRITER_H_
#define SURVEYDATA_TOOLS_RECORD_SHOW_WRITER_H_

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include <record/describe_record.h>

namespace Tool {

/// Writes a record as text: one aligned line per field, with units, and "-" if a field is not set.
class ShowWriterC {
 public:
  explicit ShowWriterC(fmt::memory_buffer& out) : out_(out) {}

  void Begin(std::string_view key, bool isPresent = true);
  void End();

  template <class Value>
  void Field(std::string_view key, const Value& value, bool isSet = true) {
    if (isPresent_) Line(key, isSet ? Told(value) : "-");
  }

 private:
  static std::string Told(bool value) { return value ? "yes" : "no"; }
  template <std::integral Number>
  static std::string Told(Number value) {
    return fmt::format("{}", value);
  }
  static std::string Told(double value) { return fmt::format("{}", value); }
  static std::string Told(std::u16string_view text);
  static std::string Told(HexBytes value);
  static std::string Told(TimeOfWeek value);
  static std::string Told(Mask value);
  static std::string Told(Tenths value);
  static std::string Told(Dilution value);
  static std::string Told(Metres value);
  static std::string Told(const Vorlin::TimeC& time);
  static std::string Told(const Pair& pair);
  template <class Value, std::size_t N>
  static std::string Told(const std::array<Value, N>& values) {
    std::string text;
    for (const Value& value : values) text += (text.empty() ? "" : ", ") + Told(value);
    return text;
  }
  static std::string Told(std::span<const std::uint16_t> values);
  template <class Value>
  static std::string Told(const std::optional<Value>& value) {
    return value.has_value() ? Told(*value) : "-";
  }

  void Line(std::string_view key, std::string_view value);

  fmt::memory_buffer& out_;
  std::size_t depth_ = 0;
  bool isPresent_ = true;
};

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_SHOW_WRITER_H_
