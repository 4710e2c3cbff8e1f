#include "area_picture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include <surveydata/sphere_geometry/great_circle_arc.h>

#include "area_measure.h"
#include "chart.h"
#include "svg.h"

namespace Tool {
namespace {

using GMAT::AnglePointC;

constexpr double kWidth = 1100;
constexpr double kHeight = 540;
constexpr double kPlaneLeft = 76;
constexpr double kPlaneTop = 112;
constexpr double kPlaneWidth = 600;
constexpr double kPlaneHeight = 300;
constexpr SvgPoint kPole{904, 262};
constexpr double kRadius = 150;
constexpr double kLegendTop = 500;
constexpr int kRows = 360;

// Colours that people with any colour vision tell apart, in shades that differ as well.
constexpr std::string_view kInsideFill = "#cfe3f3";
constexpr std::string_view kQuiet = "#555555";
constexpr std::string_view kFault = "#cc3311";
constexpr std::string_view kInsideProbe = "#117733";
constexpr std::string_view kOutsideProbe = "#aa3377";
constexpr SvgStroke kGrid{"#e3e3e3", 1.0};
constexpr SvgStroke kFrame{"#555555", 1.0};
constexpr SvgStroke kEdge{"#0072b2", 2.0};
constexpr SvgStroke kFaultyEdge{kFault, 2.4};
constexpr SvgStroke kNoArc{kFault, 1.2, "2 3"};
constexpr SvgStroke kBounds{"#333333", 1.1, "6 4"};
constexpr SvgStroke kLowest{"#d55e00", 1.2, "9 3 2 3"};

using Curve = std::function<AnglePointC(double)>;
using Map = std::function<SvgPoint(const AnglePointC&)>;

// More corners than this are too close for dots, and their edges too short to be halved for
// nothing.
constexpr std::size_t kMany = 1000;

// An edge from t = 0 to t = 1, Hz in one continuous frame.
struct EdgeCurve {
  Curve at;
  bool isArc;  // or a straight line in the plane
  bool isFaulty;
};

Curve Straight(const AnglePointC& a, const AnglePointC& b) {
  return [a, b](double t) { return AnglePointC{a.Hz + t * (b.Hz - a.Hz), a.V + t * (b.V - a.V)}; };
}

// Along the meridian of `other` to the pole, then through every Hz there.
Curve ThroughPole(const AnglePointC& other, const AnglePointC& pole, bool isReversed) {
  const AnglePointC turn{other.Hz, pole.V};
  return [=](double t) {
    const double s = isReversed ? 1 - t : t;
    return s < 0.5 ? Straight(other, turn)(2 * s) : Straight(turn, pole)(2 * s - 1);
  };
}

// The arc by its share of the angle between its ends.
Curve Arc(const AnglePointC& a, const AnglePointC& b) {
  const auto isPole = [](const AnglePointC& p) { return GMAT::IsPole(GMAT::HALF_PI - p.V); };
  if (isPole(b)) return ThroughPole(a, b, false);
  if (isPole(a)) return ThroughPole(b, a, true);
  const GMAT::cVec3 p = GMAT::SpherePointC(a).GetUnit();
  const GMAT::cVec3 q = GMAT::SpherePointC(b).GetUnit();
  const double dot = p[0] * q[0] + p[1] * q[1] + p[2] * q[2];
  const double angle = std::acos(std::clamp(dot, -1.0, 1.0));
  const double sine = std::sin(angle);
  if (!(sine > 1e-9)) return Straight(a, b);
  return [=](double t) {
    const double f = std::sin((1 - t) * angle) / sine;
    const double g = std::sin(t * angle) / sine;
    const double x = f * p[0] + g * q[0];
    const double y = f * p[1] + g * q[1];
    const double z = f * p[2] + g * q[2];
    // At a pole every Hz is right: that of the nearer end is kept.
    const double level = std::hypot(x, y);
    const AnglePointC& near = t < 0.5 ? a : b;
    const double turn =
        level < 1e-9 ? 0.0 : std::remainder(std::atan2(y, x) - near.Hz, GMAT::TWO_PI);
    return AnglePointC{near.Hz + turn, std::atan2(level, z)};
  };
}

// The curve as the page shows it, to a quarter of a pixel.
void Sample(const Curve& curve, const Map& map, double t0, SvgPoint p0, double t1, SvgPoint p1,
            int depth, int least, std::vector<SvgPoint>& points) {
  constexpr int kMost = 14;
  constexpr double kFlat = 0.25;
  const double middle = (t0 + t1) / 2;
  const SvgPoint p = map(curve(middle));
  const double off = std::hypot(p.x - (p0.x + p1.x) / 2, p.y - (p0.y + p1.y) / 2);
  if (depth == kMost || (depth >= least && off < kFlat)) {
    points.push_back(p1);
    return;
  }
  Sample(curve, map, t0, p0, middle, p, depth + 1, least, points);
  Sample(curve, map, middle, p, t1, p1, depth + 1, least, points);
}

// `least` halvings are made in any case.
std::vector<SvgPoint> Sampled(const Curve& curve, const Map& map, int least = 3) {
  const SvgPoint first = map(curve(0));
  std::vector<SvgPoint> points = {first};
  Sample(curve, map, 0, first, 1, map(curve(1)), 0, least, points);
  return points;
}

bool IsDrawable(const AnglePointC& p) {
  constexpr double kMost = 100;
  return std::fabs(p.Hz) <= kMost && std::fabs(p.V) <= kMost;
}

// The numbers of the points, or of the edges, that break a rule.
std::set<std::size_t> Faulty(const AreaPicture& picture,
                             std::vector<std::size_t> AreaFault::*numbers) {
  std::set<std::size_t> faulty;
  for (const AreaFault& fault : picture.faults) {
    faulty.insert((fault.*numbers).begin(), (fault.*numbers).end());
  }
  return faulty;
}

std::vector<EdgeCurve> MakeEdges(const AreaPicture& picture) {
  std::vector<AnglePointC> edges;
  double hzOrigin = 0;
  const GMAT::SphereAreaC& sphere = picture.file.Sphere();
  const std::vector<AnglePointC>& corners = sphere.GetPoints();
  if (!std::all_of(corners.begin(), corners.end(), IsDrawable) ||
      !sphere.BuildEdgeList(edges, hzOrigin)) {
    return {};
  }
  const std::set<std::size_t> faulty = Faulty(picture, &AreaFault::edges);
  std::vector<EdgeCurve> curves;
  for (std::size_t i = 0; i < edges.size(); i += 2) {
    const AnglePointC a{edges[i].Hz + hzOrigin, edges[i].V};
    const AnglePointC b{edges[i + 1].Hz + hzOrigin, edges[i + 1].V};
    const bool isStraight = corners.size() == 2;
    const bool isArc =
        isStraight || GMAT::GreatCircleArcC(GMAT::SpherePointC(a), GMAT::SpherePointC(b)).IsValid();
    const bool isFaulty = faulty.contains(i / 2 + 1);
    curves.push_back({isStraight || !isArc ? Straight(a, b) : Arc(a, b), isArc, isFaulty});
  }
  return curves;
}

int LeastHalvings(const std::vector<EdgeCurve>& edges) { return edges.size() > kMany ? 0 : 3; }

const SvgStroke& EdgeStroke(const EdgeCurve& edge) {
  if (!edge.isArc) return kNoArc;
  return edge.isFaulty ? kFaultyEdge : kEdge;
}

void DrawProbe(SvgC& svg, SvgPoint at, bool isInside) {
  constexpr double kArm = 3.6;
  if (isInside) {
    svg.Dot(at, 4.6, "#ffffff");
    svg.Dot(at, 3.6, kInsideProbe);
    return;
  }
  for (const auto& [stroke, arm] : {std::pair{SvgStroke{"#ffffff", 4.4}, kArm + 1},
                                    std::pair{SvgStroke{kOutsideProbe, 2.2}, kArm}}) {
    svg.Line({at.x - arm, at.y - arm}, {at.x + arm, at.y + arm}, stroke);
    svg.Line({at.x - arm, at.y + arm}, {at.x + arm, at.y - arm}, stroke);
  }
}

// Dots at the corners, and their numbers outside of the turn that the ring makes there. Where there
// is no room for a number, it is left out. `show` gives a corner in the frame of `map`.
void DrawCorners(SvgC& svg, const AreaPicture& picture,
                 const std::function<AnglePointC(const AnglePointC&)>& show, const Map& map,
                 const std::function<bool(SvgPoint)>& isShown) {
  constexpr double kAway = 12;
  constexpr std::size_t kMostNumbered = 100;
  const std::vector<AnglePointC>& corners = picture.file.Sphere().GetPoints();
  const std::size_t n = corners.size();
  const std::set<std::size_t> faulty = Faulty(picture, &AreaFault::points);
  std::vector<SvgPoint> dots;
  for (std::size_t i = 0; i < n; ++i) {
    if (!IsDrawable(corners[i])) continue;
    const SvgPoint p = map(show(corners[i]));
    const bool isFaulty = faulty.contains(i + 1);
    if (!isShown(p) || (n > kMany && !isFaulty)) continue;
    svg.Dot(p, isFaulty ? 4.2 : 2.6, isFaulty ? kFault : kEdge.colour);
    dots.push_back(p);
  }
  std::vector<SvgPoint> numbers;
  const auto isFree = [&](SvgPoint at) {
    const auto isNear = [&](const std::vector<SvgPoint>& others, double x, double y) {
      return std::any_of(others.begin(), others.end(), [&](const SvgPoint& other) {
        return std::fabs(other.x - at.x) < x && std::fabs(other.y - at.y) < y;
      });
    };
    return !isNear(dots, 7, 8) && !isNear(numbers, 14, 12);
  };
  for (std::size_t i = 0; i < n && n <= kMostNumbered; ++i) {
    if (!IsDrawable(corners[i])) continue;
    const AnglePointC shown = show(corners[i]);
    const SvgPoint p = map(shown);
    if (!isShown(p)) continue;
    const auto towards = [&](const AnglePointC& other) {
      const AnglePointC next{shown.Hz + std::remainder(other.Hz - corners[i].Hz, GMAT::TWO_PI),
                             other.V};
      const SvgPoint q = IsDrawable(other) ? map(next) : p;
      const double length = std::max(std::hypot(q.x - p.x, q.y - p.y), 1e-9);
      return SvgPoint{(q.x - p.x) / length, (q.y - p.y) / length};
    };
    const SvgPoint before = towards(corners[(i + n - 1) % n]);
    const SvgPoint behind = towards(corners[(i + 1) % n]);
    SvgPoint away{-before.x - behind.x, -before.y - behind.y};
    const double length = std::hypot(away.x, away.y);
    away =
        length < 0.2 ? SvgPoint{before.y, -before.x} : SvgPoint{away.x / length, away.y / length};
    const SvgPoint at{p.x + kAway * away.x, p.y + kAway * away.y};
    if (!isFree(at)) continue;
    numbers.push_back(at);
    svg.Text(
        {at.x, at.y + 4}, fmt::format("{}", i + 1),
        {.size = 11, .anchor = "middle", .colour = faulty.contains(i + 1) ? kFault : kEdge.colour});
  }
}

// Tick marks of an angle from `first` to `last`, in the unit.
std::vector<double> AngleTicks(double first, double last, AngleUnit unit, int wanted) {
  const double range = last - first;
  double step = RoundStep(range / (wanted - 1));
  // Whole parts of a turn where much of it is shown.
  if (unit == AngleUnit::kDeg) {
    for (const double part : {15.0, 30.0, 45.0, 90.0}) {
      if (range > 90 && range / part <= wanted) {
        step = part;
        break;
      }
    }
  }
  std::vector<double> ticks;
  const double slack = step * 1e-6;
  const double before = std::ceil((first - slack) / step);
  for (int i = 0; (before + i) * step <= last + slack; ++i) ticks.push_back((before + i) * step);
  return ticks;
}

// Without the points that lie on the line between their neighbours.
std::vector<SvgPoint> Thinned(const std::vector<SvgPoint>& points) {
  constexpr double kFlat = 0.04;
  std::vector<SvgPoint> kept;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (i > 0 && i + 1 < points.size()) {
      const SvgPoint a = kept.back();
      const SvgPoint b = points[i + 1];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      const double area = (b.x - a.x) * (points[i].y - a.y) - (b.y - a.y) * (points[i].x - a.x);
      const double along = (b.x - a.x) * (points[i].x - a.x) + (b.y - a.y) * (points[i].y - a.y);
      if (std::fabs(area) < kFlat * length && 0 <= along && along <= length * length) continue;
    }
    kept.push_back(points[i]);
  }
  return kept;
}

class PlanePanelC {
 public:
  PlanePanelC(SvgC& svg, const AreaPicture& picture)
      : svg_(svg),
        picture_(picture),
        window_(picture.window.value_or(AngleWindow{0, GMAT::TWO_PI, 0, GMAT::PI})) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    DrawInside();
    svg_.EndClip();
    DrawAxes();
    svg_.BeginClip({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight);
    svg_.Line(At({window_.hzMin, GMAT::V_LIMIT}), At({window_.hzMax, GMAT::V_LIMIT}), kLowest);
    for (const EdgeCurve& edge : edges) {
      DrawTurned(edge.at, EdgeStroke(edge), LeastHalvings(edges));
    }
    if (bounds) DrawBounds(*bounds);
    svg_.EndClip();
    svg_.Rectangle({kPlaneLeft, kPlaneTop}, kPlaneWidth, kPlaneHeight, kFrame);
    DrawMarks();
  }

 private:
  SvgPoint At(const AnglePointC& p) const {
    return {kPlaneLeft + (p.Hz - window_.hzMin) / (window_.hzMax - window_.hzMin) * kPlaneWidth,
            kPlaneTop + (p.V - window_.vMin) / (window_.vMax - window_.vMin) * kPlaneHeight};
  }
  // The same direction, by full turns, where the window shows it if it does.
  AnglePointC Turned(const AnglePointC& p) const {
    constexpr double kSlack = 1e-9;
    const double turns = std::ceil((window_.hzMin - p.Hz) / GMAT::TWO_PI - kSlack);
    return {p.Hz + turns * GMAT::TWO_PI, p.V};
  }
  bool IsShown(SvgPoint p) const {
    constexpr double kSlack = 0.5;
    return p.x >= kPlaneLeft - kSlack && p.x <= kPlaneLeft + kPlaneWidth + kSlack &&
           p.y >= kPlaneTop - kSlack && p.y <= kPlaneTop + kPlaneHeight + kSlack;
  }

  void DrawInside() {
    std::vector<SvgPoint> points;
    for (const InsideStrip& strip : FindInside(*picture_.file.area, window_, kRows)) {
      points.clear();
      for (const InsideRun& run : strip) points.push_back(At({run.from, run.v}));
      for (auto run = strip.rbegin(); run != strip.rend(); ++run) {
        points.push_back(At({run->to, run->v}));
      }
      svg_.Polygon(Thinned(points), kInsideFill, {kInsideFill, 0.6});
    }
  }

  void DrawAxes() {
    const AngleUnit unit = picture_.file.unit;
    const auto inUnit = [&](double radians) { return FromRadians(radians, unit); };
    for (const double tick : AngleTicks(inUnit(window_.hzMin), inUnit(window_.hzMax), unit, 13)) {
      const double x = At({ToRadians(tick, unit), 0}).x;
      svg_.Line({x, kPlaneTop}, {x, kPlaneTop + kPlaneHeight}, kGrid);
      svg_.Line({x, kPlaneTop + kPlaneHeight}, {x, kPlaneTop + kPlaneHeight + 5}, kFrame);
      svg_.Text({x, kPlaneTop + kPlaneHeight + 20}, Label(tick), {.anchor = "middle"});
    }
    for (const double tick : AngleTicks(inUnit(window_.vMin), inUnit(window_.vMax), unit, 8)) {
      const double y = At({0, ToRadians(tick, unit)}).y;
      svg_.Line({kPlaneLeft, y}, {kPlaneLeft + kPlaneWidth, y}, kGrid);
      svg_.Line({kPlaneLeft - 5, y}, {kPlaneLeft, y}, kFrame);
      svg_.Text({kPlaneLeft - 9, y + 4.5}, Label(tick), {.anchor = "end"});
    }
    svg_.Text({kPlaneLeft + kPlaneWidth / 2, kPlaneTop + kPlaneHeight + 42},
              fmt::format("Hz [{}]", UnitName(unit)), {.anchor = "middle"});
    svg_.Text({24, kPlaneTop + kPlaneHeight / 2},
              fmt::format("V from the zenith [{}]", UnitName(unit)),
              {.anchor = "middle", .turned = -90});
    if (window_.vMin <= 0) {
      svg_.Text({kPlaneLeft + kPlaneWidth, kPlaneTop - 7}, "zenith",
                {.size = 12, .anchor = "end", .colour = kQuiet});
    }
    svg_.Text({kPlaneLeft, kPlaneTop - 7}, "Hz and V", {.isBold = true});
  }
  std::string Label(double tick) const { return fmt::format("{:.6g}", tick + 0.0); }

  // Once for each turn at which a part of it can be seen.
  void DrawTurned(const Curve& curve, const SvgStroke& stroke, int least) {
    const double a = curve(0).Hz;
    const double b = curve(1).Hz;
    const double reach = GMAT::PI;  // what an arc may go beyond its ends, over a pole
    const double first = std::ceil((window_.hzMin - std::max(a, b) - reach) / GMAT::TWO_PI);
    for (int i = 0;; ++i) {
      const double turn = (first + i) * GMAT::TWO_PI;
      if (!(std::min(a, b) - reach + turn <= window_.hzMax)) break;
      const auto shift = [&](const AnglePointC& p) { return At({p.Hz + turn, p.V}); };
      const auto points = Sampled(curve, shift, least);
      const auto [left, right] =
          std::minmax_element(points.begin(), points.end(),
                              [](const SvgPoint& p, const SvgPoint& q) { return p.x < q.x; });
      if (right->x < kPlaneLeft || left->x > kPlaneLeft + kPlaneWidth) continue;
      svg_.Polyline(points, stroke);
    }
  }

  void DrawBounds(const AreaBounds& bounds) {
    const AnglePointC corners[] = {{bounds.hzMin, bounds.vMin},
                                   {bounds.hzMax, bounds.vMin},
                                   {bounds.hzMax, bounds.vMax},
                                   {bounds.hzMin, bounds.vMax}};
    for (std::size_t i = 0; i < 4; ++i) {
      DrawTurned(Straight(corners[i], corners[(i + 1) % 4]), kBounds, 3);
    }
  }

  void DrawMarks() {
    const double lowest = At({0, GMAT::V_LIMIT}).y;
    if (lowest > kPlaneTop && lowest < kPlaneTop + kPlaneHeight) {
      const double v = FromRadians(GMAT::V_LIMIT, picture_.file.unit);
      svg_.Text({kPlaneLeft + kPlaneWidth + 5, lowest + 4}, fmt::format("{:.4g}", v),
                {.size = 11, .colour = kLowest.colour});
    }
    DrawCorners(
        svg_, picture_, [&](const AnglePointC& p) { return Turned(p); },
        [&](const AnglePointC& p) { return At(p); }, [&](SvgPoint p) { return IsShown(p); });
    for (const AreaProbe& probe : picture_.probes) {
      const SvgPoint at = At(Turned({probe.hz, probe.v}));
      if (IsShown(at)) DrawProbe(svg_, at, probe.isInside);
    }
  }

  SvgC& svg_;
  const AreaPicture& picture_;
  AngleWindow window_;
};

// Seen from the zenith: the distance from the middle is V, north (Hz 0) is up, Hz goes clockwise.
class PolarPanelC {
 public:
  PolarPanelC(SvgC& svg, const AreaPicture& picture) : svg_(svg), picture_(picture) {}

  void Draw(const std::vector<EdgeCurve>& edges, const std::optional<AreaBounds>& bounds) {
    DrawInside();
    DrawAxes();
    svg_.Circle(kPole, GMAT::V_LIMIT / GMAT::PI * kRadius, kLowest);
    for (const EdgeCurve& edge : edges) {
      svg_.Polyline(Sampled(edge.at, At, LeastHalvings(edges)), EdgeStroke(edge));
    }
    if (bounds) DrawBounds(*bounds);
    svg_.Circle(kPole, kRadius, kFrame);
    DrawCorners(
        svg_, picture_, [](const AnglePointC& p) { return p; }, At,
        [](SvgPoint /*p*/) { return true; });
    for (const AreaProbe& probe : picture_.probes) {
      if (0 <= probe.v && probe.v <= GMAT::PI) {
        DrawProbe(svg_, At({probe.hz, probe.v}), probe.isInside);
      }
    }
  }

 private:
  static SvgPoint At(const AnglePointC& p) {
    const double r = std::clamp(p.V, 0.0, GMAT::PI) / GMAT::PI * kRadius;
    return {kPole.x + r * std::sin(p.Hz), kPole.y - r * std::cos(p.Hz)};
  }

  void DrawInside() {
    std::vector<SvgPoint> points;
    const AngleWindow whole{0, GMAT::TWO_PI, 0, GMAT::PI};
    const auto append = [&](const AnglePointC& from, const AnglePointC& to) {
      const std::vector<SvgPoint> line = Sampled(Straight(from, to), At);
      points.insert(points.end(), line.begin(), line.end());
    };
    for (const InsideStrip& strip : FindInside(*picture_.file.area, whole, kRows)) {
      points.clear();
      const InsideRun& top = strip.front();
      const InsideRun& bottom = strip.back();
      for (const InsideRun& run : strip) points.push_back(At({run.from, run.v}));
      append({bottom.from, bottom.v}, {bottom.to, bottom.v});
      for (auto run = strip.rbegin(); run != strip.rend(); ++run) {
        points.push_back(At({run->to, run->v}));
      }
      append({top.to, top.v}, {top.from, top.v});
      svg_.Polygon(Thinned(points), kInsideFill, {kInsideFill, 0.6});
    }
  }

  void DrawAxes() {
    const AngleUnit unit = picture_.file.unit;
    const double half = HalfTurn(unit);
    const bool isRad = unit == AngleUnit::kRad;
    const double spoke = unit == AngleUnit::kGon ? 50 : isRad ? 1 : 30;
    for (int i = 0; i * spoke < 2 * half - 1e-9; ++i) {
      const double hz = i * spoke;
      const double radians = ToRadians(hz, unit);
      svg_.Line(kPole, At({radians, GMAT::PI}), kGrid);
      const double r = kRadius + 14;
      svg_.Text({kPole.x + r * std::sin(radians), kPole.y - r * std::cos(radians) + 4},
                fmt::format("{:.4g}", hz), {.size = 12, .anchor = "middle"});
    }
    const double ring = unit == AngleUnit::kGon ? 50 : isRad ? 0.5 : 30;
    for (int i = 1; i * ring < half - 1e-9; ++i) {
      svg_.Circle(kPole, ToRadians(i * ring, unit) / GMAT::PI * kRadius, kGrid);
    }
    svg_.Text({kPole.x, kPlaneTop - 26}, "seen from the zenith",
              {.anchor = "middle", .isBold = true});
    svg_.Text({kPole.x, kPlaneTop + kPlaneHeight + 42},
              fmt::format("rings every {:.4g} {} of V, nadir outside", ring, UnitName(unit)),
              {.size = 12, .anchor = "middle", .colour = kQuiet});
    svg_.Dot(kPole, 1.8, kQuiet);
  }

  void DrawBounds(const AreaBounds& bounds) {
    const AnglePointC corners[] = {{bounds.hzMin, bounds.vMin},
                                   {bounds.hzMax, bounds.vMin},
                                   {bounds.hzMax, bounds.vMax},
                                   {bounds.hzMin, bounds.vMax}};
    for (std::size_t i = 0; i < 4; ++i) {
      svg_.Polyline(Sampled(Straight(corners[i], corners[(i + 1) % 4]), At), kBounds);
    }
  }

  SvgC& svg_;
  const AreaPicture& picture_;
};

// One line below the panels: what is in the picture, and nothing else.
class LegendC {
 public:
  explicit LegendC(SvgC& svg) : svg_(svg) {}

  void Fill(std::string_view text) {
    svg_.Rectangle({x_, kLegendTop - 11}, kSample, 12, kInsideFill);
    Label(text);
  }
  void Stroke(const SvgStroke& stroke, std::string_view text) {
    svg_.Line({x_, kLegendTop - 4.5}, {x_ + kSample, kLegendTop - 4.5}, stroke);
    Label(text);
  }
  void Probe(bool isInside, std::string_view text) {
    DrawProbe(svg_, {x_ + kSample / 2, kLegendTop - 4.5}, isInside);
    Label(text);
  }

 private:
  static constexpr double kSample = 26;

  void Label(std::string_view text) {
    constexpr double kLetter = 6.6;
    svg_.Text({x_ + kSample + 7, kLegendTop}, text);
    x_ += kSample + 30 + kLetter * static_cast<double>(text.size());
  }

  SvgC& svg_;
  double x_ = kPlaneLeft;
};

void DrawLegend(SvgC& svg, const AreaPicture& picture, const std::vector<EdgeCurve>& edges,
                bool hasBounds) {
  LegendC legend(svg);
  legend.Fill("inside");
  const auto has = [&](const SvgStroke& stroke) {
    return std::any_of(edges.begin(), edges.end(),
                       [&](const EdgeCurve& edge) { return &EdgeStroke(edge) == &stroke; });
  };
  if (has(kEdge)) legend.Stroke(kEdge, "edge");
  if (has(kFaultyEdge)) legend.Stroke(kFaultyEdge, "crossing edge");
  if (has(kNoArc)) legend.Stroke(kNoArc, "edge that is no arc");
  if (hasBounds) legend.Stroke(kBounds, "bounds");
  legend.Stroke(kLowest, "lowest direction");
  for (const bool isInside : {true, false}) {
    const auto count =
        std::count_if(picture.probes.begin(), picture.probes.end(),
                      [&](const AreaProbe& probe) { return probe.isInside == isInside; });
    if (count > 0) {
      legend.Probe(isInside, fmt::format("asked: {} ({})", isInside ? "inside" : "outside", count));
    }
  }
}

std::string Subtitle(const AreaPicture& picture, const std::optional<AreaBounds>& bounds) {
  const AreaFile& file = picture.file;
  std::string text(KindName(*file.area));
  if (file.area->GetType() == SDI::kPolygonArea) {
    text += fmt::format(", {} points", file.Sphere().GetPoints().size());
  }
  if (bounds && bounds->enclosesZenith) text += ", encloses the zenith";
  if (picture.faults.empty()) return text + ", valid";
  text += ", not valid: " + picture.faults.front().text;
  if (picture.faults.size() > 1) text += fmt::format(", and {} more", picture.faults.size() - 1);
  return text;
}

}  // namespace

std::string DrawArea(const AreaPicture& picture) {
  const std::optional<AreaBounds> bounds = MeasureBounds(picture.file);
  const std::vector<EdgeCurve> edges = MakeEdges(picture);
  SvgC svg(kWidth, kHeight, picture.file.name);
  svg.Text({kPlaneLeft, 34}, picture.file.name, {.size = 19, .isBold = true});
  svg.Text({kPlaneLeft, 56}, Subtitle(picture, bounds),
           {.colour = picture.faults.empty() ? kQuiet : kFault});
  PlanePanelC(svg, picture).Draw(edges, bounds);
  PolarPanelC(svg, picture).Draw(edges, bounds);
  DrawLegend(svg, picture, edges, bounds.has_value());
  return std::move(svg).Finish();
}

}  // namespace Tool
