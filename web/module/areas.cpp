#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <module/files.h>
#include <module/results.h>
#include <nlohmann/json.hpp>

#include <surveydata/c_interface/surveydata.h>
#include <surveydata/sphere_geometry/angles.h>

#include <area/angle_unit.h>
#include <area/area_curves.h>
#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_inside.h>
#include <area/area_measure.h>
#include <area/direction_reader.h>
#include <command_line/text.h>
#include <output/json_writer.h>
#include <output/svg.h>

/// \file
/// The functions for areas that the page calls. One area is open at a time. Its file is the state
/// of the page: an edit makes a new file, which is opened like any other.

namespace {

using GMAT::AnglePointC;
using Tool::AngleUnit;
using Tool::JsonWriterC;
using Tool::SvgPoint;

struct AreaDeleter {
  void operator()(surveydata_area* area) const { surveydata_area_destroy(area); }
};
using AreaHandle = std::unique_ptr<surveydata_area, AreaDeleter>;

// The same area through the C interface, prepared for many queries.
AreaHandle Prepare(const Tool::AreaFile& file) {
  std::vector<SDI::ScanDefPointC> points;
  file.area->GetPoints(points);
  std::vector<double> hz, v, distance;
  for (const SDI::ScanDefPointC& point : points) {
    hz.push_back(point.GetHz());
    v.push_back(point.GetV());
    distance.push_back(point.GetDistance());
  }
  surveydata_area_definition definition{};
  definition.struct_size = sizeof(definition);
  definition.kind = static_cast<std::uint32_t>(file.area->GetType());
  definition.count = points.size();
  definition.hz = hz.data();
  definition.v = v.data();
  definition.distance = distance.data();
  definition.hz_step = file.area->GetHzStep();
  definition.v_step = file.area->GetVStep();
  surveydata_area* area = nullptr;
  surveydata_status status = surveydata_area_create(&definition, &area);
  const AreaHandle owner(area);
  surveydata_area* prepared = nullptr;
  if (status == SURVEYDATA_OK) {
    status = surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY, &prepared);
  }
  if (status != SURVEYDATA_OK) throw std::runtime_error(surveydata_status_text(status));
  return AreaHandle(prepared);
}

struct Area {
  Tool::AreaFile file;
  std::vector<Tool::AreaFault> faults;
  AreaHandle handle;
};

std::unique_ptr<Area> area;

const Area& Opened() {
  if (area == nullptr) throw std::runtime_error("no area is open");
  return *area;
}

void Open(std::string text, const char* name) {
  Page::SetFile(std::move(text));
  Tool::AreaFile file = Tool::LoadAreaFile(Page::kFileName);
  if (file.name == Page::kFileName) file.name = name;
  std::vector<Tool::AreaFault> faults = Tool::FindAreaFaults(file);
  AreaHandle handle = Prepare(file);
  area = std::make_unique<Area>(Area{std::move(file), std::move(faults), std::move(handle)});
}

// The plane of Hz and V, and the view from the zenith: north is up, Hz increases clockwise, the
// distance from the centre is V.
constexpr double kPlaneWidth = 720;
constexpr double kPlaneHeight = 360;
constexpr double kRadius = 180;

SvgPoint InPlane(const AnglePointC& p) {
  return {p.Hz / GMAT::TWO_PI * kPlaneWidth, p.V / GMAT::PI * kPlaneHeight};
}
SvgPoint FromZenith(const AnglePointC& p) {
  const double r = std::clamp(p.V, 0.0, GMAT::PI) / GMAT::PI * kRadius;
  return {kRadius + r * std::sin(p.Hz), kRadius - r * std::cos(p.Hz)};
}
AnglePointC Direction(bool isPlane, double x, double y) {
  if (isPlane) return {x / kPlaneWidth * GMAT::TWO_PI, y / kPlaneHeight * GMAT::PI};
  const double right = x - kRadius;
  const double up = kRadius - y;
  const double hz = std::atan2(right, up);
  return {hz < 0 ? hz + GMAT::TWO_PI : hz,
          std::min(std::hypot(right, up) / kRadius, 1.0) * GMAT::PI};
}

std::string PathOf(std::span<const SvgPoint> points, bool isClosed) {
  std::string path;
  for (const SvgPoint& p : points) {
    path += fmt::format("{}{:.2f} {:.2f}", path.empty() ? 'M' : 'L', p.x, p.y);
  }
  return path + (isClosed ? "Z" : "");
}

// A curve in the plane, once for each turn at which part of it is visible.
std::string PlanePath(const Tool::Curve& curve, int least) {
  std::string path;
  const double a = curve(0).Hz;
  const double b = curve(1).Hz;
  const double reach = GMAT::PI;  // how far an arc may extend beyond its ends, over a pole
  const double first = std::ceil((-std::max(a, b) - reach) / GMAT::TWO_PI);
  for (int i = 0;; ++i) {
    const double turn = (first + i) * GMAT::TWO_PI;
    if (!(std::min(a, b) - reach + turn <= GMAT::TWO_PI)) break;
    const auto points = Tool::Sampled(
        curve,
        [&](const AnglePointC& p) {
          return InPlane({p.Hz + turn, p.V});
        },
        least);
    const auto isShown = [](const SvgPoint& p) { return p.x >= 0 && p.x <= kPlaneWidth; };
    if (std::any_of(points.begin(), points.end(), isShown)) path += PathOf(points, false);
  }
  return path;
}

std::string InsidePath(bool isPlane) {
  constexpr int kRows = 240;
  std::string path;
  std::vector<SvgPoint> points;
  const auto line = [&](double hz1, double v1, double hz2, double v2) {
    if (isPlane) {
      points.push_back(InPlane({hz1, v1}));
      points.push_back(InPlane({hz2, v2}));
      return;
    }
    const auto curve = Tool::Sampled(Tool::Straight({hz1, v1}, {hz2, v2}), FromZenith);
    points.insert(points.end(), curve.begin(), curve.end());
  };
  for (const Tool::InsideStrip& strip :
       Tool::FindInside(*Opened().file.area, {0, GMAT::TWO_PI, 0, GMAT::PI}, kRows)) {
    points.clear();
    const auto map = [&](double hz, double v) {
      points.push_back(isPlane ? InPlane({hz, v}) : FromZenith({hz, v}));
    };
    for (const Tool::InsideRun& run : strip) map(run.from, run.v);
    line(strip.back().from, strip.back().v, strip.back().to, strip.back().v);
    for (auto run = strip.rbegin(); run != strip.rend(); ++run) map(run->to, run->v);
    line(strip.front().to, strip.front().v, strip.front().from, strip.front().v);
    path += PathOf(Tool::Thinned(points), true);
  }
  return path;
}

std::string Angle(double radians) {
  const AngleUnit unit = Opened().file.unit;
  return Tool::AngleText(Tool::FromRadians(radians, unit), unit);
}

void WritePlaces(JsonWriterC& out, const AnglePointC& direction) {
  const SvgPoint plane = InPlane(direction);
  const SvgPoint zenith = FromZenith(direction);
  out.Field("plane", std::array{plane.x, plane.y});
  out.Field("zenith", std::array{zenith.x, zenith.y});
}

void WriteDirection(JsonWriterC& out, const AnglePointC& direction) {
  const AngleUnit unit = Opened().file.unit;
  out.Field("hz", Tool::FromRadians(direction.Hz, unit));
  out.Field("v", Tool::FromRadians(direction.V, unit));
  out.Field("hzText", std::string_view(Angle(direction.Hz)));
  out.Field("vText", std::string_view(Angle(direction.V)));
  WritePlaces(out, direction);
}

// The file of an area, with its angles in `unit`.
std::string FileOf(const Tool::AreaFile& file, const std::vector<SDI::ScanDefPointC>& points,
                   AngleUnit unit) {
  const SDI::ScanAreaC& from = *file.area;
  const auto angle = [&](double radians) {
    const double inUnit = Tool::FromRadians(radians, unit);
    // JSON cannot represent infinity.
    if (!std::isfinite(inUnit)) throw std::runtime_error("an angle is too large for this unit");
    return inUnit;
  };
  using nlohmann::json;
  std::string text = "{\n";
  const auto member = [&](std::string_view key, const json& value, bool isWanted = true) {
    if (!isWanted) return;
    text += fmt::format("{}  \"{}\": {}", text.size() > 2 ? ",\n" : "", key,
                        value.dump(-1, ' ', false, json::error_handler_t::replace));
  };
  member("kind", std::string(Tool::KindName(from)));
  member("unit", std::string(Tool::UnitName(unit)));
  member("name", file.name);
  member("hzStep", angle(from.GetHzStep()));
  member("vStep", angle(from.GetVStep()));
  member("limitLow", from.GetLimitLow(), from.GetLimitLow() != -1);
  member("limitHigh", from.GetLimitHigh(), from.GetLimitHigh() != -1);
  member("settingA", from.GetSettingA(), from.GetSettingA() != 0);
  member("settingB", from.GetSettingB(), from.GetSettingB() != 4);
  member("settingC", from.GetSettingC(), from.GetSettingC() != 0);
  member("settingD", from.GetSettingD(), from.GetSettingD() != 0);
  member("settingE", from.GetSettingE(), from.GetSettingE() != 1);
  if (from.GetType() != SDI::kDomeArea) {
    text += ",\n  \"points\": [";
    for (std::size_t i = 0; i < points.size(); ++i) {
      const SDI::ScanDefPointC& point = points[i];
      text += fmt::format("{}\n    [{}, {}", i > 0 ? "," : "", json(angle(point.GetHz())).dump(),
                          json(angle(point.GetV())).dump());
      if (point.HasDistance()) text += ", " + json(point.GetDistance()).dump();
      text += "]";
    }
    text += points.empty() ? "]" : "\n  ]";
  }
  return text + "\n}\n";
}

std::vector<SDI::ScanDefPointC> Points() {
  std::vector<SDI::ScanDefPointC> points;
  Opened().file.area->GetPoints(points);
  return points;
}

}  // namespace

/// Opens an area file and returns 0. If it cannot be opened, the result is the reason, and the
/// previous area stays open.
SURVEYDATA_PAGE std::int32_t page_area_open(const char* text, std::uint32_t size,
                                            const char* name) {
  return Page::Guarded([&] {
    try {
      Open(std::string(text, size), name);
    } catch (const std::exception& error) {
      std::string_view message = error.what();
      const std::string prefix = std::string(Page::kFileName) + ": ";
      if (message.starts_with(prefix)) message.remove_prefix(prefix.size());
      throw std::runtime_error(std::string(message));
    }
    Page::NewResult();
    return 0;
  });
}

/// The result is a JSON object: the report of `surveydata area info`, the points and the outline.
SURVEYDATA_PAGE std::int32_t page_area_report() {
  return Page::Guarded([] {
    const Area& opened = Opened();
    const Tool::AreaFile& file = opened.file;
    JsonWriterC out(Page::NewResult());
    out.Field("name", std::string_view(Tool::ToVisible(file.name)));
    out.Field("kind", Tool::KindName(*file.area));
    out.Field("unit", Tool::UnitName(file.unit));
    out.Field("fullTurn", 2 * Tool::HalfTurn(file.unit));
    out.Field("decimals", Tool::UnitDecimals(file.unit));
    out.Field("hzStep", Tool::FromRadians(file.area->GetHzStep(), file.unit));
    out.Field("vStep", Tool::FromRadians(file.area->GetVStep(), file.unit));
    out.BeginArray("faults");
    for (const Tool::AreaFault& fault : opened.faults) {
      out.BeginElement();
      out.Field("text", std::string_view(fault.text));
      out.Field("points", fault.points);
      out.Field("edges", fault.edges);
      out.End();
    }
    out.EndArray();
    const auto bounds = Tool::MeasureBounds(file);
    out.Begin("bounds", bounds.has_value());
    if (bounds) {
      double hzEnd = bounds->hzMax;
      GMAT::WrapIntoRange(hzEnd, 0.0, GMAT::TWO_PI);
      out.Field("hzMin", std::string_view(Angle(bounds->hzMin)));
      out.Field("hzMax", std::string_view(Angle(hzEnd)));
      out.Field("vMin", std::string_view(Angle(bounds->vMin)));
      out.Field("vMax", std::string_view(Angle(bounds->vMax)));
      out.Field("enclosesZenith", bounds->enclosesZenith);
    }
    out.End();
    out.BeginArray("points");
    for (const SDI::ScanDefPointC& point : Points()) {
      out.BeginElement();
      out.Field("distance",
                point.HasDistance() ? std::optional(point.GetDistance()) : std::nullopt);
      WriteDirection(out, {point.GetHz(), point.GetV()});
      out.End();
    }
    out.EndArray();
    std::vector<SDI::ScanDefPointC> outline;
    file.area->GetOutline(outline, -1.0);
    out.BeginArray("outline");
    for (const SDI::ScanDefPointC& point : outline) {
      out.BeginElement();
      out.Field("hzText", std::string_view(Angle(point.GetHz())));
      out.Field("vText", std::string_view(Angle(point.GetV())));
      out.Field("distance",
                std::string_view(point.HasDistance() ? fmt::format("{:.4f}", point.GetDistance())
                                                     : std::string("–")));
      out.End();
    }
    out.EndArray();
    out.EndLine();
    return 0;
  });
}

/// The result is a JSON object: the inside, the edges and the bounds, as paths in both views.
SURVEYDATA_PAGE std::int32_t page_area_picture() {
  return Page::Guarded([] {
    const Area& opened = Opened();
    const std::vector<Tool::EdgeCurve> edges = Tool::MakeEdges(opened.file, opened.faults);
    constexpr std::size_t kMany = 1000;
    const int least = edges.size() > kMany ? 0 : 3;
    const auto bounds = Tool::MeasureBounds(opened.file);
    JsonWriterC out(Page::NewResult());
    for (const bool isPlane : {true, false}) {
      out.Begin(isPlane ? "plane" : "zenith");
      const auto pathOf = [&](const Tool::Curve& curve) {
        return isPlane ? PlanePath(curve, least)
                       : PathOf(Tool::Sampled(curve, FromZenith, least), false);
      };
      out.Field("inside", std::string_view(InsidePath(isPlane)));
      std::string good, faulty, limits;
      for (const Tool::EdgeCurve& edge : edges) {
        (edge.isFaulty || !edge.isArc ? faulty : good) += pathOf(edge.at);
      }
      if (bounds) {
        const AnglePointC corners[] = {{bounds->hzMin, bounds->vMin},
                                       {bounds->hzMax, bounds->vMin},
                                       {bounds->hzMax, bounds->vMax},
                                       {bounds->hzMin, bounds->vMax}};
        for (std::size_t i = 0; i < 4; ++i) {
          limits += pathOf(Tool::Straight(corners[i], corners[(i + 1) % 4]));
        }
      }
      out.Field("edges", std::string_view(good));
      out.Field("faultyEdges", std::string_view(faulty));
      out.Field("bounds", std::string_view(limits));
      out.Field("lowest", std::string_view(pathOf(
                              Tool::Straight({0, GMAT::V_LIMIT}, {GMAT::TWO_PI, GMAT::V_LIMIT}))));
      out.End();
    }
    out.EndLine();
    return 0;
  });
}

/// The result is a JSON object: the direction at a position in a view, and whether it is inside.
SURVEYDATA_PAGE std::int32_t page_area_at(std::int32_t isPlane, double x, double y) {
  return Page::Guarded([&] {
    const AnglePointC direction = Direction(isPlane != 0, x, y);
    std::int32_t isInside = 0;
    surveydata_area_contains(Opened().handle.get(), direction.Hz, direction.V, &isInside);
    JsonWriterC out(Page::NewResult());
    WriteDirection(out, direction);
    out.Field("inside", isInside != 0);
    out.EndLine();
    return 0;
  });
}

/// The result is a JSON object: why a direction, in the unit of the area, is inside or not.
SURVEYDATA_PAGE std::int32_t page_area_explain(double hz, double v) {
  return Page::Guarded([&] {
    const AngleUnit unit = Opened().file.unit;
    surveydata_explanation why{};
    why.struct_size = sizeof(why);
    std::vector<surveydata_crossing> crossings(2 * Points().size() + 8);
    std::size_t count = 0;
    const double hzRadians = Tool::ToRadians(hz, unit);
    const double vRadians = Tool::ToRadians(v, unit);
    const surveydata_status status =
        surveydata_area_explain(Opened().handle.get(), hzRadians, vRadians, &why, crossings.data(),
                                sizeof(surveydata_crossing), crossings.size(), &count);
    if (status != SURVEYDATA_OK && status != SURVEYDATA_BUFFER_TOO_SMALL) {
      throw std::runtime_error(surveydata_status_text(status));
    }
    JsonWriterC out(Page::NewResult());
    WriteDirection(out, {hzRadians, vRadians});
    out.Field("inside", why.inside != 0);
    out.Field("rule", std::string_view(surveydata_text(SURVEYDATA_TEXT_RULE, why.rule)));
    const auto edge = [](std::uint64_t number) {
      return number == SURVEYDATA_NONE ? std::nullopt : std::optional<std::uint64_t>(number + 1);
    };
    out.Field("bandEdge", edge(why.band_edge));
    out.Field("nearestEdge", edge(why.nearest_edge));
    out.Field("distance",
              std::string_view(why.nearest_edge == SURVEYDATA_NONE ? "–" : Angle(why.distance)));
    out.BeginArray("crossings");
    for (std::size_t i = 0; i < std::min(count, crossings.size()); ++i) {
      out.BeginElement();
      out.Field("edge", crossings[i].edge + 1);
      out.Field("vText", std::string_view(Angle(crossings[i].v)));
      out.Field("isCounted", crossings[i].is_counted != 0);
      out.End();
    }
    out.EndArray();
    out.EndLine();
    return 0;
  });
}

/// Edits of the open area.
enum AreaEdit : std::int32_t { kInsert = 0, kMove = 1, kRemove = 2, kSteps = 3 };

/// The result is the file of the open area after an edit; angles are in its unit. `index` counts
/// points from 0; a point is inserted before it.
SURVEYDATA_PAGE std::int32_t page_area_edit(std::int32_t edit, std::uint32_t index, double hz,
                                            double v) {
  return Page::Guarded([&] {
    const Tool::AreaFile& file = Opened().file;
    std::vector<SDI::ScanDefPointC> points = Points();
    const double hzRadians = Tool::ToRadians(hz, file.unit);
    const double vRadians = Tool::ToRadians(v, file.unit);
    const auto at = points.begin() + static_cast<std::ptrdiff_t>(index);
    const bool isPoint = edit == kMove || edit == kRemove;
    if (index > points.size() || (isPoint && index == points.size())) {
      throw std::runtime_error("there is no such point");
    }
    if (edit == kInsert) {
      if (file.area->GetType() == SDI::kDomeArea) throw std::runtime_error("a dome has no points");
      points.insert(at, SDI::ScanDefPointC(hzRadians, vRadians, -1.0));
    } else if (edit == kMove) {
      at->SetHz(hzRadians);
      at->SetV(vRadians);
    } else if (edit == kRemove) {
      points.erase(at);
    } else {
      file.area->SetHzStep(hzRadians);
      file.area->SetVStep(vRadians);
    }
    Page::SetResult(FileOf(file, points, file.unit));
    return 0;
  });
}

/// The result is the file of the open area with its angles in another unit: "rad", "deg" or "gon".
SURVEYDATA_PAGE std::int32_t page_area_convert(const char* unit) {
  return Page::Guarded([&] {
    const auto found = Tool::FindUnit(unit);
    if (!found) throw std::runtime_error("there is no such unit");
    Page::SetResult(FileOf(Opened().file, Points(), *found));
    return 0;
  });
}

/// Tests the directions of a file. The result consists of doubles: the number of directions, how
/// many of them are inside, and then for each of the first directions Hz and V in rad, the position
/// in the plane, the position in the view from the zenith, and 1 if it is inside, else 0.
SURVEYDATA_PAGE std::int32_t page_area_directions(const char* text, std::uint32_t size) {
  return Page::Guarded([&] {
    constexpr double kMost = 20'000;
    const Area& opened = Opened();
    Page::SetFile(std::string(text, size));
    Tool::DirectionReaderC reader(Page::kFileName, {.unit = opened.file.unit});
    std::vector<double> answers = {0, 0};
    for (Tool::Direction given{}; reader.Next(given);) {
      const AnglePointC direction{Tool::ToRadians(given.hz, opened.file.unit),
                                  Tool::ToRadians(given.v, opened.file.unit)};
      std::int32_t isInside = 0;
      surveydata_area_contains(opened.handle.get(), direction.Hz, direction.V, &isInside);
      answers[0] += 1;
      answers[1] += isInside;
      if (answers[0] > kMost) continue;
      double hz = direction.Hz;
      GMAT::WrapIntoRange(hz, 0.0, GMAT::TWO_PI);
      const SvgPoint plane = InPlane({hz, direction.V});
      const SvgPoint zenith = FromZenith(direction);
      answers.insert(answers.end(), {direction.Hz, direction.V, plane.x, plane.y, zenith.x,
                                     zenith.y, static_cast<double>(isInside)});
    }
    Page::SetResult(
        {reinterpret_cast<const char*>(answers.data()), answers.size() * sizeof(double)});
    return 0;
  });
}

/// `surveydata_area_contains_many` of the open area.
SURVEYDATA_PAGE std::int32_t page_area_contains_many(const double* hz, const double* v,
                                                     std::uint32_t count, std::uint8_t* inside) {
  return Page::Guarded([&] {
    return surveydata_area_contains_many(Opened().handle.get(), hz, sizeof(double), v,
                                         sizeof(double), count, inside);
  });
}
