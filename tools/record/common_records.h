#ifndef SURVEYDATA_TOOLS_RECORD_COMMON_RECORDS_H_
#define SURVEYDATA_TOOLS_RECORD_COMMON_RECORDS_H_

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace Tool {

/// The places of a text in two lists.
struct CommonPlace {
  std::size_t a;
  std::size_t b;

  bool operator==(const CommonPlace&) const = default;
};

/// A longest common subsequence of two lists of texts, by ascending places. Which one does not
/// depend on anything but the lists.
/// \cost n * m / 64 steps and n * m / 8 bytes for lists of n and m elements, without those that
///       are the same at both ends.
/// \source the bit-parallel recurrence of M. Crochemore and others, A fast and practical
///         bit-vector algorithm for the longest common subsequence problem, Information Processing
///         Letters 80 (2001), 279-285.
std::vector<CommonPlace> FindCommon(std::span<const std::string_view> a,
                                    std::span<const std::string_view> b);

}  // namespace Tool

#endif  // SURVEYDATA_TOOLS_RECORD_COMMON_RECORDS_H_
