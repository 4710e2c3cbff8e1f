#include <cerrno>
#include <cstdio>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include <surveydata/gnss/gps_record_writer.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI {
namespace {

#if defined(_WIN32)
using Offset = __int64;
int Seek(std::FILE* file, Offset offset, int whence) { return _fseeki64(file, offset, whence); }
Offset Tell(std::FILE* file) { return _ftelli64(file); }
int Truncate(std::FILE* file, Offset size) { return _chsize_s(_fileno(file), size); }
#else
using Offset = off_t;
int Seek(std::FILE* file, Offset offset, int whence) { return fseeko(file, offset, whence); }
Offset Tell(std::FILE* file) { return ftello(file); }
int Truncate(std::FILE* file, Offset size) { return ftruncate(fileno(file), size); }
#endif

bool AreRecords(std::span<const std::uint8_t> bytes) {
  GPSRecordIndexC index(bytes);
  for (GPSRecordEntry entry; index.Next(entry);) {
    if (entry.isGap) return false;
  }
  return true;
}

}  // namespace

static_assert(GPSRecordEntry::kLongestMeasurement == RecordFrame::kMaxSize);

GPSEncodeResult GPSRecordWriterC::Encode(
    const GPSMeasDataImplC& measurement, const GPSRecordFileInfo& info,
    std::span<std::uint8_t, GPSRecordEntry::kLongestMeasurement> frame) {
  const RecordFrame::Encoded encoded = RecordFrame::Encode(measurement, info, frame);
  switch (encoded.refusal.reason) {
    case RecordFrame::Refusal::Reason::kNoPlace:
      return {GPSEncodeOutcome::kNoPlace, encoded.refusal.field, 0};
    case RecordFrame::Refusal::Reason::kTooLong:
      return {GPSEncodeOutcome::kTooLong, encoded.refusal.field, 0};
    default:
      return {GPSEncodeOutcome::kDone, GPSRecordField::kNone, encoded.size};
  }
}

GPSAppendOutcome GPSRecordWriterC::Append(const char* fileName,
                                          std::span<const std::uint8_t> records) {
  if (!AreRecords(records)) return GPSAppendOutcome::kNoRecords;
  if (fileName == nullptr) return GPSAppendOutcome::kNoSuchFile;
  // For appending: the system puts every write at the end, wherever that is by then.
  std::FILE* const file = std::fopen(fileName, "ab");
  if (file == nullptr) {
    if (errno == ENOENT || errno == ENOTDIR) return GPSAppendOutcome::kNoSuchFile;
    const bool isForbidden = errno == EACCES || errno == EPERM || errno == EROFS;
    return isForbidden ? GPSAppendOutcome::kNoPermission : GPSAppendOutcome::kCannotOpen;
  }
  // Without a buffer each write is over when it returns, and tells whether it failed.
  const Offset size = std::setvbuf(file, nullptr, _IONBF, 0) == 0 && Seek(file, 0, SEEK_END) == 0
                          ? Tell(file)
                          : Offset{-1};
  if (size < 0) {
    std::fclose(file);
    return GPSAppendOutcome::kCannotOpen;
  }
  GPSAppendOutcome outcome = GPSAppendOutcome::kDone;
  if (std::fwrite(records.data(), 1, records.size(), file) != records.size()) {
    outcome =
        Truncate(file, size) == 0 ? GPSAppendOutcome::kWritingFailed : GPSAppendOutcome::kLeftOver;
  }
  // What a network drive tells only now cannot be taken back any more.
  if (std::fclose(file) != 0) outcome = GPSAppendOutcome::kLeftOver;
  return outcome;
}

}  // namespace SDI
