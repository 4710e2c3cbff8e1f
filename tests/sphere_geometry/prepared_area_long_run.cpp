// prepared_area_long_run [PROBES [SEED]]: asks a prepared area and the area itself for random and
// adversarial directions, PROBES of them, and reports how often the bounds did not prove the
// answer. Exits with 1 at the first difference. A test asks for a few, a long run for 10^8.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <surveydata/sphere_geometry/prepared_sphere_area.h>
#include <surveydata/sphere_geometry/sphere_area.h>

#include "ring_generator.h"

namespace {

using GMAT::AnglePointC;

struct Tally {
  std::uint64_t probes = 0;
  std::uint64_t inside = 0;
  std::uint64_t unproven = 0;

  void Print(const char* kind) const {
    std::printf(
        "%-12s %12llu probes, %11llu inside, %11llu by the rules (%.4f %%)\n", kind,
        static_cast<unsigned long long>(probes), static_cast<unsigned long long>(inside),
        static_cast<unsigned long long>(unproven),
        probes == 0 ? 0.0 : 100.0 * static_cast<double>(unproven) / static_cast<double>(probes));
  }
};

bool Compare(const GMAT::SphereAreaC& area, const GMAT::PreparedSphereAreaC& prepared,
             AnglePointC probe, Tally& tally) {
  const bool expected = area.Contains(probe.Hz, probe.V);
  const GMAT::PreparedSphereAreaC::Answer answer = prepared.Ask(probe.Hz, probe.V);
  ++tally.probes;
  tally.inside += expected;
  tally.unproven += !answer.isProven;
  if (answer.isInside == expected) return true;
  std::printf("DIFFERENCE at {%a, %a}: %d, the area says %d (proven: %d); the points are\n",
              probe.Hz, probe.V, answer.isInside, expected, answer.isProven);
  for (const AnglePointC& p : area.GetPoints()) std::printf("{%a, %a}, ", p.Hz, p.V);
  std::printf("\n");
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  const std::uint64_t wanted = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 100'000'000;
  const std::uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 20260101;
  RingGenerator random(seed);
  Tally adversarial;
  Tally uniform;
  Tally crowded;
  constexpr std::uint64_t kCrowdedAmong = 100;  // rings
  for (std::uint64_t ring = 0; adversarial.probes + uniform.probes + crowded.probes < wanted;
       ++ring) {
    const bool isCrowded = ring % kCrowdedAmong == 0;
    GMAT::SphereAreaC area;
    area.AddPoints(isCrowded ? random.CrowdedRing() : random.Ring(200, true));
    const GMAT::PreparedSphereAreaC prepared(area);
    std::vector<AnglePointC> edges;
    double hzOrigin = 0.0;
    area.BuildEdgeList(edges, hzOrigin);
    for (int i = 0; i < 40; ++i) {
      if (!Compare(area, prepared, random.Probe(edges, hzOrigin, true),
                   isCrowded ? crowded : adversarial)) {
        return 1;
      }
      const AnglePointC anywhere{random.Uniform(0.0, GMAT::TWO_PI), random.Uniform(0.0, GMAT::PI)};
      if (!Compare(area, prepared, anywhere, isCrowded ? crowded : uniform)) return 1;
    }
  }
  adversarial.Print("adversarial");
  uniform.Print("uniform");
  crowded.Print("crowded");
  return 0;
}
