#ifndef SURVEYDATA_TESTS_FUZZ_SEALED_FRAMES_H_
#define SURVEYDATA_TESTS_FUZZ_SEALED_FRAMES_H_

#include <cstddef>

#include "tests/support/frame_builder.h"

namespace Fuzz {

/// Stores the correct checksum of the frame at `at`, if there is room, which random bytes rarely
/// have.
inline void SealIfWhole(TestSupport::ByteVector& bytes, std::size_t at) {
  if (at + 4 > bytes.size()) return;
  const std::size_t length = bytes[at + 2] + std::size_t{256} * bytes[at + 3];
  if (length >= 5 && at + length + 2 <= bytes.size()) TestSupport::Seal(bytes, at);
}

}  // namespace Fuzz

#endif  // SURVEYDATA_TESTS_FUZZ_SEALED_FRAMES_H_
