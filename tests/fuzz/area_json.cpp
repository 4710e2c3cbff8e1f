// An area file of any bytes is read whole or refused with the reason, and the program's questions
// have answers for whatever area it gives.

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "area_faults.h"
#include "area_file.h"
#include "area_measure.h"
#include "area_picture.h"
#include "exit_code.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"

namespace {

using nlohmann::json;

constexpr std::size_t kMostPoints = 40;      // whose crossings are looked for
constexpr std::size_t kMostDrawnPoints = 6;  // a picture takes a while
constexpr std::size_t kRarelyDrawn = 64;

double InRadians(double angle, const std::string& unit) {
  return unit == "rad" ? angle : angle * 3.141592653589793 / (unit == "deg" ? 180 : 200);
}

// As near as two ways to compute it come.
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

}  // namespace

// The bytes of the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  memory.Write(data, size);
  try {
    const Tool::AreaFile file = Tool::LoadAreaFile(memory.Path());
    ExpectHolds(file, json::parse(data, data + size));
    const std::size_t points = file.area->GetPointCount();
    if (points > kMostPoints) return 0;
    const auto faults = Tool::FindAreaFaults(file);
    EXPECT_EQ(faults.empty(), file.area->IsValid());
    const auto bounds = Tool::MeasureBounds(file);
    EXPECT_EQ(bounds.has_value(), file.area->IsAreaValid());
    std::vector<SDI::ScanDefPointC> outline;
    file.area->GetOutline(outline, 10.0);
    if (points > kMostDrawnPoints || size % kRarelyDrawn != 0) return 0;
    EXPECT_NE(Tool::DrawArea({file, faults, {}, {}}).find("</svg>"), std::string::npos);
    if (bounds) {
      EXPECT_GE(Tool::MeasureSolidAngle(file, *bounds).steradians, 0.0);
    }
  } catch (const Tool::ToolErrorC& error) {
    EXPECT_EQ(error.GetCode(), Tool::ExitCode::kFileError);
    EXPECT_EQ(std::string(error.what()).find(memory.Path() + ": "), 0u);
  }
  return 0;
}
