#include <algorithm>
#include <cstddef>
#include <optional>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/angles.h>

#include <area/area_reasons.h>
#include <platform/format.h>

namespace Tool {
namespace {

using SDI::AreaExplanation;
using Rule = AreaExplanation::Rule;

std::optional<std::size_t> EdgeNumber(std::size_t edge) {
  return edge == AreaExplanation::kNoEdge ? std::nullopt : std::optional(edge + 1);
}

std::string AngleIn(double radians, AngleUnit unit) {
  return fmt::format("{} {}", AngleText(FromRadians(radians, unit), unit), UnitName(unit));
}

std::string ParityText(const AreaExplanation& why) {
  const auto counted =
      std::ranges::count_if(why.crossings, [](const auto& each) { return each.isCounted; });
  return fmt::format("{} of {} crossing{} of the meridian count{}, an {} number", counted,
                     why.crossings.size(), why.crossings.size() == 1 ? "" : "s",
                     counted == 1 ? "s" : "", counted % 2 != 0 ? "odd" : "even");
}

std::string RuleText(const AreaExplanation& why, AngleUnit unit) {
  switch (why.rule) {
    case Rule::kOutOfRange:
      return "an angle is beyond 100 rad";
    case Rule::kDome:
      return fmt::format("the dome reaches down to V {}", AngleIn(GMAT::V_LIMIT, unit));
    case Rule::kNotValid:
      return "the points do not make an area";
    case Rule::kBand:
      return fmt::format("in the boundary band of edge {}", why.bandEdge + 1);
    case Rule::kNoSearchLine:
      return "the bounds reach from pole to pole, or are a point";
    case Rule::kNoCrossing:
      return "the meridian crosses no edge";
    case Rule::kNothingAbove:
      return "all crossings of the meridian are below, and the area is not around the zenith";
    case Rule::kParity:
      break;
  }
  return ParityText(why);
}

}  // namespace

std::string_view RuleName(Rule rule) {
  switch (rule) {
    case Rule::kOutOfRange:
      return "outOfRange";
    case Rule::kDome:
      return "dome";
    case Rule::kNotValid:
      return "notValid";
    case Rule::kBand:
      return "band";
    case Rule::kNoSearchLine:
      return "noSearchLine";
    case Rule::kNoCrossing:
      return "noCrossing";
    case Rule::kNothingAbove:
      return "nothingAbove";
    case Rule::kParity:
      break;
  }
  return "parity";
}

void WriteReasons(JsonWriterC& out, const AreaExplanation& why, AngleUnit unit) {
  out.Begin("why");
  out.Field("rule", RuleName(why.rule));
  out.Field("hz", FromRadians(why.hz, unit));
  out.Field("v", FromRadians(why.v, unit));
  out.Field("bandEdge", EdgeNumber(why.bandEdge));
  out.BeginArray("crossings");
  for (const AreaExplanation::Crossing& crossing : why.crossings) {
    out.BeginElement();
    out.Field("edge", crossing.edge + 1);
    out.Field("v", FromRadians(crossing.v, unit));
    out.Field("isCounted", crossing.isCounted);
    out.End();
  }
  out.EndArray();
  const auto nearest = EdgeNumber(why.nearestEdge);
  out.Field("nearestEdge", nearest);
  out.Field("distance", nearest ? std::optional(FromRadians(why.distance, unit)) : std::nullopt);
  out.End();
}

std::string ReasonsText(const AreaExplanation& why, AngleUnit unit, std::string_view indent) {
  std::string text = fmt::format("{}{}\n", indent, RuleText(why, unit));
  for (const AreaExplanation::Crossing& crossing : why.crossings) {
    Append(text, "{}  crosses edge {} at V {}{}\n", indent, crossing.edge + 1,
           AngleIn(crossing.v, unit), crossing.isCounted ? ", counts" : "");
  }
  if (const auto nearest = EdgeNumber(why.nearestEdge)) {
    const std::string edge =
        why.rule == Rule::kDome ? "the limit of the dome" : fmt::format("edge {}", *nearest);
    Append(text, "{}nearest: {}, {} away\n", indent, edge, AngleIn(why.distance, unit));
  }
  return text;
}

}  // namespace Tool
