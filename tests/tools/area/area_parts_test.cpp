#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_dome_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/scanning/scan_rectangular_area.h>
#include <surveydata/sphere_geometry/angles.h>
#include <surveydata/sphere_geometry/area_probe.h>

#include <area/area_faults.h>
#include <area/area_file.h>
#include <area/area_inside.h>
#include <area/area_measure.h>

#include "tests/support/number_of_cases.h"
#include "tests/support/ring_generator.h"
#include "tests/tools/program.h"

namespace {

using GMAT::AnglePointC;
using Tool::AngleUnit;
using Tool::AreaFile;

constexpr double kDegree = GMAT::PI / 180;

AreaFile MakeArea(std::unique_ptr<SDI::ScanAreaC> area, const std::vector<AnglePointC>& points,
                  double hzStep = 0.1, double vStep = 0.1) {
  for (const AnglePointC& p : points) area->AddPoint(SDI::ScanDefPointC(p.Hz, p.V, -1));
  area->SetSteps(hzStep, vStep);
  return {"made", AngleUnit::kRad, std::move(area)};
}

AreaFile MakePolygon(const std::vector<std::pair<double, double>>& degrees, double step = 0.1) {
  std::vector<AnglePointC> points;
  for (const auto& [hz, v] : degrees) points.push_back({hz * kDegree, v * kDegree});
  return MakeArea(std::make_unique<SDI::ScanPolygonAreaC>(), points, step, step);
}

AreaFile MakeRectangle(double hz0, double v0, double hz1, double v1, double step = 0.1) {
  return MakeArea(std::make_unique<SDI::ScanRectangularAreaC>(),
                  {{hz0 * kDegree, v0 * kDegree}, {hz1 * kDegree, v1 * kDegree}}, step, step);
}

TEST(AreaFaults, HaveNamesAndTexts) {
  using Numbers = std::vector<std::size_t>;
  const struct {
    AreaFile file;
    std::string_view rule;
    Numbers points;
    Numbers edges;
    std::string_view text;
  } cases[] = {
      {MakePolygon({{10, 10}, {20, 20}}),
       "pointCount",
       {},
       {},
       "a polygon has 3 or more points, not 2"},
      {MakeArea(std::make_unique<SDI::ScanRectangularAreaC>(), {}),
       "pointCount",
       {},
       {},
       "a rectangle has 2 corners, not 0"},
      {MakeArea(std::make_unique<SDI::ScanDomeAreaC>(), {}, 0.0, 0.1),
       "hzStepNotPositive",
       {},
       {},
       "the Hz step is 0, not above 0"},
      {MakeArea(std::make_unique<SDI::ScanDomeAreaC>(), {}, 0.1, -1.0),
       "vStepNotPositive",
       {},
       {},
       "the V step is -1.0000000, not above 0"},
      {MakePolygon({{0, 10}, {20, 10}, {361, 40}}),
       "pointOutOfRange",
       {3},
       {},
       "point 3 (Hz 6.3006386, V 0.6981317) is out of range: Hz goes from 0 to 6.283185"},
      {MakePolygon({{0, 10}, {20, 10}, {0, -40}}),
       "pointOutOfRange",
       {3},
       {},
       "point 3 (Hz 0.0000000, V -0.6981317) is out of range: V goes from 0 to 3.141593"},
      {MakePolygon({{0, 10}, {20, 10}, {20, 40}, {0, 10}}),
       "equalPoints",
       {1, 4},
       {},
       "points 1 and 4 are equal (Hz 0.0000000, V 0.1745329): a polygon closes itself, its first "
       "point is not repeated"},
      {MakePolygon({{0, 10}, {20, 10}, {20, 40}, {20, 10}, {5, 20}}),
       "equalPoints",
       {2, 4},
       {},
       "points 2 and 4 are equal (Hz 0.3490659, V 0.1745329)"},
      {MakeRectangle(0, 10, 0, 20),
       "equalHz",
       {1, 2},
       {},
       "both corners have Hz 0.0000000: the rectangle has no width"},
      {MakeRectangle(0, 90, 20, 90),
       "equalV",
       {1, 2},
       {},
       "both corners have V 1.5707963: the rectangle has no height"},
      {MakePolygon({{100, 60}, {160, 100}, {160, 60}, {100, 100}}),
       "crossingEdges",
       {},
       {1, 3},
       "edges 1 (point 1 to 2) and 3 (point 3 to 4) cross near Hz "},
  };
  for (const auto& [file, rule, points, edges, text] : cases) {
    SCOPED_TRACE(rule);
    const std::vector<Tool::AreaFault> faults = Tool::FindAreaFaults(file);
    ASSERT_EQ(faults.size(), 1U);
    EXPECT_EQ(faults[0].rule, rule);
    EXPECT_EQ(faults[0].points, points);
    EXPECT_EQ(faults[0].edges, edges);
    EXPECT_EQ(std::string_view(faults[0].text).substr(0, text.size()), text);
    EXPECT_EQ(faults[0].text.size() == text.size(), rule != "crossingEdges");
  }
}

// The area between an edge and the zenith, from two sides and the angle between them.
double ExcessToZenith(const AnglePointC& a, const AnglePointC& b) {
  const double turn = std::remainder(b.Hz - a.Hz, GMAT::TWO_PI);
  const double t = std::tan(a.V / 2) * std::tan(b.V / 2);
  return 2 * std::atan2(t * std::sin(turn), 1 + t * std::cos(turn));
}

double RingArea(const AreaFile& file) {
  const std::vector<AnglePointC>& ring = file.Sphere().GetPoints();
  double sum = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    sum += ExcessToZenith(ring[i], ring[(i + 1) % ring.size()]);
  }
  return std::fabs(sum);
}

Tool::SolidAngle Measured(const AreaFile& file) {
  return Tool::MeasureSolidAngle(file, Tool::MeasureBounds(file).value());
}

TEST(SolidAngle, OfPolygonsIsTheirSphericalExcess) {
  const Tool::SolidAngle octant = Measured(MakePolygon({{0, 90}, {90, 90}, {90, 0}}));
  EXPECT_NEAR(octant.steradians, GMAT::HALF_PI, octant.accuracy);
  EXPECT_LT(octant.accuracy, 1e-13);

  std::mt19937_64 random(20260101);
  std::uniform_real_distribution<double> uniform(0, 1);
  for (int i = 0; i < 40; ++i) {
    SCOPED_TRACE(i);
    // Stars near the horizon, and rings around the zenith.
    const bool isAroundZenith = i % 2 == 1;
    const int corners = 3 + static_cast<int>(uniform(random) * 20);
    const double middle = uniform(random) * 360;
    std::vector<std::pair<double, double>> points;
    for (int k = 0; k < corners; ++k) {
      const double angle = 2 * GMAT::PI * (k + 0.8 * uniform(random)) / corners;
      const double radius = 10 + 25 * uniform(random);
      points.push_back(isAroundZenith
                           ? std::pair(angle / kDegree, 30 + 3 * radius / 2)
                           : std::pair(std::fmod(middle + 360 + radius * std::cos(angle), 360.0),
                                       90 + radius * std::sin(angle)));
    }
    if (isAroundZenith && corners < 5) continue;  // edges beyond half a turn
    const AreaFile file = MakePolygon(points);
    ASSERT_TRUE(file.area->IsValid());
    const Tool::SolidAngle found = Measured(file);
    constexpr double kOfRingArea = 1e-13;
    EXPECT_NEAR(found.steradians, RingArea(file), found.accuracy + kOfRingArea);
    EXPECT_LT(found.accuracy, 1e-12);
    EXPECT_LT(found.band, 1e-3);
  }
}

// The solid angle of the inside, estimated with random directions.
double Thrown(const AreaFile& file, double& deviation) {
  constexpr int kThrows = TestSupport::NumberOfCases(200'000);
  std::mt19937_64 random(77);
  std::uniform_real_distribution<double> uniform(0, 1);
  int hits = 0;
  for (int i = 0; i < kThrows; ++i) {
    const double hz = GMAT::TWO_PI * uniform(random);
    hits += file.area->Contains(hz, std::acos(1 - 2 * uniform(random))) ? 1 : 0;
  }
  const double share = static_cast<double>(hits) / kThrows;
  deviation = 4 * GMAT::PI * std::sqrt(share * (1 - share) / kThrows);
  return 4 * GMAT::PI * share;
}

TEST(SolidAngle, IsThatOfWhatTheLibraryCallsInside) {
  const AreaFile files[] = {
      MakeRectangle(300, 40, 100, 170), MakeArea(std::make_unique<SDI::ScanDomeAreaC>(), {}),
      // A quarter of it dips below the lowest direction, and nothing is inside there.
      MakePolygon({{0, 120}, {90, 120}, {110, 160}, {170, 160}, {190, 120}, {270, 120}}),
      Tool::LoadAreaFile(DataPath("areas/facade.json")),
      Tool::LoadAreaFile(DataPath("areas/ceiling.json"))};
  for (const AreaFile& file : files) {
    SCOPED_TRACE(file.name);
    double deviation = 0;
    const double thrown = Thrown(file, deviation);
    EXPECT_NEAR(Measured(file).steradians, thrown, 4.5 * deviation);
  }
  EXPECT_LT(Measured(files[2]).steradians, RingArea(files[2]) - 1);
}

// The inside along many meridians, by the rules.
double IntegratedAlongMeridians(const GMAT::SphereAreaC& area, int meridians) {
  GMAT::AnglePointC low;
  GMAT::AnglePointC high;
  bool enclosesZenith = false;
  if (!area.GetExtents(low.Hz, high.Hz, low.V, high.V, enclosesZenith, true)) return 0;
  double sum = 0;
  std::vector<AnglePointC> crossings;
  for (int i = 0; i < meridians; ++i) {
    const double hz = (i + 0.381966) * GMAT::TWO_PI / meridians;
    if (!area.SearchLine({hz, 0}, true, crossings)) return 0;
    std::vector<double> borders = {0};
    for (const AnglePointC& crossing : crossings) borders.push_back(crossing.V);
    borders.push_back(GMAT::PI);
    for (std::size_t k = 1; k < borders.size(); ++k) {
      if (borders[k] - borders[k - 1] < 1e-9) continue;
      std::vector<double> all(borders.begin() + 1, borders.end() - 1);
      const double middle = (borders[k - 1] + borders[k]) / 2;
      if (!GMAT::IsInsideByParity(all, middle, enclosesZenith)) continue;
      sum += std::cos(borders[k - 1]) - std::cos(borders[k]);
    }
  }
  return sum * GMAT::TWO_PI / meridians;
}

TEST(SolidAngle, OfPolygonsThatCrossPolesLimitsAndThemselvesFollowsTheRules) {
  constexpr int kMeridians = 600;
  constexpr double kSlack = 0.05;  // some corners fall between two meridians
  const std::vector<std::pair<double, double>> rings[] = {
      {{0, 0}, {80, 60}, {20, 90}},       // a corner at the zenith
      {{10, 40}, {190, 50}, {100, 80}},   // an edge over it
      {{10, 180}, {100, 110}, {40, 90}},  // a corner at the nadir
      {{0, 120}, {90, 120}, {110, 160}, {170, 160}, {190, 120}, {270, 120}},
      {{0, 60}, {120, 100}, {240, 60}, {60, 100}, {180, 60}, {300, 100}},  // two turns
      {{100, 60}, {230, 110}, {200, 140}, {160, 100}, {120, 150}},         // wider than a quarter
      {{0, 50}, {90, 60}, {180, 50}, {270, 60}, {180, 50}, {90, 60}}};
  for (const auto& ring : rings) {
    SCOPED_TRACE(testing::PrintToString(ring));
    const AreaFile file = MakePolygon(ring);
    if (!Tool::MeasureBounds(file)) continue;
    EXPECT_NEAR(Measured(file).steradians, IntegratedAlongMeridians(file.Sphere(), 10 * kMeridians),
                kSlack / 10);
  }

  RingGenerator random(5);
  int compared = 0;
  int different = 0;
  for (int i = 0; i < TestSupport::NumberOfCases(300); ++i) {
    const AreaFile file = MakeArea(std::make_unique<SDI::ScanPolygonAreaC>(),
                                   i % 5 == 0 ? random.CrowdedRing() : random.Ring(12, false));
    if (file.Sphere().GetPoints().size() < 3 || !Tool::MeasureBounds(file)) continue;
    ++compared;
    const double expected = IntegratedAlongMeridians(file.Sphere(), kMeridians);
    different += std::fabs(Measured(file).steradians - expected) > kSlack ? 1 : 0;
  }
  EXPECT_EQ(different, 0);
  EXPECT_GT(compared, TestSupport::NumberOfCases(180));
}

TEST(CountDirections, CountsTheGridThatBeginsAtTheLowerBounds) {
  const auto count = [](const AreaFile& file) {
    return Tool::CountDirections(file, Tool::MeasureBounds(file).value());
  };
  EXPECT_EQ(count(MakeRectangle(10, 20, 30, 50, kDegree)).count, 21 * 31);
  EXPECT_EQ(count(MakeRectangle(10, 20, 30.9, 50.9, kDegree)).count, 21 * 31);
  EXPECT_EQ(count(MakeRectangle(350, 20, 10, 50, 40 * kDegree)).count, 1);
  EXPECT_EQ(count(MakeArea(std::make_unique<SDI::ScanDomeAreaC>(), {}, kDegree, kDegree)).count,
            360 * 145);

  const AreaFile triangle = MakePolygon({{340, 60}, {20, 70}, {5, 110}}, 0.7 * kDegree);
  const Tool::AreaBounds bounds = Tool::MeasureBounds(triangle).value();
  int expected = 0;
  for (int i = 0; bounds.hzMin + i * 0.7 * kDegree <= bounds.hzMax + 1e-9; ++i) {
    for (int k = 0; bounds.vMin + k * 0.7 * kDegree <= bounds.vMax + 1e-9; ++k) {
      expected +=
          triangle.area->Contains(bounds.hzMin + i * 0.7 * kDegree, bounds.vMin + k * 0.7 * kDegree)
              ? 1
              : 0;
    }
  }
  EXPECT_EQ(count(triangle).count, expected);
  EXPECT_TRUE(count(triangle).isExact);

  // Extreme steps have no exact number, but a plausible one.
  for (const double step : {5e-324, 1e-160}) {
    SCOPED_TRACE(step);
    for (const AreaFile& file : {MakeArea(std::make_unique<SDI::ScanDomeAreaC>(), {}, step, step),
                                 MakeRectangle(10, 20, 30, 50, step),
                                 MakePolygon({{340, 60}, {20, 70}, {5, 110}}, step)}) {
      EXPECT_FALSE(count(file).isExact);
      EXPECT_GT(count(file).count, 1e300);
    }
  }
  EXPECT_EQ(count(MakePolygon({{340, 60}, {20, 70}, {5, 110}}, 1e300)).count, 0);
  EXPECT_FALSE(count(MakeRectangle(10, 20, 30, 50, 1e-9)).isExact);

  // A tenth of the step gives a hundred times the directions, counted or estimated.
  const AreaFile fine = MakePolygon({{340, 60}, {20, 70}, {5, 110}}, 0.001 * kDegree);
  const Tool::DirectionCount estimate = count(fine);
  EXPECT_FALSE(estimate.isExact);
  EXPECT_NEAR(estimate.count / (expected * 490000.0), 1, 0.05);
}

TEST(FindInside, HoldsWhatTheLibraryCallsInside) {
  const AreaFile files[] = {MakePolygon({{340, 60}, {20, 70}, {50, 130}, {5, 110}, {350, 140}}),
                            MakeRectangle(300, 40, 100, 170),
                            Tool::LoadAreaFile(DataPath("areas/facade.json"))};
  const Tool::AngleWindow window{0, GMAT::TWO_PI, 0, GMAT::PI};
  constexpr int kRows = 90;
  for (const AreaFile& file : files) {
    SCOPED_TRACE(file.name);
    const auto strips = Tool::FindInside(*file.area, window, kRows);
    for (int row = 0; row < kRows; ++row) {
      const double v = (row + 0.5) * GMAT::PI / kRows;
      for (double hz = 0.003; hz < GMAT::TWO_PI; hz += 0.05) {
        int found = 0;
        for (const Tool::InsideStrip& strip : strips) {
          for (const Tool::InsideRun& run : strip) {
            found += std::fabs(run.v - v) < 1e-9 && run.from <= hz && hz <= run.to ? 1 : 0;
          }
        }
        ASSERT_EQ(found, file.area->Contains(hz, v) ? 1 : 0) << hz << ' ' << v;
      }
    }
  }
}

TEST(AngleUnit, GivesEveryAngleBack) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<int> tenthousandths(-4'000'000, 8'000'000);
  for (int i = 0; i < 10'000; ++i) {
    const double angle = tenthousandths(random) / 10'000.0;
    for (const AngleUnit unit : {AngleUnit::kDeg, AngleUnit::kGon, AngleUnit::kRad}) {
      EXPECT_EQ(Tool::FromRadians(Tool::ToRadians(angle, unit), unit), angle);
    }
  }
  EXPECT_EQ(Tool::ToRadians(360, AngleUnit::kDeg), GMAT::TWO_PI);
  EXPECT_EQ(Tool::ToRadians(400, AngleUnit::kGon), GMAT::TWO_PI);
  EXPECT_EQ(Tool::ToRadians(0.3, AngleUnit::kGon), GMAT::GonToRad(0.3));
}

TEST(AngleText, HasTheDigitsThatPeopleRead) {
  EXPECT_EQ(Tool::AngleText(12.5, AngleUnit::kDeg), "12.50000");
  EXPECT_EQ(Tool::AngleText(-0.1, AngleUnit::kGon), "-0.10000");
  EXPECT_EQ(Tool::AngleText(1.5, AngleUnit::kRad), "1.5000000");
  EXPECT_EQ(Tool::AngleText(999'999.0, AngleUnit::kDeg), "999999.00000");
  EXPECT_EQ(Tool::AngleText(1e6, AngleUnit::kDeg), "1e+06");
  EXPECT_EQ(Tool::AngleText(-1e300, AngleUnit::kRad), "-1e+300");
  EXPECT_EQ(Tool::AngleText(std::numeric_limits<double>::infinity(), AngleUnit::kRad), "inf");
  EXPECT_EQ(Tool::AngleText(1e-9, AngleUnit::kDeg), "0.00000");
  EXPECT_EQ(Tool::StepText(0.05, AngleUnit::kGon), "0.05000");
  EXPECT_EQ(Tool::StepText(1e-9, AngleUnit::kDeg), "1e-09");
  EXPECT_EQ(Tool::StepText(-0.0, AngleUnit::kDeg), "0");
  EXPECT_EQ(Tool::StepText(1e9, AngleUnit::kDeg), "1e+09");
}

}  // namespace
