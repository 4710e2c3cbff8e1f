// Every answer of a sphere area equals that of the rules written down step by step, bit for bit.
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/sphere_area.h>

#include "literal_sphere_area.h"
#include "ring_generator.h"

namespace GMAT {
namespace {

// SURVEYDATA_SPHERE_AREA_CASES asks for another number of cases.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::uint64_t kDefaultCases = 100'000;
#else
constexpr std::uint64_t kDefaultCases = 1'000'000;
#endif

std::uint64_t NumberOfCases() {
  const char* const text = std::getenv("SURVEYDATA_SPHERE_AREA_CASES");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : kDefaultCases;
}

std::uint64_t Bits(double x) { return std::bit_cast<std::uint64_t>(x); }

// NaN equals NaN, whatever its sign and payload: these are not the same on every platform.
bool Same(double a, double b) { return Bits(a) == Bits(b) || (a != a && b != b); }

bool Same(const std::vector<AnglePointC>& a, const std::vector<literal::Angles>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!Same(a[i].Hz, b[i].hz) || !Same(a[i].V, b[i].v)) return false;
  }
  return true;
}

std::string Describe(const SphereAreaC& area) {
  std::string text;
  for (const AnglePointC& p : area.GetPoints()) {
    char line[100];
    std::snprintf(line, sizeof(line), "{%a, %a}, ", p.Hz, p.V);
    text += line;
  }
  return text;
}

struct Tally {
  std::uint64_t cases = 0;
  std::uint64_t valid = 0;
  std::uint64_t zenith = 0;
  std::uint64_t inside = 0;
  std::uint64_t band = 0;
  std::uint64_t crossings = 0;
};

void CompareRing(const SphereAreaC& area, const literal::SphereArea& rules, Tally& tally) {
  const bool isValid = rules.IsValid();
  ASSERT_EQ(area.IsValid(), isValid);
  tally.valid += isValid;
  for (const bool noClamp : {false, true}) {
    literal::Extents expected{-1.0, -2.0, -3.0, -4.0, false};
    double hzMin = -1.0;
    double hzMax = -2.0;
    double vMin = -3.0;
    double vMax = -4.0;
    bool enclosesZenith = false;
    const bool result = rules.GetExtents(expected, noClamp);
    ASSERT_EQ(area.GetExtents(hzMin, hzMax, vMin, vMax, enclosesZenith, noClamp), result);
    ASSERT_TRUE(Same(hzMin, expected.hzMin)) << hzMin << " " << expected.hzMin;
    ASSERT_TRUE(Same(hzMax, expected.hzMax)) << hzMax << " " << expected.hzMax;
    ASSERT_TRUE(Same(vMin, expected.vMin)) << vMin << " " << expected.vMin;
    ASSERT_TRUE(Same(vMax, expected.vMax)) << vMax << " " << expected.vMax;
    ASSERT_EQ(enclosesZenith, expected.enclosesZenith);
    if (noClamp) tally.zenith += enclosesZenith;
  }
}

void CompareLines(const SphereAreaC& area, const literal::SphereArea& rules, AnglePointC probe,
                  Tally& tally) {
  for (const bool vertical : {true, false}) {
    std::vector<AnglePointC> out(1);
    std::vector<literal::Angles> expected(1);
    const bool result = rules.SearchLine({probe.Hz, probe.V}, vertical, expected);
    ASSERT_EQ(area.SearchLine(probe, vertical, out), result);
    if (result) {
      ASSERT_TRUE(Same(out, expected));
      tally.crossings += out.size();
    }
  }
}

void CompareProbe(const SphereAreaC& area, const literal::SphereArea& rules, AnglePointC probe,
                  Tally& tally) {
  const double distance = rules.DistanceToBoundary(probe.Hz, probe.V);
  ASSERT_TRUE(Same(area.DistanceToBoundary(probe.Hz, probe.V), distance));
  const bool inside = rules.Contains(probe.Hz, probe.V);
  ASSERT_EQ(area.Contains(probe.Hz, probe.V), inside);
  tally.inside += inside;
  tally.band += inside && distance < CONTAINS_TOLERANCE / 2.0;
}

TEST(SphereAreaProperty, EveryAnswerEqualsTheLiteralRulesBitForBit) {
  RingGenerator random(20260101);
  const std::uint64_t wanted = NumberOfCases();
  Tally tally;
  while (tally.cases < wanted) {
    SphereAreaC area;
    literal::SphereArea rules;
    for (const AnglePointC& p : random.Ring(200, true)) {
      area.AddPoint(p.Hz, p.V);
      rules.AddPoint(p.Hz, p.V);
    }
    SCOPED_TRACE(Describe(area));
    ASSERT_NO_FATAL_FAILURE(CompareRing(area, rules, tally));
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    const std::uint64_t probes = area.GetPointCount() > 20 ? 4 : 12;
    for (std::uint64_t i = 0; i < probes; ++i) {
      const AnglePointC probe = random.Probe(edges, hzOrigin, true);
      SCOPED_TRACE(testing::Message() << std::hexfloat << "probe " << probe.Hz << ", " << probe.V);
      if (i == 0) {
        ASSERT_NO_FATAL_FAILURE(CompareLines(area, rules, probe, tally));
      }
      ASSERT_NO_FATAL_FAILURE(CompareProbe(area, rules, probe, tally));
      ++tally.cases;
    }
  }
  // The cases must reach what they are made for.
  EXPECT_GT(tally.valid, tally.cases / 60);
  EXPECT_GT(tally.zenith, tally.cases / 200);
  EXPECT_GT(tally.inside, tally.cases / 20);
  EXPECT_GT(tally.band, tally.cases / 100);
  EXPECT_GT(tally.crossings, tally.cases / 30);
  std::printf(
      "%llu cases: %llu valid rings, %llu around the zenith, %llu inside, %llu in the band, "
      "%llu crossings\n",
      static_cast<unsigned long long>(tally.cases), static_cast<unsigned long long>(tally.valid),
      static_cast<unsigned long long>(tally.zenith), static_cast<unsigned long long>(tally.inside),
      static_cast<unsigned long long>(tally.band),
      static_cast<unsigned long long>(tally.crossings));
}

}  // namespace
}  // namespace GMAT
