#ifndef SURVEYDATA_GNSS_GPS_RECORD_OUTCOME_H_
#define SURVEYDATA_GNSS_GPS_RECORD_OUTCOME_H_

#include <cstddef>
#include <cstdint>

#include <surveydata/object_model/export.h>

/// \file
/// Outcomes of reading and writing records, as values and as texts.

namespace SDI {

/// The blocks of a measurement frame, in the order of the frame.
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

/// The outcome of decoding a frame.
enum class GPSRecordOutcome : std::uint8_t {
  kDone,
  kNoMeasurement,    ///< The bytes do not begin with the header of a measurement frame.
  kCut,              ///< The bytes end before the frame does.
  kWrongChecksum,    ///< The checksum does not match the bytes.
  kBlockDoesNotFit,  ///< A block extends past the checksum, or its count is too large.
};

/// The outcome of decoding a frame, and the block that did not fit.
struct GPSDecodeResult {
  GPSRecordOutcome outcome = GPSRecordOutcome::kDone;
  /// The block that does not fit; `kChecksum` for every other outcome.
  GPSRecordBlock block = GPSRecordBlock::kChecksum;

  bool IsDone() const { return outcome == GPSRecordOutcome::kDone; }
  bool operator==(const GPSDecodeResult&) const = default;
};

/// Why the header of a measurement frame in a gap does not begin a record.
enum class GPSRecordDamage : std::uint8_t {
  kWrongChecksum,
  kCutByTheEnd,         ///< The source ends before the frame does.
  kRunsIntoNextRecord,  ///< A record begins before the frame ends: perhaps random bytes.
};

/// The header of a measurement frame in a gap: magic, type, and a length with room for times and
/// flags, but no valid frame.
struct GPSDamagedHeader {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  ///< Of the frame, according to its header.
  GPSRecordDamage damage = GPSRecordDamage::kWrongChecksum;

  bool operator==(const GPSDamagedHeader&) const = default;
};

/// The state of the source of a reader.
enum class GPSReaderState : std::uint8_t {
  kOpen,           ///< No failure: records can be read, or all were read.
  kNoSuchFile,     ///< There is no file of this name.
  kNoPermission,   ///< No permission to read the file.
  kCannotOpen,     ///< The file cannot be opened for another reason.
  kNoStretches,    ///< A stretch of a pipe was requested; a pipe can only be read as a whole.
  kReadingFailed,  ///< Reading failed; the records before that position were returned.
};

/// The parts of a measurement and its info, including those that a frame cannot store.
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

/// The outcome of encoding a measurement.
enum class GPSEncodeOutcome : std::uint8_t {
  kDone,
  kNoPlace,  ///< Reading a frame never gives this value.
  kTooLong,  ///< The frame has no room left for the field: it would be longer than 500 bytes.
};

/// The outcome of encoding a measurement, with the size of the frame or the field that was refused.
struct GPSEncodeResult {
  GPSEncodeOutcome outcome = GPSEncodeOutcome::kDone;
  GPSRecordField field = GPSRecordField::kNone;  ///< The first field that was refused.
  std::size_t size = 0;                          ///< Of the frame in bytes; 0 if it was refused.

  bool IsDone() const { return outcome == GPSEncodeOutcome::kDone; }
  bool operator==(const GPSEncodeResult&) const = default;
};

/// The outcome of appending records to a file.
enum class GPSAppendOutcome : std::uint8_t {
  kDone,
  kNoRecords,      ///< The bytes are not a sequence of whole records; the file is unchanged.
  kNoSuchFile,     ///< The file cannot be created: its folder does not exist.
  kNoPermission,   ///< No permission to write the file.
  kCannotOpen,     ///< The file cannot be opened for another reason, or is a pipe.
  kWritingFailed,  ///< Writing failed, for example because the disk is full; the file is unchanged.
  kLeftOver,       ///< Writing failed, and part of the records may remain at the end of the file.
};

/// A few words for use in a message, for example "wrong checksum". Never null.
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
