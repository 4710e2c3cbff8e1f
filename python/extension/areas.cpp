#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <extension/buffer.h>
#include <extension/data_class.h>
#include <extension/file_name.h>
#include <extension/module.h>
#include <nanobind/nanobind.h>
#include <nanobind/stl/optional.h>
#include <nanobind/stl/pair.h>
#include <nanobind/stl/shared_ptr.h>
#include <nanobind/stl/string.h>
#include <nanobind/stl/tuple.h>
#include <nanobind/stl/unique_ptr.h>
#include <nanobind/stl/vector.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan.h>
#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>

#include <area/angle_unit.h>
#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_measure.h>
#include <area/area_picture.h>
#include <command_line/exit_code.h>
#include <command_line/text.h>

namespace Python {
namespace {

namespace nb = nanobind;
using namespace nb::literals;

using SDI::AreaExplanation;
using SDI::PreparedAreaC;
using Tool::AngleUnit;

AngleUnit ToUnit(const std::string& name) {
  const std::optional<AngleUnit> unit = Tool::FindUnit(name);
  if (!unit) throw nb::value_error(("'" + name + "' is not a unit: rad, deg or gon").c_str());
  return *unit;
}

// What the library stores in addition to points and steps. Callers define the meaning.
struct Settings {
  std::uint32_t a;
  double limitLow;
  double limitHigh;
  std::uint32_t b;
  std::uint32_t c;
  double d;
  std::uint16_t e;
};

using Triples = std::vector<std::tuple<double, double, double>>;

// An area that never changes, so any number of threads may use it at once.
class AreaC {
 public:
  explicit AreaC(Tool::AreaFile file)
      : file_(std::move(file)), isValid_(file_.area->IsAreaValid()) {}

  const Tool::AreaFile& File() const { return file_; }
  const SDI::ScanAreaC& Area() const { return *file_.area; }
  bool IsValid() const { return isValid_; }

  // Throws with the first reason if the points do not make an area. The steps do not matter for
  // what is inside.
  void RequireValid() const {
    if (isValid_) return;
    std::string reason = "the points do not make an area";
    for (const Tool::AreaFault& fault : Tool::FindAreaFaults(file_)) {
      if (fault.rule.ends_with("StepNotPositive")) continue;
      reason += ": " + fault.text;
      break;
    }
    throw nb::value_error(reason.c_str());
  }

 private:
  Tool::AreaFile file_;
  bool isValid_;
};

class PreparedC {
 public:
  PreparedC(std::shared_ptr<const AreaC> area, bool many)
      : area_(std::move(area)),
        prepared_(area_->Area(),
                  many ? PreparedAreaC::Questions::kMany : PreparedAreaC::Questions::kFew) {}

  const PreparedAreaC& Get() const { return prepared_; }

 private:
  std::shared_ptr<const AreaC> area_;
  PreparedAreaC prepared_;
};

std::unique_ptr<SDI::ScanAreaC> MakeArea(const std::string& kind) {
  if (kind == "rectangle") return std::make_unique<SDI::ScanRectangularAreaC>();
  if (kind == "polygon") return std::make_unique<SDI::ScanPolygonAreaC>();
  return std::make_unique<SDI::ScanDomeAreaC>();
}

std::shared_ptr<const AreaC> MakeAreaFrom(const std::string& kind, const Triples& points,
                                          std::pair<double, double> steps, AngleUnit given,
                                          AngleUnit unit, const std::string& name,
                                          const Settings& settings) {
  Tool::AreaFile file{.name = name, .unit = unit, .area = MakeArea(kind)};
  SDI::ScanAreaC& area = *file.area;
  for (const auto& [hz, v, distance] : points) {
    area.AddPoint({Tool::ToRadians(hz, given), Tool::ToRadians(v, given), distance});
  }
  area.SetSteps(Tool::ToRadians(steps.first, given), Tool::ToRadians(steps.second, given));
  area.SetSettingA(settings.a);
  area.SetLimitLow(settings.limitLow);
  area.SetLimitHigh(settings.limitHigh);
  area.SetSettingB(settings.b);
  area.SetSettingC(settings.c);
  area.SetSettingD(settings.d);
  area.SetSettingE(settings.e);
  return std::make_shared<AreaC>(std::move(file));
}

template <class Area>
std::unique_ptr<SDI::ScanAreaC> CopyIf(const SDI::ScanDefinitionC& area) {
  const auto* const from = dynamic_cast<const Area*>(&area);
  if (from == nullptr) return nullptr;
  auto copy = std::make_unique<Area>();
  *copy->GetImpl() = *from->GetImpl();
  return copy;
}

std::unique_ptr<SDI::ScanAreaC> CopyOf(const SDI::ScanDefinitionC& area) {
  if (auto copy = CopyIf<SDI::ScanRectangularAreaC>(area)) return copy;
  if (auto copy = CopyIf<SDI::ScanPolygonAreaC>(area)) return copy;
  return CopyIf<SDI::ScanDomeAreaC>(area);
}

Triples ToTriples(const std::vector<SDI::ScanDefPointC>& points, AngleUnit unit) {
  Triples triples;
  triples.reserve(points.size());
  for (const SDI::ScanDefPointC& point : points) {
    triples.emplace_back(Tool::FromRadians(point.GetHz(), unit),
                         Tool::FromRadians(point.GetV(), unit), point.GetDistance());
  }
  return triples;
}

// Tests `hz` and `v`, which have the same shape, and sets `inside`, which has as many elements.
void ContainsMany(const PreparedAreaC& area, nb::handle hzArray, nb::handle vArray,
                  nb::handle insideArray, AngleUnit unit) {
  const BufferC hzBuffer(hzArray);
  const BufferC vBuffer(vArray);
  BufferC insideBuffer(insideArray, BufferC::Access::kWrite);
  const std::size_t count = hzBuffer.GetCount();
  if (!std::ranges::equal(hzBuffer.GetShape(), vBuffer.GetShape()) ||
      insideBuffer.GetCount() != count || insideBuffer.GetFormat() != "?" ||
      !insideBuffer.IsContiguous()) {
    throw nb::value_error("the arrays do not match");
  }
  DoublesC hz(hzBuffer);
  DoublesC v(vBuffer);
  static_assert(sizeof(bool) == 1);
  auto* const inside = reinterpret_cast<bool*>(insideBuffer.GetBytes());
  const nb::gil_scoped_release unlocked;
  if (unit == AngleUnit::kRad && hz.IsSpan() && v.IsSpan()) {
    area.Contains(hz.AsSpan(), v.AsSpan(), {inside, count});
    return;
  }
  for (std::size_t done = 0; done < count;) {
    const std::size_t part = std::min(count - done, DoublesC::kMost);
    const std::span<double> hzPart = hz.Next(part);
    const std::span<double> vPart = v.Next(part);
    if (unit != AngleUnit::kRad) {
      for (double& angle : hzPart) angle = Tool::ToRadians(angle, unit);
      for (double& angle : vPart) angle = Tool::ToRadians(angle, unit);
    }
    area.Contains(hzPart, vPart, {inside + done, part});
    done += part;
  }
}

// Angles are in the unit of the area. If there is no edge, its index is None.
struct Explanation {
  bool isInside;
  AreaExplanation::Rule rule;
  double hz;
  double v;
  std::vector<std::tuple<std::size_t, double, bool>> crossings;
  std::optional<std::size_t> bandEdge;
  std::optional<std::size_t> nearestEdge;
  std::optional<double> distance;
};

Explanation InUnit(const AreaExplanation& from, AngleUnit unit) {
  const auto edge = [](std::size_t found) {
    return found == AreaExplanation::kNoEdge ? std::nullopt : std::optional(found);
  };
  Explanation to{.isInside = from.isInside,
                 .rule = from.rule,
                 .hz = Tool::FromRadians(from.hz, unit),
                 .v = Tool::FromRadians(from.v, unit),
                 .crossings = {},
                 .bandEdge = edge(from.bandEdge),
                 .nearestEdge = edge(from.nearestEdge),
                 .distance = {}};
  if (to.nearestEdge) to.distance = Tool::FromRadians(from.distance, unit);
  for (const AreaExplanation::Crossing& crossing : from.crossings) {
    to.crossings.emplace_back(crossing.edge, Tool::FromRadians(crossing.v, unit),
                              crossing.isCounted);
  }
  return to;
}

// The `repr` of a Python float.
std::string Number(double number) { return nb::repr(nb::float_(number)).c_str(); }

// Converts indices that start at 1 to indices that start at 0.
std::vector<std::size_t> FromZero(std::vector<std::size_t> places) {
  for (std::size_t& place : places) --place;
  return places;
}

using Pairs = std::vector<std::pair<double, double>>;
using Window = std::tuple<double, double, double, double>;

std::string Draw(const AreaC& area, const Pairs& probes, const std::optional<Window>& window,
                 AngleUnit unit) {
  const std::vector<Tool::AreaFault> faults = Tool::FindAreaFaults(area.File());
  Tool::AngleWindow shown = Tool::kWholeSphere;
  if (window) {
    const auto& [hzFirst, vFirst, hzLast, vLast] = *window;
    shown = {Tool::ToRadians(hzFirst, unit), Tool::ToRadians(hzLast, unit),
             Tool::ToRadians(vFirst, unit), Tool::ToRadians(vLast, unit)};
  }
  Tool::AreaProbesC marks(shown);
  const PreparedAreaC prepared(area.Area());
  for (const auto& [hzGiven, vGiven] : probes) {
    const double hz = Tool::ToRadians(hzGiven, unit);
    const double v = Tool::ToRadians(vGiven, unit);
    marks.Add(hz, v, prepared.Contains(hz, v));
  }
  return Tool::DrawArea({area.File(), faults, shown, marks});
}

}  // namespace

void AddAreas(nb::module_& module) {
  using Rule = AreaExplanation::Rule;
  nb::enum_<Rule>(module, "Rule", "The rule that decided whether a direction is inside.")
      .value("OUT_OF_RANGE", Rule::kOutOfRange, "An angle is NaN, or beyond 100 rad: outside.")
      .value("DOME", Rule::kDome, "Inside if V, wrapped into a full turn, is at most 0.8 pi.")
      .value("NOT_VALID", Rule::kNotValid, "The points do not make an area: outside.")
      .value("BAND", Rule::kBand, "Within the boundary band of an edge: inside.")
      .value("NO_SEARCH_LINE", Rule::kNoSearchLine,
             "The bounds reach from pole to pole, or are a point: outside.")
      .value("NO_CROSSING", Rule::kNoCrossing, "The meridian crosses no edge: outside.")
      .value("NOTHING_ABOVE", Rule::kNothingAbove,
             "All crossings are below, and the area is not around the zenith: outside.")
      .value("PARITY", Rule::kParity, "Inside where the number of crossings that count is odd.");

  nb::class_<Explanation>(module, "Explanation",
                          "Why an area contains a direction, or does not. Angles are in the unit "
                          "of the call; edges are counted from 0.")
      .def_ro("is_inside", &Explanation::isInside, "The answer of `contains`.")
      .def_ro("rule", &Explanation::rule, "The rule that decided.")
      .def_ro("hz", &Explanation::hz,
              "The direction, wrapped into a full turn; as given if it is out of range.")
      .def_ro("v", &Explanation::v, "Likewise.")
      .def_ro("crossings", &Explanation::crossings,
              "Where the meridian of the direction crosses edges, by ascending V: the edge, V, and "
              "whether the crossing counts.")
      .def_ro("band_edge", &Explanation::bandEdge,
              "The first edge in whose band the direction lies.")
      .def_ro("nearest_edge", &Explanation::nearestEdge, "The edge that is nearest on the sphere.")
      .def_ro("distance", &Explanation::distance, "The angle to the nearest edge.")
      .def("__repr__", [](const Explanation& self) {
        std::string text = self.isInside ? "<Explanation: inside by " : "<Explanation: outside by ";
        text += nb::cast<std::string>(nb::cast(self.rule).attr("name"));
        if (self.nearestEdge) {
          text += ", " + Number(*self.distance) + " from edge " + std::to_string(*self.nearestEdge);
        }
        return text + ", at hz " + Number(self.hz) + ", v " + Number(self.v) + ">";
      });

  nb::class_<Tool::AreaFault>(module, "Fault", "A rule that an area breaks.")
      .def_prop_ro(
          "rule", [](const Tool::AreaFault& fault) { return std::string(fault.rule); },
          "The name of the rule: \"equalPoints\".")
      .def_prop_ro(
          "points", [](const Tool::AreaFault& fault) { return FromZero(fault.points); },
          "The points that break it, counted from 0.")
      .def_prop_ro(
          "edges", [](const Tool::AreaFault& fault) { return FromZero(fault.edges); },
          "The edges that break it, counted from 0; edge i runs from point i to the next one.")
      .def_ro("text", &Tool::AreaFault::text,
              "The fault in words: points and edges are counted from 1, angles are in the unit of "
              "the area.")
      .def("__repr__", [](const Tool::AreaFault& fault) { return "<Fault: " + fault.text + ">"; });

  nb::class_<PreparedC>(module, "PreparedCore")
      .def(
          "contains",
          [](const PreparedC& self, double hz, double v, const std::string& unit) {
            const AngleUnit given = ToUnit(unit);
            return self.Get().Contains(Tool::ToRadians(hz, given), Tool::ToRadians(v, given));
          },
          "hz"_a, "v"_a, "unit"_a)
      .def(
          "contains_many",
          [](const PreparedC& self, nb::handle hz, nb::handle v, nb::handle inside,
             const std::string& unit) { ContainsMany(self.Get(), hz, v, inside, ToUnit(unit)); },
          "hz"_a, "v"_a, "inside"_a, "unit"_a)
      .def(
          "explain",
          [](const PreparedC& self, double hz, double v, const std::string& unit) {
            const AngleUnit given = ToUnit(unit);
            return InUnit(self.Get().Explain(Tool::ToRadians(hz, given), Tool::ToRadians(v, given)),
                          given);
          },
          "hz"_a, "v"_a, "unit"_a);

  nb::class_<AreaC>(module, "AreaCore")
      .def_static(
          "make",
          [](const std::string& kind, const Triples& points, std::pair<double, double> steps,
             const std::string& given, const std::string& unit, const std::string& name,
             std::uint32_t settingA, double limitLow, double limitHigh, std::uint32_t settingB,
             std::uint32_t settingC, double settingD, std::uint16_t settingE) {
            return MakeAreaFrom(
                kind, points, steps, ToUnit(given), ToUnit(unit), name,
                {settingA, limitLow, limitHigh, settingB, settingC, settingD, settingE});
          },
          "kind"_a, "points"_a, "steps"_a, "given"_a, "unit"_a, "name"_a, "setting_a"_a,
          "limit_low"_a, "limit_high"_a, "setting_b"_a, "setting_c"_a, "setting_d"_a, "setting_e"_a)
      .def_static(
          "read",
          [](nb::handle path) {
            const std::string name = ToFileName(path);
            try {
              const nb::gil_scoped_release unlocked;
              return std::make_shared<const AreaC>(Tool::LoadAreaFile(name));
            } catch (const Tool::ToolErrorC& error) {
              throw nb::value_error(Tool::ToPrintable(std::string_view(error.what())).c_str());
            }
          },
          "path"_a)
      .def_prop_ro("kind",
                   [](const AreaC& self) { return std::string(Tool::KindName(self.Area())); })
      .def_prop_ro("unit",
                   [](const AreaC& self) { return std::string(Tool::UnitName(self.File().unit)); })
      .def_prop_ro("name", [](const AreaC& self) { return self.File().name; })
      .def(
          "points",
          [](const AreaC& self, const std::string& unit) {
            std::vector<SDI::ScanDefPointC> points;
            self.Area().GetPoints(points);
            return ToTriples(points, ToUnit(unit));
          },
          "unit"_a)
      .def(
          "steps",
          [](const AreaC& self, const std::string& unit) {
            const AngleUnit wanted = ToUnit(unit);
            return std::pair(Tool::FromRadians(self.Area().GetHzStep(), wanted),
                             Tool::FromRadians(self.Area().GetVStep(), wanted));
          },
          "unit"_a)
      .def("settings",
           [](const AreaC& self) {
             const SDI::ScanAreaC& area = self.Area();
             return std::tuple(area.GetSettingA(), area.GetLimitLow(), area.GetLimitHigh(),
                               area.GetSettingB(), area.GetSettingC(), area.GetSettingD(),
                               area.GetSettingE());
           })
      .def("is_valid", [](const AreaC& self) { return self.Area().IsValid(); })
      .def("is_area_valid", &AreaC::IsValid)
      .def("is_equal",
           [](const AreaC& self, const AreaC& other) { return self.Area().IsEqual(other.Area()); })
      .def("faults", [](const AreaC& self) { return Tool::FindAreaFaults(self.File()); })
      .def(
          "bounds",
          [](const AreaC& self, const std::string& unit)
              -> std::optional<std::tuple<double, double, double, double, bool>> {
            const AngleUnit wanted = ToUnit(unit);
            SDI::ScanDefPointC low;
            SDI::ScanDefPointC high;
            const std::optional<Tool::AreaBounds> bounds = Tool::MeasureBounds(self.File());
            if (!self.Area().GetBoundingPoints(low, high, true)) return {};
            return std::tuple(
                Tool::FromRadians(low.GetHz(), wanted), Tool::FromRadians(high.GetHz(), wanted),
                Tool::FromRadians(low.GetV(), wanted), Tool::FromRadians(high.GetV(), wanted),
                bounds && bounds->enclosesZenith);
          },
          "unit"_a)
      .def(
          "outline",
          [](const AreaC& self, double defaultDistance, const std::string& unit) {
            std::vector<SDI::ScanDefPointC> outline;
            self.Area().GetOutline(outline, defaultDistance);
            return ToTriples(outline, ToUnit(unit));
          },
          "default_distance"_a, "unit"_a)
      .def("solid_angle",
           [](const AreaC& self) -> std::optional<double> {
             const nb::gil_scoped_release unlocked;
             const std::optional<Tool::AreaBounds> bounds = Tool::MeasureBounds(self.File());
             if (!bounds) return {};
             return Tool::MeasureSolidAngle(self.File(), *bounds).steradians;
           })
      .def(
          "contains",
          [](const AreaC& self, double hz, double v, const std::string& unit) {
            const AngleUnit given = ToUnit(unit);
            self.RequireValid();
            return self.Area().Contains(Tool::ToRadians(hz, given), Tool::ToRadians(v, given));
          },
          "hz"_a, "v"_a, "unit"_a)
      .def(
          "explain",
          [](const AreaC& self, double hz, double v, const std::string& unit) {
            const AngleUnit given = ToUnit(unit);
            return InUnit(
                self.Area().Explain(Tool::ToRadians(hz, given), Tool::ToRadians(v, given)), given);
          },
          "hz"_a, "v"_a, "unit"_a)
      .def_static(
          "prepare",
          [](std::shared_ptr<const AreaC> self, bool many) {
            self->RequireValid();
            const nb::gil_scoped_release unlocked;
            return std::make_unique<PreparedC>(std::move(self), many);
          },
          "area"_a, "many"_a)
      .def(
          "svg",
          [](const AreaC& self, const Pairs& probes, const std::optional<Window>& window,
             const std::string& unit) {
            const AngleUnit given = ToUnit(unit);
            const nb::gil_scoped_release unlocked;
            return Draw(self, probes, window, given);
          },
          "probes"_a, "window"_a.none(), "unit"_a);

  using SDI::ScanC;
  const auto text = [](const char* name, auto get, auto set, std::size_t most) {
    return MakeText<ScanC>(name, get, set, most);
  };
  const auto value = [](const char* name, auto get, auto set) {
    return MakeProperty<ScanC>(name, get, set);
  };
  BindDataClass<ScanC>(module, "ScanCore", "A scan without its area.",
                       text("text_1", &ScanC::GetText1, &ScanC::SetText1, 32),
                       text("text_2", &ScanC::GetText2, &ScanC::SetText2, 32),
                       text("text_3", &ScanC::GetText3, &ScanC::SetText3, 255),
                       text("text_4", &ScanC::GetText4, &ScanC::SetText4, 64),
                       value("value_1", &ScanC::GetValue1, &ScanC::SetValue1),
                       value("value_2", &ScanC::GetValue2, &ScanC::SetValue2),
                       value("value_3", &ScanC::GetValue3, &ScanC::SetValue3),
                       value("value_4", &ScanC::GetValue4, &ScanC::SetValue4),
                       value("word_1", &ScanC::GetWord1, &ScanC::SetWord1),
                       value("word_2", &ScanC::GetWord2, &ScanC::SetWord2))
      .def(
          "assign", [](ScanC& self, const ScanC& other) { self = other; }, "other"_a)
      .def("get_area",
           [](const ScanC& self) -> std::shared_ptr<const AreaC> {
             if (self.GetArea() == nullptr) return nullptr;
             return std::make_shared<const AreaC>(Tool::AreaFile{
                 .name = {}, .unit = AngleUnit::kRad, .area = CopyOf(*self.GetArea())});
           })
      .def(
          "set_area",
          [](ScanC& self, const AreaC* area) {
            if (area != nullptr) {
              self.SetArea(&area->Area());
            } else {
              self.CreateArea(0);  // not a kind: removes the area
            }
          },
          "area"_a.none());
}

}  // namespace Python
