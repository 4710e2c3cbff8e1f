// Arbitrary bytes through the C interface: a source that sometimes cancels gives the same results
// as bytes in memory, entries cover the stretch, and each frame decodes, is explained, encoded and
// changed consistently.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/c_interface/surveydata.h>

#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/sealed_frames.h"

namespace {

using TestSupport::ByteVector;
using Frame = std::array<std::uint8_t, SURVEYDATA_LONGEST_FRAME>;

struct Entry {
  std::uint32_t kind;
  std::uint64_t offset;
  std::uint64_t size;
  std::uint32_t type;
  std::uint32_t damage;

  bool operator==(const Entry&) const = default;
};

struct Stretch {
  std::uint64_t begin;
  std::uint64_t end;
};

// A source that gives few bytes at a time, and cancels every `rhythm`th time.
struct Source {
  const ByteVector& bytes;
  std::size_t most;
  unsigned rhythm;
  unsigned calls = 0;

  static std::int64_t ReadAt(void* context, std::uint64_t offset, std::uint8_t* to,
                             std::size_t count) {
    Source& self = *static_cast<Source*>(context);
    if (self.rhythm != 0 && ++self.calls % self.rhythm == 0) return SURVEYDATA_READ_CANCELLED;
    EXPECT_LE(offset, self.bytes.size());
    count = std::min({count, self.most, self.bytes.size() - static_cast<std::size_t>(offset)});
    if (count != 0) std::memcpy(to, self.bytes.data() + offset, count);
    return static_cast<std::int64_t>(count);
  }
};

surveydata_measurement Decode(std::span<const std::uint8_t> bytes, surveydata_status& status) {
  surveydata_measurement measurement;
  std::memset(&measurement, 0, sizeof(measurement));
  measurement.struct_size = sizeof(measurement);
  status = surveydata_decode(bytes.data(), bytes.size(), &measurement);
  return measurement;
}

bool AreEqual(const surveydata_measurement& a, const surveydata_measurement& b) {
  return std::memcmp(&a, &b, sizeof(a)) == 0;
}

// Every byte of the frame belongs to one field, in order.
void ExpectFields(std::span<const std::uint8_t> frame, surveydata_status decoded) {
  std::array<surveydata_field, SURVEYDATA_MOST_FIELDS> fields;
  std::size_t count = 0;
  ASSERT_EQ(surveydata_fields(frame.data(), frame.size(), fields.data(), sizeof(fields[0]),
                              fields.size(), &count),
            SURVEYDATA_OK);
  ASSERT_LE(count, fields.size());
  std::size_t at = 0;
  bool fit = true;
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(fields[i].offset, at);
    at += fields[i].size;
    fit = fit && std::strcmp(fields[i].name, "does not fit") != 0;
    EXPECT_LT(std::strlen(fields[i].value), sizeof(fields[i].value));
  }
  EXPECT_EQ(at, frame.size());
  if (!fit) {
    EXPECT_EQ(decoded, SURVEYDATA_BLOCK_DOES_NOT_FIT);
  }
}

// A measurement that can be encoded decodes with the same set and status bits.
void ExpectEncoding(const surveydata_measurement& measurement) {
  Frame frame;
  std::size_t size = 0;
  std::uint32_t field = 0;
  const surveydata_status status =
      surveydata_encode(&measurement, frame.data(), frame.size(), &size, &field);
  if (status != SURVEYDATA_OK) {
    EXPECT_TRUE(status == SURVEYDATA_NO_PLACE || status == SURVEYDATA_TOO_LONG) << status;
    EXPECT_NE(field, 0U);
    return;
  }
  surveydata_status again = SURVEYDATA_FAILED;
  surveydata_measurement decoded = Decode({frame.data(), size}, again);
  EXPECT_EQ(again, SURVEYDATA_OK);
  // Values that are not present may be left out, so only the bits are compared.
  decoded.block = measurement.block;
  EXPECT_EQ(decoded.set_mask, measurement.set_mask);
  EXPECT_EQ(decoded.status_mask, measurement.status_mask);
}

// The changes are there afterwards, and nothing else is different.
void ExpectChanges(std::span<const std::uint8_t> frame, const surveydata_measurement& before,
                   Fuzz::InputC& in) {
  std::string name;
  for (std::size_t i = in.Below(20); i > 0; --i) name += static_cast<char>(1 + in.Below(255));
  surveydata_changes changes{};
  changes.struct_size = sizeof(changes);
  changes.which = in.U8() & 7;
  changes.name = name.c_str();
  changes.number = in.Take<std::int32_t>();
  changes.antenna_height = in.Take<float>();
  changes.is_slant = in.Flag() ? 1 : 0;
  Frame patched;
  patched.fill(0xEE);
  const surveydata_status status =
      surveydata_patch(frame.data(), frame.size(), &changes, patched.data());
  if (status != SURVEYDATA_OK) {
    EXPECT_EQ(status, SURVEYDATA_NO_PLACE);
    EXPECT_EQ(patched[0], 0xEE);
    return;
  }
  EXPECT_TRUE(frame.size() == patched.size() || patched[frame.size()] == 0xEE);
  surveydata_status decoded = SURVEYDATA_FAILED;
  surveydata_measurement after = Decode({patched.data(), frame.size()}, decoded);
  ASSERT_EQ(decoded, SURVEYDATA_OK);
  if ((changes.which & SURVEYDATA_CHANGE_NAME) != 0) {
    EXPECT_EQ(std::string(after.name), name);
    std::memcpy(after.name, before.name, sizeof(after.name));
  }
  if ((changes.which & SURVEYDATA_CHANGE_NUMBER) != 0) {
    EXPECT_EQ(after.number, changes.number);
    after.number = before.number;
  }
  if ((changes.which & SURVEYDATA_CHANGE_ANTENNA_HEIGHT) != 0) {
    EXPECT_TRUE(std::isfinite(after.antenna_height));
    EXPECT_EQ(std::memcmp(&after.antenna_height, &changes.antenna_height, sizeof(float)), 0);
    EXPECT_EQ(after.antenna_is_vertical, 1 - changes.is_slant);
    after.antenna_height = before.antenna_height;
    after.antenna_is_vertical = before.antenna_is_vertical;
  }
  EXPECT_TRUE(AreEqual(after, before));
}

void ExpectFrame(std::span<const std::uint8_t> bytes, Fuzz::InputC& in) {
  surveydata_status status = SURVEYDATA_FAILED;
  const surveydata_measurement measurement = Decode(bytes, status);
  const bool isWhole = status == SURVEYDATA_OK || status == SURVEYDATA_BLOCK_DOES_NOT_FIT;
  if (!isWhole) {
    EXPECT_TRUE(status == SURVEYDATA_CUT || status == SURVEYDATA_WRONG_CHECKSUM ||
                status == SURVEYDATA_NO_MEASUREMENT);
    std::size_t count = 7;
    EXPECT_EQ(
        surveydata_fields(bytes.data(), bytes.size(), nullptr, sizeof(surveydata_field), 0, &count),
        status);
    EXPECT_EQ(count, 7U);
    return;
  }
  const std::size_t size = bytes[2] + std::size_t{256} * bytes[3] + 2;
  ExpectFields(bytes.first(size), status);
  ExpectEncoding(measurement);
  if (status == SURVEYDATA_OK) ExpectChanges(bytes.first(size), measurement, in);
}

// All results of a reader. Entries cover the stretch; measurements go through the other functions.
std::vector<Entry> List(surveydata_reader* reader, const ByteVector& bytes, const Stretch& stretch,
                        Fuzz::InputC* in) {
  std::vector<Entry> list;
  surveydata_entry entry{};
  entry.struct_size = sizeof(entry);
  std::uint64_t at = UINT64_MAX;
  for (;;) {
    const surveydata_status status = surveydata_reader_next(reader, SURVEYDATA_ALL_ENTRIES, &entry);
    if (status == SURVEYDATA_CANCELLED) continue;
    if (status != SURVEYDATA_OK) {
      EXPECT_EQ(status, SURVEYDATA_END);
      break;
    }
    list.push_back({entry.kind, entry.offset, entry.size, entry.record_type, entry.damage});
    EXPECT_TRUE(stretch.begin <= entry.offset && entry.offset < stretch.end);
    if (entry.kind == SURVEYDATA_DAMAGED_HEADER) continue;
    EXPECT_TRUE(at == UINT64_MAX || at == entry.offset);
    at = entry.offset + entry.size;
    if (entry.kind == SURVEYDATA_GAP) continue;
    EXPECT_TRUE(std::equal(entry.bytes, entry.bytes + entry.size,
                           bytes.begin() + static_cast<std::ptrdiff_t>(entry.offset)));
    if (in == nullptr) continue;
    if (entry.kind == SURVEYDATA_MEASUREMENT) ExpectFrame({entry.bytes, entry.size}, *in);
  }
  if (at != UINT64_MAX) {
    EXPECT_GE(at, std::min<std::uint64_t>(stretch.end, bytes.size()));
  }
  return list;
}

}  // namespace

// 1 byte of choices, 2 bytes each for the ends of a stretch, up to 60 bytes for changes, the file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::InputC in({data, size});
  const unsigned choices = in.U8();
  Stretch stretch{0, SURVEYDATA_NO_END};
  const std::uint64_t begin = in.U16();
  const std::uint64_t length = in.U16();
  if ((choices & 1) != 0) stretch = {begin, begin + length};
  Fuzz::InputC changes(in.Bytes(60));
  ByteVector bytes = in.Rest();
  unsigned number = 0;
  for (std::size_t at = 0; at + 2 <= bytes.size(); ++at) {
    const bool isMagic = bytes[at] == 0x9C && bytes[at + 1] == 0xAE;
    if (isMagic && (choices >> 4 >> number++ % 4 & 1) == 0) Fuzz::SealIfWhole(bytes, at);
  }

  surveydata_reader* reader = nullptr;
  EXPECT_EQ(
      surveydata_reader_open_bytes(bytes.data(), bytes.size(), stretch.begin, stretch.end, &reader),
      SURVEYDATA_OK);
  const std::vector<Entry> list = List(reader, bytes, stretch, &changes);
  surveydata_reader_close(reader);

  Source source{bytes, (choices & 2) != 0 ? std::size_t{7} : bytes.size() + 1,
                (choices & 2) != 0 ? 0U : 2U};
  const surveydata_source given{
      sizeof(surveydata_source), 0, &Source::ReadAt, nullptr, &source, bytes.size()};
  EXPECT_EQ(surveydata_reader_open_source(&given, stretch.begin, stretch.end, &reader),
            SURVEYDATA_OK);
  EXPECT_EQ(List(reader, bytes, stretch, nullptr), list);
  surveydata_reader_close(reader);

  // The file as a frame.
  if (!bytes.empty()) ExpectFrame(bytes, changes);
  return 0;
}
