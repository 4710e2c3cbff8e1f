#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include <area/area_file.h>
#include <command_line/exit_code.h>
#include <command_line/text.h>
#include <platform/input_file.h>
#include <platform/platform.h>

namespace Tool {
namespace {

using nlohmann::json;
using AreaC = SDI::ScanAreaC;

enum class MemberType { kText, kNumber, kWhole, kPoints };

// The members of an area file, in the order in which messages list them.
struct Member {
  std::string_view key;
  MemberType type;
  std::uint64_t most = 0;  // of a whole number
};
constexpr Member kMembers[] = {
    {"kind", MemberType::kText},
    {"unit", MemberType::kText},
    {"name", MemberType::kText},
    {"points", MemberType::kPoints},
    {"hzStep", MemberType::kNumber},
    {"vStep", MemberType::kNumber},
    {"limitLow", MemberType::kNumber},
    {"limitHigh", MemberType::kNumber},
    {"settingA", MemberType::kWhole, std::numeric_limits<std::uint32_t>::max()},
    {"settingB", MemberType::kWhole, std::numeric_limits<std::uint32_t>::max()},
    {"settingC", MemberType::kWhole, std::numeric_limits<std::uint32_t>::max()},
    {"settingD", MemberType::kNumber},
    {"settingE", MemberType::kWhole, std::numeric_limits<std::uint16_t>::max()},
};
constexpr std::string_view kCoordinates[] = {"hz", "v", "distance"};

template <class Range, class Key>
std::string ListOf(const Range& range, const Key& key) {
  std::string list;
  for (const auto& element : range) {
    if (!list.empty()) list += ", ";
    list += key(element);
  }
  return list;
}

// A fault of the file, without the name of the file.
struct FileFault {
  std::string text;
};

[[noreturn]] void Refuse(std::string_view where, std::string_view what) {
  throw FileFault{fmt::format("{} {}", where, what)};
}

std::string Quoted(std::string_view key) { return fmt::format("\"{}\"", key); }

struct PointInUnit {
  double hz = 0;
  double v = 0;
  double distance = -1;
};

// The content of the file, in its own unit.
struct AreaText {
  std::vector<std::pair<std::string_view, std::string>> texts;
  std::vector<std::pair<std::string_view, double>> numbers;
  bool hasPoints = false;
  std::vector<PointInUnit> points;

  template <class Value>
  static const Value* Find(const std::vector<std::pair<std::string_view, Value>>& members,
                           std::string_view key) {
    for (const auto& [name, value] : members) {
      if (name == key) return &value;
    }
    return nullptr;
  }
};

// Handles the file while it is parsed: without a tree of values the time is linear, and a point
// takes 24 bytes. Unknown members are refused, because a misspelt member would otherwise look like
// a missing one.
class AreaHandlerC : public json::json_sax_t {
 public:
  explicit AreaHandlerC(AreaText& text) : text_(text) {}

  bool null() override { return Other(); }
  bool boolean(bool /*value*/) override { return Other(); }
  bool number_integer(std::int64_t value) override {
    return Number(static_cast<double>(value), std::nullopt);
  }
  bool number_unsigned(std::uint64_t value) override {
    return Number(static_cast<double>(value), value);
  }
  bool number_float(double value, const std::string& /*digits*/) override {
    return Number(value, std::nullopt);
  }
  bool string(std::string& value) override {
    if (place_ != Place::kMember || member_->type != MemberType::kText) return Other();
    text_.texts.emplace_back(member_->key, std::move(value));
    return EndMember();
  }
  bool binary(json::binary_t& /*value*/) override { return Other(); }

  bool start_object(std::size_t /*size*/) override {
    if (place_ == Place::kStart) {
      place_ = Place::kRoot;
      return true;
    }
    if (place_ != Place::kPoints) return Other();
    BeginPoint(Place::kPointObject);
    return true;
  }
  bool key(std::string& key) override {
    if (place_ == Place::kRoot) {
      member_ = std::find_if(std::begin(kMembers), std::end(kMembers),
                             [&](const Member& member) { return member.key == key; });
      if (member_ == std::end(kMembers)) {
        RefuseKey("", key, ListOf(kMembers, [](const Member& member) { return member.key; }));
      }
      if (!seen_.insert(member_->key).second) RefuseRepeat("", key);
      place_ = Place::kMember;
      return true;
    }
    const auto found = std::find(std::begin(kCoordinates), std::end(kCoordinates), key);
    if (found == std::end(kCoordinates)) {
      RefuseKey(PointName() + ": ", key,
                ListOf(kCoordinates, [](std::string_view name) { return name; }));
    }
    coordinate_ = static_cast<std::size_t>(found - std::begin(kCoordinates));
    if (isGiven_[coordinate_]) RefuseRepeat(PointName() + ": ", key);
    place_ = Place::kCoordinate;
    return true;
  }
  bool end_object() override {
    if (place_ == Place::kRoot) return true;
    for (std::size_t i = 0; i < 2; ++i) {
      if (!isGiven_[i]) {
        Refuse(PointName() + ": " + Quoted(kCoordinates[i]), "is missing");
      }
    }
    EndPoint();
    return true;
  }

  bool start_array(std::size_t /*size*/) override {
    if (place_ == Place::kMember && member_->type == MemberType::kPoints) {
      text_.hasPoints = true;
      place_ = Place::kPoints;
      return true;
    }
    if (place_ != Place::kPoints) return Other();
    BeginPoint(Place::kPointArray);
    return true;
  }
  bool end_array() override {
    if (place_ == Place::kPoints) return EndMember();
    if (coordinate_ < 2) RefusePoint();
    EndPoint();
    return true;
  }

  bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                   const json::exception& error) override {
    const std::string_view message = error.what();
    const std::size_t kindEnd = message.find("] ");
    Refuse("not JSON:", kindEnd == std::string_view::npos ? message : message.substr(kindEnd + 2));
  }

 private:
  enum class Place { kStart, kRoot, kMember, kPoints, kPointArray, kPointObject, kCoordinate };

  [[noreturn]] static void RefuseKey(const std::string& where, std::string_view key,
                                     const std::string& known) {
    Refuse(where + Quoted(Shortened(key)),
           fmt::format("is not a member of this format ({})", known));
  }
  [[noreturn]] static void RefuseRepeat(const std::string& where, std::string_view key) {
    Refuse(where + Quoted(key), "appears twice in one object");
  }
  [[noreturn]] void RefusePoint() const {
    Refuse(PointName(), "is neither [hz, v], [hz, v, distance] nor an object with these members");
  }
  std::string PointName() const { return fmt::format("point {}", text_.points.size() + 1); }

  // A value that no member of this type may have.
  bool Other() const {
    switch (place_) {
      case Place::kPoints:
        RefusePoint();
      case Place::kPointArray: {
        if (coordinate_ >= std::size(kCoordinates)) RefusePoint();
        constexpr const char* kNames[] = {"the first number, hz,", "the second number, v,",
                                          "the third number, distance,"};
        Refuse(PointName() + ": " + kNames[coordinate_], "is not a number");
      }
      case Place::kCoordinate:
        Refuse(PointName() + ": " + Quoted(kCoordinates[coordinate_]), "is not a number");
      case Place::kMember:
        break;
      default:
        Refuse("the file", "is not a JSON object");
    }
    switch (member_->type) {
      case MemberType::kText:
        Refuse(Quoted(member_->key), "is not a text");
      case MemberType::kNumber:
        Refuse(Quoted(member_->key), "is not a number");
      case MemberType::kPoints:
        Refuse(Quoted(member_->key), "is not an array");
      case MemberType::kWhole:
        break;
    }
    Refuse(Quoted(member_->key), fmt::format("is not a whole number from 0 to {}", member_->most));
  }

  bool Number(double value, std::optional<std::uint64_t> whole) {
    if (place_ == Place::kPointArray || place_ == Place::kCoordinate) {
      if (coordinate_ >= std::size(kCoordinates)) RefusePoint();
      isGiven_[coordinate_] = true;
      (coordinate_ == 0 ? point_.hz : coordinate_ == 1 ? point_.v : point_.distance) = value;
      if (place_ == Place::kPointArray) {
        ++coordinate_;
      } else {
        place_ = Place::kPointObject;
      }
      return true;
    }
    const bool isWanted =
        place_ == Place::kMember &&
        (member_->type == MemberType::kNumber ||
         (member_->type == MemberType::kWhole && whole && *whole <= member_->most));
    if (!isWanted) return Other();
    text_.numbers.emplace_back(member_->key, value);
    return EndMember();
  }

  bool EndMember() {
    place_ = Place::kRoot;
    return true;
  }
  void BeginPoint(Place place) {
    if (text_.points.size() == kMostAreaPoints) {
      Refuse("the file", fmt::format("has more than {} points, the most that an area file may have",
                                     kMostAreaPoints));
    }
    place_ = place;
    point_ = {};
    isGiven_ = {};
    coordinate_ = 0;
  }
  void EndPoint() {
    text_.points.push_back(point_);
    place_ = Place::kPoints;
  }

  AreaText& text_;
  Place place_ = Place::kStart;
  const Member* member_ = nullptr;
  std::set<std::string_view> seen_;
  PointInUnit point_;
  std::array<bool, std::size(kCoordinates)> isGiven_{};
  std::size_t coordinate_ = 0;
};

std::string ReadWhole(InputFileC& input) {
  std::string text;
  std::array<char, 65536> block;
  while (const std::size_t size = input.Read(block)) {
    if (text.size() + size > kMostAreaBytes) {
      Refuse("the file", fmt::format("is larger than {} MiB, the most that an area file may have",
                                     kMostAreaBytes >> 20));
    }
    text.append(block.data(), size);
  }
  return text;
}

const std::string& TextOf(const AreaText& text, std::string_view key) {
  const std::string* const value = AreaText::Find(text.texts, key);
  if (value == nullptr) Refuse(Quoted(key), "is missing");
  return *value;
}

double NumberOf(const AreaText& text, std::string_view key) {
  const double* const value = AreaText::Find(text.numbers, key);
  if (value == nullptr) Refuse(Quoted(key), "is missing");
  return *value;
}

std::unique_ptr<AreaC> MakeArea(const std::string& kind) {
  if (kind == "rectangle") return std::make_unique<SDI::ScanRectangularAreaC>();
  if (kind == "polygon") return std::make_unique<SDI::ScanPolygonAreaC>();
  if (kind == "dome") return std::make_unique<SDI::ScanDomeAreaC>();
  Refuse("\"kind\"", "is not rectangle, polygon or dome");
}

template <class Value>
void SetSetting(const AreaText& text, std::string_view key, AreaC& area,
                void (AreaC::*setter)(Value)) {
  const double* const value = AreaText::Find(text.numbers, key);
  if (value != nullptr) (area.*setter)(static_cast<Value>(*value));
}

void SetSettings(const AreaText& text, AreaC& area) {
  const auto set = [&](std::string_view key, auto setter) { SetSetting(text, key, area, setter); };
  set("limitLow", &AreaC::SetLimitLow);
  set("limitHigh", &AreaC::SetLimitHigh);
  set("settingA", &AreaC::SetSettingA);
  set("settingB", &AreaC::SetSettingB);
  set("settingC", &AreaC::SetSettingC);
  set("settingD", &AreaC::SetSettingD);
  set("settingE", &AreaC::SetSettingE);
}

AreaFile ToAreaFile(const AreaText& text, std::string name) {
  const auto unit = FindUnit(TextOf(text, "unit"));
  if (!unit) Refuse("\"unit\"", "is not rad, deg or gon");
  const std::string* const given = AreaText::Find(text.texts, "name");
  if (given != nullptr) name = *given;
  AreaFile file{.name = std::move(name),
                .unit = *unit,
                .area = MakeArea(TextOf(text, "kind")),
                .isNamed = given != nullptr};
  AreaC& area = *file.area;
  area.SetHzStep(ToRadians(NumberOf(text, "hzStep"), *unit));
  area.SetVStep(ToRadians(NumberOf(text, "vStep"), *unit));
  SetSettings(text, area);
  const bool isDome = area.GetType() == SDI::kDomeArea;
  if (isDome && text.hasPoints) Refuse("\"points\"", "do not belong to a dome");
  if (!isDome && !text.hasPoints) Refuse("\"points\"", "is missing");
  for (const PointInUnit& point : text.points) {
    area.AddPoint(
        SDI::ScanDefPointC(ToRadians(point.hz, *unit), ToRadians(point.v, *unit), point.distance));
  }
  return file;
}

}  // namespace

AreaFile LoadAreaFile(const std::string& path) {
  InputFileC input(path);
  const std::string& shown = input.GetName();
  try {
    AreaText text;
    AreaHandlerC handler(text);
    json::sax_parse(ReadWhole(input), &handler);
    return ToAreaFile(
        text, IsStandardInput(path) ? shown : ToPrintable(ToPath(path).filename().string()));
  } catch (const FileFault& fault) {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("{}: {}", shown, fault.text));
  }
}

std::string JsonText(const std::string& utf8) { return json(utf8).dump(); }

std::string_view KindName(const SDI::ScanAreaC& area) {
  switch (area.GetType()) {
    case SDI::kRectangularArea:
      return "rectangle";
    case SDI::kPolygonArea:
      return "polygon";
    default:
      return "dome";
  }
}

}  // namespace Tool
