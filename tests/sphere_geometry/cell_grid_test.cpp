#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include <surveydata/sphere_geometry/cell_grid.h>

namespace GMAT {
namespace {

// A ring of straight edges in a grid.
struct Point {
  double x;
  double y;
};

class Ring {
 public:
  Ring(std::vector<Point> points, double width, std::size_t columns)
      : points_(std::move(points)), grid_(width, columns) {
    std::vector<CellGridC::Part> parts;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const auto [west, east] = Ends(i);
      const std::size_t first = grid_.ColumnOf(west.x);
      const std::size_t last = grid_.ColumnOf(east.x);
      for (std::size_t column = first; column <= last; ++column) {
        const double y1 = HeightAt(i, std::max(west.x, grid_.GetBorder(column)));
        const double y2 = HeightAt(i, std::min(east.x, grid_.GetBorder(column + 1)));
        CellGridC::Part part = CellGridC::MakePart(i, column, std::min(y1, y2), std::max(y1, y2));
        if (column == first) part.start = static_cast<float>(west.y);
        if (column == last) part.end = static_cast<float>(east.y);
        part.entersLeft = column > first ? 1U : 0U;
        parts.push_back(part);
      }
    }
    grid_.Build(parts);
  }

  const CellGridC& GetGrid() const { return grid_; }

  // Counted over all edges.
  bool IsOddBelow(Point p) const {
    bool isOdd = false;
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const auto [west, east] = Ends(i);
      isOdd ^= p.x > west.x && p.x < east.x && HeightAt(i, p.x) < p.y;
    }
    return isOdd;
  }

  // Counted with the cell, as `CellGridC::Item` describes. An open ring has an odd number above
  // all.
  bool IsOddBelowByCell(Point p) const {
    const CellGridC::Cell cell = grid_.Find(p.x, p.y);
    bool isOdd = cell.isOddBelow;
    for (const CellGridC::Item& item : cell.items) {
      const auto [west, east] = Ends(item.curve);
      if (p.x <= west.x) continue;
      isOdd ^= item.startsBelow != 0;
      isOdd ^= p.x < east.x ? HeightAt(item.curve, p.x) < p.y : item.endsBelow != 0;
    }
    return isOdd;
  }

  std::pair<Point, Point> Ends(std::size_t i) const {
    const Point& a = points_[i];
    const Point& b = points_[(i + 1) % points_.size()];
    return a.x <= b.x ? std::pair(a, b) : std::pair(b, a);
  }
  double HeightAt(std::size_t i, double x) const {
    const auto [west, east] = Ends(i);
    return east.x > west.x ? west.y + (x - west.x) * (east.y - west.y) / (east.x - west.x) : west.y;
  }

 private:
  std::vector<Point> points_;
  CellGridC grid_;
};

class CellGrid : public testing::Test {
 protected:
  double Uniform(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  // Random points: many edges cross.
  std::vector<Point> Scattered(std::size_t n, double width) {
    std::vector<Point> points;
    for (std::size_t i = 0; i < n; ++i) points.push_back({Uniform(0.0, width), Uniform(-3.0, 3.0)});
    return points;
  }
  // Short edges, one after the other.
  std::vector<Point> Round(std::size_t n, double width) {
    std::vector<Point> points;
    for (std::size_t i = 0; i < n; ++i) {
      const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(n);
      const double r = Uniform(0.3, 0.5);
      points.push_back({width * (0.5 + r * std::cos(angle)), 5.0 * r * std::sin(angle)});
    }
    return points;
  }

  std::mt19937_64 random_{1};
};

TEST_F(CellGrid, GivesTheParityBelowAnyPoint) {
  int odd = 0;
  for (int i = 0; i < 60; ++i) {
    const std::size_t n = 3 + random_() % 60;
    const double width = 0.5 + Uniform(0.0, 5.0);
    const std::size_t columns = 1 + random_() % 40;
    const Ring ring(i % 2 == 0 ? Scattered(n, width) : Round(n, width), width, columns);
    for (int k = 0; k < 500; ++k) {
      const Point p{Uniform(0.0, width), Uniform(-3.5, 3.5)};
      const bool isOdd = ring.IsOddBelow(p);
      ASSERT_EQ(ring.IsOddBelowByCell(p), isOdd) << p.x << ", " << p.y << " of ring " << i;
      odd += isOdd;
    }
  }
  EXPECT_GT(odd, 5000);
}

TEST_F(CellGrid, ACellListsAllCurvesThatComeIntoIt) {
  const Ring ring(Round(200, 2.0), 2.0, 30);
  for (std::size_t i = 0; i < 200; ++i) {
    const auto [west, east] = ring.Ends(i);
    for (int k = 0; k <= 20; ++k) {
      const double x = west.x + (east.x - west.x) * k / 20.0;
      const CellGridC::Cell cell = ring.GetGrid().Find(x, ring.HeightAt(i, x));
      EXPECT_TRUE(std::any_of(cell.items.begin(), cell.items.end(),
                              [&](const CellGridC::Item& item) { return item.curve == i; }))
          << i << " at " << x;
    }
  }
}

TEST_F(CellGrid, ACurveIsLowestInOneCellOfAColumn) {
  const Ring ring(Scattered(300, 2.0), 2.0, 10);
  const CellGridC& grid = ring.GetGrid();
  for (std::size_t column = 0; column < grid.GetColumnCount(); ++column) {
    std::multiset<std::uint32_t> lowest;
    std::set<std::uint32_t> all;
    std::size_t items = 0;
    std::size_t cells = 0;
    grid.ForEachCell(column, [&](const CellGridC::Cell& cell) {
      ++cells;
      for (const CellGridC::Item& item : cell.items) {
        ++items;
        all.insert(item.curve);
        if (item.isLowest != 0) lowest.insert(item.curve);
      }
    });
    EXPECT_GT(cells, 3u) << "rows";
    EXPECT_EQ(grid.GetItems(column).size(), items);
    EXPECT_EQ(lowest.size(), all.size());
    EXPECT_TRUE(std::equal(lowest.begin(), lowest.end(), all.begin(), all.end()));
  }
}

TEST_F(CellGrid, ColumnsGrowWithTheCurvesAndStayWiderThanAStep) {
  EXPECT_EQ(CellGridC::CountColumns(4, 1.0, 1.0, 1e-8), CellGridC::kFewestColumns);
  EXPECT_EQ(CellGridC::CountColumns(1000, 2.0, 1.0, 1e-8), 1000u) << "at most one per curve";
  EXPECT_EQ(CellGridC::CountColumns(1000, 60.0, 1.0, 1e-8), 100u) << "six parts per curve";
  EXPECT_EQ(CellGridC::CountColumns(1000, 2.0, 1.0, 0.1), 10u);
  EXPECT_EQ(CellGridC::CountColumns(1000, 2.0, 1.0, 7.0), 1u);
}

TEST_F(CellGrid, PointsBeyondTheEndsHaveTheNearestCell) {
  const Ring ring(Round(100, 1.0), 1.0, 20);
  const CellGridC& grid = ring.GetGrid();
  EXPECT_EQ(grid.ColumnOf(-0.3), 0u);
  EXPECT_EQ(grid.ColumnOf(0.0), 0u);
  EXPECT_EQ(grid.ColumnOf(0.99999), 19u);
  EXPECT_EQ(grid.ColumnOf(7.0), 19u);
  EXPECT_FALSE(ring.IsOddBelowByCell({0.47, -100.0}));
  EXPECT_FALSE(ring.IsOddBelowByCell({0.47, 100.0}));
}

TEST_F(CellGrid, AColumnWithoutCurvesIsEmpty) {
  CellGridC grid(1.0, 4);
  grid.Build({CellGridC::MakePart(0, 1, 0.0, 1.0)});
  EXPECT_TRUE(grid.Find(0.1, 0.5).items.empty());
  EXPECT_FALSE(grid.Find(0.1, 0.5).isOddBelow);
  ASSERT_EQ(grid.Find(0.3, 0.5).items.size(), 1u);
  EXPECT_EQ(grid.Find(0.3, 0.5).items[0].curve, 0u);
  EXPECT_TRUE(grid.GetItems(3).empty());
}

}  // namespace
}  // namespace GMAT
