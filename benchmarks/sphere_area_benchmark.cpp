// Sphere areas compared with S2 and Boost.Geometry: containment, preparation, one query, validity.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/geometries.hpp>
#include <s2/mutable_s2shape_index.h>
#include <s2/s2contains_point_query.h>
#include <s2/s2error.h>
#include <s2/s2loop.h>

#include <surveydata/scanning/prepared_area.h>
#include <surveydata/scanning/scan_polygon_area.h>
#include <surveydata/sphere_geometry/prepared_sphere_area.h>

#include "rings.h"

namespace {

constexpr std::size_t kProbes = 4096;

using Ring = std::vector<Direction> (*)(std::size_t);

S2Point ToS2Point(Direction d) {
  return {std::sin(d.v) * std::cos(d.hz), std::sin(d.v) * std::sin(d.hz), std::cos(d.v)};
}

std::vector<S2Point> ToS2Points(const std::vector<Direction>& ring) {
  std::vector<S2Point> points;
  for (const Direction& d : ring) points.push_back(ToS2Point(d));
  return points;
}

std::unique_ptr<S2Loop> MakeLoop(const std::vector<S2Point>& points) {
  auto loop = std::make_unique<S2Loop>();
  loop->set_s2debug_override(S2Debug::DISABLE);
  loop->Init(points);
  return loop;
}

void FillArea(SDI::ScanAreaC& area, const std::vector<Direction>& ring) {
  for (const Direction& d : ring) area.AddPoint({d.hz, d.v, -1.0});
}

GMAT::SphereAreaC MakeSphereArea(const std::vector<Direction>& ring) {
  GMAT::SphereAreaC area;
  for (const Direction& d : ring) area.AddPoint(d.hz, d.v);
  return area;
}

std::size_t Size(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

void PerProbe(benchmark::State& state, std::size_t probes) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(probes));
}

// Every benchmark of probes tests all of them in each iteration; items_per_second counts probes.

void BM_ProbeBatch(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  const SDI::PreparedAreaC prepared(area);
  std::vector<double> hz;
  std::vector<double> v;
  for (const Direction& d : ProbesAround(kProbes)) {
    hz.push_back(d.hz);
    v.push_back(d.v);
  }
  const auto inside = std::make_unique<bool[]>(kProbes);
  for (auto _ : state) {
    prepared.Contains(hz, v, {inside.get(), kProbes});
    benchmark::DoNotOptimize(inside.get());
    benchmark::ClobberMemory();
  }
  PerProbe(state, kProbes);
  const GMAT::PreparedSphereAreaC inner(area.GetImpl()->GetSphereArea());
  std::size_t unproven = 0;
  for (std::size_t i = 0; i < kProbes; ++i) unproven += !inner.Ask(hz[i], v[i]).isProven;
  state.counters["by_rules"] = static_cast<double>(unproven) / kProbes;
}

// 10^6 distinct directions, more than a branch predictor learns: in a box around the ring, in one
// twice as wide, and in the order of a scan.
constexpr std::size_t kMillion = 1'000'000;
constexpr double kNear = 0.6;
using Directions = std::vector<Direction> (*)();
std::vector<Direction> Near() { return RandomDirections(kMillion, kNear); }
std::vector<Direction> Wide() { return RandomDirections(kMillion, 2.0 * kNear); }
std::vector<Direction> Scan() { return ScanDirections(kMillion, kNear); }

void BM_Million(benchmark::State& state, Ring ring, Directions directions,
                SDI::PreparedAreaC::Questions questions) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  const SDI::PreparedAreaC prepared(area, questions);
  std::vector<double> hz;
  std::vector<double> v;
  for (const Direction& d : directions()) {
    hz.push_back(d.hz);
    v.push_back(d.v);
  }
  const auto inside = std::make_unique<bool[]>(kMillion);
  for (auto _ : state) {
    prepared.Contains(hz, v, {inside.get(), kMillion});
    benchmark::ClobberMemory();
  }
  PerProbe(state, kMillion);
}

void BM_MillionS2(benchmark::State& state, Ring ring, Directions directions) {
  MutableS2ShapeIndex index;
  const auto loop = MakeLoop(ToS2Points(ring(Size(state))));
  index.Add(std::make_unique<S2Loop::Shape>(loop.get()));
  index.ForceBuild();
  auto query = MakeS2ContainsPointQuery(&index);
  const std::vector<Direction> probes = directions();
  const auto inside = std::make_unique<bool[]>(kMillion);
  for (auto _ : state) {
    for (std::size_t i = 0; i < kMillion; ++i) inside[i] = query.Contains(ToS2Point(probes[i]));
    benchmark::ClobberMemory();
  }
  PerProbe(state, kMillion);
}

template <class Contains>
void RunProbes(benchmark::State& state, Contains contains) {
  const std::vector<Direction> probes = ProbesAround(kProbes);
  for (auto _ : state) {
    std::size_t inside = 0;
    for (const Direction& d : probes) inside += contains(d);
    benchmark::DoNotOptimize(inside);
  }
  PerProbe(state, kProbes);
}

void BM_ProbeSingle(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  const SDI::PreparedAreaC prepared(area);
  RunProbes(state, [&](Direction d) { return prepared.Contains(d.hz, d.v); });
}

void BM_ProbeS2Query(benchmark::State& state, Ring ring) {
  MutableS2ShapeIndex index;
  const auto loop = MakeLoop(ToS2Points(ring(Size(state))));
  index.Add(std::make_unique<S2Loop::Shape>(loop.get()));
  index.ForceBuild();
  auto query = MakeS2ContainsPointQuery(&index);
  RunProbes(state, [&](Direction d) { return query.Contains(ToS2Point(d)); });
}

void BM_ProbeS2Loop(benchmark::State& state, Ring ring) {
  const auto loop = MakeLoop(ToS2Points(ring(Size(state))));
  benchmark::DoNotOptimize(loop->Contains(S2Point(1, 0, 0)));
  RunProbes(state, [&](Direction d) { return loop->Contains(ToS2Point(d)); });
}

using BoostPoint = boost::geometry::model::point<
    double, 2, boost::geometry::cs::spherical_equatorial<boost::geometry::radian>>;

void BM_ProbeBoost(benchmark::State& state, Ring ring) {
  boost::geometry::model::polygon<BoostPoint> polygon;
  const auto toPoint = [](Direction d) { return BoostPoint(d.hz, GMAT::HALF_PI - d.v); };
  for (const Direction& d : ring(Size(state))) {
    boost::geometry::append(polygon.outer(), toPoint(d));
  }
  boost::geometry::correct(polygon);
  const std::vector<Direction> probes = ProbesAround(64);
  for (auto _ : state) {
    std::size_t inside = 0;
    for (const Direction& d : probes) inside += boost::geometry::within(toPoint(d), polygon);
    benchmark::DoNotOptimize(inside);
  }
  PerProbe(state, probes.size());
}

void BM_Prepare(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  for (auto _ : state) {
    const SDI::PreparedAreaC prepared(area);
    benchmark::DoNotOptimize(&prepared);
  }
}

// Also builds the raster: the difference from `BM_Prepare` is its time.
void BM_PrepareMany(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  for (auto _ : state) {
    const SDI::PreparedAreaC prepared(area, SDI::PreparedAreaC::Questions::kMany);
    benchmark::DoNotOptimize(&prepared);
  }
}

// From directions to a complete index, because `BM_Prepare` starts from directions, too.
void BM_PrepareS2(benchmark::State& state, Ring ring) {
  const std::vector<Direction> corners = ring(Size(state));
  for (auto _ : state) {
    const auto loop = MakeLoop(ToS2Points(corners));
    MutableS2ShapeIndex index;
    index.Add(std::make_unique<S2Loop::Shape>(loop.get()));
    index.ForceBuild();
    benchmark::DoNotOptimize(&index);
  }
}

// Only the index, of an existing loop.
void BM_PrepareS2IndexOnly(benchmark::State& state, Ring ring) {
  const auto loop = MakeLoop(ToS2Points(ring(Size(state))));
  for (auto _ : state) {
    MutableS2ShapeIndex index;
    index.Add(std::make_unique<S2Loop::Shape>(loop.get()));
    index.ForceBuild();
    benchmark::DoNotOptimize(&index);
  }
}

// One query of an area that is not prepared.
void BM_Once(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  const std::vector<Direction> probes = ProbesAround(kProbes);
  std::size_t i = 0;
  for (auto _ : state) {
    const Direction& d = probes[i++ % kProbes];
    benchmark::DoNotOptimize(area.Contains(d.hz, d.v));
  }
}

// The most expensive query: the direction is inside, so the validity is checked, too.
void BM_OnceInside(benchmark::State& state, Ring ring) {
  SDI::ScanPolygonAreaC area;
  FillArea(area, ring(Size(state)));
  for (auto _ : state) benchmark::DoNotOptimize(area.Contains(3.05, 1.33));
}

void BM_OnceS2(benchmark::State& state, Ring ring) {
  const auto loop = MakeLoop(ToS2Points(ring(Size(state))));
  const std::vector<Direction> probes = ProbesAround(kProbes);
  std::size_t i = 0;
  for (auto _ : state) {
    MutableS2ShapeIndex index;
    index.Add(std::make_unique<S2Loop::Shape>(loop.get()));
    auto query = MakeS2ContainsPointQuery(&index);
    benchmark::DoNotOptimize(query.Contains(ToS2Point(probes[i++ % kProbes])));
  }
}

void BM_IsValid(benchmark::State& state, Ring ring) {
  const GMAT::SphereAreaC area = MakeSphereArea(ring(Size(state)));
  for (auto _ : state) benchmark::DoNotOptimize(area.IsValid());
  state.SetComplexityN(state.range(0));
}

void BM_IsValidS2(benchmark::State& state, Ring ring) {
  const std::vector<S2Point> points = ToS2Points(ring(Size(state)));
  for (auto _ : state) {
    const auto loop = MakeLoop(points);
    S2Error error;
    benchmark::DoNotOptimize(loop->FindValidationError(&error));
  }
}

void Sizes(benchmark::internal::Benchmark* b) {
  for (const int n : {4, 16, 100, 1000, 10000}) b->Arg(n);
}

BENCHMARK_CAPTURE(BM_ProbeBatch, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_ProbeSingle, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_ProbeS2Query, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_ProbeS2Loop, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_ProbeBoost, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Prepare, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_PrepareS2, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_PrepareS2IndexOnly, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Once, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_OnceInside, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_OnceS2, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_IsValid, lobed, LobedRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_IsValidS2, lobed, LobedRing)->Apply(Sizes);

BENCHMARK_CAPTURE(BM_PrepareMany, lobed, LobedRing)->Apply(Sizes);

constexpr auto kFew = SDI::PreparedAreaC::Questions::kFew;
constexpr auto kMany = SDI::PreparedAreaC::Questions::kMany;
BENCHMARK_CAPTURE(BM_Million, lobed_near_few, LobedRing, Near, kFew)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, lobed_near_many, LobedRing, Near, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, lobed_near, LobedRing, Near)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, lobed_wide_few, LobedRing, Wide, kFew)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, lobed_wide_many, LobedRing, Wide, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, lobed_wide, LobedRing, Wide)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, lobed_scan_few, LobedRing, Scan, kFew)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, lobed_scan_many, LobedRing, Scan, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, lobed_scan, LobedRing, Scan)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, spiky_near_few, SpikyRing, Near, kFew)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, spiky_near_many, SpikyRing, Near, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, spiky_near, SpikyRing, Near)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, spiky_wide_many, SpikyRing, Wide, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, spiky_wide, SpikyRing, Wide)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Million, spiky_scan_many, SpikyRing, Scan, kMany)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_MillionS2, spiky_scan, SpikyRing, Scan)->Apply(Sizes);

BENCHMARK_CAPTURE(BM_ProbeBatch, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_ProbeS2Query, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Prepare, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_PrepareMany, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_PrepareS2IndexOnly, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_OnceInside, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_OnceS2, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_IsValid, spiky, SpikyRing)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_IsValidS2, spiky, SpikyRing)->Apply(Sizes);

BENCHMARK_CAPTURE(BM_IsValid, lobed_growth, LobedRing)
    ->Arg(100)
    ->Arg(600)
    ->Arg(3600)
    ->Arg(20000)
    ->Arg(60000)
    ->Complexity(benchmark::oNLogN);
BENCHMARK_CAPTURE(BM_IsValid, spiky_growth, SpikyRing)
    ->Arg(100)
    ->Arg(600)
    ->Arg(3600)
    ->Arg(20000)
    ->Arg(60000)
    ->Complexity(benchmark::oNLogN);

}  // namespace
