#include <algorithm>
#include <bit>
#include <cmath>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include <command_line/text.h>
#include <platform/format.h>
#include <record/changed_fields.h>
#include <record/record_columns.h>

namespace Tool {
namespace {

using Value = SDI::GPSColumnValueC::Variant;

// The distance of two numbers in units in the last place: their bits, mapped to integers in the
// order of the numbers, are subtracted.
template <class Bits, class Number>
Bits Distance(Number a, Number b) {
  constexpr Bits kSign = Bits{1} << (8 * sizeof(Bits) - 1);
  const auto place = [](Number number) {
    const auto bits = std::bit_cast<Bits>(number);
    return (bits & kSign) != 0 ? static_cast<Bits>(0 - bits) : static_cast<Bits>(bits + kSign);
  };
  const Bits placeA = place(a);
  const Bits placeB = place(b);
  return placeA > placeB ? placeA - placeB : placeB - placeA;
}

template <class Held>
bool IsSame(const Held& a, const Held& b) {
  if constexpr (std::is_same_v<Held, float>) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
  } else if constexpr (std::is_same_v<Held, double>) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
  } else if constexpr (std::is_same_v<Held, std::span<const std::uint16_t>>) {
    return std::ranges::equal(a, b);
  } else {
    return a == b;
  }
}

bool AreSame(const Value& a, const Value& b) {
  if (a.index() != b.index()) return false;
  return std::visit(
      [&b](const auto& held) { return IsSame(held, std::get<std::decay_t<decltype(held)>>(b)); },
      a);
}

std::optional<std::uint64_t> UlpsBetween(const Value& a, const Value& b) {
  if (a.index() != b.index()) return {};
  if (const auto* const held = std::get_if<float>(&a)) {
    return UlpDistance(*held, std::get<float>(b));
  }
  if (const auto* const held = std::get_if<double>(&a)) {
    return UlpDistance(*held, std::get<double>(b));
  }
  return {};
}

bool IsFloating(const Value& value) {
  return std::holds_alternative<float>(value) || std::holds_alternative<double>(value);
}

std::string ToText(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          return "-";
        } else if constexpr (std::is_same_v<Held, std::string_view>) {
          return fmt::format("\"{}\"", ToVisible(held));
        } else if constexpr (std::is_same_v<Held, std::span<const std::uint16_t>>) {
          return Joined(held, " ");
        } else {
          return fmt::format("{}", held);
        }
      },
      value);
}

void WriteValue(JsonWriterC& out, std::string_view key, const Value& value) {
  std::visit(
      [&](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          out.Field(key, std::optional<double>());
        } else if constexpr (std::is_same_v<Held, float>) {
          // With the digits that a float needs.
          out.Field(key, ToNumber<double>(fmt::format("{}", held)));
        } else {
          out.Field(key, held);
        }
      },
      value);
}

// Calls `visit(column, a, b)` for each column that differs.
template <class Visit>
bool ForEachChange(const DecodedRecord& a, const DecodedRecord& b, const Visit& visit) {
  constexpr std::string_view kLeftOut[] = {"offset", "time_utc", "extra_time_utc"};
  bool isAny = false;
  SDI::GPSColumnValueC valueA;
  SDI::GPSColumnValueC valueB;
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) {
    if (std::ranges::find(kLeftOut, std::string_view(column.name)) != std::end(kLeftOut)) continue;
    AskRecordColumn(column, a, valueA);
    AskRecordColumn(column, b, valueB);
    if (AreSame(valueA.Get(), valueB.Get())) continue;
    visit(column, valueA.Get(), valueB.Get());
    isAny = true;
  }
  return isAny;
}

}  // namespace

std::optional<std::uint64_t> UlpDistance(float a, float b) {
  if (std::isnan(a) || std::isnan(b)) return {};
  return Distance<std::uint32_t>(a, b);
}

std::optional<std::uint64_t> UlpDistance(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return {};
  return Distance<std::uint64_t>(a, b);
}

void WriteChangedFields(JsonWriterC& out, const DecodedRecord& a, const DecodedRecord& b) {
  out.BeginArray("fields");
  ForEachChange(a, b, [&](const SDI::GPSColumn& column, const Value& valueA, const Value& valueB) {
    out.BeginElement();
    out.NamedField("name", column.name);
    WriteValue(out, "a", valueA);
    WriteValue(out, "b", valueB);
    if (IsFloating(valueA) || IsFloating(valueB)) out.Field("ulps", UlpsBetween(valueA, valueB));
    out.End();
  });
  out.EndArray();
}

void PrintChangedFields(fmt::memory_buffer& out, const DecodedRecord& a, const DecodedRecord& b) {
  const bool isAny = ForEachChange(
      a, b, [&](const SDI::GPSColumn& column, const Value& valueA, const Value& valueB) {
        Append(out, "    {}: {} -> {}", column.name, ToText(valueA), ToText(valueB));
        if (const auto ulps = UlpsBetween(valueA, valueB)) Append(out, " ({} ULP)", *ulps);
        out.push_back('\n');
      });
  if (!isAny) Append(out, "    bytes that no column shows\n");
}

}  // namespace Tool
