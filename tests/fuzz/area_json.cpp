// An arbitrary area file is either read completely or refused with a reason, and every resulting
// area can be measured, drawn and queried.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <command_line/exit_code.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"

namespace {

using nlohmann::json;

constexpr std::size_t kMostPoints = 40;      // of areas searched for crossings
constexpr std::size_t kMostDrawnPoints = 6;  // drawing is slow
constexpr std::size_t kRarelyDrawn = 64;

double InRadians(double angle, const std::string& unit) {
  return unit == "rad" ? angle : angle * 3.141592653589793 / (unit == "deg" ? 180 : 200);
}

// The required agreement between two ways to compute it.
bool IsNear(double a, double b) { return a == b || std::fabs(a - b) <= 1e-15 * std::fabs(b); }

void ExpectHolds(const Tool::AreaFile& file, const json& text) {
  const SDI::ScanAreaC& area = *file.area;
  const auto unit = text.at("unit").get<std::string>();
  EXPECT_EQ(Tool::KindName(area), text.at("kind").get<std::string>());
  EXPECT_EQ(Tool::UnitName(file.unit), unit);
  if (text.contains("name")) {
    EXPECT_EQ(file.name, text.at("name").get<std::string>());
  }
  EXPECT_TRUE(IsNear(area.GetHzStep(), InRadians(text.at("hzStep").get<double>(), unit)));
  EXPECT_TRUE(IsNear(area.GetVStep(), InRadians(text.at("vStep").get<double>(), unit)));
  EXPECT_EQ(area.GetSettingA(), text.value("settingA", 0u));
  EXPECT_EQ(area.GetSettingB(), text.value("settingB", 4u));
  EXPECT_EQ(area.GetSettingC(), text.value("settingC", 0u));
  EXPECT_EQ(area.GetSettingD(), text.value("settingD", 0.0));
  EXPECT_EQ(area.GetSettingE(), text.value("settingE", 1u));
  EXPECT_EQ(area.GetLimitLow(), text.value("limitLow", -1.0));
  EXPECT_EQ(area.GetLimitHigh(), text.value("limitHigh", -1.0));
  std::vector<SDI::ScanDefPointC> points;
  area.GetPoints(points);
  const json given = text.value("points", json::array());
  ASSERT_EQ(points.size(), given.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    const bool isArray = given[i].is_array();
    const auto number = [&](std::size_t at, const char* key) {
      return (isArray ? given[i].at(at) : given[i].at(key)).get<double>();
    };
    const bool hasDistance = isArray ? given[i].size() == 3 : given[i].contains("distance");
    EXPECT_TRUE(IsNear(points[i].GetHz(), InRadians(number(0, "hz"), unit)));
    EXPECT_TRUE(IsNear(points[i].GetV(), InRadians(number(1, "v"), unit)));
    EXPECT_EQ(points[i].GetDistance(), hasDistance ? number(2, "distance") : -1.0);
  }
}

// --- The format of area files

// Whether an object contains a key twice: the parser would silently use the last one.
class RepeatFinderC : public json::json_sax_t {
 public:
  bool HasRepeat() const { return hasRepeat_; }

  bool start_object(std::size_t /*size*/) override {
    keys_.emplace_back();
    return true;
  }
  bool key(std::string& key) override {
    hasRepeat_ = hasRepeat_ || !keys_.back().insert(key).second;
    return true;
  }
  bool end_object() override {
    keys_.pop_back();
    return true;
  }
  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(std::int64_t /*value*/) override { return true; }
  bool number_unsigned(std::uint64_t /*value*/) override { return true; }
  bool number_float(double /*value*/, const std::string& /*text*/) override { return true; }
  bool string(std::string& /*value*/) override { return true; }
  bool binary(json::binary_t& /*value*/) override { return true; }
  bool start_array(std::size_t /*size*/) override { return true; }
  bool end_array() override { return true; }
  bool parse_error(std::size_t /*at*/, const std::string& /*token*/,
                   const json::exception& /*error*/) override {
    return false;
  }

 private:
  std::vector<std::set<std::string>> keys_;
  bool hasRepeat_ = false;
};

bool HasOnly(const json& object, const std::set<std::string>& keys) {
  for (const auto& [key, value] : object.items()) {
    if (keys.count(key) == 0) return false;
  }
  return true;
}

bool IsNumber(const json& object, const char* key) {
  return object.contains(key) && object[key].is_number();
}

bool IsOneOf(const json& object, const char* key, const std::set<std::string>& texts) {
  return object.contains(key) && object[key].is_string() &&
         texts.count(object[key].get<std::string>()) != 0;
}

bool IsPoint(const json& point) {
  if (point.is_array()) {
    if (point.size() != 2 && point.size() != 3) return false;
    return std::all_of(point.begin(), point.end(), [](const json& n) { return n.is_number(); });
  }
  return point.is_object() && HasOnly(point, {"hz", "v", "distance"}) && IsNumber(point, "hz") &&
         IsNumber(point, "v") && (!point.contains("distance") || IsNumber(point, "distance"));
}

bool IsAreaFile(const json& file) {
  if (!file.is_object() ||
      !HasOnly(file, {"kind", "unit", "name", "points", "hzStep", "vStep", "limitLow", "limitHigh",
                      "settingA", "settingB", "settingC", "settingD", "settingE"})) {
    return false;
  }
  if (!IsOneOf(file, "kind", {"rectangle", "polygon", "dome"}) ||
      !IsOneOf(file, "unit", {"rad", "deg", "gon"}) || !IsNumber(file, "hzStep") ||
      !IsNumber(file, "vStep") || (file.contains("name") && !file["name"].is_string())) {
    return false;
  }
  for (const char* const key : {"limitLow", "limitHigh", "settingD"}) {
    if (file.contains(key) && !file[key].is_number()) return false;
  }
  for (const char* const key : {"settingA", "settingB", "settingC", "settingE"}) {
    const std::uint64_t most = std::string(key) == "settingE" ? 0xFFFF : 0xFFFF'FFFF;
    if (file.contains(key) &&
        (!file[key].is_number_unsigned() || file[key].get<std::uint64_t>() > most)) {
      return false;
    }
  }
  if (file["kind"] == "dome") return !file.contains("points");
  return file.contains("points") && file["points"].is_array() &&
         std::all_of(file["points"].begin(), file["points"].end(), IsPoint);
}

bool IsAreaFile(const std::uint8_t* data, std::size_t size) {
  RepeatFinderC finder;
  return json::sax_parse(data, data + size, &finder) && !finder.HasRepeat() &&
         IsAreaFile(json::parse(data, data + size));
}

}  // namespace

// Input: the bytes of the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  memory.Write(data, size);
  const bool isAreaFile = IsAreaFile(data, size);
  try {
    const Tool::AreaFile file = Tool::LoadAreaFile(memory.Path());
    EXPECT_TRUE(isAreaFile);
    ExpectHolds(file, json::parse(data, data + size));
    const std::size_t points = file.area->GetPointCount();
    if (points > kMostPoints) return 0;
    const auto faults = Tool::FindAreaFaults(file);
    EXPECT_EQ(faults.empty(), file.area->IsValid());
    const auto bounds = Tool::MeasureBounds(file);
    const double hzStep = file.area->GetHzStep();
    const double vStep = file.area->GetVStep();
    file.area->SetHzStep(1.0);
    file.area->SetVStep(1.0);
    EXPECT_EQ(bounds.has_value(), file.area->IsValid());
    file.area->SetHzStep(hzStep);
    file.area->SetVStep(vStep);
    std::vector<SDI::ScanDefPointC> outline;
    file.area->GetOutline(outline, 10.0);
    if (points > kMostDrawnPoints || size % kRarelyDrawn != 0) return 0;
    const Tool::AreaProbesC probes(Tool::kWholeSphere);
    const std::string picture = Tool::DrawArea({file, faults, Tool::kWholeSphere, probes});
    EXPECT_NE(picture.find("</svg>"), std::string::npos);
    if (bounds) {
      EXPECT_GE(Tool::MeasureSolidAngle(file, *bounds).steradians, 0.0);
    }
  } catch (const Tool::ToolErrorC& error) {
    EXPECT_FALSE(isAreaFile) << error.what();
    EXPECT_EQ(error.GetCode(), Tool::ExitCode::kFileError);
    EXPECT_EQ(std::string(error.what()).find(memory.Path() + ": "), 0u);
  }
  return 0;
}
