// The measurements of a file as columns, beside walking and decoding alone.

#include <cstddef>
#include <cstdint>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "benchmarks/record_samples.h"

namespace {

using Benchmarks::SamplesC;
using Benchmarks::SetRates;

constexpr std::size_t kRows = 65536;

// Which columns: all, those that are no texts, or a few that somebody plots.
enum class Choice { kAll, kNumbers, kFew };

std::vector<const SDI::GPSColumn*> ColumnsOf(Choice choice) {
  std::vector<const SDI::GPSColumn*> columns;
  if (choice == Choice::kFew) {
    for (const char* const name : {"gps_week", "time_of_week", "hdop", "vdop", "total_second"}) {
      columns.push_back(SDI::FindGPSColumn(name));
    }
    return columns;
  }
  for (const SDI::GPSColumn& column : SDI::GetGPSColumns()) {
    if (choice == Choice::kAll || column.type != SDI::GPSColumnType::kText) {
      columns.push_back(&column);
    }
  }
  return columns;
}

void BM_WalkAndDecode(benchmark::State& state) {
  const SamplesC& samples = SamplesC::Get();
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    for (const SDI::GPSRecordC& record : SDI::GPSRecordReaderC(samples.Name().c_str())) {
      if (!record.IsDone()) state.SkipWithError("a frame is bad");
      ++count;
    }
  }
  SetRates(state, count);
}
BENCHMARK(BM_WalkAndDecode)->Unit(benchmark::kMillisecond);

// The memory of a batch, which is used again and again.
class BatchC {
 public:
  explicit BatchC(const std::vector<const SDI::GPSColumn*>& columns) {
    for (const SDI::GPSColumn* const column : columns) {
      SDI::GPSColumnBuffer buffer{.column = column};
      buffer.size = kRows * (column->largest != 0 ? column->largest : sizeof(std::uint64_t));
      buffer.values = Take(buffer.size);
      buffer.validity = static_cast<std::uint8_t*>(Take(kRows / 8));
      if (column->largest != 0) {
        buffer.offsets = static_cast<std::int64_t*>(Take((kRows + 1) * sizeof(std::int64_t)));
      }
      buffers_.push_back(buffer);
    }
  }

  std::vector<SDI::GPSColumnBuffer>& Get() { return buffers_; }

 private:
  void* Take(std::size_t size) {
    blocks_.emplace_back((size + 7) / 8);
    return blocks_.back().data();
  }

  std::vector<SDI::GPSColumnBuffer> buffers_;
  std::vector<std::vector<std::uint64_t>> blocks_;
};

void BM_Columns(benchmark::State& state, Choice choice) {
  const SamplesC& samples = SamplesC::Get();
  BatchC batch(ColumnsOf(choice));
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    SDI::GPSRecordReaderC reader(samples.Name().c_str());
    SDI::GPSColumnReaderC columns(reader);
    std::size_t rows = 0;
    while (columns.Read(batch.Get(), kRows, rows) == SDI::GPSColumnsOutcome::kDone) count += rows;
  }
  SetRates(state, count);
}
BENCHMARK_CAPTURE(BM_Columns, all, Choice::kAll)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Columns, numbers, Choice::kNumbers)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Columns, few, Choice::kFew)->Unit(benchmark::kMillisecond);

}  // namespace
