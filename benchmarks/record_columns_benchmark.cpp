// The measurements of a file as columns, compared with only walking and decoding.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/c_interface/arrow_c_interface.h>
#include <surveydata/c_interface/surveydata.h>
#include <surveydata/gnss/gps_record_columns.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/record_columns.h>

#include "benchmarks/record_samples.h"

namespace {

using Benchmarks::SamplesC;
using Benchmarks::SetRates;

constexpr std::size_t kRows = 65536;
constexpr std::size_t kBlock = 64;  // of rows that are read together

// All columns, those that are not texts, or a few for a plot.
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

void BM_WalkAndDecode(benchmark::State& state) { Benchmarks::ReadSamples(state); }
BENCHMARK(BM_WalkAndDecode)->Unit(benchmark::kMillisecond);

// The memory of a batch, which is reused for each batch.
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

// A lower bound for any reader of columns: walking and decoding, and writing as many bytes to each
// column as its values take.
void BM_WalkDecodeAndWriteBytes(benchmark::State& state) {
  const SamplesC& samples = SamplesC::Get();
  BatchC batch(ColumnsOf(Choice::kAll));
  std::vector<std::size_t> sizes;  // of a full batch
  {
    SDI::GPSRecordReaderC reader(samples.Name().c_str());
    SDI::GPSColumnReaderC columns(reader);
    std::size_t rows = 0;
    columns.Read(batch.Get(), kRows, rows);
    for (const SDI::GPSColumnBuffer& buffer : batch.Get()) {
      const std::size_t unit =
          buffer.column->type == SDI::GPSColumnType::kUInt16List ? sizeof(std::uint16_t) : 1;
      sizes.push_back(buffer.column->largest != 0
                          ? static_cast<std::size_t>(buffer.offsets[rows]) * unit
                          : SDI::RecordColumns::BytesOfValues(buffer.column->type, kRows));
    }
  }
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    for (const SDI::GPSRecordC& record : SDI::GPSRecordReaderC(samples.Name().c_str())) {
      if (!record.IsDone()) state.SkipWithError("a frame is bad");
      // A block of each column at a time, as they are read.
      if (++count % kBlock != 0) continue;
      const std::size_t block = count / kBlock % (kRows / kBlock);
      for (std::size_t i = 0; i < sizes.size(); ++i) {
        const SDI::GPSColumnBuffer& buffer = batch.Get()[i];
        const std::size_t size = sizes[i] * kBlock / kRows;
        std::memset(static_cast<char*>(buffer.values) + block * size, 1, size);
        if (buffer.offsets != nullptr) {
          std::memset(buffer.offsets + block * kBlock, 1, kBlock * sizeof(std::int64_t));
        }
        std::memset(buffer.validity + block * kBlock / 8, 1, kBlock / 8);
      }
    }
    benchmark::ClobberMemory();
  }
  SetRates(state, count);
}
BENCHMARK(BM_WalkDecodeAndWriteBytes)->Unit(benchmark::kMillisecond);

// The same buffers, filled by the function of the C interface.
void BM_ColumnsInC(benchmark::State& state, Choice choice) {
  const SamplesC& samples = SamplesC::Get();
  BatchC batch(ColumnsOf(choice));
  std::vector<surveydata_column_buffer> buffers;
  for (const SDI::GPSColumnBuffer& buffer : batch.Get()) {
    const auto place = buffer.column - SDI::GetGPSColumns().data();
    buffers.push_back({static_cast<std::uint32_t>(place), 0, buffer.values, buffer.size,
                       buffer.offsets, buffer.validity, 0});
  }
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    surveydata_reader* reader = nullptr;
    surveydata_reader_open_file(samples.Name().c_str(), 0, SURVEYDATA_NO_END, &reader);
    std::size_t rows = 0;
    while (surveydata_reader_read_columns(reader, buffers.data(), sizeof(buffers[0]),
                                          buffers.size(), kRows, &rows, nullptr) == SURVEYDATA_OK) {
      count += rows;
    }
    surveydata_reader_close(reader);
  }
  SetRates(state, count);
}
BENCHMARK_CAPTURE(BM_ColumnsInC, all, Choice::kAll)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ColumnsInC, few, Choice::kFew)->Unit(benchmark::kMillisecond);

// The Arrow stream of all columns, each batch released when the next one is requested.
void BM_ArrowStream(benchmark::State& state) {
  const SamplesC& samples = SamplesC::Get();
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    surveydata_reader* reader = nullptr;
    surveydata_reader_open_file(samples.Name().c_str(), 0, SURVEYDATA_NO_END, &reader);
    ArrowArrayStream stream = {};
    if (surveydata_reader_arrow_stream(reader, nullptr, 0, 0, &stream) != SURVEYDATA_OK) {
      state.SkipWithError("no stream");
      break;
    }
    for (ArrowArray batch = {};; batch.release(&batch)) {
      if (stream.get_next(&stream, &batch) != 0) state.SkipWithError("no batch");
      if (batch.release == nullptr) break;
      count += static_cast<std::size_t>(batch.length);
    }
    stream.release(&stream);
  }
  SetRates(state, count);
}
BENCHMARK(BM_ArrowStream)->Unit(benchmark::kMillisecond);

}  // namespace
