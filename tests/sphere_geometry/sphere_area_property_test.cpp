// Every answer of a sphere area equals that of the step-by-step rules, bit for bit.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/sphere_area.h>

#include "tests/support/compare_areas.h"
#include "tests/support/literal_sphere_area.h"
#include "tests/support/number_of_cases.h"
#include "tests/support/ring_generator.h"
#include "tests/support/sanitizer.h"

namespace GMAT {
namespace {

using CompareAreas::CompareLines;
using CompareAreas::CompareProbe;
using CompareAreas::CompareRing;
using CompareAreas::Tally;

// SURVEYDATA_SPHERE_AREA_CASES sets another number of cases.
constexpr std::uint64_t kDefaultCases =
    kIsSanitized ? 100'000 : TestSupport::NumberOfCases(1'000'000);

std::uint64_t NumberOfCases() {
  const char* const text = std::getenv("SURVEYDATA_SPHERE_AREA_CASES");
  return text != nullptr ? std::strtoull(text, nullptr, 10) : kDefaultCases;
}

// Only called after a failure: it takes as long as a comparison.
std::string Describe(const AnglePointC& p) {
  char text[100];
  std::snprintf(text, sizeof(text), "{%a, %a}, ", p.Hz, p.V);
  return text;
}
std::string Describe(const SphereAreaC& area) {
  std::string text;
  for (const AnglePointC& p : area.GetPoints()) text += Describe(p);
  return text;
}
std::string Describe(const SphereAreaC& area, const AnglePointC& probe) {
  return Describe(area) + "probe " + Describe(probe);
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
    ASSERT_NO_FATAL_FAILURE(CompareRing(area, rules, tally)) << Describe(area);
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    const std::uint64_t probes = area.GetPointCount() > 20 ? 4 : 12;
    for (std::uint64_t i = 0; i < probes; ++i) {
      const AnglePointC probe = random.Probe(edges, hzOrigin, true);
      if (i == 0) {
        ASSERT_NO_FATAL_FAILURE(CompareLines(area, rules, probe, tally)) << Describe(area, probe);
      }
      ASSERT_NO_FATAL_FAILURE(CompareProbe(area, rules, probe, tally)) << Describe(area, probe);
      ++tally.cases;
    }
  }
  // The cases must cover what they are generated for.
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
