#ifndef SURVEYDATA_GNSS_FRAME_FIELDS_H_
#define SURVEYDATA_GNSS_FRAME_FIELDS_H_

#include <cstdint>

/// \file
/// Internal: the names of what a measurement frame is made of, for programs and for people.

namespace SDI::RecordFrame {

/// The blocks of a frame, in the order in which they lie in it.
enum class Block : std::uint8_t {
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
enum class RecordField : std::uint8_t {
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

/// For people. The name of a field tells it from the others of its block only.
/// @{
const char* NameOf(Block block);
const char* NameOf(Field field);
const char* NameOf(RecordField field);
/// @}

}  // namespace SDI::RecordFrame

#endif  // SURVEYDATA_GNSS_FRAME_FIELDS_H_
