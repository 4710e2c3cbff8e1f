// A reader of whole files, compared with only reading and decoding.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "benchmarks/record_samples.h"

namespace {

using Benchmarks::SamplesC;
using Benchmarks::SetRates;

void BM_ReadSamples(benchmark::State& state) { Benchmarks::ReadSamples(state); }
BENCHMARK(BM_ReadSamples)->Unit(benchmark::kMillisecond);

// The peer of the reader: the same bytes by `fread` in blocks of the same size, and the same frames
// decoded at offsets that are known in advance. With `isFresh` each goes into fresh data, as in the
// reader.
void ReadSamplesBare(benchmark::State& state, bool isFresh) {
  const SamplesC& samples = SamplesC::Get();
  const std::size_t perBlock = 256 * 1024 / samples.Once().size();
  std::vector<std::uint8_t> block(perBlock * samples.Once().size());
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  const SDI::GPSMeasDataImplC fresh;
  std::size_t count = 0;
  for (auto _ : state) {
    count = 0;
    std::FILE* const stream = std::fopen(samples.Name().c_str(), "rb");
    std::setvbuf(stream, nullptr, _IONBF, 0);
    while (std::fread(block.data(), 1, block.size(), stream) == block.size()) {
      for (std::size_t i = 0; i < perBlock; ++i) {
        const std::uint8_t* const begin = block.data() + i * samples.Once().size();
        for (const SDI::GPSRecordEntry& frame : samples.Frames()) {
          if (isFresh) {
            measurement = fresh;
            info = {};
          }
          const auto result =
              SDI::GPSRecordReaderC::Decode({begin + frame.offset, frame.size}, measurement, info);
          if (!result.IsDone()) state.SkipWithError("a frame is bad");
          benchmark::DoNotOptimize(measurement);
          ++count;
        }
      }
    }
    std::fclose(stream);
  }
  SetRates(state, count);
}
void BM_ReadSamplesBare(benchmark::State& state) { ReadSamplesBare(state, false); }
void BM_ReadSamplesBareFresh(benchmark::State& state) { ReadSamplesBare(state, true); }
BENCHMARK(BM_ReadSamplesBare)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReadSamplesBareFresh)->Unit(benchmark::kMillisecond);

}  // namespace
