// The walk over a record file of any bytes finds the records and gaps that a search from byte to
// byte finds.

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/gnss/gps_record_index.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/memory_file.h"
#include "tests/fuzz/sealed_frames.h"
#include "tests/gnss/record_model.h"

namespace {

// Gives every other header (`rhythm` tells which) its right checksum.
void SealSome(TestSupport::ByteVector& bytes, unsigned rhythm) {
  unsigned number = 0;
  for (std::size_t at = 0; at + 2 <= bytes.size(); ++at) {
    if (bytes[at] != 0x9C || bytes[at + 1] != 0xAE) continue;
    if ((rhythm >> number++ % 4 & 1) != 0) Fuzz::SealIfWhole(bytes, at);
  }
}

// What is found behind `before` bytes in which no record begins.
std::vector<SDI::GPSRecordEntry> WalkBehind(std::size_t before,
                                            const TestSupport::ByteVector& bytes) {
  auto entries = RecordModel::Walk(bytes);
  for (SDI::GPSRecordEntry& entry : entries) entry.offset += before;
  if (before == 0) return entries;
  if (entries.empty() || !entries.front().isGap) {
    entries.insert(entries.begin(), {before, 0, true, 0});
  }
  entries.front().offset = 0;
  entries.front().size += before;
  return entries;
}

}  // namespace

// 1 byte of choices: which records are sealed, and whether 2 bytes follow that tell how far behind
// the beginning of a long file the bytes stand, around the end of what the walk looks at in one go.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Fuzz::MemoryFileC memory;
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  const bool isLong = (choices & 0xF0) == 0xF0;
  const std::size_t before = isLong ? 192 * 1024 + in.U16() : 0;
  auto bytes = in.Rest();
  SealSome(bytes, choices & 0xF);
  const auto expected = WalkBehind(before, bytes);
  bytes.insert(bytes.begin(), before, 0x55);
  memory.Write(bytes.data(), bytes.size());

  SDI::GPSRecordIndexC index(memory.Path().c_str());
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
  EXPECT_EQ(entries, expected);
  return 0;
}
