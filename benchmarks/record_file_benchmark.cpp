// Reading records: from a file, compared with the same calls of the C runtime alone; from memory;
// and the walk over a whole file.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <surveydata/gnss/gps_record_file.h>
#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/record_frame.h>

#include "tests/support/frame_builder.h"
#include "tests/support/temp_file.h"

namespace {

using TestSupport::Append;
using TestSupport::ByteVector;
using TestSupport::FrameBuilderC;

// A frame with every block, and the longest texts that fit 500 bytes.
ByteVector FrameOfEverything() {
  FrameBuilderC b;
  b.Times().U16(0x33FF);
  b.Fill(6, 0).U8(1).U8(6).I32(0x4000);                           // file flags
  b.NameUnits(u"Übergabepunkt 42").I32(42);                       // name
  b.F32(1.8F).U8(1);                                              // antenna height
  b.U8(1).U16(2200).I32(1);                                       // extra time
  b.U16(7).Fill(26, 0);                                           // word 16
  b.U8(7).Fill(4 + 3 * 8, 0);                                     // ignored pairs
  b.U8(0).U16(1).U16(2);                                          // values
  b.U8(0).U16(11).U16(14).U16(9);                                 // DOPs
  b.U8(24).U8(17);                                                // total pair
  b.U8(0).F32(1.0F).F32(2.0F).F32(3.0F);                          // vector
  b.U8(7).U8(1).U8(9).U8(8).U8(1).U8(9).U8(5).U8(1).U8(6).U8(4);  // system pairs
  b.U16(0x3FFF).U8(1).U8(2).U8(3);                                // flag A, values B and C
  b.Units(std::u16string(79, u'a')).U16(0);                       // text A
  b.Units(std::u16string(68, u'b')).U16(0).I32(4);                // text B, value D
  b.U16(0).U8(1).U16(0).U8(1).I32(5).U16(6).U16(7).U16(1).U8(0);  // the other blocks
  return b.Frame();
}

ByteVector FrameOfTexts() {
  FrameBuilderC b;
  b.Times().U16(0x2000).U16(0x0058);
  for (const std::size_t length : {79U, 79U, 78U}) b.Units(std::u16string(length, u'x')).U16(0);
  return b.Frame();
}

void BM_Decode(benchmark::State& state, const ByteVector& frame) {
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  for (auto _ : state) {
    const auto decoded = SDI::RecordFrame::Decode(frame, measurement, info);
    if (!decoded.IsDone()) state.SkipWithError("the frame is bad");
    benchmark::DoNotOptimize(measurement);
    benchmark::DoNotOptimize(info);
  }
  state.counters["frame"] = static_cast<double>(frame.size());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(frame.size()));
}
BENCHMARK_CAPTURE(BM_Decode, everything, FrameOfEverything());
BENCHMARK_CAPTURE(BM_Decode, texts, FrameOfTexts());

void BM_Encode(benchmark::State& state, const ByteVector& frame) {
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  SDI::RecordFrame::Decode(frame, measurement, info);
  std::array<std::uint8_t, SDI::RecordFrame::kMaxSize> bytes;
  for (auto _ : state) {
    const auto encoded = SDI::RecordFrame::Encode(measurement, info, bytes);
    if (encoded.size == 0) state.SkipWithError("the measurement is refused");
    benchmark::DoNotOptimize(bytes);
  }
}
BENCHMARK_CAPTURE(BM_Encode, everything, FrameOfEverything());
BENCHMARK_CAPTURE(BM_Encode, texts, FrameOfTexts());

// A file of 200 frames; consecutive reads read different ones.
class FramesOnDiskC {
 public:
  explicit FramesOnDiskC(const ByteVector& frame) : size_(frame.size()), file_(Repeated(frame)) {}

  SDI::GPSRecordFileInfo FirstInfo() const { return file_.Info(); }
  std::string Name() const { return file_.Path().string(); }
  std::size_t FrameSize() const { return size_; }
  std::uint32_t Next() { return static_cast<std::uint32_t>((next_++ * 37 % kFrames) * size_); }

 private:
  static constexpr std::size_t kFrames = 200;
  static ByteVector Repeated(const ByteVector& frame) {
    ByteVector bytes;
    for (std::size_t i = 0; i < kFrames; ++i) Append(bytes, frame);
    return bytes;
  }

  std::size_t size_;
  std::size_t next_ = 0;
  TestSupport::TempFileC file_;
};

void BM_ReadFile(benchmark::State& state, const ByteVector& frame) {
  FramesOnDiskC file(frame);
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info = file.FirstInfo();
  for (auto _ : state) {
    info.offset = file.Next();
    const std::uint32_t result = SDI::GPSRecordFileC::ReadGPSMeasData(&measurement, &info);
    if (result != SDI::GPSRecordFileC::kDone) state.SkipWithError("the frame is bad");
    benchmark::DoNotOptimize(measurement);
  }
}

void BM_ReadFileBare(benchmark::State& state, const ByteVector& frame) {
  FramesOnDiskC file(frame);
  const std::string name = file.Name();
  std::uint8_t bytes[500];
  for (auto _ : state) {
    std::FILE* const stream = std::fopen(name.c_str(), "rb+");
    if (stream == nullptr || std::fseek(stream, file.Next(), SEEK_SET) != 0 ||
        std::fread(bytes, 1, 5, stream) != 5 ||
        std::fread(bytes + 5, 1, file.FrameSize() - 5, stream) != file.FrameSize() - 5) {
      state.SkipWithError("the file cannot be read");
    }
    std::fclose(stream);
    benchmark::DoNotOptimize(bytes);
  }
}
BENCHMARK_CAPTURE(BM_ReadFile, everything, FrameOfEverything());
BENCHMARK_CAPTURE(BM_ReadFileBare, everything, FrameOfEverything());

// A file of 32 MB with records of many sizes and kinds, and damage between them.
void BM_WalkFile(benchmark::State& state) {
  std::mt19937_64 random(1);
  ByteVector bytes;
  while (bytes.size() < 32'000'000) {
    const std::size_t payload = random() % 16 != 0 ? random() % 490 : random() % 5000;
    const ByteVector record =
        FrameBuilderC().Noise(payload, random).Frame(random() % 2 != 0 ? 113 : 17);
    Append(bytes, record);
    if (random() % 16 == 0) bytes.resize(bytes.size() + random() % 30, 0x9C);
  }
  const TestSupport::TempFileC file(bytes);
  for (auto _ : state) {
    SDI::GPSRecordIndexC index(file.Path().c_str());
    std::uint64_t entries = 0;
    for (SDI::GPSRecordEntry entry; index.Next(entry);) ++entries;
    benchmark::DoNotOptimize(entries);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(BM_WalkFile)->Unit(benchmark::kMillisecond);

// Reads the same bytes without using them.
void BM_WalkFileBare(benchmark::State& state) {
  const ByteVector bytes(32'000'000, 0x11);
  const TestSupport::TempFileC file(bytes);
  std::vector<std::uint8_t> window(256 * 1024);
  for (auto _ : state) {
    std::FILE* const stream = std::fopen(file.Path().c_str(), "rb");
    while (std::fread(window.data(), 1, window.size(), stream) == window.size()) {
      benchmark::DoNotOptimize(window.data());
    }
    std::fclose(stream);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(BM_WalkFileBare)->Unit(benchmark::kMillisecond);

// The public function, compared with the internal one that it calls.
void BM_DecodePublic(benchmark::State& state, const ByteVector& frame) {
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  for (auto _ : state) {
    const auto result = SDI::GPSRecordReaderC::Decode(frame, measurement, info);
    if (!result.IsDone()) state.SkipWithError("the frame is bad");
    benchmark::DoNotOptimize(measurement);
    benchmark::DoNotOptimize(info);
  }
}
BENCHMARK_CAPTURE(BM_DecodePublic, everything, FrameOfEverything());
BENCHMARK_CAPTURE(BM_DecodePublic, texts, FrameOfTexts());

}  // namespace
