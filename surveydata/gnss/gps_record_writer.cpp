#include <cstdio>

#include <surveydata/gnss/file_access.h>
#include <surveydata/gnss/gps_record_writer.h>
#include <surveydata/gnss/record_frame.h>

namespace SDI {
namespace {

GPSAppendOutcome OutcomeOf(FileAccess::OpenFailure failure) {
  switch (failure) {
    case FileAccess::OpenFailure::kNoSuchFile:
      return GPSAppendOutcome::kNoSuchFile;
    case FileAccess::OpenFailure::kNoPermission:
      return GPSAppendOutcome::kNoPermission;
    default:
      return GPSAppendOutcome::kCannotOpen;
  }
}

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
  // In append mode the system puts every write at the current end of the file.
  std::FILE* const file = std::fopen(fileName, "ab");
  if (file == nullptr) return OutcomeOf(FileAccess::GetOpenFailure());
  // Without a buffer a write has reached the system when it returns, or has failed.
  const bool canSeek = std::setvbuf(file, nullptr, _IONBF, 0) == 0 && FileAccess::SeekToEnd(file);
  const FileAccess::Offset size = canSeek ? FileAccess::Tell(file) : -1;
  if (size < 0) {
    std::fclose(file);
    return GPSAppendOutcome::kCannotOpen;
  }
  GPSAppendOutcome outcome = GPSAppendOutcome::kDone;
  if (std::fwrite(records.data(), 1, records.size(), file) != records.size()) {
    outcome = FileAccess::Truncate(file, size) ? GPSAppendOutcome::kWritingFailed
                                               : GPSAppendOutcome::kLeftOver;
  }
  // A failure that a network drive reports only now cannot be undone.
  if (std::fclose(file) != 0) outcome = GPSAppendOutcome::kLeftOver;
  return outcome;
}

}  // namespace SDI
