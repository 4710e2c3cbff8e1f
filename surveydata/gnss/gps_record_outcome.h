#ifndef SURVEYDATA_GNSS_GPS_RECORD_OUTCOME_H_
#define SURVEYDATA_GNSS_GPS_RECORD_OUTCOME_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/object_model/export.h>

/// \file
/// What came of reading and writing records, as values and as texts.

namespace SDI {

/// The blocks of a measurement frame, in the order in which they lie in it.
enum class GPSRecordBlock : std::uint8_t {
  kHeader,
  kTimes,
  // Announced by flags word 1.
  kFileFlags,
  kName,
  kAntennaHeight,
  kExtraTime,
  kWord16,
  kIgnoredPairs,
  kValues,
  kDOPs,
  kTotalPair,
  kVector,
  kSystemPairs,
  kMore,
  // Announced by flags word 2.
  kFlagA,
  kValueB,
  kValueC,
  kTextA,
  kTextB,
  kValueD,
  kTextC,
  kFlagE,
  kTextD,
  kValueF,
  kValueG,
  kValueH,
  kValueI,
  kList,
  kUnused,  ///< Bytes between the last block and the checksum.
  kChecksum,
};

/// What decoding a frame found.
enum class GPSRecordOutcome : std::uint8_t {
  kDone,
  kNoMeasurement,    ///< The bytes do not begin with the header of a measurement frame.
  kCut,              ///< The bytes end before the frame does.
  kWrongChecksum,    ///< The checksum is not that of the bytes.
  kBlockDoesNotFit,  ///< A block runs past the checksum, or its count is too large.
};

/// The outcome of decoding a frame.
struct GPSDecodeResult {
  GPSRecordOutcome outcome = GPSRecordOutcome::kDone;
  /// The block that does not fit; `kChecksum` for every other outcome.
  GPSRecordBlock block = GPSRecordBlock::kChecksum;

  bool IsDone() const { return outcome == GPSRecordOutcome::kDone; }
  bool operator==(const GPSDecodeResult&) const = default;
};

/// Why the header of a measurement frame in a gap begins no record.
enum class GPSRecordDamage : std::uint8_t {
  kWrongChecksum,
  kCutByTheEnd,         ///< The source ends before the frame does.
  kRunsIntoNextRecord,  ///< A record begins before the frame ends: maybe no frame but chance bytes.
};

/// The header of a measurement frame in a gap: magic, type and a length that has room for times and
/// flags are there, but no whole frame.
struct GPSDamagedHeader {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  ///< Of the frame, as its header has it.
  GPSRecordDamage damage = GPSRecordDamage::kWrongChecksum;

  bool operator==(const GPSDamagedHeader&) const = default;
};

/// How the source of a reader is.
enum class GPSReaderState : std::uint8_t {
  kOpen,           ///< Nothing failed: records can be read, or all were read.
  kNoSuchFile,     ///< There is no file of this name.
  kNoPermission,   ///< The file must not be read.
  kCannotOpen,     ///< The file cannot be opened for another reason.
  kNoStretches,    ///< A stretch was asked of a pipe, which has none.
  kReadingFailed,  ///< Reading failed; the records before that place were given.
};

/// What of a measurement and its info goes into a frame, or has no place in one.
enum class GPSRecordField : std::uint8_t {
  kNone,
  kTimeBWeek,
  kStatusBit2,
  kFlags,
  kName,
  kAntennaHeight,
  kHorizontalOffset,
  kExtraTime,
  kWord16,
  kValues,
  kDOPs,
  kTotalPair,
  kVector,
  kSystem1Pair,
  kSystem2Pair,
  kSystem3Pair,
  kFlagA,
  kValueB,
  kValueC,
  kTextA,
  kTextB,
  kValueD,
  kTextC,
  kFlagE,
  kTextD,
  kValueF,
  kValueG,
  kValueH,
  kValueI,
  kListBlock,
};

/// What came of encoding a measurement.
enum class GPSEncodeOutcome : std::uint8_t {
  kDone,
  kNoPlace,  ///< Reading a frame never gives this value of the field.
  kTooLong,  ///< The frame has no room left for the field: it would be longer than 500 bytes.
};

/// The outcome of encoding a measurement.
struct GPSEncodeResult {
  GPSEncodeOutcome outcome = GPSEncodeOutcome::kDone;
  GPSRecordField field = GPSRecordField::kNone;  ///< The first field that was refused.
  std::size_t size = 0;                          ///< Of the frame in bytes; 0 when it was refused.

  bool IsDone() const { return outcome == GPSEncodeOutcome::kDone; }
  bool operator==(const GPSEncodeResult&) const = default;
};

/// What came of appending records to a file.
enum class GPSAppendOutcome : std::uint8_t {
  kDone,
  kNoRecords,      ///< The bytes are not whole records one after the other; the file is untouched.
  kNoSuchFile,     ///< The file cannot be made: there is no such folder.
  kNoPermission,   ///< The file must not be written.
  kCannotOpen,     ///< The file cannot be opened for another reason, or is a pipe.
  kWritingFailed,  ///< Writing failed, for lack of room for example; the file is as it was.
  kLeftOver,       ///< Writing failed, and part of the records may be left at the end of the file.
};

/// In a few words, as part of a message: "wrong checksum". Never null.
/// @{
SURVEYDATA_API const char* TextOf(GPSRecordBlock block);
SURVEYDATA_API const char* TextOf(GPSRecordOutcome outcome);
SURVEYDATA_API const char* TextOf(GPSRecordDamage damage);
SURVEYDATA_API const char* TextOf(GPSReaderState state);
SURVEYDATA_API const char* TextOf(GPSRecordField field);
SURVEYDATA_API const char* TextOf(GPSEncodeOutcome outcome);
SURVEYDATA_API const char* TextOf(GPSAppendOutcome outcome);
/// @}

}  // namespace SDI

#endif  // SURVEYDATA_GNSS_GPS_RECORD_OUTCOME_H_
