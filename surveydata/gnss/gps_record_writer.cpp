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

// Appends the records to a file that is open for that.
GPSAppendOutcome Write(std::FILE* file, std::span<const std::uint8_t> records) {
  // Without a buffer a write has reached the system when it returns, or has failed.
  const bool canSeek = std::setvbuf(file, nullptr, _IONBF, 0) == 0 && FileAccess::SeekToEnd(file);
  const FileAccess::Offset size = canSeek ? FileAccess::Tell(file) : -1;
  if (size < 0) return GPSAppendOutcome::kCannotOpen;
  if (std::fwrite(records.data(), 1, records.size(), file) == records.size()) {
    return GPSAppendOutcome::kDone;
  }
  return FileAccess::Truncate(file, size) ? GPSAppendOutcome::kWritingFailed
                                          : GPSAppendOutcome::kLeftOver;
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
  const auto [file, isNew] = FileAccess::OpenToAppend(fileName);
  if (file == nullptr) return OutcomeOf(FileAccess::GetOpenFailure());
  GPSAppendOutcome outcome = Write(file, records);
  // A failure that a network drive reports only now cannot be undone in the file.
  if (std::fclose(file) != 0 && outcome != GPSAppendOutcome::kCannotOpen) {
    outcome = GPSAppendOutcome::kLeftOver;
  }
  if (outcome == GPSAppendOutcome::kDone || !isNew) return outcome;
  // Removing the new file leaves nothing behind.
  const bool isRemoved = std::remove(fileName) == 0;
  if (outcome == GPSAppendOutcome::kCannotOpen) return outcome;
  return isRemoved ? GPSAppendOutcome::kWritingFailed : GPSAppendOutcome::kLeftOver;
}

}  // namespace SDI
