#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/scanning/scan_polygon_area.h>

#include "tests/scanning/area_samples.h"

namespace {

using SDI::ScanDefPointC;
using SDI::ScanPolygonAreaC;
using SDI::ScanPolygonAreaImplC;
using TestSupport::Calls;
using TestSupport::kTriangle;
using TestSupport::LoggedC;
using TestSupport::MakePolygon;

TEST(ScanPolygonArea, SettingPointsCallsNoVirtualFunction) {
  auto* const impl = new LoggedC<ScanPolygonAreaImplC>;
  ScanPolygonAreaC area(impl);
  area.SetPoints(kTriangle);
  impl->SetPoints({{1.2, 1.4, -1.0}});
  EXPECT_EQ(impl->TakeCalls(), Calls());
  std::vector<ScanDefPointC> points;
  area.GetPoints(points);
  EXPECT_EQ(points.size(), 4u);
  EXPECT_EQ(area.GetPointCount(), 4u) << "the geometry has them too";
  EXPECT_EQ(impl->TakeCalls(), (Calls{"GetPoints", "GetPointCount"}));
}

TEST(ScanPolygonArea, SetPointsAppends) {
  const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon());
  area->SetPoints({{1.2, 1.4, -1.0}});
  EXPECT_EQ(area->GetPointCount(), 4u);
}

TEST(ScanPolygonArea, NeedsThreePointsWithoutRepeats) {
  EXPECT_TRUE(std::unique_ptr<ScanPolygonAreaC>(MakePolygon())->IsValid());
  std::unique_ptr<ScanPolygonAreaC> area(MakePolygon());
  area->RemoveLastPoint();
  EXPECT_TRUE(area->IsAreaValid()) << "two points are a rectangle to the geometry";
  EXPECT_FALSE(area->IsValid());
  area.reset(MakePolygon({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {1.0, 1.0, 2.0}}));
  EXPECT_FALSE(area->IsValid()) << "the last equals the first";
  area.reset(MakePolygon({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {2.0, 1.0, 2.0}, {1.5, 1.5, 1.0}}));
  EXPECT_FALSE(area->IsValid()) << "a point repeats its predecessor";
  // Points that differ by a denormal are equal here, though not to the geometry.
  area.reset(MakePolygon({{0.0, 1.0, 1.0}, {1e-310, 1.0, 1.0}, {1.0, 1.5, 1.0}}));
  EXPECT_TRUE(area->IsAreaValid());
  EXPECT_FALSE(area->IsValid());
  area.reset(MakePolygon({{0.0, 1.0, 1.0}, {1.0, 1.5, 1.0}, {1e-310, 1.0, 1.0}}));
  EXPECT_TRUE(area->IsAreaValid());
  EXPECT_FALSE(area->IsValid());
  // A ring around the zenith needs steps above 0, too.
  area.reset(MakePolygon({{0.0, 0.3, 1.0}, {2.0, 0.3, 1.0}, {4.0, 0.3, 1.0}}));
  EXPECT_TRUE(area->IsValid());
  area->SetSteps(0.0, 1.0);
  EXPECT_FALSE(area->IsValid());
}

TEST(ScanPolygonArea, OutlineFillsTheDistancesFromTheNeighbours) {
  const auto distances = [](const std::vector<double>& given) {
    std::vector<ScanDefPointC> points;
    for (const double distance : given) {
      points.emplace_back(static_cast<double>(points.size()), 1.0, distance);
    }
    const std::unique_ptr<ScanPolygonAreaC> area(MakePolygon(points));
    std::vector<ScanDefPointC> out(7);
    area->GetOutline(out, 99.0);
    std::vector<double> filled;
    for (const ScanDefPointC& point : out) filled.push_back(point.GetDistance());
    return filled;
  };
  using Distances = std::vector<double>;
  EXPECT_EQ(distances({-1, -1, -1}), (Distances{99, 99, 99}));
  EXPECT_EQ(distances({1, 2, 3}), (Distances{1, 2, 3}));
  EXPECT_EQ(distances({}), (Distances{}));
  // Five points: the neighbour before the first is the first itself, because 2^64 - 1 is a
  // multiple of 5.
  EXPECT_EQ(distances({-1, -1, 10, -1, -1}), (Distances{10, 10, 10, 10, 10}));
  EXPECT_EQ(distances({-1, 4, 10, 20, 30}), (Distances{(16 + 4) / 2.0, 4, 10, 20, 30}));
  // Six points: 2^64 - 1 is 3 modulo 6.
  EXPECT_EQ(distances({-1, 4, 10, 20, 30, 40}), (Distances{(20 + 4) / 2.0, 4, 10, 20, 30, 40}));
  // Four points: the neighbour before the first is the last one.
  EXPECT_EQ(distances({-1, 4, 10, 20}), (Distances{(20 + 4) / 2.0, 4, 10, 20}));
  // Filled values do not affect their neighbours: the mean is 10.
  EXPECT_EQ(distances({4, -1, -1, 16}), (Distances{4, 7, 13, 16}));
  // After the last comes the first.
  EXPECT_EQ(distances({4, 8, -1}), (Distances{4, 8, 6}));
  // 0 does not count for the mean, and is not filled.
  EXPECT_EQ(distances({0, 8, -1, 8}), (Distances{0, 8, 8, 8}));
  EXPECT_EQ(distances({0, -1, 8, 8}), (Distances{0, 4, 8, 8})) << "nor is it replaced by the mean";
  EXPECT_EQ(distances({0, 0, 0}), (Distances{99, 99, 99}));
}

}  // namespace
