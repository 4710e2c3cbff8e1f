// For arbitrary points and directions, every answer of a sphere area and of its prepared area
// equals that of the literal step-by-step rules, bit for bit.

#include <cmath>
#include <iterator>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/support/compare_areas.h"
#include "tests/support/literal_sphere_area.h"

namespace {

constexpr std::size_t kMostPoints = 24;
constexpr std::size_t kMostProbes = 6;

// An angle within `range`, or at an edge case of the rules.
double Angle(Fuzz::InputC& in, double range, double previous) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double specials[] = {0.0,
                             -0.0,
                             GMAT::TWO_PI,
                             std::nextafter(GMAT::TWO_PI, 0.0),
                             std::nextafter(0.0, 1.0),
                             GMAT::V_LIMIT,
                             kInfinity,
                             std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::max()};
  switch (in.Below(8)) {
    case 0:
    case 1:
      return in.U16() * range / 65536;
    case 2:
      return static_cast<double>(in.Below(33)) * range / 32;
    case 3:
      return previous;
    case 4: {  // off by units in the last place
      const auto units = in.Take<std::int8_t>();
      double angle = previous;
      for (int i = 0; i < std::abs(units); ++i) {
        angle = std::nextafter(angle, units < 0 ? -kInfinity : kInfinity);
      }
      return angle;
    }
    case 5: {  // off by about a tolerance
      const auto factor = in.Take<std::int8_t>();
      return previous + factor * std::pow(10.0, -static_cast<double>(in.Below(14)));
    }
    case 6:
      return specials[in.Below(std::size(specials))];
    default:
      return in.Take<double>();
  }
}

GMAT::AnglePointC Direction(Fuzz::InputC& in, const GMAT::AnglePointC& previous) {
  const double hz = Angle(in, GMAT::TWO_PI, previous.Hz);
  const double v = Angle(in, GMAT::PI, previous.V);
  return {hz, v};
}

// An area with the points of another one, built by different operations.
GMAT::SphereAreaC Rebuilt(const GMAT::SphereAreaC& area) {
  GMAT::SphereAreaC other;
  other.AddPoint(1.0, 2.0);
  other.Clear();
  other.RemoveLastPoint();  // of an empty area
  other.AddPoints(area.GetPoints());
  other.AddPoint(1.0, 2.0);
  other.RemoveLastPoint();
  return other;
}

}  // namespace

// Input: the number of points, the points, directions up to the end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  GMAT::SphereAreaC area;
  literal::SphereArea rules;
  SDI::ScanPolygonAreaC polygon;
  GMAT::AnglePointC point{1.0, 1.0};
  for (std::size_t i = in.Below(kMostPoints + 1); i > 0; --i) {
    point = Direction(in, point);
    area.AddPoint(point.Hz, point.V);
    rules.AddPoint(point.Hz, point.V);
    polygon.AddPoint(SDI::ScanDefPointC(point.Hz, point.V, -1.0));
  }
  CompareAreas::Tally tally;
  CompareAreas::CompareRing(area, rules, tally);
  const GMAT::SphereAreaC rebuilt = Rebuilt(area);
  CompareAreas::CompareRing(rebuilt, rules, tally);
  const SDI::PreparedAreaC prepared(polygon);
  const SDI::PreparedAreaC withRaster(polygon, SDI::PreparedAreaC::Questions::kMany);
  const GMAT::PreparedSphereAreaC withOrder(area, false, 0.0);  // as of very many edges
  std::vector<double> hz;
  std::vector<double> v;
  for (std::size_t i = 0; i < kMostProbes && !in.IsEmpty(); ++i) {
    if (!area.GetPoints().empty() && in.Flag()) {
      point = area.GetPoints()[in.Below(area.GetPointCount())];
    }
    point = Direction(in, point);
    CompareAreas::CompareLines(area, rules, point, tally);
    CompareAreas::CompareProbe(area, rules, point, tally);
    const bool isInside = rules.Contains(point.Hz, point.V);
    EXPECT_EQ(prepared.Contains(point.Hz, point.V), isInside);
    EXPECT_EQ(withRaster.Contains(point.Hz, point.V), isInside);
    EXPECT_EQ(withOrder.Ask(point.Hz, point.V).isInside, isInside);
    EXPECT_EQ(polygon.Contains(point.Hz, point.V), isInside);
    EXPECT_EQ(rebuilt.Contains(point.Hz, point.V), isInside);
    const SDI::AreaExplanation why = polygon.Explain(point.Hz, point.V);
    const SDI::AreaExplanation samePrepared = prepared.Explain(point.Hz, point.V);
    EXPECT_EQ(why.isInside, isInside);
    EXPECT_EQ(samePrepared.isInside, isInside);
    EXPECT_EQ(samePrepared.rule, why.rule);
    EXPECT_EQ(samePrepared.bandEdge, why.bandEdge);
    EXPECT_EQ(samePrepared.nearestEdge, why.nearestEdge);
    EXPECT_EQ(samePrepared.crossings.size(), why.crossings.size());
    EXPECT_GE(why.distance, 0.0);
    EXPECT_EQ(why.nearestEdge == SDI::AreaExplanation::kNoEdge,
              why.distance == std::numeric_limits<double>::max());
    hz.push_back(point.Hz);
    v.push_back(point.V);
  }
  bool inside[kMostProbes] = {};
  prepared.Contains(hz, v, inside);
  bool insideByRaster[kMostProbes] = {};
  withRaster.Contains(hz, v, insideByRaster);
  for (std::size_t i = 0; i < hz.size(); ++i) {
    EXPECT_EQ(inside[i], prepared.Contains(hz[i], v[i]));
    EXPECT_EQ(insideByRaster[i], inside[i]);
  }
  return 0;
}
