// The walks of the index and of the reader over arbitrary bytes find the same records, gaps and
// damaged headers as a byte-by-byte search, in memory and in a file, as a whole and in stretches.

#include <algorithm>
#include <memory>
#include <span>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_index.h>
#include <surveydata/gnss/gps_record_reader.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"
#include "tests/fuzz/sealed_frames.h"
#include "tests/gnss/reader_walks.h"
#include "tests/gnss/record_model.h"

namespace {

using ReaderWalks::Listed;
using TestSupport::ByteVector;

// Gives some of the headers, selected by `rhythm`, the correct checksum.
void SealSome(ByteVector& bytes, unsigned rhythm) {
  unsigned number = 0;
  for (std::size_t at = 0; at + 2 <= bytes.size(); ++at) {
    if (bytes[at] != 0x9C || bytes[at + 1] != 0xAE) continue;
    if ((rhythm >> number++ % 4 & 1) != 0) Fuzz::SealIfWhole(bytes, at);
  }
}

// The expected list if the bytes follow `before` bytes in which no record begins.
Listed ListAfter(std::size_t before, const ByteVector& bytes) {
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

void ExpectIndex(SDI::GPSRecordIndexC& index, const ByteVector& bytes, const Listed& expected) {
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

void ExpectReader(SDI::GPSRecordReaderC& reader, const ByteVector& bytes, const Listed& expected) {
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

}  // namespace

// Input: 1 byte of choices: which headers get correct checksums, whether the bytes are also read
// through a file, and whether 2 bytes follow that give the distance of the bytes from the start of
// a long file: around the size of the walk's window, and more than a stretch looks back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC file;
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const bool isLong = (choices & 0xF0) == 0xF0;
  const bool isThroughFile = (choices & 0xE0) == 0xE0;
  const std::size_t before = isLong ? 192 * 1024 + in.U16() : 0;
  const std::size_t cut = (choices & 0x10) != 0 ? in.U16() : 0;
  ByteVector bytes = in.Rest();
  SealSome(bytes, choices & 0xF);
  const Listed expected = ListAfter(before, bytes);
  bytes.insert(bytes.begin(), before, 0x55);

  const std::span<const std::uint8_t> memory(bytes);
  SDI::GPSRecordIndexC index(memory);
  ExpectIndex(index, bytes, expected);
  SDI::GPSRecordReaderC reader(memory);
  ExpectReader(reader, bytes, expected);
  const std::size_t border = before + std::min(cut, bytes.size() - before);
  ExpectStretches(memory, bytes.size(), border, expected);
  if (!isThroughFile) return 0;

  file.Write(bytes.data(), bytes.size());
  SDI::GPSRecordIndexC fileIndex(file.Path().c_str());
  ExpectIndex(fileIndex, bytes, expected);
  SDI::GPSRecordReaderC fileReader(file.Path().c_str());
  ExpectReader(fileReader, bytes, expected);
  ExpectStretches(file.Path().c_str(), bytes.size(), border, expected);
  return 0;
}
