#include <command_line/text.h>
#include <output/gps_time.h>
#include <platform/format.h>
#include <record/show_writer.h>

namespace Tool {
namespace {

constexpr std::size_t kKeyWidth = 22;

std::string Seconds(std::int32_t milliseconds) {
  return fmt::format("{:.3f} s of the week", milliseconds / 1000.0);
}

}  // namespace

void ShowWriterC::Line(std::string_view key, std::string_view value) {
  Append(out_, "{:{}}{:<{}}{}\n", "", 2 * depth_, key, kKeyWidth - 2 * depth_, value);
}

void ShowWriterC::Begin(std::string_view key, bool isPresent) {
  isPresent_ = isPresent;
  if (isPresent) {
    Append(out_, "{:{}}{}\n", "", 2 * depth_, key);
  } else {
    Line(key, "-");
  }
  ++depth_;
}

void ShowWriterC::End() {
  --depth_;
  isPresent_ = true;
}

std::string ShowWriterC::Told(std::u16string_view text) {
  return fmt::format("\"{}\"", ToVisible(text));
}

std::string ShowWriterC::Told(HexBytes value) {
  return value.bytes.empty() ? "-" : SpacedHex(value.bytes);
}

std::string ShowWriterC::Told(TimeOfWeek value) { return Seconds(value.milliseconds); }

std::string ShowWriterC::Told(Mask value) { return fmt::format("{:#06x}", value.bits); }

std::string ShowWriterC::Told(Tenths value) {
  return value.value == SDI::DOP_NOT_AVAILABLE ? "not available"
                                               : fmt::format("{:.1f}", value.value / 10.0);
}

std::string ShowWriterC::Told(Dilution value) {
  return value.value < 0 ? "not available" : fmt::format("{:.2f}", value.value);
}

std::string ShowWriterC::Told(Metres value) { return fmt::format("{:.4f} m", value.value); }

std::string ShowWriterC::Told(const Vorlin::TimeC& time) {
  return fmt::format("{} GPS time (week {}, {})", GpsDateTime(GpsMilliseconds(time)), time.week,
                     Seconds(time.timeOfWeek));
}

std::string ShowWriterC::Told(const Pair& pair) {
  return fmt::format("{} in view, {} used", pair[0], pair[1]);
}

std::string ShowWriterC::Told(std::span<const std::uint16_t> values) {
  return values.empty() ? "-" : Joined(values, " ");
}

}  // namespace Tool
