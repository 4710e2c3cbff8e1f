#ifndef SURVEYDATA_TESTS_GNSS_READER_WALKS_H_
#define SURVEYDATA_TESTS_GNSS_READER_WALKS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_reader.h>

#include "tests/support/frame_builder.h"

/// \file
/// Shared by the tests of the reader: all output of a reader, and files to read.

namespace SDI {
inline void PrintTo(const GPSRecordEntry& entry, std::ostream* out) {
  *out << (entry.isGap ? "gap" : "record") << " of type " << int{entry.type} << " [" << entry.offset
       << ", " << entry.offset + entry.size << ')';
}
inline void PrintTo(const GPSDamagedHeader& header, std::ostream* out) {
  *out << TextOf(header.damage) << " [" << header.offset << ", " << header.offset + header.size
       << ')';
}
}  // namespace SDI

namespace ReaderWalks {

using TestSupport::ByteVector;

/// The output of a reader, in order: entries and damaged headers.
struct Listed {
  std::vector<SDI::GPSRecordEntry> entries;
  std::vector<SDI::GPSDamagedHeader> damaged;

  bool operator==(const Listed&) const = default;
};

inline Listed List(SDI::GPSRecordReaderC& reader) {
  Listed listed;
  reader.SetReportDamaged(
      [&](const SDI::GPSDamagedHeader& header) { listed.damaged.push_back(header); });
  for (SDI::GPSRecordEntry entry; reader.NextEntry(entry);) {
    // A header is reported before the gap that contains it and the record after that gap.
    if (!listed.damaged.empty()) {
      EXPECT_LT(listed.damaged.back().offset, entry.offset + entry.size);
    }
    listed.entries.push_back(entry);
  }
  reader.SetReportDamaged(nullptr);
  return listed;
}

/// Joins the output of stretches: gaps that touch at a border become one.
inline void Join(Listed& whole, const Listed& part) {
  bool isFirst = true;
  for (const SDI::GPSRecordEntry& entry : part.entries) {
    const bool isOne =
        isFirst && !whole.entries.empty() && whole.entries.back().isGap && entry.isGap;
    isFirst = false;
    if (isOne) {
      EXPECT_EQ(whole.entries.back().offset + whole.entries.back().size, entry.offset);
      whole.entries.back().size += entry.size;
    } else {
      whole.entries.push_back(entry);
    }
  }
  whole.damaged.insert(whole.damaged.end(), part.damaged.begin(), part.damaged.end());
}

/// Overlapping frames of `size` bytes, one every `step` bytes: the checksum of each is inside the
/// next ones, and walks that begin with different frames never meet.
inline ByteVector ChainOf(std::size_t size, std::size_t step, std::size_t bytes,
                          std::mt19937_64& random) {
  ByteVector chain;
  chain.reserve(bytes + size);
  const std::size_t length = size - 2;
  for (std::size_t i = 0; i < bytes; ++i)
    chain.push_back(static_cast<std::uint8_t>(random() % 156));
  for (std::size_t at = 0; at + 5 <= bytes; at += step) {
    chain[at] = 0x9C;
    chain[at + 1] = 0xAE;
    chain[at + 2] = static_cast<std::uint8_t>(length & 0xFF);
    chain[at + 3] = static_cast<std::uint8_t>(length >> 8);
    chain[at + 4] = 113;
  }
  // From front to back: a checksum covers those of the frames before it.
  for (std::size_t at = 0; at + size <= bytes; at += step) TestSupport::Seal(chain, at);
  return chain;
}

}  // namespace ReaderWalks

#endif  // SURVEYDATA_TESTS_GNSS_READER_WALKS_H_
