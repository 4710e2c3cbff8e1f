// Reads a record file in four threads, one stretch per thread, and appends the measurements with a
// low PDOP to another file.

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <thread>
#include <vector>

#include <surveydata/gnss/gps_record_reader.h>
#include <surveydata/gnss/gps_record_writer.h>

namespace {

constexpr const char* kFile = "valley_drive.rec";

// The frames of a stretch whose PDOP is at most 1.5. The reader owns its records, so the frames are
// copied.
std::vector<std::uint8_t> GoodFrames(SDI::GPSRecordStretch stretch) {
  std::vector<std::uint8_t> frames;
  SDI::GPSRecordReaderC reader(kFile, stretch);
  for (const SDI::GPSRecordC& record : reader) {
    SDI::GPSDOPsC dops;
    if (!record.IsDone() || !record.GetMeasurement().GetDOPs(dops)) continue;
    if (dops.GetPDOP() < 0 || dops.GetPDOP() > 1.5) continue;  // below 0: not available
    frames.insert(frames.end(), record.GetBytes().begin(), record.GetBytes().end());
  }
  return frames;
}

// Appends a new measurement.
bool AppendMark(const char* file) {
  SDI::GPSMeasDataImplC measurement;
  measurement.SetTextD(u"end of the drive");
  std::array<std::uint8_t, SDI::GPSRecordEntry::kLongestMeasurement> frame;
  const SDI::GPSEncodeResult encoded = SDI::GPSRecordWriterC::Encode(measurement, {}, frame);
  if (!encoded.IsDone()) {
    std::printf("%s %s\n", TextOf(encoded.field), TextOf(encoded.outcome));
    return false;
  }
  const auto outcome = SDI::GPSRecordWriterC::Append(file, std::span(frame).first(encoded.size));
  return outcome == SDI::GPSAppendOutcome::kDone;
}

}  // namespace

int main() {
  std::remove("good.rec");
  const std::uint64_t size = SDI::GPSRecordReaderC(kFile).GetSize();
  std::array<std::vector<std::uint8_t>, 4> parts;
  std::vector<std::thread> threads;
  for (std::uint64_t i = 0; i < parts.size(); ++i) {
    // Stretches may be cut anywhere: each record is read only in the stretch in which it begins.
    threads.emplace_back([&parts, size, i] {
      parts[i] = GoodFrames({size * i / parts.size(), size * (i + 1) / parts.size()});
    });
  }
  for (std::thread& thread : threads) thread.join();

  for (const auto& part : parts) {
    const auto outcome = SDI::GPSRecordWriterC::Append("good.rec", part);
    if (outcome != SDI::GPSAppendOutcome::kDone) {
      std::printf("good.rec: %s\n", TextOf(outcome));
      return 1;
    }
  }
  if (!AppendMark("good.rec")) return 1;

  int count = 0;
  for ([[maybe_unused]] const SDI::GPSRecordC& record : SDI::GPSRecordReaderC("good.rec")) ++count;
  std::printf("%d measurements in good.rec\n", count);
}
