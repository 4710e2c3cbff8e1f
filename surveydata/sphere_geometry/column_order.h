#ifndef SURVEYDATA_SPHERE_GEOMETRY_COLUMN_ORDER_H_
#define SURVEYDATA_SPHERE_GEOMETRY_COLUMN_ORDER_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace GMAT {

/// For each column of a plane, the curves that cross it from border to border, in order from the
/// bottom. One binary search finds the curves next to a point among any number of them. Intended
/// for long curves side by side that do not cross each other, which rows of cells cannot separate.
class ColumnOrderC {
 public:
  struct Item {
    std::uint32_t curve;
  };

  /// A curve that crosses all columns from `first` to `last`.
  struct Span {
    std::uint32_t curve;
    std::uint32_t first;
    std::uint32_t last;
  };

  /// A curve in one column, with its heights at the borders.
  struct Crossing {
    std::uint32_t curve;
    std::uint32_t last;
    double left;
    double right;
  };

  bool IsEmpty() const { return items_.empty(); }

  /// Orders the curves of each column.
  ///
  /// \param curves  an object with `HeightAt(curve, border)`; `AreInOrder(column, lower,
  ///                upper)`, whether neighbours in the order of the sums of their heights are in
  ///                order everywhere but in parts of the column that the caller handles; and
  ///                `Reject(column, crossing)`, for an upper one that is out of order, which is
  ///                left out.
  /// \cost k log k for each column that k curves cross.
  template <class Curves>
  void Build(std::size_t columns, std::vector<Span> spans, Curves& curves) {
    items_.clear();
    begins_.clear();
    if (spans.empty()) return;
    std::sort(spans.begin(), spans.end(),
              [](const Span& a, const Span& b) { return a.first < b.first; });
    begins_.reserve(columns + 1);
    auto next = spans.begin();
    std::vector<Crossing> open;
    for (std::size_t column = 0; column < columns; ++column) {
      std::erase_if(open, [column](const Crossing& c) { return c.last < column; });
      for (Crossing& c : open) {
        c.left = c.right;
        c.right = curves.HeightAt(c.curve, column + 1);
      }
      const auto known = static_cast<std::ptrdiff_t>(open.size());
      for (; next != spans.end() && next->first == column; ++next) {
        open.push_back({next->curve, next->last, curves.HeightAt(next->curve, column),
                        curves.HeightAt(next->curve, column + 1)});
      }
      Sort(open, open.begin() + known);
      begins_.push_back(items_.size());
      AddColumn(column, open, curves);
    }
    begins_.push_back(items_.size());
  }

  /// Empty if no curve crosses the column.
  std::span<const Item> Get(std::size_t column) const {
    if (items_.empty()) return {};
    return {items_.data() + begins_[column], items_.data() + begins_[column + 1]};
  }

  /// The number of items at the beginning for which `isBelow(item)` is true. No branch depends on
  /// the curves.
  template <class IsBelow>
  static std::size_t CountBelow(std::span<const Item> items, IsBelow isBelow) {
    std::size_t below = 0;
    std::size_t left = items.size();
    while (left > 0) {
      const std::size_t half = left / 2;
      const bool isUpperHalf = isBelow(items[below + half]);
      below += isUpperHalf ? half + 1 : 0;
      left = isUpperHalf ? left - half - 1 : half;
    }
    return below;
  }

 private:
  // Curves from the previous column keep their order, unless they are swapped.
  static void Sort(std::vector<Crossing>& open, std::vector<Crossing>::iterator fresh) {
    const auto isLower = [](const Crossing& a, const Crossing& b) {
      return a.left + a.right < b.left + b.right;
    };
    if (!std::is_sorted(open.begin(), fresh, isLower)) std::sort(open.begin(), fresh, isLower);
    std::sort(fresh, open.end(), isLower);
    std::inplace_merge(open.begin(), fresh, open.end(), isLower);
  }

  template <class Curves>
  void AddColumn(std::size_t column, const std::vector<Crossing>& open, Curves& curves) {
    const Crossing* lower = nullptr;
    for (const Crossing& upper : open) {
      if (lower != nullptr && !curves.AreInOrder(column, *lower, upper)) {
        curves.Reject(column, upper);
        continue;
      }
      items_.push_back({upper.curve});
      lower = &upper;
    }
  }

  std::vector<std::size_t> begins_;  // one per column, and one more
  std::vector<Item> items_;
};

}  // namespace GMAT

#endif  // SURVEYDATA_SPHERE_GEOMETRY_COLUMN_ORDER_H_
