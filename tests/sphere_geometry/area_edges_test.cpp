// How edges cross each other, meridians and circles of latitude: single cases, and random edges
// compared with plain models, in which an arc is the projection of its chord onto the sphere.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/area_edges.h>

namespace GMAT {
namespace {

struct Vector {
  long double x, y, z;
};

Vector operator-(const Vector& a) { return {-a.x, -a.y, -a.z}; }
Vector operator+(const Vector& a, const Vector& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vector operator*(long double f, const Vector& a) { return {f * a.x, f * a.y, f * a.z}; }
long double Dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector Product(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vector Normed(const Vector& a) { return (1.0L / std::sqrt(Dot(a, a))) * a; }

Vector ToVector(const AnglePointC& p) {
  const long double hz = p.Hz;
  const long double v = p.V;
  return {std::sin(v) * std::cos(hz), std::sin(v) * std::sin(hz), std::cos(v)};
}

// Its V, which is precise at the poles, too.
double ToV(const Vector& p) {
  return static_cast<double>(std::atan2(std::sqrt(p.x * p.x + p.y * p.y), p.z));
}

// Two directions less than half a turn apart in Hz, on any turn.
struct Edge {
  AnglePointC a;
  AnglePointC b;

  ArcEdgeC GetArc() const { return {SpherePointC(a), SpherePointC(b)}; }
  Vector GetNormal() const { return Normed(Product(ToVector(a), ToVector(b))); }
};

class RandomEdges {
 public:
  double Uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  std::uint64_t Below(std::uint64_t n) { return random_() % n; }
  Edge Any() {
    const double hz = Uniform(0.0, TWO_PI) + static_cast<double>(Below(4)) * TWO_PI;
    const double span = (Below(2) == 0 ? 1.0 : -1.0) * Uniform(0.01, 3.1);
    return {{hz, Uniform(0.05, 3.09)}, {hz + span, Uniform(0.05, 3.09)}};
  }

 private:
  std::mt19937_64 random_{1};
};

TEST(TurnedNextTo, MovesByFullTurnsToWithinHalfATurn) {
  EXPECT_EQ(TurnedNextTo(1.0, 2.0), 1.0);
  EXPECT_EQ(TurnedNextTo(1.0, 1.0 + 0.99 * PI), 1.0);
  EXPECT_EQ(TurnedNextTo(1.0, 1.0 - 0.99 * PI), 1.0);
  EXPECT_EQ(TurnedNextTo(1.0, 1.0 + 1.01 * PI), 1.0 + TWO_PI);
  EXPECT_EQ(TurnedNextTo(1.0, 1.0 - 1.01 * PI), 1.0 - TWO_PI);
  EXPECT_EQ(TurnedNextTo(1.0, 1.0 + 6.99 * PI), 1.0 + 3.0 * TWO_PI);
  EXPECT_EQ(TurnedNextTo(15.0, 1.0), 15.0 - 2.0 * TWO_PI);
  EXPECT_EQ(TurnedNextTo(0.0, PI), TWO_PI) << "half a turn: forwards";
}

TEST(LatitudeCrossings, LieInTheFrameOfTheArc) {
  std::vector<AnglePointC> out;
  FindLatitudeCrossings({12.0, 1.0}, {13.0, 1.0}, 0.95, out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_NEAR(out[0].Hz + out[1].Hz, 25.0, 1e-12);
  for (const AnglePointC& at : out) {
    EXPECT_GT(at.Hz, 12.0);
    EXPECT_LT(at.Hz, 13.0);
    EXPECT_EQ(at.V, 0.95);
  }
  FindLatitudeCrossings({12.0, 1.0}, {13.0, 1.0}, 1.01, out);
  EXPECT_EQ(out.size(), 2u) << "the circle is crossed beyond both ends";
  FindLatitudeCrossings({12.0, HALF_PI}, {13.0, HALF_PI}, HALF_PI, out);
  EXPECT_EQ(out.size(), 2u) << "the equator has none";
}

TEST(LatitudeCrossings, TouchTheCircleThroughTheVertexOnce) {
  int found = 0;
  for (int i = 1; i < 20; ++i) {
    const AnglePointC a{1.0, 0.5 + 0.05 * i};
    const AnglePointC b{2.0, 0.5 + 0.05 * i};
    double lat = 0.0;
    double lon = 0.0;
    ASSERT_TRUE(GreatCircleArcC(SpherePointC(a), SpherePointC(b)).GetVertex(lat, lon));
    const double v = HALF_PI - lat;
    if (HALF_PI - v != lat) continue;  // the circle must have exactly the vertex's latitude
    ++found;
    std::vector<AnglePointC> out;
    FindLatitudeCrossings(a, b, v, out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_NEAR(out[0].Hz, 1.5, 1e-10);
  }
  EXPECT_GT(found, 0);
}

TEST(ArcEdge, HoldsTheLongitudesBetweenItsEndsOnAnyTurn) {
  const ArcEdgeC arc{SpherePointC({12.0, 1.0}), SpherePointC({13.0, 1.1})};
  EXPECT_TRUE(arc.Holds(0.5, 12.5));
  EXPECT_TRUE(arc.Holds(0.5, 12.5 - 2.0 * TWO_PI));
  EXPECT_TRUE(arc.Holds(0.5, 12.5 + TWO_PI));
  EXPECT_TRUE(arc.Holds(0.5, 12.0 - 5e-11));
  EXPECT_FALSE(arc.Holds(0.5, 12.0 - 1e-9));
  EXPECT_FALSE(arc.Holds(0.5, 13.5));
  EXPECT_FALSE(arc.Holds(0.5, 12.5 + PI));
}

TEST(ArcEdge, APoleLiesOnEveryArcThatEndsThereOrPassesOver) {
  const ArcEdgeC over{SpherePointC({1.0, 0.5}), SpherePointC({1.0 + PI, 0.6})};
  const ArcEdgeC from{SpherePointC({1.0, 0.0}), SpherePointC({2.0, 0.6})};
  const ArcEdgeC to{SpherePointC({1.0, 2.0}), SpherePointC({2.0, PI})};
  const ArcEdgeC along{SpherePointC({1.0, 0.5}), SpherePointC({1.0, 0.6})};
  EXPECT_EQ(over.GetPole(), 1);
  EXPECT_EQ(from.GetPole(), 1);
  EXPECT_EQ(to.GetPole(), -1);
  EXPECT_EQ(along.GetPole(), 0);
  EXPECT_TRUE(over.Holds(HALF_PI, 5.0));
  EXPECT_FALSE(over.Holds(-HALF_PI, 1.0));
  EXPECT_TRUE(from.Holds(HALF_PI, 5.0));
  EXPECT_TRUE(to.Holds(-HALF_PI, 5.0));
  // Near the pole, the half plane of the end that is not at the pole counts.
  EXPECT_TRUE(from.Holds(1.3, 2.0));
  EXPECT_FALSE(from.Holds(1.3, 1.0));
  EXPECT_FALSE(from.Holds(0.5, 2.0)) << "below the end";
  EXPECT_TRUE(over.Holds(1.3, 1.0));
  EXPECT_TRUE(over.Holds(1.3, 1.0 + PI));
  EXPECT_FALSE(over.Holds(1.3, 2.0));
  EXPECT_TRUE(along.Holds(HALF_PI - 0.55, 1.0));
  EXPECT_FALSE(along.Holds(HALF_PI - 0.7, 1.0));
}

TEST(ArcEdge, KnowsItsPoleOnAnyTurn) {
  const struct {
    const char* what;
    AnglePointC a, b;
    int pole;
  } cases[] = {
      {"over the zenith", {1.0, 0.5}, {1.0 + PI, 2.5}, 1},
      {"over the nadir", {1.0, 0.7}, {1.0 + PI, 2.5}, -1},
      {"over the zenith on another turn", {7.0, 0.5}, {7.0 - PI, 0.6}, 1},
      {"over the nadir on another turn", {7.0, 2.5}, {7.0 - PI, 2.6}, -1},
      {"from the nadir", {1.0, PI}, {2.0, 2.0}, -1},
      {"to the zenith", {1.0, 1.0}, {2.0, 0.0}, 1},
      {"beside the zenith", {1.0, 1e-3}, {3.0, 1e-3}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const ArcEdgeC arc{SpherePointC(c.a), SpherePointC(c.b)};
    EXPECT_EQ(arc.GetPole(), c.pole);
    EXPECT_EQ(arc.IsThroughPoles(), c.pole != 0);
  }
}

// The product of the unit vectors would lose half of the digits.
TEST(ArcEdge, AShortArcIsCrossedWhereItIs) {
  constexpr double kShort = 1e-6;
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({1.0 + kShort, 1.0 + kShort})};
  for (const double part : {0.25, 0.5, 0.75}) {
    SCOPED_TRACE(part);
    const double h = 1.0 + part * kShort;
    double v = 0.0;
    ASSERT_TRUE(arc.CrossesMeridian(h, std::cos(h), std::sin(h), 0.0, 3.0, v));
    EXPECT_NEAR(v, 1.0 + part * kShort, kShort * kShort);  // the chord is straight up to this
  }
}

TEST(ArcEdge, AMeridianCrossesOnlyOnItsOwnSide) {
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({2.0, 1.0})};
  double v = -1.0;
  ASSERT_TRUE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 0.0, 3.0, v));
  EXPECT_NEAR(v, HALF_PI - std::atan(std::tan(HALF_PI - 1.0) / std::cos(0.5)), 1e-15);
  const double opposite = 1.5 + PI;
  EXPECT_FALSE(arc.CrossesMeridian(opposite, std::cos(opposite), std::sin(opposite), 0.0, 3.0, v));
  EXPECT_FALSE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 1.0, 3.0, v))
      << "above the line";
}

TEST(ArcEdge, AMeridianInTheArcsPlaneDoesNotCross) {
  const ArcEdgeC along{SpherePointC({1.0, 0.5}), SpherePointC({1.0, 1.5})};
  double v = 0.0;
  for (const double h : {1.0, 1.0 + 5e-11, 1.0 + PI, 2.0}) {
    SCOPED_TRACE(h);
    EXPECT_FALSE(along.CrossesMeridian(h, std::cos(h), std::sin(h), 0.0, 3.0, v));
  }
  const ArcEdgeC toPole{SpherePointC({1.0, 0.5}), SpherePointC({4.0, 0.0})};
  EXPECT_FALSE(toPole.CrossesMeridian(1.0, std::cos(1.0), std::sin(1.0), 0.0, 3.0, v));
  EXPECT_TRUE(toPole.CrossesMeridian(2.0, std::cos(2.0), std::sin(2.0), 0.0, 3.0, v));
  EXPECT_EQ(v, 0.0);
}

TEST(ArcEdge, TheLineReachesAsFarAsAVertexMayBeOff) {
  const ArcEdgeC arc{SpherePointC({1.0, 1.0}), SpherePointC({2.0, 1.1})};
  double v = 0.0;
  ASSERT_TRUE(arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), 0.0, 3.0, v));
  double ignored = 0.0;
  const auto crosses = [&](double vMin, double vMax) {
    return arc.CrossesMeridian(1.5, std::cos(1.5), std::sin(1.5), vMin, vMax, ignored);
  };
  EXPECT_TRUE(crosses(v + 2.1e-8, 3.0));
  EXPECT_FALSE(crosses(v + 2.3e-8, 3.0));
  EXPECT_TRUE(crosses(0.0, v - 2.1e-8));
  EXPECT_FALSE(crosses(0.0, v - 2.3e-8));
}

TEST(ArcEdge, ArcsCrossWhereBothHoldThePoint) {
  AnglePointC at;
  const auto edge = [](AnglePointC a, AnglePointC b) {
    return ArcEdgeC(SpherePointC(a), SpherePointC(b));
  };
  ASSERT_TRUE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({1.0, 1.5}, {2.0, 1.0}), at));
  EXPECT_NEAR(at.Hz, 1.5, 1e-14);
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({2.1, 1.5}, {3.0, 1.0}), at));
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.5}, {1.5, 1.5}), edge({1.0, 1.5}, {1.5, 1.5}), at))
      << "one great circle";
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {1.0, 1.0}), edge({1.0, 1.5}, {2.0, 1.0}), at))
      << "no arc";
  // The great circles intersect within only one of the arcs.
  EXPECT_FALSE(
      FindSphericalCrossing(edge({1.0, 1.0}, {2.0, 1.5}), edge({2.5, 1.2}, {2.6, 2.2}), at));
  EXPECT_FALSE(
      FindSphericalCrossing(edge({2.5, 1.2}, {2.6, 2.2}), edge({1.0, 1.0}, {2.0, 1.5}), at));
  // Planes at an angle of 1e-10 or less count as one.
  const auto atHorizon = [&](double tilt) {
    return FindSphericalCrossing(edge({1.0, HALF_PI}, {2.0, HALF_PI}),
                                 edge({1.0, HALF_PI - tilt}, {2.0, HALF_PI + tilt}), at);
  };
  EXPECT_FALSE(atHorizon(4e-11));  // the sine is about twice the tilt
  EXPECT_TRUE(atHorizon(6e-11));
  EXPECT_NEAR(at.Hz, 1.5, 1e-4);
  // Two meridian edges meet at the pole over which both pass.
  EXPECT_TRUE(
      FindSphericalCrossing(edge({0.0, 0.5}, {PI, 0.5}), edge({1.0, 0.5}, {1.0 + PI, 0.5}), at));
  EXPECT_NEAR(at.V, 0.0, 1e-15);
}

TEST(PlanarEdges, CrossWithinTheSpansOfBoth) {
  AnglePointC at;
  ASSERT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}, {2.0, 0.0}, at));
  EXPECT_EQ(at, (AnglePointC{1.0, 1.0}));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {3.0, 2.0}, {5.0, 0.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 2.0}, {0.0, 1.0}, {2.0, 3.0}, at))
      << "parallel";
  // Lines that are nearly parallel still cross.
  EXPECT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 1e-9}, {0.0, 1e-9}, {2.0, 0.0}, at));
  // In the span of only one edge; Hz or V of the other edge is not compared.
  EXPECT_FALSE(FindPlanarCrossing({1.0, 0.0}, {1.0, 1.0}, {0.0, 2.0}, {2.0, 2.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 2.0}, {2.0, 2.0}, {1.0, 0.0}, {1.0, 1.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({1.0, 0.0}, {1.0, 1.0}, {2.0, 0.5}, {3.0, 0.5}, at));
  EXPECT_FALSE(FindPlanarCrossing({2.0, 0.5}, {3.0, 0.5}, {1.0, 0.0}, {1.0, 1.0}, at));
  // Touching counts, to ten digits.
  EXPECT_TRUE(FindPlanarCrossing({0.0, 0.0}, {2.0, 0.0}, {1.0, 4e-11}, {1.0, 1.0}, at));
  EXPECT_FALSE(FindPlanarCrossing({0.0, 0.0}, {2.0, 0.0}, {1.0, 1e-9}, {1.0, 1.0}, at));
}

TEST(ArcEdge, KeepsTheHzOfItsFrame) {
  for (const bool isReversed : {false, true}) {
    AnglePointC a{12.0, 1.0};
    AnglePointC b{14.5, 2.0};
    if (isReversed) std::swap(a, b);
    const ArcEdgeC arc{SpherePointC(a), SpherePointC(b)};
    EXPECT_TRUE(arc.IsValid());
    EXPECT_EQ(arc.GetHzMin(), 12.0);
    EXPECT_EQ(arc.GetHzMax(), 14.5);
    EXPECT_FALSE(arc.IsThroughPoles());
    EXPECT_EQ(arc.GetPole(), 0);
    const cVec3& n = arc.GetNormal();
    EXPECT_DOUBLE_EQ(arc.GetNormalLength(),
                     std::sqrt(n.X() * n.X() + n.Y() * n.Y() + n.Z() * n.Z()));
    EXPECT_EQ(n.Z() > 0.0, !isReversed) << "the zenith is to the left of an arc towards the east";
  }
}

TEST(ArcEdge, AMeridianIsThatOfTheEndThatIsNotAtAPole) {
  const auto meridian = [](AnglePointC a, AnglePointC b) {
    return ArcEdgeC(SpherePointC(a), SpherePointC(b)).GetMeridian();
  };
  EXPECT_EQ(meridian({1.0, 0.0}, {2.0, 0.6}), 2.0);
  EXPECT_EQ(meridian({1.0, 9e-11}, {2.0, 0.6}), 2.0) << "at the pole to ten digits";
  EXPECT_EQ(meridian({1.0, 0.6}, {2.0, PI}), 1.0);
  EXPECT_EQ(meridian({1.0, 0.5}, {1.0, 0.6}), 1.0);
  EXPECT_EQ(meridian({1.0, 0.5}, {1.0 + PI, 0.6}), 1.0);
}

TEST(ArcEdge, PointsThatDefineNoArcHaveNoCrossings) {
  const ArcEdgeC none{SpherePointC({1.0, 1.0}), SpherePointC({1.0, 1.0})};
  const ArcEdgeC arc{SpherePointC({0.5, 1.0}), SpherePointC({1.5, 1.0})};
  EXPECT_FALSE(none.IsValid());
  double v = 7.0;
  EXPECT_FALSE(none.CrossesMeridian(1.0, std::cos(1.0), std::sin(1.0), 0.0, PI, v));
  EXPECT_EQ(v, 7.0);
  AnglePointC at{7.0, 7.0};
  EXPECT_FALSE(FindSphericalCrossing(none, arc, at));
  EXPECT_FALSE(FindSphericalCrossing(arc, none, at));
  EXPECT_EQ(at, (AnglePointC{7.0, 7.0}));
  std::vector<AnglePointC> out;
  FindLatitudeCrossings({1.0, 1.0}, {1.0, 1.0}, 1.0, out);
  EXPECT_TRUE(out.empty());
}

// The chord meets the plane of the meridian at a + s (b - a).
TEST(ArcEdge, MeridiansCrossWhereTheChordMeetsTheirPlane) {
  RandomEdges random;
  int crossed = 0;
  for (int i = 0; i < 5'000; ++i) {
    const Edge edge = random.Any();
    if (std::fabs(edge.GetNormal().z) < 1e-3L) continue;  // V is steep
    const double h = random.Uniform(0.0, TWO_PI);
    const Vector a = ToVector(edge.a);
    const Vector b = ToVector(edge.b);
    const Vector across{-std::sin(static_cast<long double>(h)),
                        std::cos(static_cast<long double>(h)), 0.0L};
    const long double s = Dot(a, across) / (Dot(a, across) - Dot(b, across));
    if (std::min(std::fabs(s), std::fabs(s - 1.0L)) < 1e-9L) continue;
    const Vector p = (1.0L - s) * a + s * b;
    const bool isOnArc = 0.0L < s && s < 1.0L && p.x * across.y - p.y * across.x > 0.0L;
    double v = 7.0;
    ASSERT_EQ(edge.GetArc().CrossesMeridian(h, std::cos(h), std::sin(h), 0.0, PI, v), isOnArc)
        << edge.a.Hz << ' ' << edge.a.V << ' ' << edge.b.Hz << ' ' << edge.b.V << ' ' << h;
    if (isOnArc) {
      ++crossed;
      ASSERT_NEAR(v, ToV(p), 1e-11);
    } else {
      ASSERT_EQ(v, 7.0);
    }
    // What a crossing rules out.
    if (isOnArc) {
      ASSERT_FALSE(IsSurelyMissed(edge.a, edge.b, h));
    }
  }
  EXPECT_GT(crossed, 500);
}

// Each arc has its ends on different sides of the other's plane, and the point that the planes
// share is on the side of both.
TEST(ArcEdge, ArcsCrossWhereTheirEndsLieOnBothSides) {
  RandomEdges random;
  int crossed = 0;
  for (int i = 0; i < 10'000; ++i) {
    const Edge e = random.Any();
    Edge f = random.Any();
    if (i % 2 == 0) {  // near the middle of the other one
      const double hz = (e.a.Hz + e.b.Hz) / 2.0;
      const double half = random.Uniform(-1.5, 1.5);
      f = {{hz - half, f.a.V}, {hz + half, f.b.V}};
    }
    const Vector a1 = ToVector(e.a);
    const Vector a2 = ToVector(e.b);
    const Vector b1 = ToVector(f.a);
    const Vector b2 = ToVector(f.b);
    const Vector na = e.GetNormal();
    const Vector nb = f.GetNormal();
    const long double sides[] = {Dot(b1, na), Dot(b2, na), Dot(a1, nb), Dot(a2, nb)};
    if (std::any_of(std::begin(sides), std::end(sides),
                    [](long double side) { return std::fabs(side) < 1e-7L; })) {
      continue;
    }
    Vector p = Normed(Product(na, nb));
    if (Dot(p, a1 + a2) < 0.0L) p = -p;
    const bool doCross =
        sides[0] * sides[1] < 0.0L && sides[2] * sides[3] < 0.0L && Dot(p, b1 + b2) > 0.0L;
    AnglePointC at{7.0, 7.0};
    ASSERT_EQ(FindSphericalCrossing(e.GetArc(), f.GetArc(), at), doCross) << i;
    ASSERT_EQ(FindSphericalCrossing(f.GetArc(), e.GetArc(), at), doCross) << i;
    if (!doCross) continue;
    ++crossed;
    ASSERT_GT(Dot(ToVector(at), p), 1.0L - 1e-15L) << i;
  }
  EXPECT_GT(crossed, 1000);
}

// Compares each end, and the vertex if it lies on the arc, with the circle.
TEST(LatitudeCrossings, AreCountedByTheEndsAndTheVertex) {
  RandomEdges random;
  int counts[3] = {};
  for (int i = 0; i < 5'000; ++i) {
    const Edge edge = random.Any();
    const Vector a = ToVector(edge.a);
    const Vector b = ToVector(edge.b);
    const Vector n = edge.GetNormal();
    if (std::fabs(n.z) < 1e-3L || std::fabs(n.z) > 0.999L) continue;
    // The highest and the lowest point of the great circle.
    Vector vertex = Normed({-n.x * n.z, -n.y * n.z, n.x * n.x + n.y * n.y});
    if (a.z + b.z < 0.0L) vertex = -vertex;
    const bool isVertexOnArc =
        Dot(Product(a, vertex), n) > 0.0L && Dot(Product(vertex, b), n) > 0.0L;
    const double v = i % 2 == 0 ? random.Uniform(0.0, PI)
                                : (edge.a.V + random.Uniform(0.0, 1.0) * (ToV(vertex) - edge.a.V));
    const double difference = edge.a.V - v;
    const double differences[] = {difference, edge.b.V - v, ToV(vertex) - v, PI - ToV(vertex) - v};
    if (std::any_of(std::begin(differences), std::end(differences),
                    [](double d) { return std::fabs(d) < 1e-4; })) {
      continue;
    }
    std::size_t expected = (differences[0] < 0.0) != (differences[1] < 0.0) ? 1 : 0;
    if (isVertexOnArc && (differences[0] < 0.0) != (differences[2] < 0.0) &&
        (differences[1] < 0.0) != (differences[2] < 0.0)) {
      expected = 2;
    }
    std::vector<AnglePointC> out{{-1.0, -1.0}};
    FindLatitudeCrossings(edge.a, edge.b, v, out);
    ASSERT_EQ(out.size(), 1 + expected)
        << edge.a.Hz << ' ' << edge.a.V << ' ' << edge.b.Hz << ' ' << edge.b.V << ' ' << v;
    EXPECT_EQ(out[0], (AnglePointC{-1.0, -1.0})) << "they are appended";
    ++counts[expected];
    for (std::size_t k = 1; k < out.size(); ++k) {
      ASSERT_EQ(out[k].V, v);
      ASSERT_LT(std::fabs(Dot(ToVector(out[k]), n)), 1e-9L);
      ASSERT_GT(out[k].Hz, std::min(edge.a.Hz, edge.b.Hz) - 1e-9);
      ASSERT_LT(out[k].Hz, std::max(edge.a.Hz, edge.b.Hz) + 1e-9);
    }
  }
  for (const int count : counts) EXPECT_GT(count, 300);
}

// The corners are on a grid, so that a crossing is either exactly at an end or far from it.
TEST(PlanarEdges, CrossAsInIntegerArithmetic) {
  RandomEdges random;
  int crossed = 0;
  for (int i = 0; i < 20'000; ++i) {
    std::int64_t x[4];
    std::int64_t y[4];
    AnglePointC p[4];
    for (int k = 0; k < 4; ++k) {
      x[k] = static_cast<std::int64_t>(random.Below(9));
      y[k] = static_cast<std::int64_t>(random.Below(9));
      p[k] = {static_cast<double>(x[k]) / 8.0, static_cast<double>(y[k]) / 8.0};
    }
    const std::int64_t ax = x[1] - x[0];
    const std::int64_t ay = y[1] - y[0];
    const std::int64_t bx = x[3] - x[2];
    const std::int64_t by = y[3] - y[2];
    std::int64_t whole = ax * by - ay * bx;
    std::int64_t onA = (x[2] - x[0]) * by - (y[2] - y[0]) * bx;
    std::int64_t onB = (x[2] - x[0]) * ay - (y[2] - y[0]) * ax;
    if (whole < 0) {
      whole = -whole;
      onA = -onA;
      onB = -onB;
    }
    const bool doCross = whole != 0 && 0 <= onA && onA <= whole && 0 <= onB && onB <= whole;
    AnglePointC at{7.0, 7.0};
    ASSERT_EQ(FindPlanarCrossing(p[0], p[1], p[2], p[3], at), doCross) << i;
    if (!doCross) {
      ASSERT_EQ(at, (AnglePointC{7.0, 7.0}));
      continue;
    }
    ++crossed;
    const double t = static_cast<double>(onA) / static_cast<double>(whole);
    ASSERT_NEAR(at.Hz, p[0].Hz + t * (p[1].Hz - p[0].Hz), 1e-15);
    ASSERT_NEAR(at.V, p[0].V + t * (p[1].V - p[0].V), 1e-15);
  }
  EXPECT_GT(crossed, 3'000);
}

bool IsMissed(double hz1, double hz2, double h) {
  const bool isMissed = IsSurelyMissed({hz1, 1.0}, {hz2, 1.1}, h);
  EXPECT_EQ(IsSurelyMissed({hz2, 1.1}, {hz1, 1.0}, h), isMissed) << "in either direction";
  return isMissed;
}

TEST(SurelyMissed, AMeridianIsClearOfTheSpanByTheMargin) {
  EXPECT_FALSE(IsMissed(1.0, 2.0, 1.5));
  EXPECT_TRUE(IsMissed(1.0, 2.0, 2.0 + 1.01e-9));
  EXPECT_FALSE(IsMissed(1.0, 2.0, 2.0 + 0.99e-9));
  EXPECT_TRUE(IsMissed(1.0, 2.0, 1.0 - 1.01e-9));
  EXPECT_FALSE(IsMissed(1.0, 2.0, 1.0 - 0.99e-9));
  EXPECT_TRUE(IsMissed(1.0, 2.0, 1.5 + PI));
  // Next to the seam the meridian is also a turn away.
  EXPECT_TRUE(IsMissed(0.0, 1.0, TWO_PI - 1.01e-9));
  EXPECT_FALSE(IsMissed(0.0, 1.0, TWO_PI - 0.99e-9));
  EXPECT_TRUE(IsMissed(5.0, TWO_PI, 1.01e-9));
  EXPECT_FALSE(IsMissed(5.0, TWO_PI, 0.99e-9));
  // In a frame of several turns.
  EXPECT_FALSE(IsMissed(12.0, 13.0, 12.5 - TWO_PI));
  EXPECT_FALSE(IsMissed(-1.0, 0.5, TWO_PI - 0.5));
  EXPECT_TRUE(IsMissed(-1.0, 0.5, TWO_PI - 1.5));
  EXPECT_TRUE(IsMissed(12.0, 13.0, 13.1 - 2.0 * TWO_PI));
  EXPECT_TRUE(IsMissed(12.0, 13.0, 11.9 - TWO_PI));
}

TEST(SurelyMissed, NothingIsCertainAboutEdgesAtAPoleOrAlongAMeridian) {
  EXPECT_TRUE(IsSurelyMissed({1.0, 1.1e-9}, {2.0, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, 0.9e-9}, {2.0, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, 1.0}, {2.0, 0.9e-9}, 4.0));
  EXPECT_TRUE(IsSurelyMissed({1.0, PI - 1.1e-9}, {2.0, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, PI - 0.9e-9}, {2.0, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, 1.0}, {2.0, PI - 0.9e-9}, 4.0));
  EXPECT_TRUE(IsMissed(1.0, 1.0 + 1.1e-9, 4.0));
  EXPECT_FALSE(IsMissed(1.0, 1.0 + 0.9e-9, 4.0));
  EXPECT_TRUE(IsMissed(1.0, 1.0 + PI - 1.1e-9, 5.0));
  EXPECT_FALSE(IsMissed(1.0, 1.0 + PI - 0.9e-9, 5.0));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(IsSurelyMissed({1.0, nan}, {2.0, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, 1.0}, {nan, 1.0}, 4.0));
  EXPECT_FALSE(IsSurelyMissed({1.0, 1.0}, {2.0, 1.0}, nan));
}

// At Hz that differ from the ends by about a tolerance, on edges of all kinds.
TEST(SurelyMissed, AMissedMeridianIsNotCrossed) {
  RandomEdges random;
  int missed = 0;
  for (int i = 0; i < 10'000; ++i) {
    Edge edge = random.Any();
    const double offsets[] = {0.0, 1e-10, 2e-10, 9e-10, 1.1e-9, 1e-8};
    const auto offset = [&] {
      return (random.Below(2) == 0 ? 1.0 : -1.0) * offsets[random.Below(std::size(offsets))];
    };
    const double ends[] = {0.0, HALF_PI, PI, TWO_PI, 2.0 * TWO_PI};
    if (random.Below(2) == 0) edge.a.Hz = ends[random.Below(std::size(ends))] + offset();
    if (random.Below(3) == 0) edge.b.Hz = edge.a.Hz + offset();
    if (random.Below(3) == 0) edge.b.Hz = edge.a.Hz + PI + offset();
    if (random.Below(4) == 0) edge.a.V = (random.Below(2) == 0 ? 0.0 : PI) + offset();
    const double h = NormalizeAngle((random.Below(2) == 0 ? edge.a.Hz : edge.b.Hz) + offset());
    if (!IsSurelyMissed(edge.a, edge.b, h)) continue;
    ++missed;
    double v = 0.0;
    ASSERT_FALSE(edge.GetArc().CrossesMeridian(h, std::cos(h), std::sin(h), -10.0, 10.0, v))
        << edge.a.Hz << ' ' << edge.a.V << ' ' << edge.b.Hz << ' ' << edge.b.V << ' ' << h;
  }
  EXPECT_GT(missed, 300);
}

}  // namespace
}  // namespace GMAT
