// What the pair of a public object and its implementation costs, beside the bare language features
// that it is made of.

#include <cstddef>
#include <cstring>

#include <benchmark/benchmark.h>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/object_model/handle.h>

namespace {

// The checked downcast behind every accessor, beside the plain `dynamic_cast`.
template <class Cast>
void BM_Downcast(benchmark::State& state, Cast cast) {
  const SDI::CoordinatePointC point(1.0, 2.0, 3.0);
  API::ImplObjectC* impl = point.GetImpl();
  for (auto _ : state) {
    benchmark::DoNotOptimize(impl);
    benchmark::DoNotOptimize(cast(impl));
  }
}
BENCHMARK_CAPTURE(BM_Downcast, checked, [](API::ImplObjectC* impl) {
  return API::CheckedCast<ODM::CoordinatePointC>(impl);
});
BENCHMARK_CAPTURE(BM_Downcast, dynamic, [](API::ImplObjectC* impl) {
  return dynamic_cast<ODM::CoordinatePointC*>(impl);
});

// Two blocks of the sizes of a pair, as plain memory.
template <class Public, class Impl>
struct Blocks {
  std::byte* object = new std::byte[sizeof(Public)];
  std::byte* impl = new std::byte[sizeof(Impl)];

  ~Blocks() {
    delete[] impl;
    delete[] object;
  }
};

template <class Public, class Impl>
void BM_CreatePair(benchmark::State& state) {
  for (auto _ : state) {
    auto* object = new Public;
    benchmark::DoNotOptimize(object);
    delete object;
  }
}
template <class Public, class Impl>
void BM_CreateBlocks(benchmark::State& state) {
  for (auto _ : state) {
    Blocks<Public, Impl> blocks;
    benchmark::DoNotOptimize(blocks);
  }
}
BENCHMARK_TEMPLATE(BM_CreatePair, SDI::CoordinatePointC, ODM::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_CreateBlocks, SDI::CoordinatePointC, ODM::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_CreatePair, SDI::GPSMeasDataC, SDI::GPSMeasDataImplC);
BENCHMARK_TEMPLATE(BM_CreateBlocks, SDI::GPSMeasDataC, SDI::GPSMeasDataImplC);

template <class Public, class Impl>
void BM_CopyPair(benchmark::State& state) {
  const Public original;
  for (auto _ : state) {
    auto* copy = new Public(original);
    benchmark::DoNotOptimize(copy);
    delete copy;
  }
}
template <class Public, class Impl>
void BM_CopyBlocks(benchmark::State& state) {
  const Blocks<Public, Impl> original;
  std::memset(original.impl, 1, sizeof(Impl));
  for (auto _ : state) {
    Blocks<Public, Impl> copy;
    std::memcpy(copy.impl, original.impl, sizeof(Impl));
    benchmark::DoNotOptimize(copy);
    benchmark::ClobberMemory();
  }
}
BENCHMARK_TEMPLATE(BM_CopyPair, SDI::CoordinatePointC, ODM::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_CopyBlocks, SDI::CoordinatePointC, ODM::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_CopyPair, SDI::GPSMeasDataC, SDI::GPSMeasDataImplC);
BENCHMARK_TEMPLATE(BM_CopyBlocks, SDI::GPSMeasDataC, SDI::GPSMeasDataImplC);

}  // namespace
