// The C interface compared with the classes that it calls.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/surveydata.h>

#include "benchmarks/rings.h"
#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

// --- Batches of directions

struct AreaDeleter {
  void operator()(surveydata_area* area) const { surveydata_area_destroy(area); }
};
using Area = std::unique_ptr<surveydata_area, AreaDeleter>;

constexpr std::size_t kDirections = 4096;

// A prepared ring of `n` corners, and directions around it in several layouts.
class BatchC {
 public:
  explicit BatchC(std::size_t n) : probes_(ProbesAround(kDirections)) {
    std::vector<double> hz;
    std::vector<double> v;
    for (const Direction& corner : LobedRing(n)) {
      hz.push_back(corner.hz);
      v.push_back(corner.v);
      polygon_.AddPoint({corner.hz, corner.v, -1.0});
    }
    surveydata_area_definition definition{};
    definition.struct_size = sizeof(definition);
    definition.kind = SURVEYDATA_POLYGON;
    definition.count = n;
    definition.hz = hz.data();
    definition.v = v.data();
    surveydata_area* area = nullptr;
    surveydata_area_create(&definition, &area);
    const Area made(area);
    surveydata_area* prepared = nullptr;
    surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_FEW, &prepared);
    area_.reset(prepared);
    class_ = std::make_unique<SDI::PreparedAreaC>(polygon_);
    for (const Direction& probe : probes_) {
      hz_.push_back(probe.hz);
      v_.push_back(probe.v);
    }
    // The answers are the same.
    AskClass();
    const std::vector<std::uint8_t> expected = inside_;
    AskC();
    if (inside_ != expected) std::abort();
    AskPairs();
    if (inside_ != expected) std::abort();
  }

  void AskClass() {
    static_assert(sizeof(bool) == 1);
    class_->Contains(hz_, v_, {reinterpret_cast<bool*>(inside_.data()), inside_.size()});
  }
  void AskC() {
    surveydata_area_contains_many(area_.get(), hz_.data(), sizeof(double), v_.data(),
                                  sizeof(double), kDirections, inside_.data());
  }
  void AskPairs() {
    surveydata_area_contains_many(area_.get(), &probes_[0].hz, sizeof(Direction), &probes_[0].v,
                                  sizeof(Direction), kDirections, inside_.data());
  }
  void AskOneByOne() {
    for (std::size_t i = 0; i < kDirections; ++i) {
      std::int32_t inside = 0;
      surveydata_area_contains(area_.get(), hz_[i], v_[i], &inside);
      inside_[i] = static_cast<std::uint8_t>(inside);
    }
  }
  void AskClassOneByOne() {
    for (std::size_t i = 0; i < kDirections; ++i) inside_[i] = class_->Contains(hz_[i], v_[i]);
  }

 private:
  std::vector<Direction> probes_;
  SDI::ScanPolygonAreaC polygon_;
  std::unique_ptr<SDI::PreparedAreaC> class_;
  Area area_;
  std::vector<double> hz_;
  std::vector<double> v_;
  std::vector<std::uint8_t> inside_ = std::vector<std::uint8_t>(kDirections);
};

template <class Ask>
void BM_Directions(benchmark::State& state, Ask ask) {
  BatchC batch(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    (batch.*ask)();
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kDirections));
}
BENCHMARK_CAPTURE(BM_Directions, batch_class, &BatchC::AskClass)->Arg(4)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(BM_Directions, batch_c, &BatchC::AskC)->Arg(4)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(BM_Directions, pairs_c, &BatchC::AskPairs)->Arg(4)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(BM_Directions, single_class, &BatchC::AskClassOneByOne)->Arg(100);
BENCHMARK_CAPTURE(BM_Directions, single_c, &BatchC::AskOneByOne)->Arg(100);

// --- Records in memory: a sample, 100 times over

TestSupport::ByteVector Samples() {
  const TestSupport::ByteVector once =
      TestSupport::ReadBytes(SURVEYDATA_TEST_DATA "valley_drive.rec");
  TestSupport::ByteVector all;
  for (int i = 0; i < 100; ++i) TestSupport::Append(all, once);
  return all;
}

void BM_RecordsClass(benchmark::State& state) {
  const TestSupport::ByteVector bytes = Samples();
  std::size_t count = 0;
  for (auto _ : state) {
    for (const SDI::GPSRecordC& record :
         SDI::GPSRecordReaderC(std::span<const std::uint8_t>(bytes))) {
      benchmark::DoNotOptimize(record.GetInfo().number);
      ++count;
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(count));
}
BENCHMARK(BM_RecordsClass);

void BM_RecordsC(benchmark::State& state) {
  const TestSupport::ByteVector bytes = Samples();
  std::size_t count = 0;
  surveydata_entry entry{};
  entry.struct_size = sizeof(entry);
  surveydata_measurement measurement{};
  measurement.struct_size = sizeof(measurement);
  for (auto _ : state) {
    surveydata_reader* reader = nullptr;
    surveydata_reader_open_bytes(bytes.data(), bytes.size(), 0, SURVEYDATA_NO_END, &reader);
    while (surveydata_reader_next(reader, SURVEYDATA_MEASUREMENT, &entry) == SURVEYDATA_OK) {
      surveydata_decode(entry.bytes, entry.size, &measurement);
      benchmark::DoNotOptimize(measurement.number);
      ++count;
    }
    surveydata_reader_close(reader);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(count));
}
BENCHMARK(BM_RecordsC);

}  // namespace
