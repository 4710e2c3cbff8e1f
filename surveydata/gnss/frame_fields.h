#ifndef SURVEYDATA_GNSS_FRAME_FIELDS_H_
#define SURVEYDATA_GNSS_FRAME_FIELDS_H_

#include <cstdint>

#include <surveydata/gnss/gps_record_outcome.h>

/// \file
/// Internal: the names of what a measurement frame is made of, for programs and for people.

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
  kIgnored,  ///< Bytes of any block that have no meaning here.
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
  kListHead,
  kListCount,
  kListEntry,
  kChecksum,
};

/// What of a measurement and its info goes into a frame, or has no place in one.
using RecordField = GPSRecordField;

/// For people. The name of a field tells it from the others of its block only; `TextOf` names
/// blocks and record fields.
const char* NameOf(Field field);

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_FIELDS_H_
