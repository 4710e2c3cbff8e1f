// Validity of rings in which many edges share a range of Hz and many a range of V, compared
// with S2.
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <s2/s2error.h>
#include <s2/s2loop.h>

#include <surveydata/sphere_geometry/sphere_area.h>

#include "hostile_rings.h"

namespace {

using Ring = std::vector<Direction> (*)(std::size_t);

std::size_t Size(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

void BM_IsValid(benchmark::State& state, Ring ring) {
  GMAT::SphereAreaC area;
  for (const Direction& d : ring(Size(state))) area.AddPoint(d.hz, d.v);
  if (!area.IsValid()) state.SkipWithError("not valid");
  for (auto _ : state) benchmark::DoNotOptimize(area.IsValid());
}

void BM_IsValidS2(benchmark::State& state, Ring ring) {
  std::vector<S2Point> points;
  for (const Direction& d : ring(Size(state))) {
    points.emplace_back(std::sin(d.v) * std::cos(d.hz), std::sin(d.v) * std::sin(d.hz),
                        std::cos(d.v));
  }
  for (auto _ : state) {
    S2Loop loop;
    loop.set_s2debug_override(S2Debug::DISABLE);
    loop.Init(points);
    S2Error error;
    benchmark::DoNotOptimize(loop.FindValidationError(&error));
  }
}

const bool isRegistered = [] {
  for (const HostileRings::Named& ring : HostileRings::kAll) {
    const std::string name = ring.name;
    for (int n = 1000; n <= 64000; n *= 4) {
      benchmark::RegisterBenchmark(("BM_IsValid/" + name).c_str(), BM_IsValid, ring.make)
          ->Arg(n)
          ->Unit(benchmark::kMillisecond);
      // Its time grows with the square of n.
      if (n > 16000) continue;
      benchmark::RegisterBenchmark(("BM_IsValidS2/" + name).c_str(), BM_IsValidS2, ring.make)
          ->Arg(n)
          ->Unit(benchmark::kMillisecond);
    }
  }
  return true;
}();

}  // namespace
