#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/column_order.h>

namespace GMAT {
namespace {

// Straight lines over columns of width 1, out of order where they swap.
class LinesC {
 public:
  struct Line {
    double height;
    double slope;
  };

  explicit LinesC(std::vector<Line> lines) : lines_(std::move(lines)) {}

  double HeightAt(std::uint32_t curve, std::size_t border) const {
    return lines_[curve].height + lines_[curve].slope * static_cast<double>(border);
  }
  static bool AreInOrder(std::size_t /*column*/, const ColumnOrderC::Crossing& lower,
                         const ColumnOrderC::Crossing& upper) {
    return lower.left <= upper.left && lower.right <= upper.right;
  }
  void Reject(std::size_t column, const ColumnOrderC::Crossing& crossing) {
    rejected.emplace_back(column, crossing.curve);
    EXPECT_EQ(crossing.left, HeightAt(crossing.curve, column));
    EXPECT_EQ(crossing.right, HeightAt(crossing.curve, column + 1));
  }

  std::vector<std::pair<std::size_t, std::uint32_t>> rejected;

 private:
  std::vector<Line> lines_;
};

std::vector<std::uint32_t> CurvesOf(const ColumnOrderC& order, std::size_t column) {
  std::vector<std::uint32_t> curves;
  for (const ColumnOrderC::Item& item : order.Get(column)) curves.push_back(item.curve);
  return curves;
}

using Curves = std::vector<std::uint32_t>;

TEST(ColumnOrder, ListsTheCurvesThatLeadThroughAColumnFromBelow) {
  LinesC lines({{3.0, 0.0}, {1.0, 0.0}, {2.0, 0.1}, {0.0, 0.0}});
  ColumnOrderC order;
  EXPECT_TRUE(order.IsEmpty());
  EXPECT_TRUE(order.Get(0).empty());
  order.Build(4, {{0, 0, 3}, {1, 1, 2}, {2, 0, 1}, {3, 3, 3}}, lines);
  EXPECT_FALSE(order.IsEmpty());
  EXPECT_EQ(CurvesOf(order, 0), (Curves{2, 0}));
  EXPECT_EQ(CurvesOf(order, 1), (Curves{1, 2, 0}));
  EXPECT_EQ(CurvesOf(order, 2), (Curves{1, 0}));
  EXPECT_EQ(CurvesOf(order, 3), (Curves{3, 0}));
  EXPECT_TRUE(lines.rejected.empty());
}

TEST(ColumnOrder, ReplacesThePreviousOrder) {
  LinesC lines({{3.0, 0.0}, {1.0, 0.0}, {2.0, 0.1}});
  ColumnOrderC order;
  order.Build(4, {{0, 0, 3}, {1, 1, 2}, {2, 0, 1}}, lines);
  order.Build(2, {{2, 1, 1}}, lines);
  EXPECT_EQ(CurvesOf(order, 0), Curves{});
  EXPECT_EQ(CurvesOf(order, 1), Curves{2});
  order.Build(2, {}, lines);
  EXPECT_TRUE(order.IsEmpty());
  EXPECT_TRUE(order.Get(1).empty());
}

// A ring of many edges has millions of items.
TEST(ColumnOrder, AnItemHasFourBytes) { EXPECT_EQ(sizeof(ColumnOrderC::Item), 4u); }

TEST(ColumnOrder, LeavesOutCurvesWhereTheySwap) {
  LinesC lines({{0.0, 0.0}, {1.5, -1.0}, {3.0, 0.0}});  // the second crosses the first in column 1
  ColumnOrderC order;
  order.Build(3, {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}}, lines);
  EXPECT_EQ(CurvesOf(order, 0), (Curves{0, 1, 2}));
  EXPECT_EQ(CurvesOf(order, 1).size(), 2u);
  EXPECT_EQ(CurvesOf(order, 2), (Curves{1, 0, 2}));
  ASSERT_EQ(lines.rejected.size(), 1u);
  EXPECT_EQ(lines.rejected[0].first, 1u);
}

TEST(ColumnOrder, CountsTheCurvesBelow) {
  std::mt19937_64 random(3);
  for (std::uint32_t count = 0; count < 40; ++count) {
    std::vector<ColumnOrderC::Item> items;
    for (std::uint32_t i = 0; i < count; ++i) items.push_back({i});
    for (std::uint32_t below = 0; below <= count; ++below) {
      EXPECT_EQ(ColumnOrderC::CountBelow(
                    items, [below](const ColumnOrderC::Item& item) { return item.curve < below; }),
                below);
    }
  }
}

// Every curve of every column is on the list, or was rejected; the lists ascend at both borders.
TEST(ColumnOrder, ListsOrRejectsEveryCurve) {
  std::mt19937_64 random(4);
  std::uniform_real_distribution<double> height(0.0, 10.0);
  std::uniform_real_distribution<double> slope(-0.05, 0.05);
  constexpr std::size_t kColumns = 30;
  for (int run = 0; run < 50; ++run) {
    std::vector<LinesC::Line> shapes;
    std::vector<ColumnOrderC::Span> spans;
    for (std::uint32_t i = 0; i < 60; ++i) {
      shapes.push_back({height(random), slope(random)});
      const auto [first, last] = std::minmax({static_cast<std::uint32_t>(random() % kColumns),
                                              static_cast<std::uint32_t>(random() % kColumns)});
      spans.push_back({i, first, last});
    }
    LinesC lines(shapes);
    ColumnOrderC order;
    order.Build(kColumns, spans, lines);
    EXPECT_FALSE(lines.rejected.empty());
    for (std::size_t column = 0; column < kColumns; ++column) {
      Curves expected;
      for (const ColumnOrderC::Span& span : spans) {
        if (span.first <= column && column <= span.last) expected.push_back(span.curve);
      }
      const Curves listed = CurvesOf(order, column);
      for (std::size_t i = 1; i < listed.size(); ++i) {
        EXPECT_LE(lines.HeightAt(listed[i - 1], column), lines.HeightAt(listed[i], column));
        EXPECT_LE(lines.HeightAt(listed[i - 1], column + 1), lines.HeightAt(listed[i], column + 1));
      }
      Curves all = listed;
      for (const auto& [where, curve] : lines.rejected) {
        if (where == column) all.push_back(curve);
      }
      std::sort(all.begin(), all.end());
      EXPECT_EQ(all, expected);
    }
  }
}

}  // namespace
}  // namespace GMAT
