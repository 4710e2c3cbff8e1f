#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <set>
#include <type_traits>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include <area/area_file.h>
#include <command_line/exit_code.h>
#include <command_line/message.h>
#include <command_line/text.h>
#include <platform/platform.h>

namespace Tool {
namespace {

using nlohmann::json;

std::string ReadWhole(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  std::string text;
  if (file != nullptr) {
    std::array<char, 65536> block;
    while (const std::size_t size = std::fread(block.data(), 1, block.size(), file.get())) {
      text.append(block.data(), size);
    }
  }
  if (file == nullptr || std::ferror(file.get()) != 0) {
    FailToRead(path);
  }
  return text;
}

// Reads the members of the file. Everything that does not belong there is refused, lest a misspelt
// name be taken for one left out.
class AreaReaderC {
 public:
  explicit AreaReaderC(const std::string& path) : path_(path) { Parse(ReadWhole(path)); }

  AreaFile Read() const {
    if (!root_.is_object()) Fail("the file", "is no object");
    RefuseOthers(root_, "",
                 {"kind", "unit", "name", "points", "hzStep", "vStep", "limitLow", "limitHigh",
                  "settingA", "settingB", "settingC", "settingD", "settingE"});
    AreaFile file{.name = ToPrintable(ToPath(path_).filename().string()),
                  .unit = ReadUnit(),
                  .area = MakeArea()};
    if (root_.contains("name")) file.name = Text("name");
    SDI::ScanAreaC& area = *file.area;
    area.SetHzStep(ToRadians(Number(root_, "", "hzStep"), file.unit));
    area.SetVStep(ToRadians(Number(root_, "", "vStep"), file.unit));
    ReadSettings(area);
    ReadPoints(area, file.unit);
    return file;
  }

 private:
  [[noreturn]] void Fail(std::string_view where, std::string_view what) const {
    throw ToolErrorC(ExitCode::kFileError, fmt::format("{}: {} {}", path_, where, what));
  }

  void Parse(const std::string& text) {
    // The parser itself would let the last of equal members win.
    std::vector<std::set<std::string>> keys;
    const auto refuseRepeats = [&](int /*depth*/, json::parse_event_t event, json& value) {
      if (event == json::parse_event_t::object_start) keys.emplace_back();
      if (event == json::parse_event_t::object_end) keys.pop_back();
      if (event == json::parse_event_t::key) {
        const auto key = value.get<std::string>();
        if (!keys.back().insert(key).second) Fail(Quoted(key), "stands twice in one object");
      }
      return true;
    };
    try {
      root_ = json::parse(text, refuseRepeats);
    } catch (const json::exception& error) {
      const std::string_view message = error.what();
      const std::size_t behindKind = message.find("] ");
      Fail("no JSON:",
           behindKind == std::string_view::npos ? message : message.substr(behindKind + 2));
    }
  }

  static std::string Quoted(std::string_view key) { return fmt::format("\"{}\"", key); }

  void RefuseOthers(const json& object, std::string_view where,
                    std::initializer_list<std::string_view> known) const {
    for (const auto& [key, value] : object.items()) {
      if (std::find(known.begin(), known.end(), key) == known.end()) {
        Fail(fmt::format("{}{}", where, Quoted(key)),
             fmt::format("is no member of this format (there are: {})", fmt::join(known, ", ")));
      }
    }
  }

  const json& Member(const json& object, std::string_view where, const char* key) const {
    const auto member = object.find(key);
    if (member == object.end()) Fail(fmt::format("{}{}", where, Quoted(key)), "is missing");
    return *member;
  }
  double Number(const json& object, std::string_view where, const char* key) const {
    return Number(Member(object, where, key), fmt::format("{}{}", where, Quoted(key)));
  }
  double Number(const json& value, std::string_view where) const {
    if (!value.is_number()) Fail(where, "is no number");
    return value.get<double>();
  }
  std::string Text(const char* key) const {
    const json& value = Member(root_, "", key);
    if (!value.is_string()) Fail(Quoted(key), "is no text");
    return value.get<std::string>();
  }

  AngleUnit ReadUnit() const {
    const auto unit = FindUnit(Text("unit"));
    if (!unit) Fail("\"unit\"", "is none of rad, deg, gon");
    return *unit;
  }

  std::unique_ptr<SDI::ScanAreaC> MakeArea() const {
    const std::string kind = Text("kind");
    if (kind == "rectangle") return std::make_unique<SDI::ScanRectangularAreaC>();
    if (kind == "polygon") return std::make_unique<SDI::ScanPolygonAreaC>();
    if (kind == "dome") return std::make_unique<SDI::ScanDomeAreaC>();
    Fail("\"kind\"", "is none of rectangle, polygon, dome");
  }

  template <class Value, class Setter>
  void ReadSetting(const char* key, SDI::ScanAreaC& area, Setter set) const {
    const auto member = root_.find(key);
    if (member == root_.end()) return;
    if constexpr (std::is_floating_point_v<Value>) {
      (area.*set)(Number(*member, Quoted(key)));
    } else {
      constexpr auto kMost = std::numeric_limits<Value>::max();
      if (!member->is_number_unsigned() || member->template get<std::uint64_t>() > kMost) {
        Fail(Quoted(key), fmt::format("is no whole number from 0 to {}", kMost));
      }
      (area.*set)(member->template get<Value>());
    }
  }

  void ReadSettings(SDI::ScanAreaC& area) const {
    using AreaC = SDI::ScanAreaC;
    ReadSetting<double>("limitLow", area, &AreaC::SetLimitLow);
    ReadSetting<double>("limitHigh", area, &AreaC::SetLimitHigh);
    ReadSetting<std::uint32_t>("settingA", area, &AreaC::SetSettingA);
    ReadSetting<std::uint32_t>("settingB", area, &AreaC::SetSettingB);
    ReadSetting<std::uint32_t>("settingC", area, &AreaC::SetSettingC);
    ReadSetting<double>("settingD", area, &AreaC::SetSettingD);
    ReadSetting<std::uint16_t>("settingE", area, &AreaC::SetSettingE);
  }

  void ReadPoints(SDI::ScanAreaC& area, AngleUnit unit) const {
    if (area.GetType() == SDI::kDomeArea) {
      if (root_.contains("points")) Fail("\"points\"", "do not belong to a dome");
      return;
    }
    const json& points = Member(root_, "", "points");
    if (!points.is_array()) Fail("\"points\"", "is no array");
    std::size_t number = 0;
    for (const json& point : points) {
      const std::string where = fmt::format("point {}: ", ++number);
      double hz = 0;
      double v = 0;
      double distance = -1;
      if (point.is_array() && (point.size() == 2 || point.size() == 3)) {
        hz = Number(point[0], where + "the first number, hz,");
        v = Number(point[1], where + "the second number, v,");
        if (point.size() == 3) distance = Number(point[2], where + "the third number, distance,");
      } else if (point.is_object()) {
        RefuseOthers(point, where, {"hz", "v", "distance"});
        hz = Number(point, where, "hz");
        v = Number(point, where, "v");
        if (point.contains("distance")) distance = Number(point, where, "distance");
      } else {
        Fail(fmt::format("point {}", number),
             "is neither [hz, v], [hz, v, distance] nor an object with these members");
      }
      area.AddPoint(SDI::ScanDefPointC(ToRadians(hz, unit), ToRadians(v, unit), distance));
    }
  }

  std::string path_;
  json root_;
};

}  // namespace

AreaFile LoadAreaFile(const std::string& path) { return AreaReaderC(path).Read(); }

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
