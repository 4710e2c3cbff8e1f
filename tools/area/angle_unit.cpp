#include <cmath>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>

namespace Tool {

std::string_view UnitName(AngleUnit unit) {
  switch (unit) {
    case AngleUnit::kRad:
      return "rad";
    case AngleUnit::kDeg:
      return "deg";
    case AngleUnit::kGon:
      break;
  }
  return "gon";
}

std::optional<AngleUnit> FindUnit(std::string_view name) {
  for (const AngleUnit unit : {AngleUnit::kRad, AngleUnit::kDeg, AngleUnit::kGon}) {
    if (name == UnitName(unit)) return unit;
  }
  return {};
}

double HalfTurn(AngleUnit unit) {
  switch (unit) {
    case AngleUnit::kRad:
      return GMAT::PI;
    case AngleUnit::kDeg:
      return 180.0;
    case AngleUnit::kGon:
      break;
  }
  return 200.0;
}

double ToRadians(double angle, AngleUnit unit) {
  return unit == AngleUnit::kRad ? angle : angle / HalfTurn(unit) * GMAT::PI;
}

double FromRadians(double radians, AngleUnit unit) {
  if (unit == AngleUnit::kRad) return radians;
  const double angle = radians / GMAT::PI * HalfTurn(unit);
  constexpr double kGrid = 1e11;
  constexpr double kLargest = 1e4;  // up to which a double represents the grid exactly
  return std::fabs(angle) < kLargest ? std::round(angle * kGrid) / kGrid : angle;
}

int UnitDecimals(AngleUnit unit) { return unit == AngleUnit::kRad ? 7 : 5; }

std::string AngleText(double angle, AngleUnit unit) {
  constexpr double kLargest = 1e6;
  if (!(std::fabs(angle) < kLargest)) return fmt::format("{:.6g}", angle);
  return fmt::format("{:.{}f}", angle, UnitDecimals(unit));
}

std::string StepText(double step, AngleUnit unit) {
  constexpr double kFine = 1e-3;  // below which fewer than three digits remain
  return std::fabs(step) < kFine ? fmt::format("{:.6g}", step + 0.0) : AngleText(step, unit);
}

}  // namespace Tool
