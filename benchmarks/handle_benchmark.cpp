// The cost of a pair of a public object and its implementation, compared with the language features
// that it uses.

#include <benchmark/benchmark.h>

#include <surveydata/geodetic/coordinate_point.h>
#include <surveydata/gnss/gps_meas_data.h>
#include <surveydata/object_model/handle.h>
#include <surveydata/scanning/scan_polygon_area.h>

#include "benchmarks/create.h"
#include "benchmarks/pimpl_peer.h"

namespace {

// The checked downcast of every accessor, compared with the plain `dynamic_cast`.
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

// An accessor of an area, whose implementation has one of three classes, compared with that of a
// point.
void BM_Get(benchmark::State& state, const auto& object, auto get) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(&object);
    benchmark::DoNotOptimize((object.*get)());
  }
}
BENCHMARK_CAPTURE(BM_Get, point, SDI::CoordinatePointC(1.0, 2.0, 3.0),
                  &SDI::CoordinatePointC::GetX);
BENCHMARK_CAPTURE(BM_Get, area, SDI::ScanPolygonAreaC(), &SDI::ScanAreaC::GetHzStep);

// Creates and destroys an object. The peer is an object with a block of the size of the
// implementation; both are created in a shared library.
template <class Object>
void BM_Create(benchmark::State& state) {
  Benchmarks::Create<Object>(state);
}
template <class Object>
void BM_Copy(benchmark::State& state) {
  const Object original;
  for (auto _ : state) {
    auto* copy = new Object(original);
    benchmark::DoNotOptimize(copy);
    delete copy;
  }
}
using PointPeer = Peer::BlockC<sizeof(ODM::CoordinatePointC)>;
using MeasurementPeer = Peer::BlockC<sizeof(SDI::GPSMeasDataImplC)>;
BENCHMARK_TEMPLATE(BM_Create, SDI::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_Create, PointPeer);
BENCHMARK_TEMPLATE(BM_Create, SDI::GPSMeasDataC);
BENCHMARK_TEMPLATE(BM_Create, MeasurementPeer);
BENCHMARK_TEMPLATE(BM_Copy, SDI::CoordinatePointC);
BENCHMARK_TEMPLATE(BM_Copy, PointPeer);
BENCHMARK_TEMPLATE(BM_Copy, SDI::GPSMeasDataC);
BENCHMARK_TEMPLATE(BM_Copy, MeasurementPeer);

}  // namespace
