#ifndef SURVEYDATA_BENCHMARKS_RECORD_SAMPLES_H_
#define SURVEYDATA_BENCHMARKS_RECORD_SAMPLES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

/// \file
/// The record file that the benchmarks of readers share.

namespace Benchmarks {

using TestSupport::ByteVector;

/// 208 MB: many copies of a sample.
class SamplesC {
 public:
  static const SamplesC& Get() {
    static const SamplesC samples;
    return samples;
  }

  const ByteVector& Once() const { return once_; }
  std::string Name() const { return file_.Path().string(); }
  std::size_t Size() const { return once_.size() * kTimes; }
  /// The measurements of one copy.
  const std::vector<SDI::GPSRecordEntry>& Frames() const { return frames_; }
  std::size_t Count() const { return frames_.size() * kTimes; }

 private:
  static constexpr std::size_t kTimes = 2200;

  SamplesC() : once_(TestSupport::ReadBytes(SURVEYDATA_TEST_DATA "valley_drive.rec")) {
    ByteVector all;
    all.reserve(Size());
    for (std::size_t i = 0; i < kTimes; ++i) TestSupport::Append(all, once_);
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

/// Sets the rates of a benchmark that has read `count` measurements of the file in each iteration.
inline void SetRates(benchmark::State& state, std::size_t count) {
  const SamplesC& samples = SamplesC::Get();
  if (count != samples.Count()) state.SkipWithError("not all measurements");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(samples.Size()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(samples.Count()));
}

/// The benchmark of reading the file with `GPSRecordReaderC`.
inline void ReadSamples(benchmark::State& state) {
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

}  // namespace Benchmarks

#endif  // SURVEYDATA_BENCHMARKS_RECORD_SAMPLES_H_
