// The cost of a data class to its callers, compared with hand-written code without the object
// model.

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include <benchmark/benchmark.h>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/object_model/compare.h>
#include <surveydata/total_station/tps_meas_data.h>

#include "benchmarks/create.h"
#include "benchmarks/pimpl_peer.h"

namespace {

// An accessor through the public object, compared with that of a class with a pointer to its
// implementation in another shared library.
template <class Point>
void BM_Get(benchmark::State& state) {
  const Point point(1.0, 2.0, 3.0);
  const Point* object = &point;
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    benchmark::DoNotOptimize(object->GetX());
  }
}
BENCHMARK_TEMPLATE(BM_Get, SDI::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_Get, Peer::PointC);

template <class Point>
void BM_Set(benchmark::State& state) {
  Point point(1.0, 2.0, 3.0);
  Point* object = &point;
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    object->SetX(4.0);
  }
}
BENCHMARK_TEMPLATE(BM_Set, SDI::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_Set, Peer::PointC);

// Creates and destroys a pair. The peer is an object with a block of the size of the
// implementation, also created in a shared library.
template <class Object>
void BM_Create(benchmark::State& state) {
  Benchmarks::Create<Object>(state);
}
template <class Public, class Impl>
using PeerOf = std::enable_if_t<sizeof(Public) == 2 * sizeof(void*), Peer::BlockC<sizeof(Impl)>>;
BENCHMARK_TEMPLATE(BM_Create, SDI::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_Create, PeerOf<SDI::CoordinatePointC, ODM::CoordinatePointC>);
BENCHMARK_TEMPLATE(BM_Create, SDI::TPSMeasDataC);
BENCHMARK_TEMPLATE(BM_Create, PeerOf<SDI::TPSMeasDataC, ODM::TPSMeasDataC>);

// The fields of a total-station measurement as a plain struct.
struct Measurement {
  std::array<char16_t, 17> text = {};
  std::array<double, 11> values = {};
  std::array<float, 6> singles = {};
  std::array<std::uint32_t, 10> words = {};
};

template <class Same>
bool AreEqual(const Measurement& a, const Measurement& b, Same same) {
  if (std::memcmp(a.text.data(), b.text.data(), sizeof(a.text)) != 0) return false;
  for (std::size_t i = 0; i < a.words.size(); ++i) {
    if (a.words[i] != b.words[i]) return false;
  }
  for (std::size_t i = 0; i < a.singles.size(); ++i) {
    if (!same(a.singles[i], b.singles[i])) return false;
  }
  for (std::size_t i = 0; i < a.values.size(); ++i) {
    if (!same(a.values[i], b.values[i])) return false;
  }
  return true;
}

// The operands are equal, or every floating-point number differs by one unit in the last place.
constexpr double kValue = 123.456;
constexpr float kSingle = 0.25F;

Measurement StructOf(bool off) {
  Measurement m;
  std::memcpy(m.text.data(), u"STN-1024", sizeof(u"STN-1024"));
  m.values.fill(off ? std::nextafter(kValue, 200.0) : kValue);
  m.singles.fill(off ? std::nextafter(kSingle, 1.0F) : kSingle);
  m.words.fill(7);
  return m;
}

SDI::TPSMeasDataC RecordOf(bool off) {
  const Measurement m = StructOf(off);
  const auto& v = m.values;
  const auto& s = m.singles;
  const auto& w = m.words;
  return SDI::TPSMeasDataC(u"STN-1024", v[0], v[1], v[2], v[3], v[4], v[5], s[0], v[6], v[7], v[8],
                           v[9], v[10], s[1], s[2], s[3], s[4], s[5], w[0], w[1], w[2], w[3], w[4],
                           w[5], w[6], w[7], w[8], w[9]);
}

// `IsEqual`, which compares up to the last field, compared with a loop over the fields of the
// struct.
void BM_IsEqual(benchmark::State& state) {
  const SDI::TPSMeasDataC a = RecordOf(false);
  const SDI::TPSMeasDataC b = RecordOf(state.range(0) != 0);
  const auto* other = &b;
  if (!a.IsEqual(b)) state.SkipWithError("the records must be equal");
  for (auto _ : state) {
    benchmark::DoNotOptimize(other);
    benchmark::DoNotOptimize(a.IsEqual(*other));
  }
}
BENCHMARK(BM_IsEqual)->ArgName("off")->Arg(0)->Arg(1);

template <class Same>
void BM_Loop(benchmark::State& state, Same same) {
  const Measurement a = StructOf(false);
  const Measurement b = StructOf(state.range(0) != 0);
  const auto* other = &b;
  if (!AreEqual(a, b, same)) state.SkipWithError("the records must be equal");
  for (auto _ : state) {
    benchmark::DoNotOptimize(other);
    benchmark::DoNotOptimize(AreEqual(a, *other, same));
  }
}
BENCHMARK_CAPTURE(BM_Loop, exact, [](auto a, auto b) { return a == b; }) -> ArgName("off")
    -> Arg(0);
BENCHMARK_CAPTURE(BM_Loop, tolerance, [](auto a, auto b) {
  constexpr auto kEpsilon = std::numeric_limits<decltype(a)>::epsilon();
  return API::CompareWithTolerance(a, b, kEpsilon) == 0;
}) -> ArgName("off") -> Arg(0) -> Arg(1);

}  // namespace
