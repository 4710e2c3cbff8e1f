// Compares the answers with other libraries: S2 on the sphere for polygons, Boost.Geometry in the
// plane for rectangles, and on the sphere as a second reference.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <random>
#include <vector>

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/geometries.hpp>
#include <gtest/gtest.h>
#include <s2/s2edge_distances.h>
#include <s2/s2error.h>
#include <s2/s2loop.h>

#include <surveydata/sphere_geometry/sphere_area.h>

namespace GMAT {
namespace {

namespace bg = boost::geometry;
using SpherePoint = bg::model::point<double, 2, bg::cs::spherical_equatorial<bg::radian>>;
using PlanePoint = bg::model::d2::point_xy<double>;

S2Point ToS2Point(AnglePointC d) {
  return S2Point(std::sin(d.V) * std::cos(d.Hz), std::sin(d.V) * std::sin(d.Hz), std::cos(d.V))
      .Normalize();
}

std::unique_ptr<S2Loop> MakeLoop(const std::vector<AnglePointC>& ring) {
  std::vector<S2Point> points;
  for (const AnglePointC& p : ring) points.push_back(ToS2Point(p));
  auto loop = std::make_unique<S2Loop>();
  loop->set_s2debug_override(S2Debug::DISABLE);
  loop->Init(points);
  return loop;
}

struct Random {
  std::mt19937_64 engine{20260101};
  double operator()(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(engine);
  }
  std::size_t Below(std::size_t n) { return engine() % n; }
};

// A ring that is star-shaped in the plane around `centre`, at most `radius` wide.
std::vector<AnglePointC> StarRing(Random& random, AnglePointC centre, double radius) {
  const std::size_t n = 3 + random.Below(random.Below(8) == 0 ? 60 : 9);
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) {
    const double angle =
        TWO_PI * (static_cast<double>(i) + random(0.0, 0.7)) / static_cast<double>(n);
    const double r = radius * random(0.5, 1.0);
    ring.push_back({NormalizeAngle(centre.Hz + r * std::cos(angle) / std::sin(centre.V)),
                    std::clamp(centre.V + r * std::sin(angle), 0.02, PI - 0.02)});
  }
  return ring;
}

// A ring that winds once around the zenith.
std::vector<AnglePointC> ZenithRing(Random& random) {
  const std::size_t n = 6 + random.Below(20);
  std::vector<AnglePointC> ring;
  for (std::size_t i = 0; i < n; ++i) {
    ring.push_back({TWO_PI * (static_cast<double>(i) + random(0.0, 0.8)) / static_cast<double>(n),
                    random(0.4, 1.9)});
  }
  return ring;
}

double DistanceOnSphere(const std::vector<AnglePointC>& ring, AnglePointC probe) {
  double least = PI;
  const S2Point at = ToS2Point(probe);
  for (std::size_t i = 0; i < ring.size(); ++i) {
    least = std::min(
        least,
        S2::GetDistance(at, ToS2Point(ring[i]), ToS2Point(ring[(i + 1) % ring.size()])).radians());
  }
  return least;
}

// The rules of docs/sphere_areas.md by which an answer may differ from spherical geometry.
enum class Exception { kNone, kNearBoundary, kBand, kBelowLimit, kCornerMeridian };

Exception WhyDifferent(const SphereAreaC& area, AnglePointC probe) {
  const std::vector<AnglePointC>& ring = area.GetPoints();
  if (DistanceOnSphere(ring, probe) < 1e-9) return Exception::kNearBoundary;
  if (area.DistanceToBoundary(probe.Hz, probe.V) < CONTAINS_TOLERANCE) return Exception::kBand;
  double hzMin = 0.0;
  double hzMax = 0.0;
  double vMin = 0.0;
  double vMax = 0.0;
  bool enclosesZenith = false;
  area.GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith, true);
  if (enclosesZenith) {
    std::vector<AnglePointC> crossings;
    area.SearchLine(probe, true, crossings);
    if (crossings.size() % 2 == 0 || probe.V > V_LIMIT) return Exception::kBelowLimit;
  }
  for (const AnglePointC& p : ring) {
    if (std::fabs(std::remainder(p.Hz - probe.Hz, TWO_PI)) < 1e-9)
      return Exception::kCornerMeridian;
  }
  return Exception::kNone;
}

// Queries both for `count` directions and returns the number of differences. Every difference must
// follow from a rule.
int CompareWithS2(Random& random, const std::vector<AnglePointC>& ring, AnglePointC centre,
                  double radius, int count, std::size_t& inside) {
  SphereAreaC area;
  area.AddPoints(ring);
  const auto loop = MakeLoop(ring);
  S2Error error;
  if (loop->FindValidationError(&error)) return 0;  // not simple on the sphere
  loop->Normalize();
  int differences = 0;
  for (int i = 0; i < count; ++i) {
    AnglePointC probe{NormalizeAngle(centre.Hz + random(-1.3, 1.3) * radius),
                      std::clamp(centre.V + random(-1.3, 1.3) * radius, 0.0, PI)};
    if (random.Below(10) == 0) probe.Hz = ring[random.Below(ring.size())].Hz;
    const bool expected = loop->Contains(ToS2Point(probe));
    const bool answer = area.Contains(probe.Hz, probe.V);
    inside += answer;
    if (answer == expected) continue;
    ++differences;
    EXPECT_NE(WhyDifferent(area, probe), Exception::kNone)
        << std::hexfloat << probe.Hz << ", " << probe.V << " answered " << answer;
  }
  return differences;
}

TEST(SphereAreaPeer, ContainmentAgreesWithS2ButForItsRules) {
  Random random;
  std::size_t inside = 0;
  int differences = 0;
  constexpr int kRings = 4000;
  constexpr int kProbes = 40;
  for (int i = 0; i < kRings; ++i) {
    const AnglePointC centre{random(0.0, TWO_PI), random(0.6, 2.3)};
    const double radius = i % 3 == 0 ? random(1e-3, 0.05) : random(0.05, 0.5);
    const std::vector<AnglePointC> ring = StarRing(random, centre, radius);
    differences += CompareWithS2(random, ring, centre, radius, kProbes, inside);
  }
  EXPECT_GT(inside, kRings * kProbes / 6u);
  EXPECT_LT(differences, kRings * kProbes / 100) << "the rules differ on few directions";
}

TEST(SphereAreaPeer, AroundTheZenithToo) {
  Random random;
  std::size_t inside = 0;
  constexpr int kRings = 1500;
  constexpr int kProbes = 40;
  for (int i = 0; i < kRings; ++i) {
    const AnglePointC anywhere{PI, 1.2};
    CompareWithS2(random, ZenithRing(random), anywhere, 2.4, kProbes, inside);
  }
  EXPECT_GT(inside, kRings * kProbes / 6u);
}

// Away from the poles of a ring a second reference agrees with both.
TEST(SphereAreaPeer, BoostAgreesOnTheSphere) {
  Random random;
  int compared = 0;
  for (int i = 0; i < 300; ++i) {
    const AnglePointC centre{random(1.0, 5.0), random(1.0, 2.0)};
    const std::vector<AnglePointC> ring = StarRing(random, centre, 0.4);
    SphereAreaC area;
    area.AddPoints(ring);
    S2Error error;
    if (MakeLoop(ring)->FindValidationError(&error)) continue;
    bg::model::polygon<SpherePoint> polygon;
    for (const AnglePointC& p : ring) {
      bg::append(polygon.outer(), SpherePoint(p.Hz, HALF_PI - p.V));
    }
    bg::correct(polygon);
    for (int k = 0; k < 20; ++k) {
      const AnglePointC probe{centre.Hz + random(-0.5, 0.5), centre.V + random(-0.5, 0.5)};
      if (WhyDifferent(area, probe) != Exception::kNone) continue;
      EXPECT_EQ(area.Contains(probe.Hz, probe.V),
                bg::within(SpherePoint(probe.Hz, HALF_PI - probe.V), polygon));
      ++compared;
    }
  }
  EXPECT_GT(compared, 4000);
}

TEST(SphereAreaPeer, RectanglesAgreeWithBoxesInThePlane) {
  Random random;
  std::size_t inside = 0;
  for (int i = 0; i < 20000; ++i) {
    const double hz = random(0.0, 4.0);
    const double v = random(0.0, 2.0);
    const double width = random(0.01, 2.0);
    const double height = random(0.01, 1.0);
    SphereAreaC area;
    area.AddPoint(hz, v);
    area.AddPoint(hz + width, v + height);
    const AnglePointC probe{random(0.0, TWO_PI), random(0.0, PI)};
    if (area.DistanceToBoundary(probe.Hz, probe.V) < CONTAINS_TOLERANCE) continue;
    const bg::model::box<PlanePoint> box({hz, v}, {hz + width, v + height});
    EXPECT_EQ(area.Contains(probe.Hz, probe.V), bg::within(PlanePoint(probe.Hz, probe.V), box));
    inside += area.Contains(probe.Hz, probe.V);
  }
  EXPECT_GT(inside, 500u);
}

// Where S2 finds a ring simple, it is valid here; where it is invalid here, S2 finds a crossing.
TEST(SphereAreaPeer, WhatS2CallsSimpleIsValid) {
  Random random;
  int simple = 0;
  int crossing = 0;
  for (int i = 0; i < 4000; ++i) {
    std::vector<AnglePointC> ring = StarRing(random, {random(0.0, TWO_PI), random(0.8, 2.2)}, 0.5);
    if (i % 2 == 0) std::swap(ring[random.Below(ring.size())], ring[random.Below(ring.size())]);
    SphereAreaC area;
    area.AddPoints(ring);
    S2Error error;
    if (!MakeLoop(ring)->FindValidationError(&error)) {
      ++simple;
      EXPECT_TRUE(area.IsValid());
    } else if (!area.IsValid()) {
      ++crossing;
    }
  }
  EXPECT_GT(simple, 1500);
  EXPECT_GT(crossing, 800);
}

}  // namespace
}  // namespace GMAT
