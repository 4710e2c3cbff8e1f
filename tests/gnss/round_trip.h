#ifndef SURVEYDATA_TESTS_GNSS_ROUND_TRIP_H_
#define SURVEYDATA_TESTS_GNSS_ROUND_TRIP_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include <gtest/gtest.h>

#include <surveydata/gnss/record_frame.h>

#include "tests/gnss/record_model.h"
#include "tests/gnss/stored_fields.h"
#include "tests/support/frame_builder.h"
#include "tests/support/same_info.h"

/// \file
/// The properties of encoding.

namespace TestSupport {

/// A frame as bytes, or the refusal.
struct EncodedBytes {
  ByteVector bytes;
  SDI::RecordFrame::Refusal refusal;
};

inline EncodedBytes EncodedOf(const SDI::GPSMeasDataImplC& measurement,
                              const SDI::GPSRecordFileInfo& info) {
  std::array<std::uint8_t, 500> buffer;
  buffer.fill(0xEE);  // bytes that are not written would be noticed
  const auto [size, refusal] = SDI::RecordFrame::Encode(measurement, info, buffer);
  return {ByteVector(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size)), refusal};
}

/// The part of `stored` that a frame can hold: fields that are not present have their defaults.
inline StoredFields PresentOf(StoredFields stored) {
  const StoredFields none;
  if ((stored.setMask & 0x0002) == 0) {
    stored.height = none.height;
    stored.isVertical = none.isVertical;
    stored.horizontalOffset = none.horizontalOffset;
  }
  if ((stored.setMask & 0x0004) == 0) stored.dops = none.dops;
  if ((stored.setMask & 0x0010) == 0) stored.vector = none.vector;
  if (stored.valueCount == 0) stored.values = none.values;
  std::fill(stored.listEntries.begin() + std::min(stored.listCount, 31U), stored.listEntries.end(),
            std::uint16_t{0});
  return stored;
}

/// Reads a frame into a new measurement and a zeroed info, by the model.
/// \return whether the frame is good.
inline bool ReadAnew(const ByteVector& frame, StoredFields& stored, SDI::GPSRecordFileInfo& info) {
  stored = {};
  info = {};
  return frame.size() >= 5 && RecordModel::Read(frame, stored, info) == 0;
}

/// Expects that `bytes` is a frame that reads as the contents of `measurement` and `info`.
inline void ExpectReadsBack(const ByteVector& bytes, const SDI::GPSMeasDataImplC& measurement,
                            const SDI::GPSRecordFileInfo& info) {
  StoredFields stored;
  SDI::GPSRecordFileInfo infoAgain;
  ASSERT_TRUE(ReadAnew(bytes, stored, infoAgain));
  const StoredFields expected = PresentOf(StoredIn(measurement));
  if (stored != expected) {
    ADD_FAILURE() << "read back:" << testing::PrintToString(stored)
                  << "expected:" << testing::PrintToString(expected);
  }
  EXPECT_EQ(infoAgain.number, info.number);
  EXPECT_EQ(infoAgain.flags, info.flags);
  const auto name = [](const SDI::GPSRecordFileInfo& i) {
    return std::string_view(i.name, sizeof(i.name)).substr(0, strnlen(i.name, sizeof(i.name)));
  };
  EXPECT_EQ(name(infoAgain), name(info));

  // The library reads it as the model does, and encodes it to the same bytes.
  SDI::GPSMeasDataImplC again;
  SDI::GPSRecordFileInfo byLibrary;
  EXPECT_TRUE(SDI::RecordFrame::Decode(bytes, again, byLibrary).IsDone());
  EXPECT_EQ(StoredIn(again), stored);
  ExpectSameInfo(byLibrary, infoAgain);
  EXPECT_EQ(EncodedOf(again, byLibrary).bytes, bytes);
}

/// Expects that the contents of a readable frame are encoded to a frame that reads the same and is
/// not longer.
inline void ExpectRoundTrip(const ByteVector& frame) {
  SDI::GPSMeasDataImplC measurement;
  SDI::GPSRecordFileInfo info;
  ASSERT_TRUE(SDI::RecordFrame::Decode(frame, measurement, info).IsDone());
  const auto [bytes, refusal] = EncodedOf(measurement, info);
  ASSERT_EQ(refusal, SDI::RecordFrame::Refusal()) << SDI::TextOf(refusal.field);
  EXPECT_LE(bytes.size(), frame.size());
  ExpectReadsBack(bytes, measurement, info);
}

}  // namespace TestSupport

#endif  // SURVEYDATA_TESTS_GNSS_ROUND_TRIP_H_
