#include <algorithm>
#include <cstdint>
#include <unordered_map>

#include <record/common_records.h>

namespace Tool {
namespace {

constexpr std::size_t kWord = 64;

// For each prefix of `a` a row of bits: bit j is 0 where the longest common subsequence with the
// first j + 1 elements of `b` is longer than that with the first j.
class LengthRowsC {
 public:
  LengthRowsC(std::span<const std::string_view> a, std::span<const std::string_view> b)
      : words_((b.size() + kWord - 1) / kWord), rows_((a.size() + 1) * words_) {
    std::unordered_map<std::string_view, std::vector<std::size_t>> places;
    for (std::size_t j = 0; j < b.size(); ++j) places[b[j]].push_back(j);
    std::fill_n(rows_.begin(), words_, ~std::uint64_t{0});
    std::vector<std::uint64_t> matches(words_);
    for (std::size_t i = 0; i < a.size(); ++i) {
      const auto found = places.find(a[i]);
      std::ranges::fill(matches, 0);
      if (found != places.end()) {
        for (const std::size_t j : found->second) matches[j / kWord] |= Bit(j);
      }
      AddRow(i, matches);
    }
  }

  // Whether the first `i` elements of `a` have no longer common subsequence with `j` + 1 elements
  // of `b` than with `j`.
  bool IsFlat(std::size_t i, std::size_t j) const {
    return (rows_[i * words_ + j / kWord] & Bit(j)) != 0;
  }

 private:
  static std::uint64_t Bit(std::size_t j) { return std::uint64_t{1} << (j % kWord); }

  void AddRow(std::size_t i, std::span<const std::uint64_t> matches) {
    std::uint64_t carry = 0;
    for (std::size_t word = 0; word < words_; ++word) {
      const std::uint64_t row = rows_[i * words_ + word];
      const std::uint64_t addend = row & matches[word];
      const std::uint64_t sum = row + addend;
      const std::uint64_t carried = sum + carry;
      carry = static_cast<std::uint64_t>(sum < row) | static_cast<std::uint64_t>(carried < sum);
      rows_[(i + 1) * words_ + word] = carried | (row & ~matches[word]);
    }
  }

  std::size_t words_;
  std::vector<std::uint64_t> rows_;
};

}  // namespace

std::vector<CommonPlace> FindCommon(std::span<const std::string_view> a,
                                    std::span<const std::string_view> b) {
  const auto [endA, endB] = std::ranges::mismatch(a, b);
  const auto begin = static_cast<std::size_t>(endA - a.begin());
  std::size_t tail = 0;
  while (tail < std::min(a.size(), b.size()) - begin &&
         a[a.size() - 1 - tail] == b[b.size() - 1 - tail]) {
    ++tail;
  }
  const auto middleA = a.subspan(begin, a.size() - begin - tail);
  const auto middleB = b.subspan(begin, b.size() - begin - tail);

  std::vector<CommonPlace> common;
  for (std::size_t i = 0; i < tail; ++i) common.push_back({a.size() - 1 - i, b.size() - 1 - i});
  if (!middleA.empty() && !middleB.empty()) {
    const LengthRowsC rows(middleA, middleB);
    for (std::size_t i = middleA.size(), j = middleB.size(); i > 0 && j > 0;) {
      if (middleA[i - 1] == middleB[j - 1]) {
        --i;
        --j;
        common.push_back({begin + i, begin + j});
      } else if (rows.IsFlat(i, j - 1)) {
        --j;
      } else {
        --i;
      }
    }
  }
  for (std::size_t i = begin; i > 0; --i) common.push_back({i - 1, i - 1});
  std::ranges::reverse(common);
  return common;
}

}  // namespace Tool
