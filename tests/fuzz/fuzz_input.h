#ifndef SURVEYDATA_TESTS_FUZZ_FUZZ_INPUT_H_
#define SURVEYDATA_TESTS_FUZZ_FUZZ_INPUT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace Fuzz {

/// The bytes of an input, consumed in order. A number read past the end is filled with zeros, so
/// that every input is valid.
class InputC {
 public:
  explicit InputC(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool IsEmpty() const { return bytes_.empty(); }

  template <class Value>
  Value Take() {
    static_assert(std::is_trivially_copyable_v<Value>);
    Value value{};
    const std::size_t size = std::min(sizeof(Value), bytes_.size());
    if (size != 0) std::memcpy(&value, bytes_.data(), size);
    bytes_ = bytes_.subspan(size);
    return value;
  }
  std::uint8_t U8() { return Take<std::uint8_t>(); }
  std::uint16_t U16() { return Take<std::uint16_t>(); }
  /// 0 to `limit` - 1.
  std::size_t Below(std::size_t limit) { return limit <= 256 ? U8() % limit : U16() % limit; }
  bool Flag() { return (U8() & 1) != 0; }

  /// At most `most` of the remaining bytes.
  std::span<const std::uint8_t> Bytes(std::size_t most) {
    const auto bytes = bytes_.first(std::min(most, bytes_.size()));
    bytes_ = bytes_.subspan(bytes.size());
    return bytes;
  }
  std::vector<std::uint8_t> Rest() {
    const auto bytes = Bytes(bytes_.size());
    return {bytes.begin(), bytes.end()};
  }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace Fuzz

extern "C" {
/// Every target defines this. Targets use the assertions of GoogleTest.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
/// Called once before the first input: makes a failing assertion end the process, which counts as
/// a finding. Linked into every target.
int LLVMFuzzerInitialize(int* argc, char*** argv);
}

#endif  // SURVEYDATA_TESTS_FUZZ_FUZZ_INPUT_H_
