// A reader of whole files, beside reading and decoding alone.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using TestSupport::Append;
using TestSupport::ByteVector;

// 208 MB: a sample, over and over.
class SamplesC {
 public:
  static const SamplesC& Get() {
    static const SamplesC samples;
    return samples;
  }

  const ByteVector& Once() const { return once_; }
  std::string Name() const { return file_.Path().string(); }
  std::size_t Size() const { return once_.size() * kTimes; }
  /// The measurements of one sample, as offset and size.
  const std::vector<SDI::GPSRecordEntry>& Frames() const { return frames_; }
  std::size_t Count() const { return frames_.size() * kTimes; }

 private:
  static constexpr std::size_t kTimes = 2200;

  SamplesC() : once_(TestSupport::ReadBytes(SURVEYDATA_TEST_DATA "valley_drive.rec")) {
    ByteVector all;
    all.reserve(Size());
    for (std::size_t i = 0; i < kTimes; ++i) Append(all, once_);
    file_.Write(all);
    SDI::GPSRecordIndexC index(once_);
    for (SDI::GPSRecordEntry entry; index.Next(entry);) {
      if (entry.IsMeasurement()) frames_.push_back(entry);
    }
  }

  ByteVector once_;
  TestSupport::TempFileC file_;
  std::vector<SDI::GPSRecordEntry> frames_;
};

void SetRates(benchmark::State& state, std::size_t count) {
  const SamplesC& samples = SamplesC::Get();
  if (count != samples.Count()) state.SkipWithError("not all measurements");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(samples.Size()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(samples.Count()));
}

void BM_ReadSamples(benchmark::State& state) {
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
BENCHMARK(BM_ReadSamples)->Unit(benchmark::kMillisecond);

// What the reader adds to: the same bytes by `fread` in blocks of the same size, and the same
// frames decoded, whose places are known beforehand. `isFresh`: each in fresh data, as the reader
// gives it.
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
