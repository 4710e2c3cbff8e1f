#ifndef SURVEYDATA_TESTS_TOOLS_RECORD_RECORD_SET_FIXTURE_H_
#define SURVEYDATA_TESTS_TOOLS_RECORD_RECORD_SET_FIXTURE_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/program.h"

// The frame of the sample that has all three blocks, and its properties.
inline constexpr std::size_t kFrame = 960;
inline constexpr std::size_t kFrameSize = 467;
inline constexpr std::size_t kKindAt = 17 + 6;
inline constexpr std::size_t kNameAt = 17 + 12;
inline constexpr std::size_t kNumberAt = kNameAt + 34;
inline constexpr std::size_t kHeightAt = kNumberAt + 4;
inline constexpr std::size_t kHeightKindAt = kHeightAt + 4;

// The requested changes, and a simple implementation of their effect on a frame.
struct Change {
  std::optional<std::u16string> name;
  std::optional<std::int32_t> number;
  std::optional<float> height;
  bool isSlant = false;

  void Apply(std::uint8_t* frame, std::size_t size) const {
    if (name) {
      for (std::size_t i = 0; i < 17; ++i) {
        const unsigned unit = i < name->size() ? (*name)[i] : 0u;
        frame[kNameAt + 2 * i] = static_cast<std::uint8_t>(unit);
        frame[kNameAt + 2 * i + 1] = static_cast<std::uint8_t>(unit >> 8);
      }
    }
    const auto put = [frame](std::size_t at, std::uint32_t value) {
      for (std::size_t i = 0; i < 4; ++i) frame[at + i] = static_cast<std::uint8_t>(value >> 8 * i);
    };
    if (number) put(kNumberAt, static_cast<std::uint32_t>(*number));
    if (height) {
      put(kHeightAt, std::bit_cast<std::uint32_t>(*height));
      frame[kHeightKindAt] = isSlant ? 1 : 0;
    }
    FixChecksum(frame, size);
  }
};

// A copy of the sample in a separate folder.
class RecordSet : public testing::Test {
 protected:
  RecordSet() { WriteBytes(file_, before_); }

  Outcome Set(const std::vector<std::string>& options, const RunOptions& run = {}) const {
    return SetAt("960", options, run);
  }
  Outcome SetAt(const std::string& offset, const std::vector<std::string>& options,
                const RunOptions& run = {}) const {
    std::vector<std::string> arguments = {"record", "set", file_, "--offset", offset};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return RunProgram(arguments, run);
  }

  Bytes Expected(const Change& change) const {
    Bytes bytes = before_;
    change.Apply(&bytes[kFrame], kFrameSize);
    return bytes;
  }

  void Replace(const Bytes& bytes) {
    before_ = bytes;
    WriteBytes(file_, bytes);
  }

  void ExpectUntouched() const {
    EXPECT_EQ(ReadBytes(file_), before_);
    EXPECT_EQ(folder_.Names(), std::vector<std::string>{"sample.rec"});
  }

  TempFolderC folder_;
  std::string file_ = folder_ / "sample.rec";
  Bytes before_ = ReadBytes(DataPath("valley_drive.rec"));
};

#endif  // SURVEYDATA_TESTS_TOOLS_RECORD_RECORD_SET_FIXTURE_H_
