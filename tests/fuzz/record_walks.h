#ifndef SURVEYDATA_TESTS_FUZZ_RECORD_WALKS_H_
#define SURVEYDATA_TESTS_FUZZ_RECORD_WALKS_H_

#include <algorithm>
#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "tests/fuzz/sealed_frames.h"
#include "tests/gnss/reader_walks.h"
#include "tests/gnss/record_model.h"

/// \file
/// Shared by the fuzz targets of walks: checks that index and reader find what they must.

namespace Fuzz {

using ReaderWalks::Listed;
using TestSupport::ByteVector;

// Gives some of the headers, selected by `rhythm`, the correct checksum.
inline void SealSome(ByteVector& bytes, unsigned rhythm) {
  unsigned number = 0;
  for (std::size_t at = 0; at + 2 <= bytes.size(); ++at) {
    if (bytes[at] != 0x9C || bytes[at + 1] != 0xAE) continue;
    if ((rhythm >> number++ % 4 & 1) != 0) Fuzz::SealIfWhole(bytes, at);
  }
}

// The expected list if the bytes follow `before` bytes in which no record begins.
inline Listed ListAfter(std::size_t before, const ByteVector& bytes) {
  Listed listed{RecordModel::Walk(bytes), RecordModel::Damaged(bytes)};
  for (SDI::GPSRecordEntry& entry : listed.entries) entry.offset += before;
  for (SDI::GPSDamagedHeader& header : listed.damaged) header.offset += before;
  if (before == 0) return listed;
  if (listed.entries.empty() || !listed.entries.front().isGap) {
    listed.entries.insert(listed.entries.begin(), {before, 0, true, 0});
  }
  listed.entries.front().offset = 0;
  listed.entries.front().size += before;
  return listed;
}

inline void ExpectIndex(SDI::GPSRecordIndexC& index, const ByteVector& bytes,
                        const Listed& expected) {
  EXPECT_TRUE(index.IsOpen());
  EXPECT_EQ(index.GetFileSize(), bytes.size());
  std::vector<SDI::GPSRecordEntry> entries;
  for (SDI::GPSRecordEntry entry; index.Next(entry);) {
    entries.push_back(entry);
    EXPECT_EQ(index.GetBytes().size(), entry.isGap ? 0 : entry.size);
    EXPECT_TRUE(std::equal(index.GetBytes().begin(), index.GetBytes().end(),
                           bytes.begin() + static_cast<std::ptrdiff_t>(entry.offset)));
  }
  EXPECT_FALSE(index.HasFailed());
  EXPECT_EQ(entries, expected.entries);
}

inline void ExpectReader(SDI::GPSRecordReaderC& reader, const ByteVector& bytes,
                         const Listed& expected) {
  EXPECT_EQ(reader.GetSize(), bytes.size());
  EXPECT_EQ(ReaderWalks::List(reader), expected);
  EXPECT_EQ(reader.GetState(), SDI::GPSReaderState::kOpen);
}

// Checks that two stretches together give the whole.
template <class Source>
void ExpectStretches(const Source& source, std::size_t size, std::size_t cut,
                     const Listed& expected) {
  Listed joined;
  SDI::GPSRecordReaderC first(source, {0, cut});
  ReaderWalks::Join(joined, ReaderWalks::List(first));
  SDI::GPSRecordReaderC second(source, {cut, size});
  ReaderWalks::Join(joined, ReaderWalks::List(second));
  EXPECT_EQ(joined, expected);
}

}  // namespace Fuzz

#endif  // SURVEYDATA_TESTS_FUZZ_RECORD_WALKS_H_
