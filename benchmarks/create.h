#ifndef SURVEYDATA_BENCHMARKS_CREATE_H_
#define SURVEYDATA_BENCHMARKS_CREATE_H_

#include <benchmark/benchmark.h>

/// \file
/// The benchmark of creating and destroying an object, for a class and for its peer.

namespace Benchmarks {

template <class Object>
void Create(benchmark::State& state) {
  for (auto _ : state) {
    auto* object = new Object;
    benchmark::DoNotOptimize(object);
    delete object;
  }
}

}  // namespace Benchmarks

#endif  // SURVEYDATA_BENCHMARKS_CREATE_H_
