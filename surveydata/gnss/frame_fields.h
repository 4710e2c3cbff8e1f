#ifndef SURVEYDATA_GNSS_FRAME_FIELDS_H_
#define SURVEYDATA_GNSS_FRAME_FIELDS_H_

#include <cstdint>

#include <surveydata/gnss/gps_record_outcome.h>

/// \file
/// Internal: the blocks and fields of a measurement frame as enumerators, and the names of fields.

namespace SDI::RecordFrame {

/// The blocks of a frame, in the order in which they lie in it.
using Block = GPSRecordBlock;

/// The fields of the blocks.
enum class Field : std::uint8_t {
  kMagic,
  kLength,
  kType,
  kTimeAWeek,
  kTimeAOfWeek,
  kTimeBOfWeek,
  kFlags1,
  kIgnored,  ///< Bytes of any block that the library ignores.
  kFileKind,
  kStatus,
  kMoreStatus,
  kName,
  kNumber,
  kHeight,
  kHeightKind,
  kExtraTimeCount,
  kExtraTimeWeek,
  kExtraTimeOfWeek,
  kWord16,
  kIgnoredSystems,
  kFirstValue,
  kSecondValue,
  kHDOP,
  kVDOP,
  kTDOP,
  kTotalFirst,
  kTotalSecond,
  kX,
  kY,
  kZ,
  kSystems,
  kSystemValid,
  kSystemFirst,
  kSystemSecond,
  kFlags2,
  kFlag,   ///< Of the blocks flag A and flag E.
  kValue,  ///< Of the blocks value B to value I.
  kText,   ///< Of the blocks text A to text D.
  kListHead,
  kListCount,
  kListEntry,
  kChecksum,
};

/// The parts of a measurement and its info, including those that a frame cannot store.
using RecordField = GPSRecordField;

/// The name of a field as text. It is unique only within its block. `TextOf` names blocks and
/// record fields.
const char* NameOf(Field field);

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_FIELDS_H_
