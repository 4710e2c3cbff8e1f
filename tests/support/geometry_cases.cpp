#include "tests/support/geometry_cases.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <sstream>
#include <stdexcept>

#include <surveydata/sphere_geometry/great_circle_arc.h>
#include <surveydata/sphere_geometry/sphere_area.h>
#include <surveydata/sphere_geometry/sphere_point.h>

#include "tests/support/ring_generator.h"

namespace GeometryCases {
namespace {

using GMAT::AnglePointC;
using Numbers = std::vector<double>;

// The initial value of an output, which shows whether an operation changes it.
constexpr double kUntouched = -1.0;

double YesNo(bool answer) { return answer ? 1.0 : 0.0; }

GMAT::SphereAreaC AreaOf(const std::vector<AnglePointC>& points) {
  GMAT::SphereAreaC area;
  area.AddPoints(points);
  return area;
}

GMAT::GreatCircleArcC ArcOf(const Numbers& ends) {
  return {GMAT::SpherePointC(AnglePointC{ends[0], ends[1]}),
          GMAT::SpherePointC(AnglePointC{ends[2], ends[3]})};
}

struct Question {
  const char* name;
  Source source;
  std::size_t given;
  Numbers (*answer)(const std::vector<AnglePointC>& area, const Numbers& given);
};

const Question kQuestions[] = {
    {"sin", Source::kRuntime, 1, [](auto&, auto& x) { return Numbers{std::sin(x[0])}; }},
    {"cos", Source::kRuntime, 1, [](auto&, auto& x) { return Numbers{std::cos(x[0])}; }},
    {"tan", Source::kRuntime, 1, [](auto&, auto& x) { return Numbers{std::tan(x[0])}; }},
    {"atan", Source::kRuntime, 1, [](auto&, auto& x) { return Numbers{std::atan(x[0])}; }},
    {"acos", Source::kRuntime, 1, [](auto&, auto& x) { return Numbers{std::acos(x[0])}; }},
    {"atan2", Source::kRuntime, 2, [](auto&, auto& x) { return Numbers{std::atan2(x[0], x[1])}; }},

    {"normalize", Source::kArithmetic, 1,
     [](auto&, auto& x) { return Numbers{GMAT::NormalizeAngle(x[0])}; }},
    {"wrap", Source::kArithmetic, 3,
     [](auto&, auto& x) {
       double a = x[0];
       const bool isDone = GMAT::WrapIntoRange(a, x[1], x[2]);
       return Numbers{YesNo(isDone), a};
     }},
    {"firstFace", Source::kArithmetic, 2,
     [](auto&, auto& x) {
       AnglePointC p{x[0], x[1]};
       GMAT::ToFirstFace(p);
       return Numbers{p.Hz, p.V};
     }},
    {"roundToStep", Source::kArithmetic, 2,
     [](auto&, auto& x) { return Numbers{GMAT::RoundToStep(x[0], x[1])}; }},
    {"inRange", Source::kArithmetic, 3,
     [](auto&, auto& x) {
       return Numbers{YesNo(GMAT::InRange(x[0], x[1], x[2])), YesNo(GMAT::AtLeast(x[0], x[1])),
                      YesNo(GMAT::AtMost(x[0], x[1]))};
     }},
    {"lineDistance", Source::kArithmetic, 6,
     [](auto&, auto& x) {
       return Numbers{GMAT::PlanarLineDistance({x[0], x[1]}, {x[2], x[3]}, {x[4], x[5]})};
     }},
    {"edges", Source::kArithmetic, 0,
     [](auto& area, auto&) {
       std::vector<AnglePointC> edges;
       double hzOrigin = kUntouched;
       const bool isDone = AreaOf(area).BuildEdgeList(edges, hzOrigin);
       Numbers answer{YesNo(isDone), hzOrigin};
       for (const AnglePointC& p : edges) answer.insert(answer.end(), {p.Hz, p.V});
       return answer;
     }},
    {"distance", Source::kArithmetic, 2,
     [](auto& area, auto& x) { return Numbers{AreaOf(area).DistanceToBoundary(x[0], x[1])}; }},

    {"unit", Source::kGeometry, 2,
     [](auto&, auto& x) {
       const GMAT::SpherePointC point(AnglePointC{x[0], x[1]});
       const GMAT::cVec3& unit = point.GetUnit();
       return Numbers{unit.X(), unit.Y(), unit.Z()};
     }},
    {"course", Source::kGeometry, 4,
     [](auto&, auto& x) {
       const GMAT::GreatCircleArcC arc = ArcOf(x);
       return Numbers{YesNo(arc.IsValid()), YesNo(arc.IsMeridian()), arc.GetCourse()};
     }},
    {"vertex", Source::kGeometry, 4,
     [](auto&, auto& x) {
       double latitude = kUntouched;
       double longitude = kUntouched;
       const bool isDone = ArcOf(x).GetVertex(latitude, longitude);
       return Numbers{YesNo(isDone), latitude, longitude};
     }},
    {"latitudeCrossings", Source::kGeometry, 5,
     [](auto&, auto& x) {
       double first = kUntouched;
       double second = kUntouched;
       const bool isDone = ArcOf(x).GetLatitudeCrossings(x[4], first, second);
       return Numbers{YesNo(isDone), first, second};
     }},
    {"valid", Source::kGeometry, 0,
     [](auto& area, auto&) { return Numbers{YesNo(AreaOf(area).IsValid())}; }},
    {"extents", Source::kGeometry, 1,
     [](auto& area, auto& x) {
       double hzMin = kUntouched;
       double hzMax = kUntouched;
       double vMin = kUntouched;
       double vMax = kUntouched;
       bool enclosesZenith = false;
       const bool isDone =
           AreaOf(area).GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith, x[0] != 0.0);
       return Numbers{YesNo(isDone), YesNo(enclosesZenith), hzMin, hzMax, vMin, vMax};
     }},
    {"contains", Source::kGeometry, 2,
     [](auto& area, auto& x) { return Numbers{YesNo(AreaOf(area).Contains(x[0], x[1]))}; }},
    {"line", Source::kGeometry, 3,
     [](auto& area, auto& x) {
       std::vector<AnglePointC> crossings;
       const bool isDone = AreaOf(area).SearchLine({x[0], x[1]}, x[2] != 0.0, crossings);
       Numbers answer{YesNo(isDone), static_cast<double>(crossings.size())};
       for (const AnglePointC& p : crossings) answer.insert(answer.end(), {p.Hz, p.V});
       return answer;
     }},
};

const Question& Find(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(kQuestions), std::end(kQuestions),
                   [name](const Question& question) { return question.name == name; });
  if (found == std::end(kQuestions))
    throw std::runtime_error("unknown question " + std::string(name));
  return *found;
}

Numbers ReadNumbers(std::istream& in, const std::string& line) {
  Numbers numbers;
  for (std::string word; in >> word && word != "=";) {
    char* end = nullptr;
    numbers.push_back(std::strtod(word.c_str(), &end));
    if (*end != '\0') throw std::runtime_error(word + " is not a number in " + line);
  }
  return numbers;
}

}  // namespace

std::string_view NameOf(Source source) {
  switch (source) {
    case Source::kArithmetic:
      return "arithmetic";
    case Source::kRuntime:
      return "runtime";
    case Source::kGeometry:
      return "geometry";
  }
  return {};
}

std::vector<double> Answer(const Case& question) {
  const Question& known = Find(question.question);
  if (question.given.size() != known.given) {
    throw std::runtime_error("wrong number of values for " + question.question);
  }
  return known.answer(question.area, question.given);
}

void ForEach(std::istream& file, const std::function<void(const Case&)>& visit) {
  Case next;
  for (std::string line; std::getline(file, line);) {
    std::istringstream in(line);
    std::string first;
    if (!(in >> first) || first.starts_with('#')) continue;
    if (first == "area") {
      const Numbers numbers = ReadNumbers(in, line);
      next.area.clear();
      for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
        next.area.push_back({numbers[i], numbers[i + 1]});
      }
      continue;
    }
    in >> next.question;
    next.source = Find(next.question).source;
    if (first != NameOf(next.source)) throw std::runtime_error("wrong source in " + line);
    next.given = ReadNumbers(in, line);
    next.answers = ReadNumbers(in, line);
    visit(next);
  }
}

void MakeUp(std::uint64_t seed, const std::function<void(const Case&)>& visit) {
  constexpr int kNumbers = 40;  // cases per question about numbers
  constexpr int kAreas = 90;
  constexpr int kProbes = 4;  // per area
  RingGenerator random(seed);
  const auto ask = [&](const char* question, const std::vector<AnglePointC>& area, Numbers given) {
    visit({Find(question).source, question, area, std::move(given), {}});
  };
  const auto angle = [&] { return random.Uniform(-10.0, 10.0); };
  for (int i = 0; i < kNumbers; ++i) {
    for (const char* const function : {"sin", "cos", "tan", "atan"}) ask(function, {}, {angle()});
    ask("acos", {}, {random.Uniform(-1.0, 1.0)});
    ask("atan2", {}, {angle(), angle()});
  }
  for (int i = 0; i < kNumbers; ++i) {
    const std::vector<AnglePointC> few = random.Ring(5, false);
    const AnglePointC p = few.front();
    const AnglePointC q = few.back();
    const double lo = angle();
    ask("normalize", {}, {p.Hz + 20.0 * angle()});
    ask("wrap", {}, {5.0 * angle(), lo, lo + GMAT::TWO_PI});
    ask("firstFace", {}, {p.Hz, 2.0 * p.V});
    ask("roundToStep", {}, {angle(), 1e-10});
    ask("inRange", {}, {p.Hz + 1e-11 * angle(), p.Hz, q.Hz});
    ask("lineDistance", {}, {angle(), angle(), p.Hz, p.V, q.Hz, q.V});
    ask("unit", {}, {p.Hz, p.V});
    ask("course", {}, {p.Hz, p.V, q.Hz, q.V});
    ask("vertex", {}, {p.Hz, p.V, q.Hz, q.V});
    ask("latitudeCrossings", {}, {p.Hz, p.V, q.Hz, q.V, random.Uniform(-1.0, 1.0)});
  }
  for (int i = 0; i < kAreas; ++i) {
    const std::vector<AnglePointC> ring = random.Ring(i % 10 == 0 ? 20 : 7, false);
    ask("valid", ring, {});
    ask("edges", ring, {});
    for (const double noClamp : {0.0, 1.0}) ask("extents", ring, {noClamp});
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    AreaOf(ring).BuildEdgeList(edges, hzOrigin);
    for (int k = 0; k < kProbes; ++k) {
      const AnglePointC p = random.Probe(edges, hzOrigin, false);
      ask("distance", ring, {p.Hz, p.V});
      ask("contains", ring, {p.Hz, p.V});
      ask("line", ring, {p.Hz, p.V, YesNo(k % 2 == 0)});
    }
  }
}

}  // namespace GeometryCases
